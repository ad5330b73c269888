"""A run by Ctrl+R: a file runs in its folder, the output page holds what it wrote, with its errors marked, and how it
ended; the next run begins anew. Code that has no file runs from a copy, which is gone behind it."""

import base64
import pathlib

# In the window, from its left edge and its lower one: the middle of the output.
OUTPUT = (700, 60)

FAILS = """\
import os, sys
sys.stdout.write("in " + os.path.basename(os.getcwd()) + "\\n한국어 😀\\n")
sys.stderr.write("no module\\n")
sys.exit(3)
"""
SNIPPET = "print(__file__)\n"


def go(journey):
    folder = journey.home / "a folder"
    folder.mkdir()
    file = folder / "fails.py"
    file.write_text(FAILS)
    program = journey.start(file)
    journey.key("ctrl+r")
    said, error, end = "in a folder\n한국어 😀\n", "[ERROR] no module\n", "\n\nProcess exited with code 3\n"
    # Which of two pipes is read first is nobody's matter.
    until_output(journey, lambda text: text in (said + error + end, error + said + end))

    journey.key("Escape", "ctrl+a")
    journey.type("print('again')")
    journey.key("ctrl+s")
    journey.until_file(file, "print('again')")
    journey.key("ctrl+r")
    until_output(journey, lambda text: text == "again\n\n\nProcess exited with code 0\n")

    code = base64.urlsafe_b64encode(SNIPPET.encode()).decode()
    journey.check(journey.second_start(f"kelmpane://open?lang=py&code={code}") == 0, "the link's start failed")
    journey.until(journey.has_focus, "the window's focus")
    journey.until_text(SNIPPET)
    journey.key("ctrl+r")
    text = until_output(journey, lambda text: text.endswith("Process exited with code 0\n") and "temp_" in text)
    copy = pathlib.Path(text.splitlines()[0])
    journey.check(copy.name.startswith("temp_") and copy.suffix == ".py", f"the snippet ran as {copy}")
    journey.until(lambda: not copy.exists(), "the end of the snippet's copy")
    journey.key("ctrl+q")
    journey.check(journey.ended(program) == 0, "quitting is no failure")


def until_output(journey, wanted):
    """Waits until what is copied of the output is as wanted, and gives it back."""
    def copied():
        x, y, _, height = journey.place_of(journey.window())
        journey.click(x + OUTPUT[0], y + height - OUTPUT[1])
        journey.key("ctrl+a", "ctrl+c")
        text = journey.clipboard()
        return text if wanted(text) else None
    return journey.until(copied, "the output")
