"""In the terminal a command is what was typed behind the prompt, whatever was written before: line ends of two
characters, emoji, and more than is kept."""

from terminal import open_terminal, run


def go(journey):
    file = journey.home / "a.txt"
    file.write_text("text\n")
    program = journey.start(file)
    open_terminal(journey)
    run(journey, r"printf 'one\r\ntwo\r\n\360\237\230\200\360\237\230\200\n'")
    run(journey, "echo ok > answer")
    journey.until_file(journey.home / "answer", "ok\n")

    run(journey, "yes 'a line of a program that does not end' | head -c 120000000; touch written")
    journey.until((journey.home / "written").exists, "the end of the output")
    with open(f"/proc/{program.pid}/statm") as numbers:
        mebibytes = int(numbers.read().split()[1]) * 4096 >> 20
    journey.check(mebibytes < 300, f"120 MB of output take {mebibytes} MiB")
    run(journey, "clear")
    run(journey, "echo again > answer")
    journey.until_file(journey.home / "answer", "again\n")
    journey.key("ctrl+q")
    journey.check(journey.ended(program) == 0, "quitting is no failure")
