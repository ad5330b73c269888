"""Text is found and replaced with the keyboard alone, nothing else is typed into it, and one undo takes it all back."""


def go(journey):
    file = journey.home / "words.txt"
    file.write_text("one two one\ntwo one\n")
    program = journey.start(file)
    journey.key("ctrl+alt+r")
    journey.type("one")
    journey.key("Tab")
    journey.type("three")
    # Return in the field of the replacement replaces the match that the search stands at.
    journey.key("Return", "Escape", "ctrl+s")
    journey.until_file(file, "three two one\ntwo one\n")
    journey.key("ctrl+z", "ctrl+s")
    journey.until_file(file, "one two one\ntwo one\n")

    # From the field of the replacement, past the toggles and the steps, to "Replace All".
    journey.key("ctrl+alt+r", "Tab", *["shift+Tab"] * 2, "space", "Escape", "ctrl+s")
    journey.until_file(file, "three two three\ntwo three\n")
    journey.key("ctrl+z", "ctrl+s")
    journey.until_file(file, "one two one\ntwo one\n")
    journey.key("ctrl+q")
    journey.ended(program)
