#!/usr/bin/env python3
"""run.py PROGRAM [NAME ...]: goes the journeys of this folder, all of them or those named, one after the other.

A journey is a file with a function `go(journey)`; its docstring says what it proves. It fails by an exception.
KELM_JOURNEY_PICTURES names a folder for the last picture of each that failed.
"""

import importlib
import os
import pathlib
import sys
import time
import traceback

FOLDER = pathlib.Path(__file__).resolve().parent
HELPERS = {"accessible", "act_on_accessible", "dragging", "hear_accessible", "journey", "look_at_accessible",
           "notice_line", "repository", "run", "terminal", "unsaved"}


def go(name, program):
    """Goes one journey; the reason why it failed, or nothing."""
    from journey import Journey

    journey = None
    try:
        journey = Journey(program)
        importlib.import_module(name).go(journey)
        return None
    except Exception as failure:  # whatever it was, the others are gone as well
        pictures = os.environ.get("KELM_JOURNEY_PICTURES")
        if pictures and journey is not None:
            journey.picture(pathlib.Path(pictures) / f"{name}.ppm")
        log = (journey.folder / "log").read_text(errors="replace")[-2000:] if journey else ""
        return "".join(traceback.format_exception(failure)) + log
    finally:
        if journey is not None:
            journey.end()


def main():
    sys.path.insert(0, str(FOLDER))
    program = pathlib.Path(sys.argv[1]).resolve()
    known = sorted(file.stem for file in FOLDER.glob("*.py") if file.stem not in HELPERS)
    names = sys.argv[2:] or known
    unknown = [name for name in names if name not in known]
    if unknown:
        print(f"kelm: there is no journey {unknown[0]}; there are: {', '.join(known)}", file=sys.stderr)
        return 1
    failed = 0
    for name in names:
        began = time.monotonic()
        reason = go(name, program)
        failed += reason is not None
        print(f"{'failed' if reason else 'passed'}  {time.monotonic() - began:5.1f} s  {name}", flush=True)
        if reason:
            print(reason, file=sys.stderr, flush=True)
    print(f"{len(names) - failed} passed, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
