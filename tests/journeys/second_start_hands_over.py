"""A second start gives its file and its link to the program that runs, and ends."""

import base64


def go(journey):
    first, second = journey.home / "first.txt", journey.home / "second.txt"
    first.write_text("1\n")
    second.write_text("2\n")
    program = journey.start(first)
    journey.check(journey.second_start(second) == 0, "the second start failed")
    journey.check(len(journey.programs()) == 1, "there are two programs")
    journey.until(journey.has_focus, "the window's focus")
    # The file that was handed over has the keyboard.
    journey.key("ctrl+Home")
    journey.type("b")
    journey.key("ctrl+s")
    journey.until_file(second, "b2\n")
    journey.check(first.read_text() == "1\n", "the first file was written")

    code = "print('from a link')\n"
    encoded = base64.b64encode(code.encode()).decode()
    link = f"kelmpane://open?lang=python&code={encoded}"
    journey.check(journey.second_start(link) == 0, "the link's start failed")
    journey.until_text(code)
    journey.check(journey.programs() == [program.pid], "there are two programs")
    journey.key("ctrl+q")
    journey.ended(program)
