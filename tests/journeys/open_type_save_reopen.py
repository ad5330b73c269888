"""A file is opened, typed into and saved; after another start it is there as it was saved."""


def go(journey):
    file = journey.home / "notes.txt"
    file.write_bytes("erste Zeile\r\n한글\n".encode())
    program = journey.start(file)
    journey.key("ctrl+Home")
    journey.type("typed ")
    journey.key("ctrl+s")
    journey.until_file(file, "typed erste Zeile\r\n한글\n")
    journey.key("ctrl+q")
    journey.check(journey.ended(program) == 0, "quitting is no failure")

    program = journey.start(file)
    journey.key("ctrl+End")
    journey.type("end")
    journey.key("ctrl+s")
    journey.until_file(file, "typed erste Zeile\r\n한글\nend")
    journey.key("ctrl+q")
    journey.ended(program)
