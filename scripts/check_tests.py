#!/usr/bin/env python3
"""Checks that every test stands beside its subject's name, and keeps its helpers to itself.

tests/<folder>/<subject>_test.cpp tests src/<folder>/<subject>.*; a test of one side of a subject is named
<subject>_<side>_test.cpp. The tests of what stands elsewhere are listed below. The classes of a room are linked into
one program, and compiled in batches, so that equal names of two files would collide or silently become one: all of a
file stands in a namespace of its name.
"""

import pathlib
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
TESTS, SOURCES = ROOT / "tests", ROOT / "src"

# Tests of what stands outside src/, or in several files, and where.
ELSEWHERE = {
    "packaging/install_test": "packaging/CMakeLists.txt",
    "packaging/kelm_script_test": "kelm",
    "packaging/mutants_script_test": "scripts/mutants/__main__.py",
    "git/panel/view/row_contents_test": "src/git/panel/view",
    "workbench/view/program_test": "src/main.cpp",
}


def has_subject(test):
    folder = SOURCES / test.parent.relative_to(TESTS)
    words = test.name.removesuffix("_test.cpp").split("_")
    return any(next(folder.glob("_".join(words[:count]) + ".*"), None) for count in range(len(words), 0, -1))


def is_enclosed(test):
    """Whether all that a test file defines stands in a namespace of the file's name."""
    opening, closing = f"namespace {test.stem} {{", f"}} // namespace {test.stem}"
    inside = False
    for line in test.read_text(encoding="utf-8").split("\n"):
        if line == opening:
            inside = True
        elif line == closing:
            inside = False
        elif not inside and line and not line.startswith(("#", "//")):
            return False
    return True


def main():
    problems = []
    for test in sorted(TESTS.rglob("*_test.cpp")):
        name = test.relative_to(TESTS).with_suffix("").as_posix()
        if name in ELSEWHERE:
            if not (ROOT / ELSEWHERE[name]).exists():
                problems.append(f"tests/{name}.cpp: its subject {ELSEWHERE[name]} is nowhere")
        elif not has_subject(test):
            problems.append(f"tests/{name}.cpp: there is no such subject in src/{test.parent.relative_to(TESTS)}/")
        if not is_enclosed(test):
            problems.append(f"tests/{name}.cpp: not all of it stands in namespace {test.stem}")
    print("\n".join(problems), file=sys.stderr, end="\n" if problems else "")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
