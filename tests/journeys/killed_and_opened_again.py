"""What was typed before a kill is offered by the next start, and "Open" gives it back unit for unit."""

import os
import signal

from unsaved import copies, folder, open_first

SAVED = "as it was, 한글 😀\r\n"
TYPED = "typed, and not saved; 12345 "


def go(journey):
    file = journey.home / "kept.txt"
    file.write_text(SAVED, newline="")
    program = journey.start(file)
    journey.key("ctrl+Home")
    journey.type(TYPED)
    journey.until_text(TYPED + SAVED)
    # The line holds Korean: a unit is two bytes.
    journey.until(lambda: any(TYPED.encode("utf-16-le") in copy for copy in copies(journey)), "the copy")
    os.kill(program.pid, signal.SIGKILL)
    program.wait()
    journey.until(lambda: not journey.programs(), "the end of the program")
    journey.check(file.read_bytes() == SAVED.encode(), "the file was written")
    journey.check(folder(journey).stat().st_mode & 0o777 == 0o700, "the folder is open to others")
    modes = {entry.stat().st_mode & 0o777 for entry in folder(journey).iterdir()}
    journey.check(modes == {0o600}, "a copy is open to others")

    program = journey.start()
    open_first(journey)
    journey.until_text(TYPED + SAVED)
    journey.check(file.read_bytes() == SAVED.encode(), "opening wrote the file")
    journey.key("ctrl+s")
    journey.until_file(file, (TYPED + SAVED).encode())
    journey.until(lambda: not copies(journey), "the end of the copy")
    journey.key("ctrl+q")
    journey.ended(program)
