"""A file whose name is no UTF-8 opens from the command line and by a second start, saves, and runs."""

import os


def go(journey):
    home = os.fsencode(journey.home)
    folder = home + b"/caf\xe9"
    os.mkdir(folder)
    file, script = folder + b"/\xc7\xd1.txt", folder + b"/\xff.sh"
    with open(file, "wb") as out:
        out.write(b"text\n")
    with open(script, "wb") as out:
        out.write(b'printf %s "$0" >"${0%.sh}.out"; pwd >>"${0%.sh}.out"\n')
    program = journey.start(os.fsdecode(file))
    journey.until_text("text\n")
    journey.key("ctrl+Home")
    journey.type("typed ")
    journey.key("ctrl+s")
    journey.until(lambda: open(file, "rb").read() == b"typed text\n", "what was saved")
    journey.check(sorted(os.listdir(folder)) == [b"\xc7\xd1.txt", b"\xff.sh"], "another file was made")

    # A second start, from within that folder and by the name alone.
    second = journey.spawn(program.args[0], os.fsdecode(os.path.basename(script)), cwd=folder)
    journey.check(journey.ended(second) == 0, "the second start failed")
    journey.until(journey.has_focus, "the window's focus")
    journey.until_text('printf %s "$0" >"${0%.sh}.out"; pwd >>"${0%.sh}.out"\n')
    journey.key("ctrl+r")
    wanted = script + folder + b"\n"
    journey.until(lambda: os.path.exists(folder + b"/\xff.out") and open(folder + b"/\xff.out", "rb").read() == wanted,
                  "what the run wrote")

    # And it is watched as any other.
    with open(file, "wb") as out:
        out.write(b"changed by another program\n")
    journey.second_start(os.fsdecode(file))
    journey.until_text("changed by another program\n")
    journey.key("ctrl+q")
    journey.ended(program)
