"""Two hundred starts at the same moment make one program, which opens the file of each once."""

STARTS = 200


def go(journey):
    files = [journey.home / f"{number}.txt" for number in range(STARTS)]
    for file in files:
        file.write_text(f"{file.name}\n")
    starts = [journey.spawn(journey.program, str(file)) for file in files]

    def ended():
        return [start for start in starts if start.poll() is not None]

    journey.until(lambda: len(ended()) >= STARTS - 1, "the end of all starts but one")
    journey.check({start.returncode for start in ended()} == {0}, "a start has failed")
    (program,) = journey.programs()
    journey.until(journey.has_focus, "the window's focus")

    def opened():
        lines = (journey.folder / "log").read_text(errors="replace").splitlines()
        return sorted(line.rsplit("/", 1)[1] for line in lines if "openFile called with: " in line)

    journey.until(lambda: len(opened()) >= STARTS, "all files")
    journey.check(opened() == sorted(file.name for file in files), "a file was opened twice")
    # The last one has the keyboard, whichever it is.
    journey.key("ctrl+Home")
    journey.type("x")
    journey.key("ctrl+s")
    journey.until(lambda: sum(file.read_text() == f"x{file.name}\n" for file in files) == 1, "the changed file")
    journey.check(journey.programs() == [program], "another program has begun")
    journey.key("ctrl+q")
    journey.until(lambda: not journey.programs(), "the end")
