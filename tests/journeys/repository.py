"""What the journeys through source control share: a repository, and the places of its panel."""

import subprocess

# From the window's upper left corner.
PANEL_TAB, COMMIT_MESSAGE, EDITOR = (106, 84), (110, 240), (700, 400)


def make(journey):
    """A repository with one commit, in a project of the journey's home."""
    folder = journey.home / "project"
    folder.mkdir()
    git(journey, folder, "init", "-q", "-b", "main")
    git(journey, folder, "config", "user.name", "Somebody")
    git(journey, folder, "config", "user.email", "somebody@example.org")
    (folder / "notes.txt").write_text("first\n")
    git(journey, folder, "add", "-A")
    git(journey, folder, "commit", "-q", "-m", "first")
    return folder


def git(journey, folder, *arguments):
    """What git prints."""
    done = subprocess.run(("git", "-C", folder, *map(str, arguments)), env=journey.environment, check=False,
                          capture_output=True, text=True)
    journey.check(done.returncode == 0, done.stderr)
    return done.stdout.strip()


def click(journey, place):
    """Clicks at a place of the window that has the keyboard."""
    x, y, _, _ = journey.place_of(journey.window())
    journey.click(x + place[0], y + place[1])


def show_panel(journey):
    """Opens the panel, and waits until it has its commit message."""
    x, y, _, _ = journey.place_of(journey.window())
    place = x + COMMIT_MESSAGE[0] + 100, y + COMMIT_MESSAGE[1] + 10
    before = journey.color(*place)
    click(journey, PANEL_TAB)
    journey.until(lambda: journey.color(*place) != before, "the panel")


def name_person(journey):
    """Tells git who commits, wherever that is."""
    (journey.home / ".gitconfig").write_text("[user]\nname = A Person\nemail = a@b.c\n[init]\ndefaultBranch = main\n")
