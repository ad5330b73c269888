"""Saving under a name goes by keys alone: the name is suggested, a folder that is gone is told in the dialog, and a
good one is remembered. A text goes from a selection to where the middle button is pressed, without the clipboard.
Files, texts and addresses come from another program and go to one.
"""

import os
import subprocess
import urllib.parse

import accessible
import dragging
import repository
import terminal
from journey import PATIENCE


def primary(journey):
    """The text that the desktop's selection offers; empty when it has none."""
    result = subprocess.run(("xclip", "-o", "-selection", "primary"), env=journey.environment, capture_output=True,
                            check=False, timeout=PATIENCE)
    return result.stdout.decode("utf-8", "replace")


def offer(journey, text):
    """Another program offers a text as the desktop's selection."""
    holder = journey.spawn("xclip", "-i", "-selection", "primary", "-quiet", stdin=subprocess.PIPE)
    holder.stdin.write(text.encode())
    holder.stdin.close()
    journey.until(lambda: primary(journey) == text, "the other program's selection")


def until_dialog(journey, window):
    journey.until(lambda: journey.window() != window and journey.window() in journey.windows(), "the dialog")


def save_as(journey, window, typed):
    """Opens the dialog and types over the selected part of the suggested name."""
    journey.key("ctrl+shift+s")
    until_dialog(journey, window)
    journey.type(typed)
    journey.key("Return")


def saving_by_keys(journey, window):
    journey.key("ctrl+n")
    journey.type("first")
    journey.until_text("first")
    save_as(journey, window, str(journey.home / "gone" / "note"))
    accessible.find(journey, "There is no folder “gone”.")
    journey.check(not (journey.home / "gone").exists(), "a folder was made")

    # The dialog is still there, with all of the name selected.
    good = journey.home / "good"
    good.mkdir()
    journey.type(str(good / "first.txt"))
    journey.key("Return")
    journey.until(lambda: journey.window() == window, "the window's focus")
    journey.until_file(good / "first.txt", "first")

    # A text without a file and without a project: where the last one ended, under the suggested extension.
    journey.key("ctrl+n")
    journey.type("second")
    journey.until_text("second")
    save_as(journey, window, "second")
    journey.until(lambda: journey.window() == window, "the window's focus")
    journey.until_file(good / "second.txt", "second")


def text_with(journey, text):
    """The control that shows just this text."""
    def seen():
        found = [node for node in accessible.nodes(journey) if node["text"] == text and "showing" in node["states"]]
        return found[0] if found else None
    return journey.until(seen, f"a control with the text {text!r}")


def place_of(journey, role, start):
    """The middle of the control of a role whose name begins so."""
    def seen():
        found = [node for node in accessible.nodes(journey)
                 if node["role"] == role and node["name"].startswith(start) and "showing" in node["states"]]
        return accessible.middle(found[0]) if found else None
    return journey.until(seen, f"{role} {start!r}")


def middle_button(journey):
    journey.key("ctrl+n")
    journey.type("one two")
    journey.until_text("one two")
    # By keys: what is on offer follows.
    journey.key("Home", "shift+Right", "shift+Right", "shift+Right")
    journey.until(lambda: primary(journey) == "one", "the selection")
    journey.key("shift+Right")
    journey.until(lambda: primary(journey) == "one ", "the longer selection")
    # What was selected stays on offer when it is not selected any more.
    journey.key("End", "Left", "End")
    journey.check(primary(journey) == "one ", "what was selected has gone")

    offer(journey, "from outside")
    left, top = text_with(journey, "one two")["place"][:2]
    journey.click(left + 300, top + 12, button=2)
    text_with(journey, "one twofrom outside")
    journey.check(journey.clipboard() == "one two", "the clipboard was touched")
    journey.key("ctrl+z")
    journey.until_text("one two")


def middle_button_in_the_terminal(journey, window):
    told = journey.home / "told.txt"
    terminal.open_terminal(journey)
    offer(journey, f"echo pasted > {told}")
    x, y, width, height = journey.place_of(window)
    # Above the prompt as well: a terminal has one place where it takes something.
    journey.click(x + width // 2, y + height - 120, button=2)
    journey.key("Return")
    journey.until_file(told, "pasted\n")


def drops(journey, window):
    other = dragging.OtherProgram(journey)
    folder = journey.home / "project"
    (folder / "inner").mkdir(parents=True)
    repository.git(journey, folder, "init", "-q")
    plain, raw = folder / "plain.txt", os.fsencode(folder) + b"/\xff.txt"
    plain.write_text("plain")
    with open(raw, "w", encoding="ascii") as file:
        file.write("raw")
    left, top = text_with(journey, "one two")["place"][:2]
    over_text = (left + 300, top + 200)

    # Several files and a folder onto the text open, each as its own; a text and a page's address are put in.
    urls = [plain.as_uri().encode(), b"file://" + urllib.parse.quote(raw).encode(), folder.as_uri().encode()]
    journey.check(other.drop(window, over_text, "text/uri-list", b"\r\n".join(urls)), "files were turned away")
    journey.until_text("raw")
    journey.key("End")
    journey.check(other.drop(window, over_text, "text/plain", b" dropped"), "a text was turned away")
    journey.until_text("raw dropped")
    journey.check(other.drop(window, over_text, "text/uri-list", b"https://host/\r\n"), "an address was turned away")
    journey.until_text("raw droppedhttps://host/")

    # Rows of the tree and tabs go to other programs as their files, whatever bytes their names are.
    row = place_of(journey, "list item", "\ufffd.txt")
    journey.check(other.take(journey, row, "text/uri-list").strip() == urls[1], "the row's file")
    row = place_of(journey, "list item", "plain.txt")
    journey.check(other.take(journey, row, "text/plain") == bytes(plain), "the row's path")
    tab = place_of(journey, "page tab", "plain.txt")
    journey.check(other.take(journey, tab, "text/uri-list").strip() == urls[0], "the tab's file")
    journey.until_text("plain")
    # A folder's row that is let go of within the tree is where it was, and no project.
    x, y = place_of(journey, "list item", "inner")
    journey.drag((x, y), (x, y + 150))
    journey.click(*place_of(journey, "list item", "\ufffd.txt"))
    journey.until_text("raw droppedhttps://host/")
    place_of(journey, "list item", "inner")
    journey.click(*place_of(journey, "list item", "plain.txt"))
    journey.until_text("plain")
    # What is selected goes as a text, and stays here where it was copied.
    text = text_with(journey, "plain")
    place = (text["place"][0] + 10, text["place"][1] + 12)
    journey.check(other.take(journey, place, "text/plain") == b"plain", "the selected text")
    journey.until_text("plain")


def links_and_texts_onto_the_window(journey, window):
    other = dragging.OtherProgram(journey)
    text = text_with(journey, "plain")["place"]
    link = b"kelmpane://open?code=bGluaw%3D%3D&lang=python"
    journey.check(other.drop(window, (text[0] + 300, text[1] + 200), "text/uri-list", link), "a link was turned away")
    journey.until_text("link")
    x, y, width, _ = journey.place_of(window)
    journey.check(other.drop(window, (x + width - 20, y + 84), "text/plain", b"on the tabs"), "a text was turned away")
    journey.until_text("on the tabs")


def rows_of_changes(journey):
    """A row of what has changed goes out as its file, and is not opened by that."""
    folder = journey.home / "project"
    accessible.click(journey, "Source Control", "radio button")
    row = place_of(journey, "list item", "plain.txt (untracked)")
    other = dragging.OtherProgram(journey)
    taken = other.take(journey, row, "text/uri-list").strip()
    journey.check(taken == (folder / "plain.txt").as_uri().encode(), "the changed file")


def go(journey):
    accessible.start(journey)
    program = journey.start()
    window = journey.window()
    saving_by_keys(journey, window)
    middle_button(journey)
    drops(journey, window)
    links_and_texts_onto_the_window(journey, window)
    rows_of_changes(journey)
    middle_button_in_the_terminal(journey, window)
    journey.key("ctrl+q")
    journey.ended(program)
