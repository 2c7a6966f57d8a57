"""The rooms of src/, as CMake builds them.

rooms.py check  compares includes, documents and the drawing with CMake
rooms.py draw   writes docs/images/rooms.svg
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
DRAWING = ROOT / "docs/images/rooms.svg"
BOX, GAP, ROW = (132, 44), 26, 86

STYLE = """  .paper { fill: #ffffff } .box { fill: #eef3fb; stroke: #3b6db3 } .link { stroke: #57606a; fill: none }
  .tip { fill: #57606a } text { fill: #1f2328; font: 15px sans-serif; text-anchor: middle }
  @media (prefers-color-scheme: dark) {
    .paper { fill: #0d1117 } .box { fill: #1c2b41; stroke: #6ea8fe } .link { stroke: #9da7b3 }
    .tip { fill: #9da7b3 } text { fill: #e6edf3 }
  }"""


def commands(path, name):
    """The words of each call of a CMake command."""
    text = re.sub(r"#.*", "", path.read_text())
    return [call.split() for call in re.findall(rf"\b{name}\(([^)]*)\)", text)]


def rooms():
    """Each room with the rooms that it links, in the order of src/CMakeLists.txt."""
    names = [words[0] for words in commands(ROOT / "src/CMakeLists.txt", "add_subdirectory")]
    room_of, linked = {"${KORVEX_EVALUATOR_TARGET}": "evaluator"}, {}
    for room in names:
        lists = ROOT / "src" / room / "CMakeLists.txt"
        for words in commands(lists, "korvex_library"):
            room_of["korvex_" + words[0]] = room
        for words in commands(lists, "add_library"):
            room_of[words[0]] = room
        uses = commands(lists, "target_link_libraries") + commands(lists, "target_sources")
        linked[room] = [word.removeprefix("$<TARGET_OBJECTS:").removesuffix(">") for words in uses for word in words[1:]]
    return {room: {room_of[target] for target in linked[room] if target in room_of} - {room} for room in names}


def reached(links, room):
    return set().union(links[room], *(reached(links, below) for below in links[room]))


def sources(room):
    return sorted(path for path in (ROOT / "src" / room).rglob("*") if path.suffix in (".cpp", ".h"))


def included(path):
    return re.findall(r'^#include "([^"]+)"', path.read_text(), re.MULTILINE)


def public_headers(links):
    """The room of each public header: the one with its .cpp, such as Definition.h with DefinitionLoader.cpp."""
    firsts = ((path.stem, included(path)[:1], room) for room in links for path in sources(room) if path.suffix == ".cpp")
    return {first[0]: room for stem, first, room in firsts if first and f"korvex/{stem}".startswith(first[0][:-2])}


def forbidden_includes(links):
    header_rooms = public_headers(links)
    for room in links:
        allowed = reached(links, room) | {room}
        for path in sources(room):
            for header in included(path):
                other = header_rooms.get(header, header.split("/")[0])
                if other in links and other not in allowed:
                    yield f"{path.relative_to(ROOT)} includes {header}: {room} does not link {other}"


def wrong_documents(links):
    page = (ROOT / "docs/architecture.md").read_text()
    table = re.findall(r"^\| `src/(\w+)/` \|", page, re.MULTILINE)
    if table != list(links):
        yield f"docs/architecture.md lists the rooms {table}; src/CMakeLists.txt has {list(links)}"
    for document in ("docs/architecture.md", "CONTRIBUTING.md"):
        for room in sorted(set(re.findall(r"`src/(\w+)/", (ROOT / document).read_text())) - set(links)):
            yield f"{document} names src/{room}/, which is no room"
    if not DRAWING.exists() or DRAWING.read_text() != drawing(links):
        yield "docs/images/rooms.svg is out of date; run scripts/draw"


def levels(links):
    """The row of each room, from the bottom: just above what it links, or, linking nothing, just below its users."""
    level = {}
    for room in links:
        level[room] = 1 + max((level[below] for below in links[room]), default=-1)
    users = {room: [user for user in links if room in links[user]] for room in links}
    for room in reversed(links):
        level[room] = min((level[user] for user in users[room]), default=level[room] + 1) - 1
    for room in links:
        level[room] = 1 + max((level[below] for below in links[room]), default=level[room] - 1)
    return level


def direct(links, room):
    """The links of a room that no other of its links implies."""
    return {below for below in links[room] if not any(below in reached(links, other) for other in links[room])}


def drawing(links):
    level = levels(links)
    top = max(level.values())
    rows = [[room for room in links if level[room] == row] for row in range(top + 1)]
    width = max(map(len, rows)) * (BOX[0] + GAP) + GAP
    height = (top + 1) * ROW + GAP
    place = {}
    for row, names in enumerate(rows):
        left = (width - len(names) * (BOX[0] + GAP) + GAP) / 2
        for column, room in enumerate(names):
            place[room] = (left + column * (BOX[0] + GAP), GAP + (top - row) * ROW)
    lines = [
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" width="{width}" height="{height}"'
        ' role="img" aria-label="The rooms of src; an arrow leads from a room to one that it links">',
        f"<style>\n{STYLE}\n</style>",
        '<marker id="tip" viewBox="0 0 8 8" refX="8" refY="4" markerWidth="8" markerHeight="8" orient="auto">'
        '<path class="tip" d="M0 0L8 4L0 8z"/></marker>',
        f'<rect class="paper" width="{width}" height="{height}" rx="8"/>',
    ]
    for room in links:
        for below in sorted(direct(links, room)):
            (x1, y1), (x2, y2) = place[room], place[below]
            lines.append(f'<path class="link" marker-end="url(#tip)" '
                         f'd="M{x1 + BOX[0] / 2:g} {y1 + BOX[1]}L{x2 + BOX[0] / 2:g} {y2}"/>')
    for room, (x, y) in place.items():
        lines.append(f'<rect class="box" x="{x:g}" y="{y}" width="{BOX[0]}" height="{BOX[1]}" rx="6"/>'
                     f'<text x="{x + BOX[0] / 2:g}" y="{y + 27}">{room}</text>')
    return "\n".join([*lines, "</svg>", ""])


def main(action):
    links = rooms()
    if action == "draw":
        DRAWING.write_text(drawing(links))
        return 0
    faults = [*forbidden_includes(links), *wrong_documents(links)]
    print("\n".join(faults) or f"{len(links)} rooms, {sum(len(sources(room)) for room in links)} files")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
