"""look_at_accessible.py: prints what the programs on this session's bus show, as a screen reader sees it, in JSON."""

import json

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402


def state_names(node):
    return [state.value_nick for state in node.get_state_set().get_states()]


def look(node, found, depth=0):
    try:
        place = node.get_component_iface().get_extents(Atspi.CoordType.SCREEN) if node.get_component_iface() else None
        text = node.get_text_iface()
        found.append({
            "role": node.get_role_name(),
            "name": node.get_name(),
            "description": node.get_description(),
            "text": Atspi.Text.get_text(text, 0, min(text.get_character_count(), 2000)) if text else None,
            "states": state_names(node),
            "place": [place.x, place.y, place.width, place.height] if place else None,
            "depth": depth,
        })
        for index in range(node.get_child_count()):
            child = node.get_child_at_index(index)
            if child is not None:
                look(child, found, depth + 1)
    except GLib.Error:
        # It went while it was looked at.
        pass


def main():
    found = []
    desktop = Atspi.get_desktop(0)
    for index in range(desktop.get_child_count()):
        look(desktop.get_child_at_index(index), found)
    print(json.dumps(found))


main()
