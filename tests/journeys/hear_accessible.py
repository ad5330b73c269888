"""hear_accessible.py: prints what the programs on this session's bus tell a screen reader, a line of JSON each: the
kind of the event, the role and the name of what it is about, its first detail and its text."""

import json

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

KINDS = ("object:state-changed", "object:property-change", "object:text-changed", "object:text-caret-moved")


def told(event):
    try:
        text = event.any_data if isinstance(event.any_data, str) else ""
        if event.type.endswith("accessible-description"):
            text = event.source.get_description()
        print(json.dumps([event.type, event.source.get_role_name(), event.source.get_name(), event.detail1, text]),
              flush=True)
    except GLib.Error:
        # It went before it was looked at.
        pass


def main():
    listener = Atspi.EventListener.new(told)
    for kind in KINDS:
        listener.register(kind)
    print(json.dumps(["listening", "", "", 0, ""]), flush=True)
    Atspi.event_main()


main()
