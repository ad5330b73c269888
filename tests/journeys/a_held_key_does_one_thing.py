"""A key that is held down closes one tab, opens one, and edits nothing in the text that gets the keyboard."""

import accessible

# Seconds, in which a key comes some twenty times.
HELD = 1.5


def focus(journey, role, name, key):
    """Presses a key again and again until the keyboard is there."""
    def is_there():
        if any("focused" in node["states"] and node["role"] == role and node["name"].startswith(name)
               for node in accessible.nodes(journey)):
            return True
        journey.key(key)
        return False
    journey.until(is_there, f"the keyboard on {name}")


def tabs(journey):
    return [node["name"] for node in accessible.nodes(journey) if node["role"] == "page tab"]


def go(journey):
    accessible.start(journey)
    project = journey.home / "project"
    project.mkdir()
    first, second = project / "a.txt", project / "b.txt"
    first.write_text("first\n")
    second.write_text("second\n")
    program = journey.start(project, first, second)
    journey.until_text("second\n")

    # In a text a key repeats.
    journey.key("ctrl+Home")
    journey.hold("x", HELD)
    journey.key("ctrl+s")
    journey.until(lambda: second.read_text().startswith("xxxx"), "a key that repeats")
    typed = second.read_text()

    # On a tab Delete closes it, and the text behind it gets the keyboard.
    journey.key("F6")
    focus(journey, "page tab", "b.txt", "Tab")
    journey.hold("Delete", HELD)
    journey.until_text("first\n")
    journey.key("ctrl+s")

    # In the tree Return opens a file.
    journey.key("F6")
    focus(journey, "list item", "b.txt", "Down")
    journey.hold("Return", HELD)
    journey.until_text(typed)

    # A command is given once.
    journey.hold("ctrl+n", HELD)
    journey.until(lambda: tabs(journey) == ["a.txt", "b.txt", "Untitled"], "one tab more")
    journey.hold("ctrl+w", HELD)
    journey.until(lambda: tabs(journey) == ["a.txt", "b.txt"], "one tab less")

    journey.key("ctrl+q")
    journey.ended(program)
    journey.check(first.read_text() == "first\n", "a held key edited the first file")
    journey.check(second.read_text() == typed, "a held key edited the second file")
