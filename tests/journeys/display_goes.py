"""The display dies: the program ends by itself, and says so to whoever started it."""

import subprocess


def go(journey):
    program = journey.start(stderr=subprocess.PIPE)
    journey.end_display()
    words = program.communicate(timeout=30)[1].decode()
    journey.check(program.returncode == 1, f"it ended by {program.returncode}")
    journey.check("connection broke" in words, f"it says {words!r}")
    journey.add_display()
    program = journey.start()
    journey.key("ctrl+q")
    journey.check(journey.ended(program) == 0, "the next one does not end well")
