"""Ctrl+F's panel, "Go to Line" and a stored setting do nothing, and a notice says so and offers what does it."""

import accessible
import notice_line

FOUND = "Text is searched by the find bar."


def names(journey):
    return {node["name"].split("\n")[0] for node in accessible.nodes(journey) if "showing" in node["states"]}


def until_gone(journey, name):
    journey.until(lambda: name not in names(journey), f"the end of {name!r}")


def focus_on(journey, name, key):
    """Presses a key until the control of a name has the keyboard."""
    def has_it():
        focused = {node["name"] for node in accessible.nodes(journey) if "focused" in node["states"]}
        if name in focused:
            return True
        journey.key(key)
        return False
    journey.until(has_it, f"the keyboard on {name!r}")


def go(journey):
    accessible.start(journey)
    file = journey.home / "words.txt"
    text = "one two\ntwo one\n" + "line\n" * 200
    file.write_text(text)
    program = journey.start(file)

    # Return in the panel finds nothing and says so; Tab reaches the offer beside the panel.
    journey.key("ctrl+f")
    accessible.find(journey, "Case Sensitive")
    journey.type("two")
    journey.key("Return")
    accessible.find(journey, FOUND)
    journey.check("Case Sensitive" in names(journey), "the panel is gone")
    focus_on(journey, "Find in text", "Tab")
    journey.key("space")
    accessible.find(journey, "Close the find bar")
    until_gone(journey, FOUND)
    # The bar has what was typed: the second Return selects the second match, which is typed over.
    journey.key("Return", "Return", "Escape")
    journey.type("three")
    journey.key("ctrl+s")
    journey.until_file(file, text.replace("two one", "three one"))

    # The find bar's key in the panel opens it at once, in the place of the panel.
    journey.key("ctrl+f")
    accessible.find(journey, "Case Sensitive")
    journey.type("three")
    journey.key("F3")
    accessible.find(journey, "Close the find bar")
    until_gone(journey, "Case Sensitive")
    journey.key("Escape")
    until_gone(journey, "Close the find bar")

    # A line is only offered; the pointer takes it.
    journey.key("ctrl+Home", "ctrl+g")
    accessible.find(journey, "Line number")
    journey.type("120")
    journey.key("Return")
    accessible.find(journey, "Line 120")
    until_gone(journey, "Line number")
    journey.key("x", "ctrl+s")
    journey.until_file(file, "x" + text.replace("two one", "three one"))
    accessible.click(journey, "Show")
    until_gone(journey, "Line 120")
    journey.key("y", "ctrl+s")
    lines = text.replace("two one", "three one").split("\n")
    lines[0] = "x" + lines[0]
    lines[119] = "y" + lines[119]
    journey.until_file(file, "\n".join(lines))

    # A setting is stored, and its first change says that this is all.
    main = journey.window()
    journey.key("ctrl+comma")
    journey.until(lambda: journey.window() != main, "the settings")
    box = accessible.find(journey, "Auto save files")
    journey.check(notice_line.shown(journey, main) is None, "a notice before anything was changed")
    journey.click(*accessible.middle(box))
    journey.until(lambda: notice_line.shown(journey, main), "what is said of a setting")
    # It offers nothing, and leaves by itself.
    journey.until(lambda: notice_line.shown(journey, main) is None, "the end of that")
    journey.key("Escape")
    journey.until(lambda: journey.window() == main, "the end of the settings")
    journey.key("ctrl+q")
    journey.ended(program)
