"""A program that may open 64 files goes on listening while a hundred others connect and say nothing whole."""

import resource
import socket


def go(journey):
    file = journey.home / "asked.txt"
    file.write_text("for\n")
    program = journey.start(preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_NOFILE, (64, 64)))
    (path,) = (journey.folder / "run").glob("*.socket")
    others = []
    for _ in range(100):
        others.append(socket.socket(socket.AF_UNIX, socket.SOCK_STREAM))
        others[-1].connect(str(path))
        others[-1].send(b"kelm-")
    journey.check(journey.second_start(file) == 0, "the second start failed")
    journey.check(journey.programs() == [program.pid], "there are two programs")
    journey.until_text("for\n")
    for other in others:
        other.close()
    journey.check(journey.second_start() == 0, "the program does not answer any more")
    journey.check(journey.programs() == [program.pid], "there are two programs")
    journey.key("ctrl+q")
    journey.check(journey.ended(program) == 0, "quitting is no failure")
