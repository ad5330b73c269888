"""The end of its terminal, an interrupt and a request to end are ends in order, and the parent sees which it was."""

import os
import signal


def go(journey):
    for number in (signal.SIGHUP, signal.SIGINT, signal.SIGTERM):
        program = journey.start()
        sockets = list((journey.folder / "run").glob("*.socket"))
        journey.check(len(sockets) == 1, "it does not listen")
        # A terminal that closes says so, and so does its shell.
        os.kill(program.pid, number)
        os.kill(program.pid, number)
        journey.check(journey.ended(program) == -number, f"it ended by {program.returncode} and not by {number!r}")
        journey.check(not sockets[0].exists(), "it ended without order")
    # Whoever started it may have seen to it that it stays.
    program = journey.start(preexec_fn=lambda: signal.signal(signal.SIGHUP, signal.SIG_IGN))
    os.kill(program.pid, signal.SIGHUP)
    journey.until_text("")
    os.kill(program.pid, signal.SIGTERM)
    journey.check(journey.ended(program) == -signal.SIGTERM, "it ended in another way")
