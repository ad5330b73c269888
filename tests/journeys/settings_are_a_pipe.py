"""A pipe in the place of the settings file holds nothing up, and stays a pipe."""

import os
import stat


def go(journey):
    folder = journey.home / ".config"
    folder.mkdir()
    settings = folder / "com.kelm.KelmPane.conf"
    os.mkfifo(settings)
    program = journey.start()
    journey.key("ctrl+q")
    journey.check(journey.ended(program) == 0, "quitting is no failure")
    journey.check(stat.S_ISFIFO(settings.stat().st_mode), "the pipe is gone")
