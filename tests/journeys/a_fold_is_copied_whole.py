"""A folded function that is cut and pasted, found or dragged comes back with its body."""

from Xlib import X

WHOLE = "func f() {\n  one\n  two\n}\nlast one\n"


def go(journey):
    file = journey.home / "fold.swift"
    file.write_text(WHOLE)
    program = journey.start(file)
    x, y, _, _ = journey.place_of(journey.window())
    triangle = x + 270, y + 117

    def is_drawn():
        data = journey.root.get_image(triangle[0] - 3, triangle[1] - 1, 7, 3, X.ZPixmap, 0xFFFFFFFF).data
        return len({data[at:at + 4] for at in range(0, len(data), 4)}) > 1

    def fold():
        # It comes a moment after an edit.
        journey.until(is_drawn, "the triangle")
        # Its second click, if there is one, would unfold it: what is shown changes with the first.
        before = journey.screen()
        journey.click(*triangle)
        journey.until(lambda: journey.screen() != before, "the fold")

    journey.until_text(WHOLE)
    journey.key("ctrl+Home")
    fold()
    # The three rows of the function, by what is shown of them.
    journey.key("ctrl+Home", "shift+Down", "shift+Down", "ctrl+x", "ctrl+s")
    journey.until_file(file, "last one\n")
    journey.check(journey.clipboard() == WHOLE[:-len("last one\n")], "the clipboard has not the text under the fold")
    journey.key("ctrl+End", "ctrl+v", "ctrl+s")
    journey.until_file(file, "last one\nfunc f() {\n  one\n  two\n}\n")
    journey.key("ctrl+z", "ctrl+z", "ctrl+s")
    journey.until_file(file, WHOLE)

    # Its rows are dragged by the first of them to where the text ends.
    journey.key("ctrl+Home")
    fold()
    journey.key("ctrl+Home", "shift+Down", "shift+Down")
    word = triangle[0] + 70, triangle[1]
    journey.drag(word, (word[0], word[1] + 100))
    journey.until_text("last one\nfunc f() {\n  one\n  two\n}\n")
    journey.key("ctrl+s")
    journey.until_file(file, "last one\nfunc f() {\n  one\n  two\n}\n")
    journey.key("ctrl+z", "ctrl+s")
    journey.until_file(file, WHOLE)

    # What stands under the fold is found, and replaced as often as it is counted.
    journey.key("ctrl+Home")
    fold()
    journey.key("ctrl+alt+r")
    journey.type("one")
    journey.key("Tab")
    journey.type("three")
    journey.key("shift+Tab", "shift+Tab", "space", "Escape", "ctrl+s")
    journey.until_file(file, WHOLE.replace("one", "three"))
    journey.key("ctrl+q")
    journey.ended(program)
