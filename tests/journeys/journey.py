"""What the journeys share: the real program on a display of its own, keys and pointer from outside, and what is then on
the disk, in the process table and on the screen.

Each journey has a home, a runtime folder and a display of its own, which go when it ends, with every process that was
started in them. Nothing is waited for by time alone: `until` looks again until what is to be seen is there.
"""

import os
import pathlib
import shutil
import signal
import subprocess
import tempfile
import time

from Xlib import X, display as xdisplay

PATIENCE = 15.0
SCREEN = (1280, 900)


def _take_all_signals():
    """What is ignored where the journeys were started, as by nohup, is no matter of the program."""
    for number in (signal.SIGHUP, signal.SIGINT, signal.SIGTERM):
        signal.signal(number, signal.SIG_DFL)


class Failure(Exception):
    """What a person would have missed."""


class Journey:
    def __init__(self, program):
        self.program = str(program)
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="kelm-journey-"))
        self.home = self.folder / "home"
        self.home.mkdir()
        runtime = self.folder / "run"
        runtime.mkdir(mode=0o700)
        self.environment = {
            "HOME": str(self.home),
            "XDG_RUNTIME_DIR": str(runtime),
            "PATH": os.environ["PATH"],
            "LC_ALL": "C.UTF-8",
            "QT_SCALE_FACTOR": "1",
            # No desktop stands behind the display, and none of the machine's is to be asked.
            "DBUS_SESSION_BUS_ADDRESS": "unix:path=" + str(runtime / "no-bus"),
        }
        self.add_display()

    def add_display(self, manager="openbox"):
        """Starts a display with a window manager, in the place of the one before, which stays as it is."""
        read, write = os.pipe()
        width, height = SCREEN
        self.server = self.spawn("Xvfb", "-displayfd", str(write), "-screen", "0", f"{width}x{height}x24",
                                 "-nolisten", "tcp", pass_fds=(write,))
        os.close(write)
        with os.fdopen(read) as numbers:
            number = numbers.readline().strip()
        if not number:
            raise Failure("the display did not start")
        self.environment["DISPLAY"] = ":" + number
        self.display = xdisplay.Display(":" + number)
        self.root = self.display.screen().root
        self.spawn(manager)
        wanted = self.display.intern_atom("_NET_SUPPORTING_WM_CHECK")
        self.until(lambda: self.root.get_full_property(wanted, X.AnyPropertyType), "the window manager")
        self._until_windows_are_managed()

    def _until_windows_are_managed(self):
        """Waits until a window comes up: the window manager forgets those that ask for it while it begins."""
        probe = self.root.create_window(0, 0, 9, 9, 0, self.display.screen().root_depth)

        def is_up():
            up = probe.get_attributes().map_state == X.IsViewable
            if not up:
                probe.map()
            return up

        self.until(is_up, "the window manager's first window")
        probe.destroy()
        self.display.sync()

    def end_display(self):
        """Ends the display as a crash would."""
        self.server.kill()
        self.server.wait()

    # ---- Processes --------------------------------------------------------------------------------------------------

    def spawn(self, *command, **options):
        """Starts a command in the journey's environment, its words going to a log of its own."""
        options.setdefault("stdout", open(self.folder / "log", "ab"))
        options.setdefault("stderr", subprocess.STDOUT)
        options.setdefault("stdin", subprocess.DEVNULL)
        options.setdefault("preexec_fn", _take_all_signals)
        options.setdefault("cwd", self.home)
        return subprocess.Popen(command, env=self.environment, **options)

    def start(self, *arguments, **options):
        """Starts the program and waits for its window to have the keyboard."""
        process = self.spawn(self.program, *map(str, arguments), **options)
        self.until(lambda: self.windows(), "the window")
        self.until(self.has_focus, "the window's focus")
        return process

    def second_start(self, *arguments):
        """Starts the program once more, and waits until that start has ended by itself."""
        return self.ended(self.spawn(self.program, *map(str, arguments)))

    def ended(self, process):
        """The exit code of a process, which has to end by itself."""
        try:
            return process.wait(PATIENCE)
        except subprocess.TimeoutExpired as late:
            raise Failure(f"{process.args[0]} does not end") from late

    def processes(self):
        """The numbers of all processes of this journey but the display's, by the home folder that they were given."""
        mark = f"HOME={self.home}\0".encode()
        found = []
        for entry in pathlib.Path("/proc").glob("[0-9]*"):
            try:
                # One that has ended and waits for its parent has no environment.
                if mark in (entry / "environ").read_bytes() + b"\0":
                    found.append(int(entry.name))
            except OSError:
                pass
        return found

    def programs(self):
        """The processes of the program itself."""
        return [number for number in self.processes() if self._command(number) == self.program]

    @staticmethod
    def _command(number):
        try:
            return os.readlink(f"/proc/{number}/exe")
        except OSError:
            return ""

    # ---- Keys and pointer -------------------------------------------------------------------------------------------

    def _xdotool(self, *arguments):
        result = subprocess.run(("xdotool", *arguments), env=self.environment, capture_output=True, text=True,
                                check=False)
        return result.stdout.split() if result.returncode == 0 else []

    def windows(self):
        """The program's windows that are to be seen."""
        return self._xdotool("search", "--onlyvisible", "--classname", "^kelmwright$")

    def has_focus(self):
        return bool(set(self._xdotool("getwindowfocus")) & set(self.windows()))

    def place_of(self, window):
        """Where a window is, as x, y, width and height."""
        target = self.display.create_resource_object("window", int(window))
        size, place = target.get_geometry(), self.root.translate_coords(target, 0, 0)
        return place.x, place.y, size.width, size.height

    def window(self):
        """The window that has the keyboard."""
        return self._xdotool("getwindowfocus")[0]

    def menu(self):
        """A menu that is open: a window of the program's beside the one that has the keyboard."""
        others = [window for window in self.windows() if window != self.window()]
        return others[0] if others else None

    def key(self, *keys):
        """Presses keys by their names: "ctrl+s", "Return"."""
        self._xdotool("key", "--delay", "20", *keys)

    def key_held(self, holder, *keys):
        """Presses keys one after the other while another one is held down."""
        held = [word for key in keys for word in ("key", "--delay", "20", key)]
        self._xdotool("keydown", holder, *held, "keyup", holder)

    def hold(self, key, seconds):
        """Holds a key down. The display repeats it after some 650 milliseconds, and then 25 times a second."""
        self._xdotool("keydown", key)
        time.sleep(seconds)
        self._xdotool("keyup", key)

    def type(self, text):
        self._xdotool("type", "--delay", "5", "--", text)

    def click(self, x, y, button=1):
        self._xdotool("mousemove", str(x), str(y), "click", str(button))

    def point_at(self, x, y):
        self._xdotool("mousemove", str(x), str(y))

    def begin_drag(self, start, end):
        """Presses at a place and moves to another in steps, since a drag begins some points on."""
        self.point_at(*start)
        self._xdotool("mousedown", "1")
        for step in range(1, 11):
            self.point_at(*(start[i] + (end[i] - start[i]) * step // 10 for i in range(2)))

    def drop(self):
        self._xdotool("mouseup", "1")

    def drag(self, start, end):
        self.begin_drag(start, end)
        self.drop()

    def clipboard(self):
        """The text of the clipboard; empty when it has none."""
        result = subprocess.run(("xclip", "-o", "-selection", "clipboard"), env=self.environment, capture_output=True,
                                check=False, timeout=PATIENCE)
        return result.stdout.decode("utf-8", "replace")

    def until_text(self, text):
        """Waits until the editor that has the keyboard holds just this text, by copying all of it."""
        def copied():
            self.key("ctrl+a", "ctrl+c")
            return self.clipboard() == text
        try:
            self.until(copied, "the text")
        except Failure as missed:
            raise Failure(f"{missed}; wanted {text!r}, there is {self.clipboard()!r}") from missed

    # ---- What is to be seen -----------------------------------------------------------------------------------------

    def until(self, seen, what):
        """Looks again until `seen` gives something true, and gives it back."""
        end = time.monotonic() + PATIENCE
        while True:
            result = seen()
            if result:
                return result
            if time.monotonic() > end:
                raise Failure(f"{what}: not there after {PATIENCE:.0f} seconds")
            time.sleep(0.02)

    def until_file(self, path, content):
        """Waits until a file holds just these bytes."""
        wanted = content.encode() if isinstance(content, str) else content
        try:
            self.until(lambda: path.exists() and path.read_bytes() == wanted, path.name)
        except Failure as missed:
            has = path.read_bytes()[:300] if path.exists() else None
            raise Failure(f"{missed}; wanted {wanted[:300]!r}, there is {has!r}") from missed

    def screen(self):
        """The screen as bytes, four a pixel: blue, green, red and one more."""
        width, height = SCREEN
        return self.root.get_image(0, 0, width, height, X.ZPixmap, 0xFFFFFFFF).data

    def color(self, x, y):
        """The colour of a pixel as red, green and blue."""
        blue, green, red = self.root.get_image(x, y, 1, 1, X.ZPixmap, 0xFFFFFFFF).data[:3]
        return red, green, blue

    def share_of(self, color, tolerance=6):
        """How much of the screen has a colour, from 0 to 1, by every eleventh pixel."""
        data = self.screen()
        pixels = range(0, len(data), 44)
        red, green, blue = color
        near = sum(abs(data[at] - blue) <= tolerance and abs(data[at + 1] - green) <= tolerance
                   and abs(data[at + 2] - red) <= tolerance for at in pixels)
        return near / len(pixels)

    def picture(self, path):
        """Writes the screen to a PPM file, for a person to look at."""
        width, height = SCREEN
        data = self.screen()
        pixels = bytearray(width * height * 3)
        pixels[0::3], pixels[1::3], pixels[2::3] = data[2::4], data[1::4], data[0::4]
        pathlib.Path(path).write_bytes(f"P6 {width} {height} 255\n".encode() + pixels)

    def check(self, holds, what):
        if not holds:
            raise Failure(what)

    # ---- The end ----------------------------------------------------------------------------------------------------

    def end(self):
        """Ends all that was started, whatever became of the journey."""
        for number in self.processes():
            try:
                os.kill(number, signal.SIGKILL)
            except ProcessLookupError:
                pass
        shutil.rmtree(self.folder, ignore_errors=True)
