"""The program writes to a standard output whose reader has gone, as in `kelmwright file | head -1`, and goes on."""

import os


def go(journey):
    file = journey.home / "kept.txt"
    file.write_text("as it was\n")
    reader, writer = os.pipe()
    program = journey.start(file, stdout=writer)
    os.close(writer)
    os.close(reader)
    # The number of the line is told on standard output.
    journey.key("ctrl+g")
    journey.type("1")
    journey.key("Return")
    journey.key("ctrl+Home")
    journey.type("typed behind it, ")
    journey.until_text("typed behind it, as it was\n")
    journey.key("ctrl+s")
    journey.until_file(file, "typed behind it, as it was\n")
    journey.key("ctrl+q")
    journey.check(journey.ended(program) == 0, "quitting is no failure")
