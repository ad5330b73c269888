#!/usr/bin/env python3
"""Makes a large repository, always the same one for the same numbers.

    make_repository.py FOLDER [--files N] [--changed N] [--untracked N] [--commits N] [--branches N] [--tags N]

The folder must not be there. Files stand a hundred to a folder; of them the first `changed` differ from the index, and
`untracked` more are new. The commits behind the first change one file each.
"""

import argparse
import os
import pathlib
import subprocess

FILES_IN_FOLDER = 100
TIME = 1_700_000_000


def path_of(index):
    return f"folder{index // FILES_IN_FOLDER:05}/file{index:06}.txt"


def write_history(stream, files, commits):
    """Writes what `git fast-import` reads."""
    def text(content):
        stream.write(f"data {len(content)}\n".encode() + content + b"\n")

    for number in range(commits):
        stream.write(b"commit refs/heads/main\n")
        stream.write(f"committer Bench <bench@example.org> {TIME + number} +0000\n".encode())
        text(f"Change number {number}".encode())
        changed = range(files) if number == 0 else [number % files]
        for index in changed:
            stream.write(f"M 100644 inline {path_of(index)}\n".encode())
            text(f"file {index}, version {number}\n".encode())
    stream.write(b"done\n")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("folder", type=pathlib.Path)
    for name, default in (("files", 100_000), ("changed", 0), ("untracked", 0), ("commits", 1), ("branches", 0),
                          ("tags", 0)):
        parser.add_argument(f"--{name}", type=int, default=default)
    wanted = parser.parse_args()
    wanted.folder.mkdir(parents=True)
    environment = dict(os.environ, GIT_CONFIG_GLOBAL="/dev/null", GIT_CONFIG_NOSYSTEM="1")

    def git(*arguments, **options):
        subprocess.run(("git", "-C", wanted.folder, *arguments), check=True, env=environment, **options)

    git("init", "-q", "-b", "main")
    for key, value in (("user.name", "Bench"), ("user.email", "bench@example.org"), ("gc.auto", "0")):
        git("config", key, value)
    with subprocess.Popen(("git", "-C", wanted.folder, "fast-import", "--quiet", "--done"), env=environment,
                          stdin=subprocess.PIPE) as importing:
        write_history(importing.stdin, wanted.files, wanted.commits)
    if importing.returncode != 0:
        raise SystemExit("git fast-import has failed")
    git("reset", "-q", "--hard")
    references = [f"create refs/heads/branch{number} main\n" for number in range(wanted.branches)]
    references += [f"create refs/tags/tag{number} main\n" for number in range(wanted.tags)]
    git("update-ref", "--stdin", input="".join(references).encode())
    git("pack-refs", "--all")
    for index in range(wanted.changed):
        (wanted.folder / path_of(index)).write_text(f"file {index}, changed\n")
    for index in range(wanted.untracked):
        place = wanted.folder / f"new{index // FILES_IN_FOLDER:05}"
        place.mkdir(exist_ok=True)
        (place / f"file{index:06}.txt").write_text(f"new {index}\n")


if __name__ == "__main__":
    main()
