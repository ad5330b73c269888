"""What was typed right before the end of the program, is there at the next start."""

from unsaved import copies, open_first


def go(journey):
    file = journey.home / "kept.txt"
    file.write_text("as it was\n")
    program = journey.start(file)
    journey.key("ctrl+Home")
    journey.type("first ")
    journey.until_text("first as it was\n")
    journey.key("ctrl+Home", "x", "ctrl+q")
    journey.check(journey.ended(program) == 0, "quitting is no failure")
    journey.check(file.read_text() == "as it was\n", "the file was written")

    program = journey.start()
    open_first(journey)
    journey.until_text("xfirst as it was\n")
    journey.key("ctrl+q")
    journey.ended(program)
    journey.check(len(copies(journey)) == 1, "there is not one copy of the text")
