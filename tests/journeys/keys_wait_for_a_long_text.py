"""A long text is formatted while the window goes on: what is typed meanwhile comes behind it, none of it lost."""


def go(journey):
    numbers = [str(number) for number in range(200_000)]
    file = journey.home / "numbers.json"
    file.write_text("[" + ",".join(numbers) + "]")
    program = journey.start(file)
    journey.key("ctrl+Home", "ctrl+shift+j")
    journey.type("typed")
    journey.key("ctrl+s")
    formatted = "[\n" + ",\n".join("  " + number for number in numbers) + "\n]"
    journey.until_file(file, "typed" + formatted)
    # It is one step for undo.
    journey.key(*["ctrl+z"] * 2, "ctrl+s")
    journey.until_file(file, "[" + ",".join(numbers) + "]")
    journey.key("ctrl+q")
    journey.ended(program)
