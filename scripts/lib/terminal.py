"""The pictures of terminals in docs/images: commands, and what they really print.

terminal.py draw KORVEX_DAO   writes the pictures
terminal.py check KORVEX_DAO  fails when one is not what the command prints
"""
import html
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
IMAGES = ROOT / "docs/images"
LETTER, LINE, MARGIN = 8.5, 20, 16

# Each picture with what is typed, in the top directory: korvex-dao, or any other command.
PICTURES = {
    "schema.svg": ("cat examples/misspelled.xml", "korvex-dao check --schema upgrades examples/misspelled.xml"),
    "check.svg": ("cat examples/mistakes.xml", "korvex-dao check examples/mistakes.xml"),
}

# By the parameters of ANSI's escape sequence; without parameters a sequence ends the style.
STYLES = {"1": "bold", "1;31": "bold red", "1;32": "bold green", "1;35": "bold magenta", "1;36": "bold cyan"}
COLORS = """  .paper { fill: #ffffff; stroke: #d0d7de } .bold { font-weight: bold } .typed { fill: #57606a }
  text { fill: #1f2328; font: 14px ui-monospace, "DejaVu Sans Mono", Menlo, Consolas, monospace; white-space: pre }
  .red { fill: #cf222e } .green { fill: #1a7f37 } .magenta { fill: #8250df } .cyan { fill: #1b7c83 }
  @media (prefers-color-scheme: dark) {
    .paper { fill: #0d1117; stroke: #30363d } .typed { fill: #9da7b3 } text { fill: #e6edf3 }
    .red { fill: #ff7b72 } .green { fill: #7ee787 } .magenta { fill: #d2a8ff } .cyan { fill: #76e3ea }
  }"""

ESCAPE = re.compile(r"\x1b\[([\d;]*)m")


def printed(typed, program):
    """What a command prints, as on a terminal: in color, both outputs together."""
    words = typed.split()
    if words[0] == "korvex-dao":
        color = ["--color", "always"] if words[1] == "check" else []
        words = [*program, words[1], *color, *words[2:]]
    run = subprocess.run(words, cwd=ROOT, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
    return run.stdout.rstrip("\n").split("\n")


def span(style, text):
    return f'<tspan class="{style}">{html.escape(text, quote=False)}</tspan>' if style else html.escape(text, quote=False)


def styled(line):
    """A line of output as spans, one for each stretch of one style."""
    first, *rest = ESCAPE.split(line)
    return span("", first) + "".join(span(STYLES.get(code, ""), text) for code, text in zip(rest[::2], rest[1::2]) if text)


def picture(commands, program):
    lines = []  # pairs of what is seen, and how it is drawn
    for typed in commands:
        lines.append(("$ " + typed, span("typed", "$ ") + span("bold", typed)))
        lines += [(ESCAPE.sub("", line), styled(line)) for line in printed(typed, program)]
    width = round(2 * MARGIN + LETTER * max(len(seen) for seen, _ in lines))
    height = 2 * MARGIN + LINE * len(lines)
    label = html.escape("A terminal: " + ", then ".join(commands))
    drawn = [f'<text x="{MARGIN}" y="{MARGIN + LINE * row + 14}">{spans}</text>'
             for row, (seen, spans) in enumerate(lines) if seen]
    return "\n".join([
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" width="{width}" height="{height}"'
        f' role="img" aria-label="{label}" xml:space="preserve">',
        f"<style>\n{COLORS}\n</style>",
        f'<rect class="paper" x="0.5" y="0.5" width="{width - 1}" height="{height - 1}" rx="8"/>', *drawn, "</svg>", ""])


def main(action, *program):
    stale = []
    for name, commands in PICTURES.items():
        drawn, file = picture(commands, program), IMAGES / name
        if action == "draw":
            file.write_text(drawn)
        elif not file.exists() or file.read_text() != drawn:
            stale.append(f"docs/images/{name} is out of date; run scripts/draw")
    print("\n".join(stale) or f"{len(PICTURES)} pictures")
    return 1 if stale else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
