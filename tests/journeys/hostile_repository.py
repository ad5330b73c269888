"""A strange repository runs nothing and destroys nothing by being looked at, and names that git would take for options
are refused."""

import accessible
import repository
from repository import git

REFUSAL = "The {} \"{}\" begins with a hyphen, so that git would take it for an option."
# The middle of the one button of a row under the pointer.
BUTTON_FROM_RIGHT = 18
CHANGED = "a person's change\n"
PROGRAMS = ("core.fsmonitor", "diff.external", "diff.word.textconv", "filter.wash.clean", "filter.wash.smudge",
            "core.sshCommand", "core.alternateRefsCommand", "gpg.program")
HOOKS = ("post-checkout", "post-index-change", "reference-transaction", "fsmonitor-watchman")


def go(journey):
    accessible.start(journey)
    repository.name_person(journey)
    marker = journey.home / "marker"
    trap = journey.home / "trap"
    trap.write_text(f"#!/bin/sh\necho \"$0 $*\" >> '{marker}'\n")
    trap.chmod(0o755)
    there = strange_repository(journey, trap)
    journey.check(not marker.exists(), "the trap went off while it was laid")

    program = journey.start(there / "notes.txt")
    accessible.click(journey, "Source Control", "radio button")
    accessible.click(journey, "notes.txt (modified)")
    accessible.find(journey, "Working: 1 hunk · Staged: none")
    journey.key("Escape")
    accessible.click(journey, "History", "radio button")
    accessible.click(journey, "First")
    accessible.find(journey, "Copy SHA")
    journey.key("Escape")
    journey.check(not marker.exists(), f"looking ran {marker.read_text() if marker.exists() else ''}")

    # A branch that a server can offer.
    accessible.click(journey, "Branches, 2", "radio button")
    x, y, width, height = accessible.find(journey, "origin/-f")["place"]
    journey.point_at(x + width // 2, y + height // 2)
    journey.click(x + width - BUTTON_FROM_RIGHT, y + height // 2)
    accessible.find(journey, REFUSAL.format("branch name", "-f"))
    journey.check((there / "notes.txt").read_text() == CHANGED, "a person's change has gone")

    # An address that is an option.
    accessible.click(journey, "File", "menu item")
    accessible.click(journey, "Clone Repository…", "menu item")
    accessible.click(journey, "Remote URL", "text")
    address = f"--config=core.sshCommand=touch {marker};/h:p"
    journey.type(address)
    accessible.click(journey, "Choose")
    accessible.find(journey, "Directory:", "text")
    journey.type(str(journey.home))
    journey.key("Return")
    accessible.click(journey, "Folder name", "text")
    journey.key("ctrl+a")
    journey.type("copy")
    accessible.click(journey, "Clone", "push button")
    accessible.find(journey, REFUSAL.format("URL", address))
    journey.check(not marker.exists(), f"an address ran {marker.read_text() if marker.exists() else ''}")
    journey.key("Escape", "ctrl+q")
    journey.ended(program)


def strange_repository(journey, trap):
    there = journey.home / "strange"
    git(journey, journey.home, "init", there)
    (there / "notes.txt").write_text("first\n")
    (there / ".gitattributes").write_text("*.txt filter=wash diff=word\n")
    git(journey, there, "add", ".")
    git(journey, there, "commit", "-m", "First")
    git(journey, there, "branch", "side")
    git(journey, there, "update-ref", "refs/remotes/origin/-f", "HEAD")
    for key in PROGRAMS:
        git(journey, there, "config", key, trap)
    git(journey, there, "config", "core.hooksPath", "hooks")
    (there / "hooks").mkdir()
    for name in HOOKS:
        (there / "hooks" / name).symlink_to(trap)
    (there / "notes.txt").write_text(CHANGED)
    return there
