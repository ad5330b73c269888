"""The command line: lines and columns, names with colons, standard input, what is wrong with it, and waiting for a tab.

The program is an editor for git: a commit is made when the tab of its message is closed, and not when that was closed
with unsaved changes.
"""

import os
import signal
import subprocess

import accessible
import repository
import unsaved


def run(journey, *arguments, **options):
    """The status and the words of a start that ends by itself."""
    done = subprocess.run((journey.program, *map(str, arguments)), env=journey.environment, check=False,
                          capture_output=True, cwd=journey.home, timeout=60, **options)
    return done.returncode, done.stdout.decode(), done.stderr.decode()


def says_what_is_wrong(journey):
    """Without a display, and without the toolkit."""
    display = journey.environment.pop("DISPLAY")
    status, words, complaint = run(journey, "--help")
    journey.check(status == 0 and words.startswith("Usage: kelmwright ") and not complaint, f"help: {complaint!r}")
    status, words, complaint = run(journey, "--version")
    journey.check(status == 0 and words.startswith("KelmWright ") and not complaint, f"version: {complaint!r}")
    for wrong in (["--nonsense"], ["--line", "ten"], ["--wait=1"]):
        status, words, complaint = run(journey, *wrong)
        journey.check(status == 2 and not words and complaint.count("\n") == 1, f"{wrong}: {status}, {complaint!r}")
    with open("/dev/full", "wb") as full:
        status = subprocess.run((journey.program, "--help"), env=journey.environment, check=False, stdout=full,
                                stderr=subprocess.DEVNULL).returncode
    journey.check(status == 1, f"a full device: {status}")
    journey.environment["DISPLAY"] = display


def goes_to_lines(journey):
    """What is typed lands where the command line points to."""
    lines, colons = journey.home / "lines.txt", journey.home / "colons:2"
    lines.write_text("one\ntwo\nthree\nfour\n")
    colons.write_text("a\nb\n")
    program = journey.start(f"{lines}:3:2")
    accessible.find(journey, "Ln 3, Col 2")
    journey.type("x")
    journey.key("ctrl+s")
    journey.until_file(lines, "one\ntwo\ntxhree\nfour\n")
    for arguments, place in ((("--line", "2", lines), "Ln 2, Col 1"), (("lines.txt:99",), "Ln 5, Col 1"),
                             (("lines.txt:4:3:",), "Ln 4, Col 3")):
        journey.check(journey.second_start(*arguments) == 0, f"{arguments} failed")
        accessible.find(journey, place)
    journey.check(journey.second_start("colons:2") == 0, "a name with a colon failed")
    tab(journey, "colons:2")
    journey.check(journey.second_start("colons:2:2:2") == 0, "a line of a name with a colon failed")
    accessible.find(journey, "Ln 2, Col 2")
    journey.type("c")
    journey.key("ctrl+s")
    journey.until_file(colons, "a\nbc\n")
    return program


def tab(journey, name):
    """Waits for the tab of a file, and gives the middle of it."""
    def seen():
        tabs = [node for node in accessible.nodes(journey) if node["role"] == "page tab" and name in node["name"]]
        return tabs[0] if tabs else None
    return accessible.middle(journey.until(seen, f"the tab of {name}"))


def close(journey, name):
    """Closes a tab by a middle click."""
    journey.click(*tab(journey, name), button=2)


def takes_standard_input(journey):
    """A text that comes by a pipe is in a tab, and in the net for unsaved texts."""
    text = "from a pipe\n한글\n"
    done = subprocess.run((journey.program, "-"), env=journey.environment, input=text.encode(), check=False,
                          cwd=journey.home, timeout=60)
    journey.check(done.returncode == 0, f"standard input: {done.returncode}")
    tab(journey, "Untitled")
    journey.until_text(text)
    journey.check(any(text.encode("utf-16-le") in copy for copy in unsaved.copies(journey)), "it is not kept")
    close(journey, "Untitled")
    pipe = journey.home / "pipe.txt"
    pipe.write_text("waited for\n")
    waiting = journey.spawn(journey.program, "--wait", "-", stdin=open(pipe, "rb"))
    tab(journey, "Untitled")
    journey.check(waiting.poll() is None, "it does not wait for standard input's tab")
    close(journey, "Untitled")
    journey.check(journey.ended(waiting) == 3, "standard input that was not saved")
    status, _, complaint = run(journey, "-", input=b"\xff\xfe")
    journey.check(status == 1 and complaint.count("\n") == 1, f"what is no text: {status}, {complaint!r}")


def waits_for_tabs(journey):
    """The status tells what became of them."""
    file = journey.home / "awaited.txt"
    file.write_text("first\n")
    waiting = journey.spawn(journey.program, "--wait", str(file))
    place = tab(journey, "awaited.txt")
    journey.check(waiting.poll() is None, "it does not wait")
    journey.click(*place, button=2)
    journey.check(journey.ended(waiting) == 0, "a text that was not changed")

    waiting = journey.spawn(journey.program, "--wait", "awaited.txt:1:3")
    accessible.find(journey, "Ln 1, Col 3")
    journey.type("typed")
    close(journey, "awaited.txt")
    journey.check(journey.ended(waiting) == 3, "a text that was closed unsaved")
    journey.check(file.read_text() == "first\n", "the file was written")

    waiting = journey.spawn(journey.program, "--wait", "none.txt")
    journey.check(journey.ended(waiting) == 4, "a file that is not there")

    # Whoever gives up waiting takes nothing with it.
    waiting = journey.spawn(journey.program, "--wait", str(file))
    tab(journey, "awaited.txt")
    waiting.send_signal(signal.SIGINT)
    journey.check(journey.ended(waiting) == -signal.SIGINT, "a wait that is interrupted")
    tab(journey, "awaited.txt")


def is_gits_editor(journey, program):
    """A commit is made of the message that was saved, and none of one that was not."""
    repository.name_person(journey)
    folder = repository.make(journey)
    repository.git(journey, folder, "config", "core.editor", f"{journey.program} --wait")
    (folder / "notes.txt").write_text("second\n")
    journey.key("ctrl+q")
    journey.ended(program)

    # Where no editor runs, one is started, and goes on.
    commit = journey.spawn("git", "-C", str(folder), "commit", "-a")
    journey.until(journey.windows, "the window")
    journey.until(journey.has_focus, "the window's focus")
    tab(journey, "COMMIT_EDITMSG")
    journey.key("ctrl+Home")
    journey.type("By the editor\n")
    journey.key("ctrl+s")
    message = folder / ".git/COMMIT_EDITMSG"
    journey.until(lambda: message.read_text().startswith("By the editor\n"), "the message")
    journey.check(commit.poll() is None, "git does not wait")
    close(journey, "COMMIT_EDITMSG")
    journey.check(journey.ended(commit) == 0, "git failed")
    journey.check(repository.git(journey, folder, "log", "-1", "--format=%s") == "By the editor", "the message")
    programs = journey.programs()
    journey.check(len(programs) == 1, "there is not one program")
    journey.check(os.getsid(programs[0]) != os.getsid(0), "the editor ends with the terminal of git")
    environment = open(f"/proc/{programs[0]}/environ", "rb").read()
    journey.check(b"GIT_INDEX_FILE" not in environment and b"GIT_DIR" not in environment, "git's words stay")

    (folder / "notes.txt").write_text("third\n")
    commit = journey.spawn("git", "-C", str(folder), "commit", "-a")
    tab(journey, "COMMIT_EDITMSG")
    journey.until(journey.has_focus, "the window's focus")
    journey.key("ctrl+Home")
    journey.type("Never saved")
    accessible.find(journey, "Ln 1, Col 12")
    close(journey, "COMMIT_EDITMSG")
    journey.check(journey.ended(commit) != 0, "git made a commit")
    journey.check(repository.git(journey, folder, "log", "-1", "--format=%s") == "By the editor", "there is a commit")

    # The editor's own end is the end of the wait.
    commit = journey.spawn("git", "-C", str(folder), "commit", "-a")
    tab(journey, "COMMIT_EDITMSG")
    os.kill(programs[0], signal.SIGKILL)
    journey.check(journey.ended(commit) != 0, "git made a commit of a dead editor")


def go(journey):
    says_what_is_wrong(journey)
    accessible.start(journey)
    program = goes_to_lines(journey)
    takes_standard_input(journey)
    waits_for_tabs(journey)
    is_gits_editor(journey, program)
