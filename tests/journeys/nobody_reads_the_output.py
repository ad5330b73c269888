"""The program's output and errors go to a pipe that nobody reads, as in `kelmwright | sleep 1000`, and it goes on."""

import fcntl
import os


def go(journey):
    file = journey.home / "kept.txt"
    file.write_text("as it was\n")
    reader, writer = os.pipe()
    fcntl.fcntl(writer, fcntl.F_SETPIPE_SZ, 4096)
    os.write(writer, b"x" * 4096)
    program = journey.start(file, stdout=writer, stderr=writer)
    os.close(writer)
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
    os.close(reader)
