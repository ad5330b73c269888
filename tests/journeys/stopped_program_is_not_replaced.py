"""A start says so and opens nothing while the program that runs is stopped, and what it asked for is opened once."""

import os
import signal
import subprocess


def go(journey):
    file = journey.home / "asked.txt"
    file.write_text("for\n")
    program = journey.start()
    os.kill(program.pid, signal.SIGSTOP)
    second = journey.spawn(journey.program, str(file), stderr=subprocess.PIPE)
    words = second.communicate(timeout=30)[1].decode()
    journey.check(second.returncode not in (0, None), "the second start says that all is well")
    journey.check("does not answer" in words, f"it says {words!r}")
    journey.check(journey.programs() == [program.pid], "there are two programs")
    os.kill(program.pid, signal.SIGCONT)
    journey.until_text("for\n")
    journey.check(journey.second_start(file) == 0, "the program does not answer any more")
    journey.key("ctrl+q")
    journey.check(journey.ended(program) == 0, "quitting is no failure")
