"""The chart of the ratios in docs/performance.md.

ratios.py draw   writes docs/images/ratios.svg from the table
ratios.py check  fails when the chart is not that of the table
"""
import math
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
CHART = ROOT / "docs/images/ratios.svg"
LABELS, BARS, VALUES, LINE, TOP = 330, 420, 90, 22, 50
LEAST, MOST = -3.5, 2.5  # powers of ten

STYLE = """  .paper { fill: #ffffff } text { fill: #1f2328; font: 13px sans-serif } .label { text-anchor: end }
  .below { fill: #3b6db3 } .above { fill: #bc6c00 } .goal { stroke: #1f2328; stroke-width: 2 } .one { stroke: #8b949e }
  @media (prefers-color-scheme: dark) {
    .paper { fill: #0d1117 } text { fill: #e6edf3 }
    .below { fill: #6ea8fe } .above { fill: #e3a04f } .goal { stroke: #e6edf3 } .one { stroke: #6e7681 }
  }"""


def rows():
    """The figure, the compared one, the ratio and the goal ('' without one) of each row of the table."""
    for line in (ROOT / "docs/performance.md").read_text().splitlines():
        cells = [cell.strip() for cell in line.strip("|").split("|")]
        if line.startswith("|") and len(cells) == 7 and re.fullmatch(r"[\d.]+", cells[4]):
            yield cells[0], cells[2], float(cells[4]), cells[5]


def across(ratio):
    return LABELS + BARS * (math.log10(ratio) - LEAST) / (MOST - LEAST)


def drawn(row, y):
    figure, beside, ratio, goal = row
    left, right = sorted((across(1), across(ratio)))
    yield f'<text class="label" x="{LABELS - 8}" y="{y + 13}">{figure} / {beside}</text>'
    yield (f'<rect class="{"below" if ratio < 1 else "above"}" x="{left:.1f}" y="{y + 3}" '
           f'width="{max(right - left, 1):.1f}" height="12"/>')
    if goal:
        at = across(float(goal.split()[1]))
        yield f'<path class="goal" d="M{at:.1f} {y}v18"/>'
    yield f'<text x="{LABELS + BARS + 8}" y="{y + 13}">{ratio:g}{"  (" + goal + ")" if goal else ""}</text>'


def chart():
    table = list(rows())
    if not table:
        sys.exit("docs/performance.md has no row with a ratio")
    width, height = LABELS + BARS + VALUES + 30, TOP + len(table) * LINE + 10
    lines = [
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" width="{width}" height="{height}"'
        ' role="img" aria-label="The ratios of the table on a logarithmic scale, with their goals">',
        f"<style>\n{STYLE}\n</style>",
        f'<rect class="paper" width="{width}" height="{height}" rx="8"/>',
        f'<text x="{across(1) + 4:.1f}" y="20">1: as much as what it is beside</text>',
        f'<text x="{across(1) + 4:.1f}" y="38">upright line: the goal</text>',
        f'<path class="one" d="M{across(1):.1f} 10V{height - 6}"/>',
    ]
    for index, row in enumerate(table):
        lines += drawn(row, TOP + index * LINE)
    return "\n".join([*lines, "</svg>", ""])


def main(action):
    if action == "draw":
        CHART.write_text(chart())
    elif not CHART.exists() or CHART.read_text() != chart():
        print("docs/images/ratios.svg is out of date; run scripts/draw")
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
