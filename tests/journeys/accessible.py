"""What the journeys share that find controls as a screen reader does: by their names, wherever they stand."""

import json
import os
import pathlib
import subprocess


def start(journey):
    """A session bus of the journey's own, on which the program tells what it shows. Before the program is started."""
    read, write = os.pipe()
    journey.spawn("dbus-daemon", "--session", "--nofork", f"--print-address={write}", pass_fds=(write,))
    os.close(write)
    with os.fdopen(read) as addresses:
        journey.environment["DBUS_SESSION_BUS_ADDRESS"] = addresses.readline().strip()
    journey.environment["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"
    journey.spawn("/usr/libexec/at-spi-bus-launcher", "--launch-immediately")


def nodes(journey):
    """All that the program shows: dictionaries with role, name, text, states and place (x, y, width, height)."""
    look = pathlib.Path(__file__).with_name("look_at_accessible.py")
    result = subprocess.run(("/usr/bin/python3", look), env=journey.environment, capture_output=True, check=False,
                            timeout=60)
    return json.loads(result.stdout or b"[]")


def find(journey, name, role=None, which=0):
    """Waits for a control that is to be seen and whose name has just this first line."""
    def seen():
        named = [node for node in nodes(journey) if node["name"].split("\n")[0] == name]
        found = [node for node in named if role in (None, node["role"]) and "showing" in node["states"]]
        return found[which] if found and which < len(found) else None
    return journey.until(seen, f"a control named {name!r}")


def middle(node):
    x, y, width, height = node["place"]
    return x + width // 2, y + height // 2


def click(journey, name, role=None, button=1, which=0):
    """Clicks on a control by its name, with the pointer."""
    journey.click(*middle(find(journey, name, role, which)), button)


def act(journey, role, name, action):
    """Does an action of a control, once the control is there."""
    script = pathlib.Path(__file__).with_name("act_on_accessible.py")
    command = ("/usr/bin/python3", script, role, name, action)

    def done():
        return subprocess.run(command, env=journey.environment, capture_output=True, check=False,
                              timeout=60).returncode == 0
    journey.until(done, f"the action {action!r} of {name!r}")


class Listener:
    """Hears what a screen reader is told from now on."""

    def __init__(self, journey):
        self.journey = journey
        self.file = journey.folder / "heard"
        script = pathlib.Path(__file__).with_name("hear_accessible.py")
        with open(self.file, "wb") as heard:
            journey.spawn("/usr/bin/python3", script, stdout=heard)
        self.until(lambda kind, *_: kind == "listening", "the listener")

    def all(self):
        """Kind, role, name, first detail and text of each event that was told."""
        lines = self.file.read_text(errors="replace").split("\n")[:-1]
        return [json.loads(line) for line in lines]

    def until(self, wanted, what, since=0):
        """Waits for an event that `wanted` takes, and gives back how many were told up to it."""
        def found():
            for index, event in enumerate(self.all()):
                if index >= since and wanted(*event):
                    return index + 1
            return None
        return self.journey.until(found, what)
