"""What the journeys through the terminal share."""

# Blue, green and red.
CYAN = b"\xff\xff\x00"


def open_terminal(journey):
    """Shows the terminal, which has the keyboard then, and waits for its first prompt."""
    journey.key("ctrl+grave")
    journey.until(lambda: shows(journey, CYAN), "the prompt")


def run(journey, line):
    """Types a line; one that is typed while a command runs waits for its turn."""
    journey.type(line)
    journey.key("Return")


def shows(journey, color):
    """Whether a pixel of the screen has the colour."""
    data = journey.screen()
    at = data.find(color)
    while at >= 0 and at % 4 != 0:
        at = data.find(color, at + 1)
    return at >= 0
