#!/usr/bin/env python3
"""Checks that includes point one way.

The folders of src/ are layers: a file may include its own folder and those listed for it below, and an engine never
includes a view. No two files include each other, straight or round a corner, and every project header that is named
exists.
"""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent / "src"
INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"', re.MULTILINE)

# The records at the bottom: documents, languages and the lesson record include nothing but each other and the platform.
RECORDS = {
    "app/document", "app/language", "app/text_attributes", "learning/lesson_info",
}

# What the engine of a folder may include beside itself, the records and what stands in its folder.
ENGINES = {
    "platform": set(),
    "text": {"platform"},
    "editor": {"platform", "text"},
    "search": {"platform", "text"},
    "files": {"platform", "git"},
    "git": {"platform"},
    "run": {"platform"},
    "learning": {"platform"},
    "maintenance": {"platform"},
    "settings": set(),
    "app": {"platform", "editor", "search", "git", "run", "learning", "maintenance", "text"},
}

# A view may include every engine, and the views of these folders.
VIEWS = {
    "platform": set(),
    "text": {"platform"},
    "editor": {"platform", "text"},
    "search": {"platform", "text", "editor"},
    "files": {"platform", "text"},
    "git": {"platform", "text", "editor"},
    "run": {"platform", "text", "editor"},
    "learning": {"platform", "text", "editor"},
    "maintenance": {"platform"},
    "settings": {"platform", "text"},
    "app": {"platform"},
}


def place(path):
    """The folder of a file below src/ and whether it is a view."""
    parts = pathlib.PurePosixPath(path).parts
    if parts[0] in {"workbench", "screenshots"} or len(parts) == 1:
        return "workbench", True
    return parts[0], "view" in parts[:-1]


def is_record(path):
    return str(pathlib.PurePosixPath(path).with_suffix("")) in RECORDS


def may_include(source, target):
    """Why `source` may not include `target`, or nothing."""
    folder, is_view = place(source)
    other, other_is_view = place(target)
    if is_record(source):
        return None if is_record(target) or other == "platform" else "a record includes records and the platform only"
    if folder == "workbench" or is_record(target):
        return None
    if other == "workbench":
        return "nothing includes the workbench"
    if not is_view:
        if other_is_view:
            return "an engine includes no view"
        allowed = ENGINES[folder]
        return None if other == folder or other in allowed else f"{folder} may not include {other}"
    if not other_is_view or other == folder or other in VIEWS[folder]:
        return None
    return f"the views of {folder} may not include those of {other}"


def find_cycle(graph):
    state, stack = {}, []

    def visit(node):
        state[node] = "open"
        stack.append(node)
        for following in graph.get(node, ()):
            if state.get(following) == "open":
                return stack[stack.index(following):] + [following]
            if following not in state:
                cycle = visit(following)
                if cycle:
                    return cycle
        stack.pop()
        state[node] = "done"
        return None

    for node in graph:
        if node not in state:
            cycle = visit(node)
            if cycle:
                return cycle
    return None


def main():
    sys.setrecursionlimit(10000)
    problems, graph = [], {}
    for path in sorted(ROOT.rglob("*")):
        if path.suffix not in {".h", ".cpp"}:
            continue
        source = path.relative_to(ROOT).as_posix()
        targets = INCLUDE.findall(path.read_text(encoding="utf-8"))
        targets = [target for target in targets if not target.endswith(".moc") and not target.startswith("moc_")]
        graph[source] = targets
        for target in targets:
            if not (ROOT / target).exists():
                problems.append(f"src/{source}: there is no src/{target}")
                continue
            reason = may_include(source, target)
            if reason:
                problems.append(f"src/{source}: includes {target}, but {reason}")
    cycle = find_cycle(graph)
    if cycle:
        problems.append("these files include each other: " + " -> ".join(cycle))
    print("\n".join(problems), file=sys.stderr, end="\n" if problems else "")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
