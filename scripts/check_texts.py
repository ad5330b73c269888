#!/usr/bin/env python3
"""Checks what no formatter sees: line lengths, line ends, trailing blanks and tabs in the project's own texts, and
what has a better stand-in here."""

import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
LONGEST = 120
# Fixtures hold odd bytes on purpose; links and tables in prose may be long.
LEFT_OUT = ("tests/fuzz/corpus/", "/data/", "docs/screenshots/", "LICENSE")
# What is not used, where what stands in its place is, and why.
STAND_INS = {
    "QTextBoundary" + "Finder": ("platform/text/grapheme_boundaries", "which knows today's scripts"),
    "QThreadPool::" + "globalInstance": ("platform/events/worker_pool", "whose order the thread sanitizer sees"),
}
SUFFIXES = {".cpp", ".h", ".py", ".cmake", ".txt", ".md", ".json", ".svg", ".yml", ""}


def problems_of(name):
    data = (ROOT / name).read_bytes()
    try:
        text = data.decode("utf-8")
    except UnicodeDecodeError:
        yield f"{name}: is not UTF-8"
        return
    if b"\r" in data:
        yield f"{name}: has carriage returns"
    if data and not data.endswith(b"\n"):
        yield f"{name}: does not end with a line feed"
    for number, line in enumerate(text.split("\n"), 1):
        if line != line.rstrip():
            yield f"{name}:{number}: blanks at the end"
        if "\t" in line:
            yield f"{name}:{number}: a tab"
        for unwanted, (stand_in, reason) in STAND_INS.items():
            if unwanted in line and not name.startswith(f"src/{stand_in}"):
                yield f"{name}:{number}: {unwanted}, in whose place stands {stand_in}.h, {reason}"
        if len(line) > LONGEST and not name.endswith((".md", ".svg")):
            yield f"{name}:{number}: {len(line)} characters"


def main():
    listing = subprocess.run(["git", "ls-files", "--cached", "--others", "--exclude-standard"], cwd=ROOT, check=True,
                             capture_output=True, text=True)
    problems = []
    for name in listing.stdout.splitlines():
        if any(part in name for part in LEFT_OUT) or pathlib.PurePosixPath(name).suffix not in SUFFIXES:
            continue
        if (ROOT / name).is_file():
            problems.extend(problems_of(name))
    print("\n".join(problems), file=sys.stderr, end="\n" if problems else "")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
