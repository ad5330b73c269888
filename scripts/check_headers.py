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

def seen_by(target, commands):
    """The options that matter to a header, of any file of the target; nothing where it has none."""
    for entry in commands:
        if f"/{target}.dir/" in entry["command"]:
            words = shlex.split(entry["command"])
            folders = [word for at, word in enumerate(words) if words[at - 1] == "-isystem"]
            kept = [word for word in words if word.startswith(("-D", "-I", "-std", "-U"))]
            return kept + [part for folder in folders for part in ("-isystem", folder)]
    return []


def options(header, commands):
    """What the header's own room sees; a header of the tests may see all that the tests of the window see."""
    folder = header.relative_to(ROOT).parent
    if folder.parts[0] == "src":
        found = seen_by("_".join(("kelm", *folder.parts[1:])), commands)
        if found:
            return found
    return seen_by("workbench_view_tests", commands) + seen_by("editor_view_tests", commands) + [f"-I{ROOT}/src"]


def compile_alone(header, flags):
    source = f'#include "{header}"\n'
    result = subprocess.run(["c++", "-fsyntax-only", "-fPIC", "-x", "c++", *flags, "-"], input=source, text=True,
                            capture_output=True, check=False, cwd=ROOT)
    return result.stderr if result.returncode != 0 else ""


def main():
    commands = json.loads(pathlib.Path(sys.argv[1]).read_text(encoding="utf-8"))
    headers = [ROOT / name for name in sys.argv[2:]]
    failed = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as workers:
        results = workers.map(lambda header: compile_alone(header, options(header, commands)), headers)
        for header, words in zip(headers, results):
            if words:
                failed += 1
                print(f"{header.relative_to(ROOT)} does not compile by itself:\n{words}", file=sys.stderr)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
