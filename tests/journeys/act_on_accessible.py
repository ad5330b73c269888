"""act_on_accessible.py ROLE NAME ACTION: does one of the actions that a control has, as a screen reader does it."""

import sys

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402


def find(node, role, name):
    try:
        if node.get_role_name() == role and node.get_name() == name:
            return node
        for index in range(node.get_child_count()):
            child = node.get_child_at_index(index)
            found = find(child, role, name) if child is not None else None
            if found is not None:
                return found
    except GLib.Error:
        # It went while it was looked at.
        pass
    return None


def main():
    role, name, wanted = sys.argv[1:]
    desktop = Atspi.get_desktop(0)
    for index in range(desktop.get_child_count()):
        node = find(desktop.get_child_at_index(index), role, name)
        actions = node.get_action_iface() if node is not None else None
        for action in range(actions.get_n_actions() if actions is not None else 0):
            if Atspi.Action.get_action_name(actions, action) == wanted:
                return 0 if Atspi.Action.do_action(actions, action) else 2
    return 1


sys.exit(main())
