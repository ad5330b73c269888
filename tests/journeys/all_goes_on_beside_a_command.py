"""While a command runs in the terminal everything else goes on: a second start hands its file over, the editor takes
keys, saving writes, and quitting ends the program and the command."""

from terminal import open_terminal, run


def go(journey):
    file, other = journey.home / "a.txt", journey.home / "other.txt"
    file.write_text("text\n")
    other.write_text("end\n")
    program = journey.start(file)
    open_terminal(journey)
    run(journey, "touch begun; sleep 4401")
    journey.until((journey.home / "begun").exists, "the command")

    journey.check(journey.second_start(other) == 0, "handing a file over is no failure")
    x, y, width, height = journey.place_of(journey.window())
    journey.click(x + width // 2, y + height // 4)
    journey.key("ctrl+Home")
    journey.type("typed ")
    journey.key("ctrl+s")
    journey.until_file(other, "typed end\n")
    journey.check(len(journey.processes()) > 1, "the command did not go on")
    journey.key("ctrl+q")
    journey.check(journey.ended(program) == 0, "quitting is no failure")
    journey.until(lambda: not journey.programs(), "the end of the program")
