"""Closing the window keeps the program and its texts; starting it again brings them back."""


def go(journey):
    file = journey.home / "kept.txt"
    file.write_text("text\n")
    program = journey.start(file)
    journey.key("ctrl+Home")
    journey.type("typed ")
    journey.until_text("typed text\n")
    journey.key("alt+F4")
    journey.until(lambda: not journey.windows(), "the end of the window")
    journey.check(program.poll() is None, "the program has ended with its window")
    journey.check(journey.second_start() == 0, "the second start failed")
    journey.until(journey.windows, "the window again")
    journey.until(journey.has_focus, "the window's focus")
    journey.check(journey.programs() == [program.pid], "there are two programs")
    journey.until_text("typed text\n")
    journey.key("ctrl+s")
    journey.until_file(file, "typed text\n")
    journey.key("ctrl+q")
    journey.ended(program)
