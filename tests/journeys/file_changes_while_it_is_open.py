"""A file that another program changes shows its new text; a save over an unseen change keeps what was there."""

import os

import notice_line


def replace(path, text):
    """Saves as most programs do: by a new file that takes the old one's place."""
    new = path.with_name("other-program")
    new.write_text(text)
    os.replace(new, path)


def go(journey):
    file = journey.home / "notes.txt"
    file.write_text("as it was\n")
    program = journey.start(file)
    journey.until_text("as it was\n")

    # By a renaming, by writing in place, and by deleting and making it anew.
    replace(file, "replaced by another program\n")
    journey.until_text("replaced by another program\n")
    file.write_text("written in place\n")
    journey.until_text("written in place\n")
    file.unlink()
    file.write_text("deleted and made again\n")
    journey.until_text("deleted and made again\n")
    # Each is one undo step.
    journey.key("ctrl+z")
    journey.until_text("written in place\n")
    journey.key("ctrl+shift+z")
    journey.until_text("deleted and made again\n")
    journey.key("ctrl+s")

    # Typed here and changed there: what was typed stays, and is asked about.
    journey.key("ctrl+Home")
    journey.type("typed ")
    journey.until_text("typed deleted and made again\n")
    notice_line.until_another(journey, lambda: replace(file, "changed meanwhile\n"))
    journey.until_text("typed deleted and made again\n")
    # Saving all the same keeps the other text, and offers it.
    notice_line.until_another(journey, lambda: journey.key("ctrl+s"))
    journey.until_file(file, "typed deleted and made again\n")
    notice_line.take_last_offer(journey)
    journey.until_text("changed meanwhile\n")
    journey.check(file.read_text() == "typed deleted and made again\n", "the file was written")
    journey.second_start(file)
    journey.until_text("typed deleted and made again\n")

    # A file that is gone can be saved again.
    notice_line.until_another(journey, file.unlink)
    journey.until_text("typed deleted and made again\n")
    journey.key("ctrl+s")
    journey.until_file(file, "typed deleted and made again\n")

    # A hundred fast changes leave the last text.
    for number in range(100):
        replace(file, f"change {number}\n")
    journey.until_text("change 99\n")
    journey.key("ctrl+q")
    journey.ended(program)
