"""A start on another display is a program of its own; another name of the same display is not."""


def go(journey):
    desk = journey.start()
    journey.add_display()
    file = journey.home / "there.txt"
    file.write_text("on the other display\n")
    other = journey.start(file)
    journey.until_text("on the other display\n")
    journey.check(sorted(journey.programs()) == sorted([desk.pid, other.pid]), "they are no two programs")
    name = journey.environment["DISPLAY"]
    for alias in (name + ".0", "unix" + name):
        journey.environment["DISPLAY"] = alias
        journey.check(journey.second_start(file) == 0, f"nobody answers on {alias}")
    journey.check(len(journey.programs()) == 2, "there is a third program")
    journey.key("ctrl+q")
    journey.ended(other)
