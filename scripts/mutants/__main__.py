#!/usr/bin/env python3
"""mutants [ROOM] [N] [--seed S] ...: changes one place at a time in a room's engine, and tells which changes no test of
the room notices.

The places that a seed draws are built into one copy of the room's test program, each behind a switch. Without a change
each test runs once, and tells to which of the places it comes; with a change only those run that come to its place, the
nearest first, until one fails. What the compiler has to know itself is built alone.
"""

import argparse
import concurrent.futures
import pathlib
import sys
import threading
import time

import switches
from draw import draw, engine_files
from project import Copy, Failure, Guard
from results import Equivalents, Results, as_diff, table

# A test that takes this many times as long as without a change, and some seconds, has noticed it.
PATIENCE = 10
GRACE = 10.0


def say(text):
    print(f"\033[1m{text}\033[0m", file=sys.stderr, flush=True)


class Run:
    """The mutants of one room."""

    def __init__(self, copy, guard, room, options):
        self.copy, self.guard, self.room, self.options = copy, guard, room, options
        self.lots = draw(copy.root, room, options.seed)
        self.equivalents = Equivalents(copy.root / "tests" / "mutants" / "equivalent.txt")
        name = room.replace("/", "_")
        self.results = Results(copy.folder / "results" / f"{name}_{options.seed}.jsonl")
        # Those behind a switch by their number in the program, and those that are built alone.
        self.numbers, self.alone = {}, []
        self.lock = threading.Lock()

    def wanted(self):
        """The first mutants that compile, as far as that is known."""
        able = [drawn for drawn in self.lots if self.results.outcome(drawn) != "does not compile"]
        return able[:self.options.count]

    def open_ones(self):
        again = ("unnoticed",) if self.options.again else ()
        return [drawn for drawn in self.wanted()
                if self.results.outcome(drawn) in (None, *again) and not self.is_apart(drawn)]

    def row(self):
        drawn = self.wanted()
        apart = [each for each in drawn if self.is_apart(each)]
        outcomes = [self.results.outcome(each) for each in drawn if each not in apart and self.results.of(each)]
        return self.room, outcomes, len(apart)

    def is_apart(self, drawn):
        return self.equivalents.holds(drawn) and self.results.outcome(drawn) == "unnoticed"

    def go(self):
        """Tries every mutant that is open. Some turn out not to compile, and others come in their place."""
        tried = set()
        while True:
            waiting = [drawn for drawn in self.open_ones() if drawn.key not in tried]
            if not waiting:
                return
            tried.update(drawn.key for drawn in waiting)
            self.try_all(waiting)

    def try_all(self, waiting):
        self.build_switches(waiting)
        programs = self.copy.tests(self.room)
        if not programs:
            raise Failure(f"there are no tests of {self.room}")
        for program in programs:
            if "view" in program and self.options.engine:
                break
            waiting = [drawn for drawn in waiting
                       if drawn.key not in self.told and self.results.outcome(drawn) != "does not compile"]
            if not waiting:
                return
            say(f"{self.room}: building {program}")
            self.build_program(program)
            # The test runner knows the command of what is built.
            tests = self.without_change(self.copy.tests(self.room)[program])
            self.try_switched(tests, waiting)
            self.try_alone(program, tests, waiting)
        for drawn in waiting:
            if drawn.key not in self.told and self.results.outcome(drawn) != "does not compile":
                self.results.add(drawn, "unnoticed")
                print(as_diff(self.results.of(drawn)), flush=True)

    # ---- Building ---------------------------------------------------------------------------------------------------

    def build_switches(self, waiting):
        """Puts the mutants into the copy, each behind a switch where that can be."""
        self.told = set()
        self.numbers = dict(enumerate(drawn for drawn in waiting if not drawn.mutant.is_fixed))
        self.alone = [drawn for drawn in waiting if drawn.mutant.is_fixed]
        self.copy.update(self.switched())
        self.copy.configure()

    def switched(self):
        files = {}
        for number, drawn in self.numbers.items():
            files.setdefault(drawn.file, []).append((number, drawn))
        return {file: switches.switched(group[0][1].source.code, [(number, each.mutant) for number, each in group],
                                        self.copy.header) for file, group in files.items()}

    def build_program(self, program):
        """Builds with the switches. What does not compile behind one is built alone."""
        while said := self.copy.build(program, self.options.jobs):
            errors = self.copy.errors(said)
            bad = [number for number, drawn in self.numbers.items() if self.is_hit(drawn, errors)]
            if not bad:
                bad = [number for number, drawn in self.numbers.items() if drawn.file in errors]
            if not bad:
                words = [line for line in said.splitlines() if "error:" in line] or said.splitlines()
                raise Failure(f"{program} could not be built: {' / '.join(words[:3])}")
            self.alone += [self.numbers.pop(number) for number in bad]
            self.copy.update(self.switched())

    @staticmethod
    def is_hit(drawn, errors):
        first, last = switches.lines_of(drawn.source, drawn.mutant)
        return any(first <= line <= last for line in errors.get(drawn.file, ()))

    # ---- Trying -----------------------------------------------------------------------------------------------------

    def without_change(self, tests):
        """Runs each test once, as things are. One that fails then can tell nothing and is left out."""
        size = max(self.numbers, default=0) + 1

        def once(test):
            reached = self.copy.folder / f"reached_{test.name.replace('/', '_')}"
            reached.write_bytes(bytes(size))
            began = time.monotonic()
            outcome = self.guard.run(test, 600, KELM_MUTANTS_REACHED=str(reached))
            test.took = time.monotonic() - began
            test.reached = {number for number, byte in enumerate(reached.read_bytes()) if byte}
            reached.unlink()
            return outcome

        with concurrent.futures.ThreadPoolExecutor(self.options.jobs) as workers:
            outcomes = list(workers.map(once, tests))
        for test, outcome in zip(tests, outcomes):
            if outcome != "passed":
                say(f"{self.room}: {test.name} fails without a change ({outcome}) and is left out")
        passed = [test for test, outcome in zip(tests, outcomes) if outcome == "passed"]
        if not passed:
            raise Failure(f"all tests of {self.room} fail as it is")
        return passed

    def first_to_notice(self, drawn, tests, **switch):
        for test in sorted(tests, key=lambda each: each.nearness(drawn.file)):
            outcome = self.guard.run(test, PATIENCE * test.took + GRACE, **switch)
            if outcome != "passed":
                return test.name if outcome == "failed" else f"{test.name} (time)"
        return ""

    def tell(self, drawn, noticed_by):
        if noticed_by:
            with self.lock:
                self.told.add(drawn.key)
                self.results.add(drawn, "noticed", noticed_by)

    def try_switched(self, tests, waiting):
        keys = {drawn.key for drawn in waiting}
        numbers = [number for number, drawn in self.numbers.items() if drawn.key in keys and drawn.key not in self.told]
        say(f"{self.room}: {len(numbers)} mutants, {len(tests)} tests")

        def attempt(number):
            near = [test for test in tests if number in test.reached]
            drawn = self.numbers[number]
            self.tell(drawn, self.first_to_notice(drawn, near, KELM_MUTANT=str(number)))

        with concurrent.futures.ThreadPoolExecutor(self.options.jobs) as workers:
            list(workers.map(attempt, numbers))

    def try_alone(self, program, tests, waiting):
        keys = {drawn.key for drawn in waiting}
        alone = [drawn for drawn in self.alone if drawn.key in keys and drawn.key not in self.told]
        if not alone:
            return
        say(f"{self.room}: {len(alone)} mutants that are built alone")
        switched = self.switched()
        for drawn in alone:
            self.copy.update({**switched, drawn.file: switches.changed(drawn.source.code, drawn.mutant)})
            if self.copy.build(program, self.options.jobs):
                self.results.add(drawn, "does not compile")
                continue
            self.tell(drawn, self.first_to_notice(drawn, tests))
        self.copy.update(switched)


def arguments():
    parser = argparse.ArgumentParser(prog="./kelm mutants", description=__doc__.split("\n\n", maxsplit=1)[0])
    parser.add_argument("room", nargs="?", help="a folder of src/, such as search or git/diff; all if none is named")
    parser.add_argument("count", nargs="?", type=int, default=100, help="how many mutants of each room (100)")
    parser.add_argument("--seed", type=int, default=1, help="what draws them (1)")
    parser.add_argument("--show", action="store_true", help="only list those that no test noticed")
    parser.add_argument("--again", action="store_true", help="try those anew that no test noticed before")
    parser.add_argument("--fresh", action="store_true", help="forget what is known of earlier runs")
    parser.add_argument("--engine", action="store_true", help="leave out the tests of the room's views")
    parser.add_argument("--jobs", type=int, default=2, help="how many tests and compilers run beside each other (2)")
    parser.add_argument("--root", type=pathlib.Path, default=pathlib.Path(__file__).resolve().parent.parent.parent,
                        help=argparse.SUPPRESS)
    parser.add_argument("--unguarded", action="store_true", help="run the tests without processes of their own")
    options = parser.parse_args()
    if options.room and options.room.isdigit():
        options.room, options.count = None, int(options.room)
    return options


def rooms_of(root):
    folders = sorted(folder.name for folder in (root / "src").iterdir() if folder.is_dir())
    return [name for name in folders if engine_files(root, name) and (root / "tests" / name).is_dir()]


def main():
    options = arguments()
    copy = Copy(options.root.resolve())
    rooms = [options.room.strip("/")] if options.room else rooms_of(copy.root)
    rows, held = [], None
    try:
        held = None if options.show else copy.hold()
        guard = None if options.show else Guard(options.unguarded)
        for room in rooms:
            if not engine_files(copy.root, room):
                raise Failure(f"there is no room {room} with an engine")
            run = Run(copy, guard, room, options)
            if options.fresh:
                run.results.file.unlink(missing_ok=True)
                run = Run(copy, guard, room, options)
            if options.show:
                for drawn in run.wanted():
                    if run.results.outcome(drawn) == "unnoticed" and not run.is_apart(drawn):
                        print(as_diff(run.results.of(drawn)))
            else:
                run.go()
            rows.append(run.row())
    except Failure as failure:
        print(f"kelm: {failure}", file=sys.stderr)
        return 1
    finally:
        if held:
            held.close()
    print(f"Seed {options.seed}")
    print(table(rows))
    return 0


if __name__ == "__main__":
    sys.exit(main())
