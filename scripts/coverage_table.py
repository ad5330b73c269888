#!/usr/bin/env python3
"""Prints which share of the lines the tests reach, by folder, and the engine files of which they reach too few.

The argument is gcovr's summary in JSON. An engine file is one that is no view.
"""

import collections
import json
import pathlib
import sys

# The share of an engine file's lines, in percent, below which it is listed.
WANTED = 90.0


def folder_of(path):
    """The folder of src/ that a file stands in: a room, or its views."""
    return "/".join(path.parts[1:-1]) or "."


def is_engine(path):
    return len(path.parts) > 2 and path.parts[1] != "screenshots" and "view" not in path.parts


def share(covered, total):
    return 100.0 * covered / total if total else 100.0


def main():
    files = json.loads(pathlib.Path(sys.argv[1]).read_text(encoding="utf-8"))["files"]
    folders = collections.defaultdict(lambda: [0, 0])
    low = []
    for entry in files:
        path = pathlib.PurePosixPath(entry["filename"])
        covered, total = entry["line_covered"], entry["line_total"]
        folders[folder_of(path)][0] += covered
        folders[folder_of(path)][1] += total
        if is_engine(path) and share(covered, total) < WANTED:
            low.append((share(covered, total), covered, total, str(path)))
    for folder, (covered, total) in sorted(folders.items()):
        print(f"{folder:<18} {covered:>6} of {total:>6} lines  {share(covered, total):5.1f} %")
    covered = sum(pair[0] for pair in folders.values())
    total = sum(pair[1] for pair in folders.values())
    print(f"{'all':<18} {covered:>6} of {total:>6} lines  {share(covered, total):5.1f} %")
    if low:
        print(f"\nEngine files below {WANTED:.0f} %:")
        for percent, covered, total, name in sorted(low):
            print(f"  {percent:5.1f} %  {covered:>4} of {total:>4}  {name}")


main()
