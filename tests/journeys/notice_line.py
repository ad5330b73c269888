"""The quiet line above the status bar, as a person sees it."""

from Xlib import X

# From the window's lower left corner: where a notice's first words stand, and nothing else does.
LEFT, UP, WIDTH, HEIGHT = 14, 45, 200, 12
# From its right: the middle of the last offer.
LAST_OFFER, MIDDLE = 110, 39


def shown(journey, window=None):
    """The picture of the notice's first words; nothing while there is none. In the window that has the keyboard, where
    none is given."""
    x, y, _, height = journey.place_of(window or journey.window())
    data = journey.root.get_image(x + LEFT, y + height - UP, WIDTH, HEIGHT, X.ZPixmap, 0xFFFFFFFF).data
    return data if len({data[at:at + 4] for at in range(0, len(data), 4)}) > 1 else None


def until_another(journey, act):
    """Does something, and waits for a notice that was not there before."""
    before = shown(journey)
    act()
    journey.until(lambda: shown(journey) not in (None, before), "the notice")


def take_last_offer(journey):
    """Presses the notice's last button but that which puts it away."""
    x, y, width, height = journey.place_of(journey.window())
    journey.click(x + width - LAST_OFFER, y + height - MIDDLE)
