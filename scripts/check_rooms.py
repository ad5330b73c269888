#!/usr/bin/env python3
"""check_rooms.py ROOMS [--write | --sizes]: checks the rooms of src/ against what the build says of them.

ROOMS is the rooms.txt that configuring writes: a line a part (a room's engine or its view), with its folder, the parts
it uses and its sentence. A part includes what it names and names what it includes; no two files include each other,
straight or round a corner; no room is too large; what is kept ready is used by nothing live; what is one for the whole
program is asked for at its door alone; and ARCHITECTURE.md shows all this as it is. --write draws it there, --sizes
prints the lines of each room.
"""

import collections
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
SOURCES, PAGE = ROOT / "src", ROOT / "ARCHITECTURE.md"
INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"', re.MULTILINE)
OPENING, CLOSING = "<!-- rooms: drawn by ./kelm rooms -->\n", "<!-- end of rooms -->\n"
# What is one for the whole program, and the files that may ask for it: the door, and the three whose own it is.
ONE_FOR_ALL = re.compile(r"\b(?!Q)[A-Z]\w*::(?:shared|system|sharedSystem)\(\)(?!\s*\n?\{)")
DOORS = {
    "main.cpp", "workbench/view/kelm_pane_app.cpp",
    "app/state/app_state.cpp", "editor/themes/theme_manager.cpp", "maintenance/auto_update_service.cpp",
}
# The largest share of all lines that one room may hold.
LARGEST = 0.08


class Part:
    def __init__(self, line):
        self.folder, uses, self.about = line.split("|")
        self.uses = uses.split()

    @property
    def room(self):
        return self.folder.removesuffix("/view")


def folder_of(path):
    return str(pathlib.PurePosixPath(path).parent)


def read_sources():
    """The includes of each source of a room, by its path below src/, and the lines of each room."""
    includes, lines = {}, collections.Counter()
    for path in sorted(SOURCES.rglob("*")):
        name = path.relative_to(SOURCES).as_posix()
        if path.suffix not in {".h", ".cpp"} or "/" not in name or name.startswith("screenshots/"):
            continue
        text = path.read_text(encoding="utf-8")
        includes[name] = [target for target in INCLUDE.findall(text) if not target.endswith(".moc")]
        lines[folder_of(name).removesuffix("/view")] += text.count("\n")
    return includes, lines


def wrong_includes(parts, includes):
    used = collections.defaultdict(set)
    for source, targets in includes.items():
        folder = folder_of(source)
        for target in targets:
            other = folder_of(target)
            if not (SOURCES / target).exists():
                yield f"src/{source}: there is no src/{target}"
            elif other != folder:
                used[folder].add(other)
                if folder not in parts:
                    yield f"src/{source}: stands in no room"
                elif other not in parts[folder].uses:
                    yield f"src/{source}: includes {target}, but src/{parts[folder].room} does not name {other}"
    for part in parts.values():
        for name in part.uses:
            if name not in used[part.folder] and name != part.room:
                yield f"src/{part.room}: names {name}, which {part.folder} does not include"


def circle(graph):
    state, stack = {}, []

    def visit(node):
        state[node] = "open"
        stack.append(node)
        for following in graph.get(node, ()):
            if state.get(following) == "open":
                return stack[stack.index(following):] + [following]
            if following not in state:
                found = visit(following)
                if found:
                    return found
        stack.pop()
        state[node] = "done"
        return None

    return next((found for found in (visit(node) for node in graph if node not in state) if found), None)


def too_large(lines):
    limit = LARGEST * sum(lines.values())
    for room, count in lines.items():
        if count > limit:
            yield f"src/{room}: its {count} lines are more than {LARGEST:.0%} of all; it holds more than one idea"


def kept_ready_in_use(parts):
    for part in parts.values():
        for name in part.uses:
            if "kept_ready" in name and "kept_ready" not in part.folder:
                yield f"src/{part.room}: uses {name}, which is kept ready and no part of the program"


def asked_behind_the_door():
    for path in sorted(SOURCES.rglob("*")):
        name = path.relative_to(SOURCES).as_posix()
        if path.suffix not in {".h", ".cpp"} or name in DOORS or name.startswith("screenshots/"):
            continue
        for found in ONE_FOR_ALL.findall(path.read_text(encoding="utf-8")):
            yield f"src/{name}: asks for {found}; what it needs is to be handed down to it"


def reached(parts, folder):
    """All that a part uses, straight or through others."""
    found = set()
    waiting = list(parts[folder].uses)
    while waiting:
        name = waiting.pop()
        if name not in found:
            found.add(name)
            waiting.extend(parts[name].uses)
    return found


def drawing(parts):
    """The parts from the window down: each stands above all that it uses, and its arrows leave out what is reached
    through another of them."""
    below = {folder: reached(parts, folder) for folder in parts}
    height = {}
    for folder in sorted(parts, key=lambda folder: len(below[folder])):
        height[folder] = 1 + max((height[name] for name in below[folder]), default=-1)
    rows = []
    for folder in sorted(parts, key=lambda folder: (-height[folder], folder)):
        uses = parts[folder].uses
        arrows = [name for name in uses if not any(name in below[other] for other in uses)]
        first = "" if rows and rows[-1][0] == height[folder] else f"{height[folder]:2}"
        rows.append((height[folder], f"{first:2}  {folder:24} {'→ ' if arrows else ''}{', '.join(sorted(arrows))}"))
    return "```\n" + "\n".join(row.rstrip() for _, row in rows) + "\n```\n"


def table(parts):
    rows, seen = ["| room | what it is |", "|---|---|"], set()
    for part in parts.values():
        if part.room not in seen:
            seen.add(part.room)
            rows.append(f"| `{part.room}/` | {part.about} |")
    return "\n".join(rows) + "\n"


def drawn_page(parts):
    page = PAGE.read_text(encoding="utf-8")
    before, rest = page.split(OPENING)
    after = rest.split(CLOSING)[1]
    return before + OPENING + "\n" + table(parts) + "\n" + drawing(parts) + "\n" + CLOSING + after


def main():
    sys.setrecursionlimit(10000)
    entries = [Part(line) for line in pathlib.Path(sys.argv[1]).read_text(encoding="utf-8").splitlines()]
    parts = {part.folder: part for part in entries}
    includes, lines = read_sources()
    if "--sizes" in sys.argv:
        for room, count in lines.most_common():
            print(f"{count:6} {100 * count / sum(lines.values()):4.1f} %  {room}")
        return 0

    problems = list(wrong_includes(parts, includes)) + list(too_large(lines)) + list(kept_ready_in_use(parts))
    problems += asked_behind_the_door()
    found = circle(includes)
    if found:
        problems.append("these files include each other: " + " -> ".join(found))
    page = drawn_page(parts)
    if "--write" in sys.argv:
        PAGE.write_text(page, encoding="utf-8")
    elif page != PAGE.read_text(encoding="utf-8"):
        problems.append("ARCHITECTURE.md does not show the rooms as they are; ./kelm rooms draws them")
    print("\n".join(problems), file=sys.stderr, end="\n" if problems else "")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
