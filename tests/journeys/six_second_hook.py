"""A hook that takes six seconds: the window paints and answers meanwhile, a notice tells what runs and for how long,
what is typed comes behind it, and Escape stops the hook with all that it has started."""

import time

from Xlib import X
from Xlib.protocol import event

import notice_line
import repository

HOOK = "#!/bin/sh\necho $$ >> \"$HOME/hooks\"\nsleep 6\n"
STUBBORN = "#!/bin/sh\ntrap '' TERM\necho $$ >> \"$HOME/hooks\"\nsleep 60 & sleep 61; sleep 62\n"
GATE = "#!/bin/sh\ntouch \"$HOME/waits\"\nuntil test -e \"$HOME/go\"; do sleep 0.01; done\n"


def go(journey):
    project = repository.make(journey)
    hook = project / ".git" / "hooks" / "pre-commit"
    write_hook(hook, HOOK)
    notes, other = project / "notes.txt", project / "other.txt"
    other.write_text("second\n")
    repository.git(journey, project, "add", "-A")
    program = journey.start(project, notes)
    journey.until_text("first\n")
    repository.show_panel(journey)

    # The window goes on while the hook sleeps.
    notice_line.until_another(journey, lambda: commit(journey, "slow"))
    journey.check(answers_ping(journey), "the window does not answer")
    notice_line.until_another(journey, lambda: None)
    uncover(journey)
    # What is done meanwhile comes afterwards, in its order and at its place.
    repository.click(journey, repository.EDITOR)
    journey.type("typed")
    journey.key("ctrl+s")
    journey.check(head(journey, project) == "first", "the commit did not wait for its hook")
    journey.check(notes.read_text() == "first\n", "what was typed did not wait")
    journey.until_file(notes, "first\ntyped")
    journey.until(lambda: head(journey, project) == "slow", "the commit")

    # What is done while a short one runs needs nothing behind it to be noticed.
    write_hook(hook, GATE)
    other.write_text("short\n")
    repository.git(journey, project, "add", "-A")
    commit(journey, "short")
    journey.until((journey.home / "waits").exists, "the hook")
    repository.click(journey, repository.EDITOR)
    journey.key("x", "ctrl+s")
    (journey.home / "go").touch()
    journey.until_file(notes, "first\ntypedx")
    journey.until(lambda: head(journey, project) == "short", "the commit")

    # Escape stops a hook, even one that takes no notice of it.
    write_hook(hook, STUBBORN)
    repository.git(journey, project, "add", "-A")
    notice_line.until_another(journey, lambda: commit(journey, "stopped"))
    began = time.monotonic()
    journey.key("Escape")
    journey.until(lambda: not sleeping(journey), "the end of what the hook has started")
    journey.check(time.monotonic() - began < 10, "the hook was not stopped")
    journey.check(head(journey, project) == "short", "there is a commit")
    journey.check(not (project / ".git" / "index.lock").exists(), "git left its lock")

    # The message is still there, and can be committed.
    hook.unlink()
    repository.click(journey, repository.COMMIT_MESSAGE)
    journey.key("ctrl+Return")
    journey.until(lambda: head(journey, project) == "stopped", "the commit")

    # Being told to end, the program ends with the hook.
    write_hook(hook, HOOK.replace("sleep 6", "sleep 60"))
    other.write_text("third\n")
    repository.git(journey, project, "add", "-A")
    notice_line.until_another(journey, lambda: commit(journey, "ended"))
    program.terminate()
    journey.check(journey.ended(program) == -15, "the program did not end by the signal")
    journey.until(lambda: not sleeping(journey), "the end of the hook")
    journey.check(head(journey, project) == "stopped", "there is a commit")


def write_hook(hook, words):
    hook.write_text(words)
    hook.chmod(0o755)


def commit(journey, message):
    repository.click(journey, repository.COMMIT_MESSAGE)
    journey.type(message)
    journey.key("ctrl+Return")


def head(journey, project):
    return repository.git(journey, project, "log", "-1", "--format=%s")


def sleeping(journey):
    """The numbers of the hook's shells and of its `sleep`s."""
    hooks = set((journey.home / "hooks").read_text().split())
    return [number for number in journey.processes()
            if str(number) in hooks or journey._command(number).endswith("sleep")]


def answers_ping(journey):
    """Whether the window says that it lives, as a window manager asks it."""
    protocols, ping = map(journey.display.intern_atom, ("WM_PROTOCOLS", "_NET_WM_PING"))
    number = int(journey.window())
    window = journey.display.create_resource_object("window", number)
    journey.root.change_attributes(event_mask=X.StructureNotifyMask)
    window.send_event(event.ClientMessage(window=window, client_type=protocols, data=(32, [ping, 7, number, 0, 0])))
    journey.display.flush()

    def is_answered():
        while journey.display.pending_events():
            answer = journey.display.next_event()
            if answer.type == X.ClientMessage and list(answer.data[1])[:2] == [ping, 7]:
                return True
        return False

    journey.until(is_answered, "the answer to the window manager")
    journey.root.change_attributes(event_mask=X.NoEventMask)
    return True


def uncover(journey):
    """Covers the window and takes the cover away: what was under it has to be painted anew."""
    x, y, width, height = journey.place_of(journey.window())
    before = journey.color(x + width // 2, y + height // 2)
    cover = journey.root.create_window(x, y, width, height, 0, journey.display.screen().root_depth,
                                       background_pixel=0xFF00FF, override_redirect=True)
    cover.map()
    journey.display.sync()
    journey.until(lambda: journey.color(x + width // 2, y + height // 2) == (255, 0, 255), "the cover")
    cover.destroy()
    journey.display.sync()
    journey.until(lambda: journey.color(x + width // 2, y + height // 2) == before, "the window's picture")
