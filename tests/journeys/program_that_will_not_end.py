"""A program in the terminal that ignores the interrupt is ended by a second Escape, as a line below the text says two
seconds after the first one; the prompt works afterwards."""

from Xlib import X

from terminal import open_terminal, run

# From the window's lower right corner, the status bar left out: where the line below the terminal's text says how the
# program is ended. The terminal's own lines do not reach so far.
RIGHT, UP, WIDTH, HEIGHT = 260, 48, 230, 18
LIGHT = 110


def go(journey):
    file = journey.home / "a.txt"
    file.write_text("text\n")
    program = journey.start(file)
    stubborn = journey.home / "stubborn.sh"
    stubborn.write_text("trap '' INT TERM\necho $$ > number\nwhile :; do sleep 0.1; done\n")
    number = journey.home / "number"

    open_terminal(journey)
    run(journey, "sh stubborn.sh")
    journey.until(lambda: number.exists() and number.read_text().endswith("\n"), "the program")
    process = int(number.read_text())
    journey.check(not shows_hint(journey), "nothing was interrupted, and yet a hint is there")
    journey.key("Escape")
    journey.until(lambda: shows_hint(journey), "the hint")
    journey.check(is_there(process), "the program has ended by the interrupt")
    # What is typed meanwhile is shown there too, and thrown away.
    journey.type("touch typed")
    journey.key("Return")
    journey.key("Escape")
    journey.until(lambda: not is_there(process), "the end of the program")
    journey.until(lambda: not shows_hint(journey), "the end of the hint")
    run(journey, "echo ok > answer")
    journey.until_file(journey.home / "answer", "ok\n")
    journey.check(not (journey.home / "typed").exists(), "what was typed ahead has run")
    journey.key("ctrl+q")
    journey.check(journey.ended(program) == 0, "quitting is no failure")


def shows_hint(journey):
    """Whether something light stands at the right of the line below the terminal's text."""
    x, y, width, height = journey.place_of(journey.window())
    data = journey.root.get_image(x + width - RIGHT, y + height - UP, WIDTH, HEIGHT, X.ZPixmap, 0xFFFFFFFF).data
    return any(max(data[at:at + 3]) > LIGHT for at in range(0, len(data), 4))


def is_there(process):
    """Whether a process goes on; one that has ended and waits for its parent does not."""
    try:
        with open(f"/proc/{process}/stat") as stat:
            return stat.read().rpartition(")")[2].split()[0] != "Z"
    except FileNotFoundError:
        return False
