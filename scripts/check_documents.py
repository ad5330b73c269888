#!/usr/bin/env python3
"""Checks what the project's pages name: links, files, commands of ./kelm, presets and classes have to be there, and
each command has to be on the page of those who work on the project."""

import json
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
PAGES = sorted([*ROOT.glob("*.md"), *ROOT.glob("docs/*.md")])
# Told of in the program's first pages and needed by nobody who works on it.
NOT_ON_THE_PAGE = {"packages", "run"}
PATH = re.compile(r"[\w.-]+(?:/[\w.-]+)+/?|[\w.-]+/")
# Where a page's short names of files are to be looked for.
BASES = (ROOT, ROOT / "src")
# Names that are no classes of the project, and what stands for any.
NO_CLASSES = {"CMakeLists", "SubjectTest", "UpperCamelCase"}


def files_of_repository():
    listing = subprocess.run(["git", "ls-files", "--cached", "--others", "--exclude-standard"], cwd=ROOT, check=True,
                             capture_output=True, text=True)
    return listing.stdout.splitlines()


def is_there(name):
    """Whether a path names a file or folder, one without its suffix, or a class or test by its file."""
    for base in BASES:
        path = base / name
        if path.exists() or list(path.parent.glob(path.name + ".*")):
            return True
    return False


def is_made(name):
    """What building makes, and what belongs to the person who uses the program."""
    return name.startswith(("build/", "KelmPane/", "com.kelm.", "unsaved/"))


def problems_of(page, commands, presets, words, firsts):
    text = page.read_text("utf-8")
    where = page.relative_to(ROOT)
    for target in re.findall(r"\]\(([^)\s]+)\)", text):
        if "://" not in target and not (page.parent / target.partition("#")[0]).exists():
            yield f"{where}: links to {target}, which is not there"
    spans = re.findall(r"`([^`\n]+)`", text) + re.findall(r"^(?: {4}|)(\./kelm [^\n`]*)$", text, re.M)
    for span in spans:
        for command in re.findall(r"\./kelm ([a-z]+)", span):
            if command not in commands:
                yield f"{where}: ./kelm {command} is no command"
        for preset in re.findall(r"--preset (\w+)", span):
            if preset not in presets:
                yield f"{where}: {preset} is no preset"
        # Only what begins like one of the project's own folders is a path of it.
        if PATH.fullmatch(span) and span.partition("/")[0] in firsts and not is_made(span) and not is_there(span):
            yield f"{where}: {span} is not there"
        for name in re.findall(r"\b[A-Z][A-Za-z]*[a-z][A-Z][A-Za-z]+\b", span):
            if name not in words | NO_CLASSES:
                yield f"{where}: {name} is nowhere in the sources"


def commands_of_script():
    script = (ROOT / "kelm").read_text("utf-8")
    dispatch = re.search(r"^(run \|[^)]*)\)$", script, re.M).group(1)
    return set(re.findall(r"[a-z]+", dispatch)) | {"packages"}, script


def main():
    files = files_of_repository()
    commands, script = commands_of_script()
    plan = json.loads((ROOT / "CMakePresets.json").read_text("utf-8"))
    presets = {preset["name"] for preset in plan["configurePresets"]}
    firsts = {name.removeprefix("src/").partition("/")[0] for name in files} | {"src"}
    words = set()
    for name in files:
        if name.endswith((".cpp", ".h")) and (ROOT / name).is_file():
            words.update(re.findall(r"\w+", (ROOT / name).read_text("utf-8", "replace")))
    problems = []
    for page in PAGES:
        problems.extend(problems_of(page, commands, presets, words, firsts))
    contributing = (ROOT / "CONTRIBUTING.md").read_text("utf-8")
    help_text = script.partition("cat <<'TEXT'")[2].partition("\nTEXT\n")[0]
    for command in sorted(commands):
        if not re.search(rf"^  {command}\b", help_text, re.M):
            problems.append(f"kelm: its help does not tell of {command}")
        if command not in NOT_ON_THE_PAGE and f"`./kelm {command}" not in contributing:
            problems.append(f"CONTRIBUTING.md: does not tell of ./kelm {command}")
    print("\n".join(problems), file=sys.stderr, end="\n" if problems else "")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
