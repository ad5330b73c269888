"""A search through a project in which a file of 60 GB stands, of which the disk keeps nothing, and one with a line of
2 GB comes to its end with little memory, finds what is in the others, and is asked anew at once."""

import resource

GIBIBYTE = 1 << 30


def go(journey):
    project = journey.home / "project"
    project.mkdir()
    for name, size in (("a-huge", 60 * GIBIBYTE), ("b-long-line", 2 * GIBIBYTE), ("d-shorter-line", GIBIBYTE // 2)):
        with open(project / name, "wb") as file:
            file.write(b"needle ")
            file.truncate(size)
    found = project / "c.txt"
    found.write_text("one\na needle here\n")
    program = journey.start(project, preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_AS, (4 * GIBIBYTE,) * 2))
    left, top, _, _ = journey.place_of(journey.window())
    journey.click(left + 66, top + 84)
    for text in ("nowhere", "needle"):
        journey.click(left + 130, top + 128)
        journey.key("ctrl+a")
        journey.type(text)
        journey.key("Return")

    def opened():
        journey.click(left + 130, top + 180)
        journey.key("ctrl+a", "ctrl+c")
        return journey.clipboard() == "one\na needle here\n"
    journey.until(opened, "the result")
    journey.key("ctrl+q")
    journey.check(journey.ended(program) == 0, "quitting is no failure")
