"""What the journeys of unsaved texts share: where the copies are, and the buttons that offer them."""

# The grounds of buttons with an outline in the theme that is there at first: on the welcome's groups, and on the line
# of the notices.
BUTTON_ON_GROUP = (69, 70, 64)
BUTTON_ON_NOTICE = (58, 59, 53)
# The middle of the one offer of a notice, from the window's lower right corner.
OFFER_FROM_RIGHT, OFFER_FROM_BOTTOM = 77, 39
OFFER_HALF_WIDTH = 24


def folder(journey):
    return journey.home / ".local/state/com.kelm.KelmPane.savedState/unsaved"


def copies(journey):
    """What each copy holds."""
    return [copy.read_bytes() for copy in sorted(folder(journey).glob("*.copy"))]


def open_first(journey):
    """Presses "Open" of the first text that the welcome offers."""
    x, y = journey.until(lambda: first_open_button(journey), "the unsaved text")
    journey.click(x, y)


def first_open_button(journey):
    """A place in the upper left of the topmost button of the welcome's groups."""
    left, top, width, height = journey.place_of(journey.window())
    data = journey.screen()
    wanted = bytes(reversed(BUTTON_ON_GROUP))
    for y in range(top + height // 4, top + height):
        for x in range(left + width // 2, left + width):
            at = 4 * (y * 1280 + x)
            if data[at:at + 3] == wanted:
                return x + 2, y + 4
    return None


def take_offer(journey):
    """Takes the one offer of the notice that is shown, once it is."""
    left, top, width, height = journey.place_of(journey.window())
    x, y = left + width - OFFER_FROM_RIGHT, top + height - OFFER_FROM_BOTTOM
    journey.until(lambda: journey.color(x - OFFER_HALF_WIDTH, y) == BUTTON_ON_NOTICE, "the notice")
    journey.click(x, y)
