"""Tab and Shift+Tab go round the find bar's fields and buttons and type nothing; Escape in the text closes the bar."""


def go(journey):
    file = journey.home / "words.txt"
    file.write_text("one two one\n")
    program = journey.start(file)
    for command, stops in (("ctrl+alt+f", 7), ("ctrl+alt+r", 10)):
        for key in ("Tab", "shift+Tab"):
            journey.key(command, *[key] * stops)
            # Round once, the keyboard is on the first field again.
            journey.key("ctrl+a")
            journey.type("one")
            journey.until_text("one")
            journey.key(*[key] * (stops + 1))
            journey.key("Escape", "ctrl+s")
    journey.until_text("one two one\n")
    journey.check(file.read_text() == "one two one\n", "something was typed into the text")

    # Behind the bar the text has the keyboard, and Escape there closes it: what is typed then is text.
    before = journey.screen()
    journey.key("ctrl+alt+f")
    journey.until(lambda: journey.screen() != before, "the bar")
    x, y, width, _ = journey.place_of(journey.window())
    journey.click(x + width // 2, y + 300)
    journey.key("ctrl+End")
    journey.type("x")
    journey.key("Escape", "Tab")
    journey.type("y")
    journey.key("ctrl+s")
    journey.until_file(file, "one two one\nx\ty")
    journey.key("ctrl+q")
    journey.ended(program)
