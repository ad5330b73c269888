"""Another program with which the journeys drag: a window that takes what is dropped on it, and a source of files and
texts, both by the protocol that the programs of a display share for that.
"""

import select
import time

from Xlib import X, Xatom, display as xdisplay
from Xlib.protocol import event

from journey import PATIENCE, Failure

VERSION = 5


class OtherProgram:
    """A program with one window of a size at a place, on a connection of its own to the journey's display."""

    def __init__(self, journey, place=(0, 0, 60, 60)):
        self.display = xdisplay.Display(journey.environment["DISPLAY"])
        self.root = self.display.screen().root
        self.window = self.root.create_window(*place, 0, self.display.screen().root_depth, override_redirect=True,
                                              event_mask=X.PropertyChangeMask)
        self.window.change_property(self.atom("XdndAware"), Xatom.ATOM, 32, [VERSION])
        self.window.map()
        self.display.sync()
        self.place = place

    def atom(self, name):
        return self.display.intern_atom(name)

    def _send(self, target, kind, data):
        message = event.ClientMessage(window=target, client_type=self.atom(kind), data=(32, data))
        target.send_event(message)
        self.display.flush()

    def _next_event(self, wanted, what):
        """The first event that `wanted` gives something for; others are answered on the way."""
        end = time.monotonic() + PATIENCE
        while time.monotonic() < end:
            if not self.display.pending_events():
                select.select([self.display.fileno()], [], [], 0.1)
                continue
            came = self.display.next_event()
            if came.type == X.SelectionRequest:
                self._answer(came)
            elif wanted(came):
                return came
        raise Failure(f"{what}: not there after {PATIENCE:.0f} seconds")

    def _message(self, kind):
        return self._next_event(
            lambda came: came.type == X.ClientMessage and came.client_type == self.atom(kind), kind)

    # ---- Out of here ------------------------------------------------------------------------------------------------

    def drop(self, target, at, kind, content):
        """Drops bytes of a kind, as of "text/uri-list", on a window at a place of the screen; whether it took them."""
        self.kind, self.content = kind, content
        target = self.display.create_resource_object("window", int(target))
        self.window.set_selection_owner(self.atom("XdndSelection"), X.CurrentTime)
        copy = self.atom("XdndActionCopy")
        self._send(target, "XdndEnter", [self.window.id, VERSION << 24, self.atom(kind), 0, 0])
        self._send(target, "XdndPosition", [self.window.id, 0, at[0] << 16 | at[1], X.CurrentTime, copy])
        if not self._message("XdndStatus").data[1][1] & 1:
            self._send(target, "XdndLeave", [self.window.id, 0, 0, 0, 0])
            return False
        self._send(target, "XdndDrop", [self.window.id, 0, X.CurrentTime, 0, 0])
        finished = self._message("XdndFinished").data[1]
        if finished[2] not in (0, copy):
            raise Failure("what was dropped was not copied")
        return bool(finished[1] & 1)

    def _answer(self, request):
        kind = self.atom(self.kind)
        given = request.target == kind
        if given:
            request.requestor.change_property(request.property, kind, 8, self.content)
        request.requestor.send_event(event.SelectionNotify(
            time=request.time, requestor=request.requestor, selection=request.selection, target=request.target,
            property=request.property if given else X.NONE))
        self.display.flush()

    # ---- In here ----------------------------------------------------------------------------------------------------

    def take(self, journey, start, kind):
        """Has the pointer drag from a place of the screen to this window; the bytes of a kind that come with it."""
        x, y, width, height = self.place
        end = (x + width // 2, y + height // 2)
        journey.begin_drag(start, end)
        self._message("XdndEnter")
        position = self._message("XdndPosition").data[1]
        source = self.display.create_resource_object("window", position[0])
        self._send(source, "XdndStatus", [self.window.id, 1, 0, 0, self.atom("XdndActionCopy")])
        journey.drop()
        dropped = self._drop_from(source)
        self.window.convert_selection(self.atom("XdndSelection"), self.atom(kind), self.atom("DROPPED"), dropped)
        self.display.flush()
        notify = self._next_event(lambda came: came.type == X.SelectionNotify, "what was dragged")
        content = b""
        if notify.property != X.NONE:
            content = bytes(self.window.get_full_property(self.atom("DROPPED"), X.AnyPropertyType).value)
        self._send(source, "XdndFinished", [self.window.id, 1, self.atom("XdndActionCopy"), 0, 0])
        self.display.sync()
        return content

    def _drop_from(self, source):
        """The time of the drop; whoever drags asks again and again while the pointer moves."""
        while True:
            came = self._next_event(lambda came: came.type == X.ClientMessage, "the drop")
            if came.client_type == self.atom("XdndPosition"):
                self._send(source, "XdndStatus", [self.window.id, 1, 0, 0, self.atom("XdndActionCopy")])
            elif came.client_type == self.atom("XdndDrop"):
                return came.data[1][2]
