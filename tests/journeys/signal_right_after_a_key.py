"""A request to end, or the end of the terminal, right behind a key: the next start offers all that was typed."""

import os
import signal

from unsaved import copies, folder, open_first


def go(journey):
    for number in (signal.SIGTERM, signal.SIGHUP, signal.SIGINT):
        file = journey.home / "kept.txt"
        file.write_text("as it was\n")
        program = journey.start(file)
        journey.key("ctrl+Home")
        journey.type("typed ")
        journey.until_text("typed as it was\n")
        os.kill(program.pid, number)
        journey.check(journey.ended(program) == -number, f"it ended by {program.returncode} and not by {number!r}")
        journey.check(file.read_text() == "as it was\n", "the file was written")

        # Not over the button already when it comes: it would have another ground until the pointer has gone.
        journey.point_at(0, 0)
        program = journey.start()
        open_first(journey)
        journey.until_text("typed as it was\n")
        journey.key("ctrl+s")
        journey.until_file(file, "typed as it was\n")
        journey.until(lambda: not copies(journey), "the end of the copy")
        journey.key("ctrl+q")
        journey.ended(program)
        journey.check(not copies(journey), f"{folder(journey)} holds what is saved")
