"""An endless loop is seen to run and for how long, a key ends it with all that it has started, and it can be run again.
Another run is refused meanwhile, with an offer to end the loop for it. Quitting leaves nothing behind."""

import pathlib

from Xlib import X

from notice_line import take_last_offer, until_another

# From the window's lower left corner: where the row above the output tells how long a run has lasted, beside the
# sidebar.
LEFT, UP, WIDTH, HEIGHT = 270, 276, 200, 18

LOOP = """\
import subprocess
subprocess.Popen(["sleep", "4401"])
while True:
    pass
"""


def go(journey):
    loop = journey.home / "loop.py"
    loop.write_text(LOOP)
    hello = journey.home / "hello.py"
    hello.write_text("open('said', 'a').write('hello\\n')\n")
    said = journey.home / "said"
    program = journey.start(loop)

    journey.key("ctrl+r")
    journey.until(lambda: len(running(journey)) == 2, "the loop and what it has started")
    before = header(journey)
    journey.until(lambda: header(journey) not in (None, before), "the first second")
    second = header(journey)
    journey.until(lambda: header(journey) not in (None, second), "the next second")
    journey.key("shift+F5")
    journey.until(lambda: not running(journey), "the end of the loop and of what it has started")

    journey.key("ctrl+r")
    journey.until(lambda: len(running(journey)) == 2, "the loop once more")
    journey.check(journey.second_start(hello) == 0, "handing over is no failure")
    until_another(journey, lambda: journey.key("ctrl+r"))
    journey.check(len(running(journey)) == 2 and not said.exists(), "the second run is refused")
    take_last_offer(journey)
    journey.until_file(said, "hello\n")
    journey.check(not running(journey), "the loop goes on beside another run")

    journey.check(journey.second_start(loop) == 0, "handing over is no failure")
    journey.key("ctrl+r")
    journey.until(lambda: len(running(journey)) == 2, "the loop a last time")
    journey.key("ctrl+q")
    journey.check(journey.ended(program) == 0, "quitting is no failure")
    journey.check(not running(journey), "the loop goes on without a parent")


def header(journey):
    """The picture of the words above the output; nothing while there are none."""
    x, y, _, height = journey.place_of(journey.window())
    data = journey.root.get_image(x + LEFT, y + height - UP, WIDTH, HEIGHT, X.ZPixmap, 0xFFFFFFFF).data
    return data if len({data[at:at + 4] for at in range(0, len(data), 4)}) > 1 else None


def running(journey):
    """The processes of the loop."""
    return [number for number in journey.processes()
            if (words := command(number)) and words[-1].endswith((b"loop.py", b"4401"))
            and not words[0].endswith(b"kelmwright")]


def command(number):
    """The words of a process; none when it has gone."""
    try:
        return pathlib.Path(f"/proc/{number}/cmdline").read_bytes().rstrip(b"\0").split(b"\0")
    except OSError:
        return []
