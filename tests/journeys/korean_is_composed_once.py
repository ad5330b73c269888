"""With a real Korean input method each syllable comes once, into the field that it was composed in, however it ends."""

import os
import subprocess


def start_method(journey):
    """A session bus and an input method of the journey's own, writing Korean from the first key on."""
    config = journey.home / ".config"
    settings = config / "glib-2.0" / "settings"
    settings.mkdir(parents=True)
    (settings / "keyfile").write_text("[org/freedesktop/ibus/engine/hangul]\ninitial-input-mode='hangul'\n")
    # A caret that does not blink, so that what changes on the screen is what was typed.
    (config / "kdeglobals").write_text("[KDE]\nCursorBlinkRate=0\n")
    read, write = os.pipe()
    journey.spawn("dbus-daemon", "--session", "--nofork", f"--print-address={write}", pass_fds=(write,))
    os.close(write)
    with os.fdopen(read) as addresses:
        journey.environment["DBUS_SESSION_BUS_ADDRESS"] = addresses.readline().strip()
    journey.environment.update(QT_IM_MODULE="ibus", GSETTINGS_BACKEND="keyfile", XDG_CURRENT_DESKTOP="KDE",
                               KDE_SESSION_VERSION="5")
    # Its engines are scripts for the system's own interpreter, whatever else is on the path.
    journey.spawn("env", "PATH=/usr/bin:/bin", "ibus-daemon", "--panel=disable", "--config=/usr/libexec/ibus-memconf",
                  "--emoji-extension=disable")

    def choose():
        return subprocess.run(("ibus", "engine", "hangul"), env=journey.environment, capture_output=True,
                              check=False).returncode == 0
    return choose


def calm(journey):
    """Waits until nothing changes on the screen any more."""
    looks = [journey.screen()]

    def same():
        looks.append(journey.screen())
        return len(looks) > 5 and all(look == looks[-1] for look in looks[-5:])
    journey.until(same, "a screen that stays")


def compose(journey, keys):
    """Presses keys one after the other, each when what the one before has composed is on the screen."""
    for key in keys:
        calm(journey)
        before = journey.screen()
        journey.key(key)
        journey.until(lambda before=before: journey.screen() != before, f"what {key} composes")
    calm(journey)


def go(journey):
    choose = start_method(journey)
    file = journey.home / "text.txt"
    file.write_text("\nabc\n")
    journey.until(choose, "the input method")
    program = journey.start(file)
    x, y, width, _ = journey.place_of(journey.window())
    behind_the_text = x + width // 2, y + 300

    # A click in the text, behind its last line.
    journey.key("ctrl+Home")
    compose(journey, "gksrmf")
    journey.click(*behind_the_text)
    journey.key("ctrl+s")
    journey.until_file(file, "한글\nabc\n")

    # A button, which takes no focus: the one that saves.
    compose(journey, "rmf")
    journey.click(x + 225, y + 42)
    journey.until_file(file, "한글\nabc\n글")

    # A field, and a click into the text.
    journey.key("ctrl+alt+f")
    compose(journey, "rmf")
    journey.click(*behind_the_text)
    journey.key("Return", "ctrl+s")
    journey.until_file(file, "한글\nabc\n글\n")
    journey.key("ctrl+alt+f")
    journey.until_text("글")
    # Escape would have the method write Latin letters.
    journey.click(*behind_the_text)

    # The terminal.
    journey.key("ctrl+grave")
    compose(journey, "rmf")
    journey.click(*behind_the_text)
    journey.key("Return", "ctrl+s")
    journey.until_file(file, "한글\nabc\n글\n\n")

    # An overlay and a second tab, by their keys.
    compose(journey, "gks")
    journey.key("ctrl+p")
    calm(journey)
    journey.click(x + 20, y + 700)
    journey.key("ctrl+End")
    compose(journey, "rmf")
    journey.key("ctrl+n")
    calm(journey)
    journey.click(x + 335, y + 84)
    journey.key("ctrl+s")
    journey.until_file(file, "한글\nabc\n글\n\n한글")
    journey.key("ctrl+q")
    journey.ended(program)
