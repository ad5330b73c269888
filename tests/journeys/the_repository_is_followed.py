"""What others do to the repository, and a save, are read without a button; a window at rest starts no git."""

import os
import subprocess
import time

# How many seconds the window rests. A minute shows more, and takes one.
REST = float(os.environ.get("KELM_REST_SECONDS", "3"))


def go(journey):
    project = journey.home / "project"
    project.mkdir()
    trace = journey.home / "trace"
    (journey.home / ".gitconfig").write_text("[user]\n\tname = Somebody\n\temail = somebody@example.org\n")
    outside = dict(journey.environment)

    def git(*words):
        subprocess.run(("git", *words), cwd=project, env=outside, check=True, capture_output=True)

    def started():
        """How many processes of git the program has begun; each writes so itself."""
        return trace.read_text().count('"event":"start"') if trace.exists() else 0

    def settled():
        """Waits until no git has begun for a second, and gives how many have."""
        number, since = started(), time.monotonic()

        def is_quiet():
            nonlocal number, since
            if started() != number:
                number, since = started(), time.monotonic()
            return time.monotonic() - since > 1.0

        journey.until(is_quiet, "the end of git")
        return number

    def check_rest():
        before = settled()
        time.sleep(REST)
        journey.check(started() == before, f"a window at rest started git {started() - before} times")

    git("init", "-q", "-b", "main")
    file = project / "a.txt"
    file.write_text("one\n")
    git("add", "-A")
    git("commit", "-qm", "first")
    file.write_text("two\n")

    # The badges of the tree, which nobody has asked for.
    journey.environment["GIT_TRACE2_EVENT"] = str(trace)
    program = journey.start(project, file)
    journey.until(started, "a git for the badges")
    journey.until_text("two\n")
    check_rest()

    for words in (("add", "-A"), ("commit", "-qm", "second"), ("checkout", "-qb", "side"), ("tag", "v1")):
        before = settled()
        git(*words)
        journey.until(lambda: started() > before, "a git behind git " + words[0])
    before = settled()
    journey.key("ctrl+Home")
    journey.type("typed ")
    journey.key("ctrl+s")
    journey.until_file(file, "typed two\n")
    journey.until(lambda: started() > before, "a git behind the save")
    check_rest()

    journey.key("ctrl+q")
    journey.ended(program)
