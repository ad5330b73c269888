"""A light theme makes the window light, a dark one dark again, and the choice outlives the program."""

LIGHT_TEXT_GROUND = (255, 255, 255)
DARK_TEXT_GROUND = (39, 40, 34)
# The theme's button stands at the right end of the status bar.
FROM_RIGHT, FROM_BOTTOM = 68, 13
THEMES = 6
MONOKAI, GITHUB_LIGHT = 0, 4


def choose(journey, theme):
    """Chooses the theme of a number from the status bar's menu by the pointer."""
    x, y, width, height = journey.place_of(journey.window())
    journey.click(x + width - FROM_RIGHT, y + height - FROM_BOTTOM)
    menu = journey.until(journey.menu, "the menu of the themes")
    x, y, width, height = journey.place_of(menu)
    journey.click(x + width // 2, y + round(height * (theme + 0.5) / THEMES))


def go(journey):
    file = journey.home / "code.py"
    file.write_text("print(1)\n")
    program = journey.start(file)
    journey.until(lambda: journey.share_of(DARK_TEXT_GROUND) > 0.3, "the dark ground of the text")
    choose(journey, GITHUB_LIGHT)
    journey.until(lambda: journey.share_of(LIGHT_TEXT_GROUND) > 0.3, "the light ground of the text")
    journey.check(journey.share_of(DARK_TEXT_GROUND) < 0.01, "something of the window stays dark")
    journey.key("ctrl+q")
    journey.ended(program)

    program = journey.start(file)
    journey.until(lambda: journey.share_of(LIGHT_TEXT_GROUND) > 0.3, "the light ground of the text at the next start")
    choose(journey, MONOKAI)
    journey.until(lambda: journey.share_of(DARK_TEXT_GROUND) > 0.3, "the dark ground of the text again")
    journey.check(journey.share_of(LIGHT_TEXT_GROUND) < 0.01, "something of the window stays light")
    journey.key("ctrl+q")
    journey.ended(program)
