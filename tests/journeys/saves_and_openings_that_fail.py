"""What cannot be opened or saved is told in the window, and nothing that was typed is lost by it."""

import shutil

import notice_line


def go(journey):
    folder = journey.home / "project"
    folder.mkdir()
    file = folder / "notes.txt"
    file.write_text("as it was\n")
    program = journey.start(file)
    window = journey.window()
    journey.key("ctrl+Home")
    journey.type("typed ")
    journey.until_text("typed as it was\n")

    # The folder has gone: that is told, the save fails, and the text stays here.
    notice_line.until_another(journey, lambda: shutil.rmtree(folder))
    notice_line.until_another(journey, lambda: journey.key("ctrl+s"))
    journey.until_text("typed as it was\n")
    journey.check(not folder.exists(), "a folder was made")
    folder.mkdir()
    journey.key("ctrl+s")
    journey.until_file(file, "typed as it was\n")

    # Saving elsewhere where nothing can be: the dialog stays, and the document is still the old file's.
    journey.type("more")
    journey.key("ctrl+shift+s")
    journey.until(lambda: journey.window() != window and journey.window() in journey.windows(), "the panel")
    journey.key("ctrl+a")
    journey.type(str(journey.home / "nowhere" / "a.txt"))
    journey.key("Return", "Escape")
    journey.until(lambda: journey.window() == window, "the window's focus")
    journey.check(not (journey.home / "nowhere").exists(), "a folder was made")
    journey.key("ctrl+s")
    journey.until_file(file, "more")

    # Files that cannot be opened open no tab, and are told of.
    binary = folder / "binary"
    binary.write_bytes(b"\x7fELF\xff\xfe\x00")
    for path in (binary, folder / "nowhere.txt"):
        notice_line.until_another(journey, lambda path=path: journey.second_start(path))
        journey.until_text("more")
    journey.key("ctrl+q")
    journey.ended(program)
