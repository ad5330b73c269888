"""What the journeys through the terminal share."""

# Blue, green and red of the prompt.
CYAN = b"\xff\xff\x00"


def open_terminal(journey):
    """Shows the terminal, which has the keyboard then, and waits for its first prompt."""
    journey.key("ctrl+grave")
    journey.until(lambda: CYAN in journey.screen(), "the prompt")


def run(journey, line):
    """Types a line; one that is typed while a command runs waits for its turn."""
    journey.type(line)
    journey.key("Return")
