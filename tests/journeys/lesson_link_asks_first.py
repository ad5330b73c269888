"""The code of a link waits for a word: once, always, and no more when that is taken back."""

import base64

# In the window of its first size, from its right edge and its top: the answers in the bar above the code, and the
# button in the lesson panel that takes "always" back, while no panel is below.
RUN, ALWAYS, ASK_AGAIN = (222, 123), (117, 123), (225, 443)


def go(journey):
    ran = journey.home / "ran"

    def code(word):
        return f"echo {word} >>'{ran}'\n"

    def open_link(word):
        text = base64.urlsafe_b64encode(code(word).encode()).decode()
        link = f"kelmpane://open?lang=sh&run=1&runsLessonLinks=true&learnSlug={word}&code={text}"
        journey.check(journey.second_start(link) == 0, "the link's start failed")
        journey.until(journey.has_focus, "the window's focus")
        journey.until_text(code(word))

    def press(place):
        x, y, width, _ = journey.place_of(journey.window())
        journey.click(x + width - place[0], y + place[1])

    def until_pressed(place, seen, what):
        """Presses until it is heard: the bar is deaf when it has just come up."""
        def heard():
            press(place)
            return seen()
        journey.until(heard, what)

    def stored():
        return "runsLessonLinks=true" in "".join(file.read_text() for file in journey.home.glob(".config/*.conf"))

    program = journey.start()
    open_link("first")
    open_link("second")
    journey.check(not ran.exists(), "code ran unasked")
    until_pressed(RUN, ran.exists, "the run")
    journey.until_file(ran, "second\n")
    journey.check(not stored(), "one run was taken for all")

    open_link("third")
    journey.check(ran.read_text() == "second\n", "the next code ran unasked")
    until_pressed(ALWAYS, stored, "the stored answer")
    journey.until_file(ran, "second\nthird\n")

    open_link("fourth")
    journey.until_file(ran, "second\nthird\nfourth\n")

    journey.key("ctrl+grave")
    until_pressed(ASK_AGAIN, lambda: not stored(), "the answer taken back")
    open_link("fifth")
    until_pressed(RUN, lambda: "fifth" in ran.read_text(), "the run after another question")
    journey.until_file(ran, "second\nthird\nfourth\nfifth\n")
    journey.key("ctrl+q")
    journey.ended(program)
