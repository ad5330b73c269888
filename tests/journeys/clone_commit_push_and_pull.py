"""A day with a repository, by the panel: clone, edit, stage a hunk, commit, push, pull into a conflict, resolve."""

import accessible
import repository
from repository import git

LINES = [f"line {number}\n" for number in range(1, 41)]


def go(journey):
    accessible.start(journey)
    repository.name_person(journey)
    there = journey.home / "there.git"
    git(journey, journey.home, "init", "--bare", there)
    other = journey.home / "other"
    git(journey, journey.home, "clone", there, other)
    (other / "notes.txt").write_text("".join(LINES))
    git(journey, other, "add", ".")
    git(journey, other, "commit", "-m", "First")
    git(journey, other, "push", "origin", "main")

    # Clone.
    program = journey.start()
    accessible.click(journey, "Source Control", "radio button")
    accessible.click(journey, "Clone Repository…", "push button")
    accessible.click(journey, "Remote URL", "text")
    journey.type(str(there))
    here = journey.home / "here"
    accessible.click(journey, "Choose")
    accessible.find(journey, "Directory:", "text")
    journey.type(str(journey.home))
    journey.key("Return")
    accessible.click(journey, "Folder name", "text")
    journey.key("ctrl+a")
    journey.type("here")
    accessible.click(journey, "Clone", "push button")
    journey.until(lambda: (here / "notes.txt").exists(), "the clone")
    accessible.find(journey, "Push")

    # Edit two places, and commit the first of them alone.
    edited = LINES.copy()
    edited[1] = "second line, edited\n"
    edited[37] = "third line from the end, edited\n"
    journey.second_start(here / "notes.txt")
    journey.until(lambda: journey.key("ctrl+a", "ctrl+c") or journey.clipboard() == "".join(LINES), "the file")
    journey.key("ctrl+Home", "Down", "shift+End")
    journey.type("second line, edited")
    journey.key("ctrl+End", "Up", "Up", "Up", "Home", "shift+End")
    journey.type("third line from the end, edited")
    journey.key("ctrl+s")
    journey.until_file(here / "notes.txt", "".join(edited))
    accessible.click(journey, "Refresh")
    accessible.click(journey, "notes.txt (modified)")
    accessible.click(journey, "Stage hunk @@ -1,5 +1,5 @@ of notes.txt")
    journey.until(lambda: "+second" in git(journey, here, "diff", "--cached"), "the staged hunk")
    journey.check("+third" not in git(journey, here, "diff", "--cached"), "the other hunk is staged as well")
    accessible.click(journey, "Close", which=-1)
    commit(journey, "Edit the second line")
    journey.until(lambda: said(journey, here) == "Edit the second line", "the commit")
    journey.check("+third" in git(journey, here, "diff"), "the other hunk is not left")

    # The rest, and all of it to where it came from.
    accessible.click(journey, "Stage All")
    commit(journey, "Edit the end")
    journey.until(lambda: said(journey, here) == "Edit the end", "the second commit")
    accessible.click(journey, "Push")
    journey.until(lambda: said(journey, there, "main") == "Edit the end", "the push")

    # Somebody else edits the same line.
    git(journey, other, "pull")
    (other / "notes.txt").write_text("".join(edited).replace("second line, edited", "by somebody else"))
    git(journey, other, "commit", "-am", "Theirs")
    git(journey, other, "push")
    journey.click(*TEXT)
    journey.key("ctrl+Home", "Down", "shift+End")
    journey.type("mine")
    journey.key("ctrl+s")
    journey.until_file(here / "notes.txt", "".join(edited).replace("second line, edited", "mine"))
    accessible.click(journey, "Refresh")
    accessible.click(journey, "Stage All")
    commit(journey, "Mine")
    journey.until(lambda: said(journey, here) == "Mine", "the third commit")
    accessible.click(journey, "Pull")
    accessible.find(journey, "notes.txt (conflicted)")

    # Both lines, and on.
    journey.click(*TEXT)
    journey.key("ctrl+a")
    journey.type("of both")
    journey.key("Return", "ctrl+s")
    journey.until_file(here / "notes.txt", "of both\n")
    accessible.click(journey, "Refresh")
    accessible.click(journey, "Stage All")
    commit(journey, "Both")
    journey.until(lambda: said(journey, here) == "Both", "the resolving commit")
    journey.key("ctrl+grave")
    journey.until(lambda: any("$" in (node["text"] or "") for node in accessible.nodes(journey)), "the prompt")
    journey.type(f"git -C {here} rebase --continue")
    journey.key("Return")
    journey.until(lambda: git(journey, here, "branch", "--show-current") == "main", "the end of the rebase")
    accessible.click(journey, "Push")
    journey.until(lambda: said(journey, there, "main") == "Both", "the second push")
    journey.key("ctrl+q")
    journey.ended(program)


# A place in the text, behind what stands there.
TEXT = (900, 700)


def commit(journey, message):
    accessible.click(journey, "Commit message")
    journey.type(message)
    accessible.click(journey, "Commit")


def said(journey, folder, branch="HEAD"):
    """The message of the last commit."""
    return git(journey, folder, "log", "-1", "--format=%s", branch).strip()
