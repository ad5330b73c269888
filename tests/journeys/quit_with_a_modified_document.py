"""Quitting with a modified document asks nothing, writes nothing into the file, and leaves no process behind."""


def go(journey):
    file = journey.home / "kept.txt"
    file.write_text("as it was\n")
    program = journey.start(file)
    journey.key("ctrl+Home")
    journey.type("not saved ")
    journey.until_text("not saved as it was\n")
    journey.key("ctrl+q")
    journey.check(journey.ended(program) == 0, "quitting is no failure")
    journey.check(file.read_text() == "as it was\n", "the file was written")
    journey.until(lambda: not journey.programs(), "the end of every process of the program")
