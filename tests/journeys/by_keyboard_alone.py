"""All by keys: menus, tabs by use, place and number, closing and opening again, the panes and the way back to the text.
What has the keyboard is to be seen at every step. Keys that desktops take have others, and none erases unnamed."""

import accessible

TABS = ("a.txt", "b.txt", "c.txt")
# Controls around what has the keyboard that say so as well.
AROUND = ("filler", "panel", "scroll pane", "viewport", "menu bar")


def text_of(name):
    return f"first of {name}\nsecond\n"


def focused(journey):
    """What has the keyboard: one node, the innermost of those that say so."""
    found = [node for node in accessible.nodes(journey) if "focused" in node["states"]]
    inner = [node for node in found if node["role"] not in AROUND]
    # What had it before a menu opened gets it back, and goes on saying so.
    inMenu = [node for node in inner if node["role"] == "menu item"]
    return (inMenu or inner or [None])[-1]


def is_seen(journey, node):
    """Whether a node lies within the window, and says that it is shown."""
    left, top, width, height = journey.place_of(journey.window())
    x, y, wide, high = node["place"]
    return ("showing" in node["states"] and left <= x and top <= y and x + wide <= left + width
            and y + high <= top + height)


def until_focused(journey, name, role=None):
    def has_it():
        node = focused(journey)
        named = node is not None and node["name"].split("\n")[0] == name and role in (None, node["role"])
        return node if named else None
    try:
        node = journey.until(has_it, f"the keyboard on {name!r}")
    except Exception as missed:
        raise AssertionError(f"{missed}; it is on {focused(journey)}") from missed
    journey.check(is_seen(journey, node), f"{name!r} has the keyboard and is not seen: {node}")
    return node


def leave_menus(journey):
    """From an open menu to the bar, and from there to the text, where keys are pressed again only when it has them."""
    journey.key("Escape")
    journey.until(lambda: not journey.menu(), "the end of the menu")
    journey.key("Escape")
    until_focused(journey, "Text of c.txt", "text")


def menus(journey):
    journey.key("F10")
    until_focused(journey, "About KelmWright", "menu item")
    journey.key("Right")
    until_focused(journey, "New File", "menu item")
    leave_menus(journey)
    # Alt alone goes to the bar and opens nothing.
    journey.key("Alt_L")
    until_focused(journey, "KelmWright", "menu item")
    journey.check(not journey.menu(), "Alt alone opened a menu")
    journey.key("Escape")
    until_focused(journey, "Text of c.txt", "text")
    for letter, first in (("k", "About KelmWright"), ("f", "New File"), ("e", "Undo"), ("v", "Toggle Sidebar"),
                          ("r", "Run"), ("i", "Find..."), ("w", "Next Recent Tab")):
        journey.key("alt+" + letter)
        until_focused(journey, first, "menu item")
        leave_menus(journey)
    journey.until_text(text_of("c.txt"))


def tabs(journey):
    for key, seen in (("alt+1", "a"), ("alt+2", "b"), ("alt+9", "c"), ("ctrl+Page_Down", "a"), ("ctrl+Page_Up", "c"),
                      # The two that were used last, to and fro.
                      ("ctrl+Tab", "a"), ("ctrl+Tab", "c")):
        journey.key(key)
        journey.until_text(text_of(seen + ".txt"))
    # Held, it goes on; what was gone past was not used.
    journey.key_held("ctrl", "Tab", "Tab")
    journey.until_text(text_of("b.txt"))
    journey.key("ctrl+Tab")
    journey.until_text(text_of("c.txt"))
    journey.key("ctrl+shift+Tab")
    journey.until_text(text_of("a.txt"))


def close_and_reopen(journey):
    journey.key("ctrl+Home")
    journey.type("unsaved ")
    journey.until_text("unsaved " + text_of("a.txt"))
    journey.key("ctrl+w")
    journey.until_text(text_of("b.txt"))
    journey.key("ctrl+w")
    journey.until_text(text_of("c.txt"))
    journey.key("ctrl+shift+t")
    journey.until_text(text_of("b.txt"))
    journey.key("ctrl+shift+t")
    journey.until_text("unsaved " + text_of("a.txt"))
    journey.check((journey.home / "a.txt").read_text() == text_of("a.txt"), "the file was written")
    # Undo knows nothing of it any more; what erases by its name does.
    journey.key("ctrl+Home", "ctrl+Delete", "Delete")
    journey.until_text(text_of("a.txt"))
    journey.key("ctrl+s")


def keys_of_the_text(journey):
    """Keys that erase unnamed do nothing and type nothing; carets are added by keys that no desktop takes."""
    journey.key("ctrl+Home", "ctrl+d", "ctrl+k", "ctrl+u")
    journey.until_text(text_of("a.txt"))
    journey.key("ctrl+Home", "ctrl+shift+Down")
    journey.type("x")
    journey.until_text("xfirst of a.txt\nxsecond\n")
    journey.key("ctrl+z")
    journey.until_text(text_of("a.txt"))
    journey.key("ctrl+y")
    journey.until_text("xfirst of a.txt\nxsecond\n")
    journey.key("ctrl+z")
    journey.until_text(text_of("a.txt"))
    # Back to one caret.
    journey.key("Escape", "ctrl+End")


def until_in_text(journey):
    """What is typed is text, and goes again."""
    journey.key("ctrl+End")
    journey.type("x")
    journey.until_text(text_of("a.txt") + "x")
    journey.key("ctrl+End", "BackSpace")
    journey.until_text(text_of("a.txt"))


def panes(journey):
    journey.key("ctrl+grave")
    until_focused(journey, "Terminal", "terminal")
    # Escape is the terminal's; the panes are the way out.
    journey.key("Escape")
    until_focused(journey, "Terminal", "terminal")
    journey.key("F6")
    until_focused(journey, "Open Folder…")
    journey.key("Escape")
    until_in_text(journey)
    journey.key("shift+F6")
    until_focused(journey, "Open Folder…")
    journey.key("shift+F6")
    until_focused(journey, "Terminal", "terminal")
    journey.key("shift+Tab")
    journey.key("shift+F6")
    until_in_text(journey)


def fields(journey):
    """By arrow keys along the sidebar; Return on the search gives its field the keyboard, and no key empties that."""
    journey.key("shift+F6")
    until_focused(journey, "Open Folder…")
    journey.key("shift+Tab")
    until_focused(journey, "Extensions")
    journey.key("Left", "Left")
    until_focused(journey, "Search")
    journey.key("Return")
    until_focused(journey, "Search in files")
    journey.type("two words")
    journey.key("Home", "ctrl+d", "ctrl+k", "ctrl+u")
    journey.until_text("two words")
    journey.key("Escape")
    until_in_text(journey)


def strip(journey):
    """In a strip that has no room for all its tabs, the one with the keyboard is seen."""
    for number in range(20):
        journey.key("ctrl+n")
    accessible.find(journey, "Untitled", which=19)
    journey.key("shift+F6")
    until_focused(journey, "Search in files")
    journey.key("Tab")
    until_focused(journey, "Untitled")
    for _ in range(22):
        journey.key("Left")
    tab = until_focused(journey, "a.txt *")
    left, _, width, _ = accessible.find(journey, "Open documents")["place"]
    journey.check(left <= tab["place"][0] and tab["place"][0] + tab["place"][2] <= left + width, "the tab is cut")
    journey.key("Return")
    until_in_text(journey)


def go(journey):
    accessible.start(journey)
    for name in TABS:
        (journey.home / name).write_text(text_of(name))
    program = journey.start(*[journey.home / name for name in TABS])
    journey.until_text(text_of("c.txt"))
    menus(journey)
    tabs(journey)
    close_and_reopen(journey)
    keys_of_the_text(journey)
    panes(journey)
    fields(journey)
    strip(journey)
    journey.key("ctrl+q")
    journey.ended(program)
