"""The program is started without standard streams, and what it tells there goes into no file."""

import os
import pathlib


def go(journey):
    file = journey.home / "kept.txt"
    file.write_text("as it was\n")
    shell = journey.spawn("sh", "-c", 'exec "$0" "$@" <&- >&- 2>&-', journey.program, str(file))
    journey.until(journey.has_focus, "the window's focus")
    descriptors = {int(entry.name): os.readlink(entry)
                   for entry in pathlib.Path(f"/proc/{shell.pid}/fd").iterdir()}
    journey.check(all(descriptors.get(stream) == "/dev/null" for stream in range(3)), f"they are {descriptors}")
    journey.key("ctrl+Home")
    journey.type("typed, ")
    journey.key("ctrl+s")
    journey.until_file(file, "typed, as it was\n")
    journey.key("ctrl+q")
    journey.check(journey.ended(shell) == 0, "quitting is no failure")
