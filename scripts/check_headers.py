#!/usr/bin/env python3
"""check_headers.py COMPILE_COMMANDS HEADER ...: checks that each header compiles by itself.

Precompiled headers and files compiled in batches hide an include that is missing. Here each header is compiled alone,
with the options of the program's own files and without either.
"""

import concurrent.futures
import json
import os
import pathlib
import shlex
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent

def options(commands):
    """The options that matter to a header, of the file that links most."""
    command = next(shlex.split(entry["command"]) for entry in commands if entry["file"].endswith("_tests/mocs.cpp")
                   and "workbench" in entry["file"])
    kept = [word for word in command if word.startswith(("-D", "-I", "-std", "-U"))]
    folders = [word for at, word in enumerate(command) if command[at - 1] == "-isystem"]
    return kept + [part for folder in folders for part in ("-isystem", folder)]


def compile_alone(header, flags):
    source = f'#include "{header}"\n'
    result = subprocess.run(["c++", "-fsyntax-only", "-fPIC", "-x", "c++", *flags, "-"], input=source, text=True,
                            capture_output=True, check=False, cwd=ROOT)
    return result.stderr if result.returncode != 0 else ""


def main():
    commands = json.loads(pathlib.Path(sys.argv[1]).read_text(encoding="utf-8"))
    flags = options(commands)
    headers = [ROOT / name for name in sys.argv[2:]]
    failed = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as workers:
        for header, words in zip(headers, workers.map(lambda header: compile_alone(header, flags), headers)):
            if words:
                failed += 1
                print(f"{header.relative_to(ROOT)} does not compile by itself:\n{words}", file=sys.stderr)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
