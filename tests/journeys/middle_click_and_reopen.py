"""A middle click closes a modified tab at once, and "Reopen" gives it back with its text and its file."""

from unsaved import copies, take_offer

# The first tab, from the window's upper left corner.
TAB = (335, 84)


def go(journey):
    file = journey.home / "kept.txt"
    file.write_text("as it was\n")
    program = journey.start(file)
    journey.key("ctrl+Home")
    journey.type("typed ")
    journey.until_text("typed as it was\n")
    x, y, _, _ = journey.place_of(journey.window())
    journey.click(x + TAB[0], y + TAB[1], button=2)
    take_offer(journey)
    journey.until_text("typed as it was\n")
    journey.check(file.read_text() == "as it was\n", "the file was written")
    journey.key("ctrl+s")
    journey.until_file(file, "typed as it was\n")
    journey.until(lambda: not copies(journey), "the end of the copy")
    journey.key("ctrl+q")
    journey.ended(program)
