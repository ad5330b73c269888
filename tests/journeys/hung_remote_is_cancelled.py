"""A server that takes calls and never answers: the window goes on, a notice tells of the fetch with a button that stops
it, and quitting while another one hangs ends that too."""

import pathlib
import socket

import notice_line
import repository

# From the window's lower left corner: the button, while no notice and no failure stands below it.
FETCH = (36, 41)
# From its right: the middle of a button that is the notice's only one.
STOP = 34
# The calls that nobody answers.
KEPT = []


def go(journey):
    project = repository.make(journey)
    server = socket.create_server(("127.0.0.1", 0))
    address = f"git://127.0.0.1:{server.getsockname()[1]}/repository"
    for arguments in (("remote", "add", "origin", address), ("update-ref", "refs/remotes/origin/main", "HEAD"),
                      ("branch", "-q", "--set-upstream-to", "origin/main")):
        repository.git(journey, project, *arguments)
    notes = project / "notes.txt"
    program = begin_fetching(journey, notes, server)
    # The window has not stopped for it, and Escape is no matter of the fetch.
    repository.click(journey, repository.EDITOR)
    journey.key("ctrl+End")
    journey.type("typed")
    journey.key("Escape", "ctrl+s")
    journey.until_file(notes, "first\ntyped")
    journey.check(fetching(journey), "Escape has stopped the fetch")
    stop(journey)
    journey.until(lambda: not fetching(journey), "the end of the fetch")
    journey.key("ctrl+q")
    journey.check(journey.ended(program) == 0, "quitting is no failure")

    # One that is not stopped ends with the program.
    program = begin_fetching(journey, notes, server)
    journey.key("ctrl+q")
    journey.check(journey.ended(program) == 0, "quitting is no failure")
    journey.check(not fetching(journey), "the fetch goes on without a parent")


def begin_fetching(journey, notes, server):
    """Starts the program, and fetches from the panel until the server is called, which it keeps waiting."""
    program = journey.start(notes.parent, notes)
    repository.show_panel(journey)
    notice_line.until_another(journey, lambda: fetch(journey))
    called, _ = server.accept()
    KEPT.append(called)
    journey.check(fetching(journey), "there is no git")
    return program


def fetch(journey):
    x, y, _, height = journey.place_of(journey.window())
    journey.click(x + FETCH[0], y + height - FETCH[1])


def stop(journey):
    """Presses the notice's only button."""
    x, y, width, height = journey.place_of(journey.window())
    journey.click(x + width - STOP, y + height - notice_line.MIDDLE)


def fetching(journey):
    """The numbers of all gits that fetch."""
    return [number for number in journey.processes() if b"\0fetch" in command(number)]


def command(number):
    try:
        return pathlib.Path(f"/proc/{number}/cmdline").read_bytes()
    except OSError:
        return b""
