"""A second start brings the window to the front, with two window managers, of which one lets nobody take the keyboard.

The desktop's token of a start is the proof that a person asked for it: with it the window has the keyboard and is on
the workspace that is seen, and the desktop hears that the start is over. When the person has gone on to something else
since, the window manager decides, and a window that may not come asks for attention. No child of the program is given
the token.
"""

from Xlib import X, Xatom, Xutil
from Xlib.protocol import event

import accessible

MANAGERS = ("openbox", "xfwm4")


class Other:
    """A window of somebody else's, which has the keyboard as of a time that it says."""

    def __init__(self, journey):
        self.journey = journey
        display = journey.display
        self.window = journey.root.create_window(200, 200, 300, 200, 0, display.screen().root_depth,
                                                 event_mask=X.PropertyChangeMask)
        self.window.set_wm_name("other")
        self.window.set_wm_hints(flags=Xutil.InputHint, input=True)
        self.window.map()
        journey.until(lambda: self.window.get_attributes().map_state == X.IsViewable, "the other window")
        self.take_keyboard()

    def time(self):
        """The server's time."""
        display = self.journey.display
        mark = display.intern_atom("_KELM_TIME")
        display.sync()
        while display.pending_events():
            display.next_event()
        self.window.change_property(mark, Xatom.STRING, 8, b"x")
        while True:
            seen = display.next_event()
            if seen.type == X.PropertyNotify and seen.window == self.window and seen.atom == mark:
                return seen.time

    def take_keyboard(self):
        """A person has just used this window, and uses it still."""
        now = self.note_use()
        ask(self.journey, self.window, "_NET_ACTIVE_WINDOW", [2, now, 0])
        self.journey.until(lambda: active(self.journey) == self.window.id, "the other window's keyboard")
        # Later than whatever the program's own window hears of losing the keyboard.
        self.note_use()

    def note_use(self):
        now = self.time()
        self.window.change_property(self.journey.display.intern_atom("_NET_WM_USER_TIME"), Xatom.CARDINAL, 32, [now])
        self.journey.display.sync()
        return now


def ask(journey, window, message, data):
    """Says something of a window to the window manager, as a person's own tool does."""
    said = event.ClientMessage(window=window, client_type=journey.display.intern_atom(message),
                               data=(32, (data + [0] * 5)[:5]))
    journey.root.send_event(said, event_mask=X.SubstructureRedirectMask | X.SubstructureNotifyMask)
    journey.display.sync()


def number(journey, window, name):
    found = window.get_full_property(journey.display.intern_atom(name), X.AnyPropertyType)
    return found.value[0] if found and found.value else None


def active(journey):
    return number(journey, journey.root, "_NET_ACTIVE_WINDOW")


def is_on(journey, window, workspace):
    return number(journey, window, "_NET_WM_DESKTOP") == workspace


def asks_for_attention(journey, window):
    """By the state of its window, or by the hint that is older than that."""
    states = window.get_full_property(journey.display.intern_atom("_NET_WM_STATE"), X.AnyPropertyType)
    hints = window.get_wm_hints()
    return (states and journey.display.intern_atom("_NET_WM_STATE_DEMANDS_ATTENTION") in states.value) or \
        bool(hints and hints.flags & Xutil.UrgencyHint)


def show_workspace(journey, workspace):
    ask(journey, journey.root, "_NET_CURRENT_DESKTOP", [workspace, 0])
    journey.until(lambda: number(journey, journey.root, "_NET_CURRENT_DESKTOP") == workspace, "the workspace")


def start_with_token(journey, time, *arguments):
    """A second start that the desktop has begun for a person who asked for it at a time; its token."""
    token = f"kelm-journey_TIME{time}"
    journey.environment["DESKTOP_STARTUP_ID"] = token
    journey.environment["XDG_ACTIVATION_TOKEN"] = token
    journey.check(journey.second_start(*arguments) == 0, "the second start failed")
    del journey.environment["DESKTOP_STARTUP_ID"], journey.environment["XDG_ACTIVATION_TOKEN"]
    return token


def hears_end_of(journey, token):
    """Reads what is said of starts until it is that this one is over."""
    begin, more = (journey.display.intern_atom(f"_NET_STARTUP_INFO{end}") for end in ("_BEGIN", ""))
    text = b""

    def heard():
        nonlocal text
        while journey.display.pending_events():
            seen = journey.display.next_event()
            if seen.type == X.ClientMessage and seen.client_type in (begin, more):
                text = (b"" if seen.client_type == begin else text) + bytes(seen.data[1])
                if f'remove: ID="{token}"'.encode() in text:
                    return True
        return False

    journey.until(heard, "the end of the start")


def go_with(journey, manager):
    file = journey.home / f"{manager}.txt"
    file.write_text("text\n")
    journey.root.change_attributes(event_mask=X.PropertyChangeMask)
    program = journey.start()
    window = journey.display.create_resource_object("window", active(journey))
    ask(journey, journey.root, "_NET_NUMBER_OF_DESKTOPS", [2])
    journey.until(lambda: number(journey, journey.root, "_NET_NUMBER_OF_DESKTOPS") >= 2, "a second workspace")

    # For a person it comes to the front.
    other = Other(journey)
    token = start_with_token(journey, other.time(), file)
    hears_end_of(journey, token)
    journey.until(lambda: active(journey) == window.id, f"{manager}: the window in front")
    journey.until(journey.has_focus, f"{manager}: the keyboard")

    # And to the workspace that is seen, not the other way round.
    show_workspace(journey, 1)
    elsewhere = Other(journey)
    start_with_token(journey, elsewhere.time(), file)
    journey.until(lambda: active(journey) == window.id, f"{manager}: the window from another workspace")
    journey.until(lambda: is_on(journey, window, 1), f"{manager}: the workspace of the window")
    journey.check(number(journey, journey.root, "_NET_CURRENT_DESKTOP") == 1, "another workspace is seen")

    # What was minimized comes back.
    journey._xdotool("windowminimize", str(window.id))
    journey.until(lambda: not journey.windows(), f"{manager}: the minimized window")
    start_with_token(journey, elsewhere.time(), file)
    journey.until(lambda: active(journey) == window.id, f"{manager}: the window that was minimized")

    # Who asked for it, and went on to use another window, is not disturbed where the window manager sees to that.
    asked = elsewhere.time()
    elsewhere.take_keyboard()
    start_with_token(journey, asked, file)
    if manager == "xfwm4":
        journey.until(lambda: asks_for_attention(journey, window), f"{manager}: attention")
        journey.check(active(journey) == elsewhere.window.id, f"{manager}: the window took the keyboard")
    else:
        journey.until(lambda: active(journey) == window.id, f"{manager}: the window in front")

    program.terminate()
    journey.ended(program)


def keeps_the_token_to_itself(journey):
    """What the program starts is not what the desktop has started."""
    script, heard = journey.home / "heard.sh", journey.home / "heard.txt"
    script.write_text(f"env > {heard}.new; mv {heard}.new {heard}\n")
    journey.environment["DESKTOP_STARTUP_ID"] = journey.environment["XDG_ACTIVATION_TOKEN"] = "token_TIME1"
    program = journey.start(script)
    del journey.environment["DESKTOP_STARTUP_ID"], journey.environment["XDG_ACTIVATION_TOKEN"]
    journey.key("ctrl+r")
    journey.until(heard.exists, "the run")
    journey.check("token_TIME1" not in heard.read_text(), "a child has the token")
    program.terminate()
    journey.ended(program)


def let_nobody_take_the_keyboard(journey):
    """The setting of the second window manager by which it does not believe programs."""
    settings = journey.home / ".config/xfce4/xfconf/xfce-perchannel-xml/xfwm4.xml"
    settings.parent.mkdir(parents=True)
    settings.write_text("""<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfwm4" version="1.0">
  <property name="general" type="empty">
    <property name="prevent_focus_stealing" type="bool" value="true"/>
    <property name="use_compositing" type="bool" value="false"/>
    <property name="vblank_mode" type="string" value="off"/>
  </property>
</channel>
""")


def go(journey):
    let_nobody_take_the_keyboard(journey)
    keeps_the_token_to_itself(journey)
    accessible.start(journey)
    for manager in MANAGERS:
        journey.add_display(manager)
        go_with(journey, manager)
