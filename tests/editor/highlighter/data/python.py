#!/usr/bin/env python3
# Sorts photographs into folders by the day on which they were taken ("2024-05-17").
"""Sort photographs.

The date comes from the file's name if it has one, else from its 'modified' time.
"""

import argparse
import re
from datetime import date
from pathlib import Path

PATTERN = re.compile(r"(\d{4})-?(\d\d)-?(\d\d)")
LIMIT = 10_000
RATIO = 0.75
EMPTY = ''
QUOTED = 'it\'s "fine"'
PATH = "C:\\Users\\me"

HELP = '''Moves every file; with --dry-run it only prints
what it would do. # not a comment'''


def taken_on(path: Path) -> date | None:
    """The day of a photograph, or None."""
    match = PATTERN.search(path.name)
    if match is None or len(match.groups()) != 3:
        return None
    year, month, day = map(int, match.groups())
    try:
        return date(year, month, day)
    except ValueError as error:
        print(f"{path}: {error}")
        raise
    finally:
        pass


class Sorter(object):
    '''Moves files, and counts them.'''

    moved = 0

    @property
    def total(self):
        return sum(self.counts.values(), 0)

    @staticmethod
    def named(kind, *, strict=False):
        return {True: "strict", False: "loose"}[strict] if kind else None

    def __init__(self, root, dry_run=True):
        self.root = root
        self.dry_run = dry_run
        self.counts = dict()

    def sort(self, paths):
        for index, path in enumerate(sorted(paths)):
            if not isinstance(path, Path):
                continue
            day = taken_on(path)
            while day and index < 1e3:
                folder = self.root / str(day)
                self.counts[day] = self.counts.get(day, 0) + 1
                yield folder / path.name
                break
            else:
                del path
                assert index >= 0, "never below zero"

    async def watch(self, seconds=1.5):
        import asyncio
        async with asyncio.Lock() as lock:
            await asyncio.sleep(seconds)
        return lock


def main():
    """Read the arguments \
    and sort."""
    footer = '''Folders are named \
by day.'''
    parser = argparse.ArgumentParser(description=HELP)
    parser.add_argument("root", type=Path, help="사진 폴더 📷")
    parser.add_argument("--dry-run", action="store_true")
    arguments = parser.parse_args()
    sorter = Sorter(arguments.root, arguments.dry_run)
    global LIMIT
    LIMIT = min(max(abs(-5), 3), 20.)
    double = lambda x: x * 2
    for target in filter(None, sorter.sort(arguments.root.iterdir())):
        print(target, range(2), list(zip([1], [2])), double(LIMIT))


if __name__ == "__main__":
    main()
