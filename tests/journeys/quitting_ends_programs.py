"""Quitting ends what was started from the terminal and by a run, with all that it has started in turn; what a person
has detached goes on."""

import pathlib

from terminal import open_terminal, run


def go(journey):
    script = journey.home / "run.sh"
    script.write_text("sleep 4301 & sleep 4302\n")
    program = journey.start(script)

    def sleeping(seconds):
        """Whether a `sleep` of so many seconds is there."""
        wanted = b"sleep\0" + str(seconds).encode() + b"\0"
        return any(command(number) == wanted for number in journey.processes())

    open_terminal(journey)
    run(journey, "nohup sleep 4303 & setsid sleep 4304 & sleep 4305 & sleep 4306; true")
    journey.until(lambda: all(map(sleeping, range(4303, 4307))), "the commands")
    journey.key("ctrl+r")
    journey.until(lambda: sleeping(4301) and sleeping(4302), "the run")
    journey.key("ctrl+q")
    journey.check(journey.ended(program) == 0, "quitting is no failure")
    for seconds in (4301, 4302, 4305, 4306):
        journey.check(not sleeping(seconds), f"sleep {seconds} goes on without a parent")
    for seconds in (4303, 4304):
        journey.check(sleeping(seconds), f"sleep {seconds} was detached and has gone")


def command(number):
    try:
        return pathlib.Path(f"/proc/{number}/cmdline").read_bytes()
    except OSError:
        return b""
