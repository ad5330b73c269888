"""A copy of the project in which mutants are built and tried. The sources themselves are never touched."""

import fcntl
import json
import os
import pathlib
import re
import resource
import shutil
import signal
import subprocess
import tempfile

import switches

# What a mutant may take, in bytes: one that fills the memory is noticed by that.
MOST_MEMORY = 6 << 30


class Failure(Exception):
    """Something that the person at the terminal is told in one sentence."""


def run_quietly(command, **more):
    return subprocess.run(command, capture_output=True, text=True, errors="replace", check=False, **more)


class Copy:
    """The copy, and its build."""

    def __init__(self, root):
        self.root = root
        self.folder = root / "build" / "mutants"
        self.tree = self.folder / "tree"
        self.build_folder = self.folder / "build"
        self.header = self.folder / "kelm_mutant.h"
        # Files that stand changed in the copy.
        self.changed = set()

    def hold(self):
        """Keeps the copy for this run, as long as the file is open that is returned."""
        self.folder.mkdir(parents=True, exist_ok=True)
        held = (self.folder / "held").open("w", encoding="utf-8")
        try:
            fcntl.flock(held, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except BlockingIOError as error:
            raise Failure("another run is under way in build/mutants") from error
        return held

    def files(self):
        listed = run_quietly(["git", "-C", str(self.root), "ls-files", "-z", "--cached", "--others",
                              "--exclude-standard"])
        top = run_quietly(["git", "-C", str(self.root), "rev-parse", "--show-toplevel"]).stdout.strip()
        if listed.returncode == 0 and pathlib.Path(top) == self.root:
            return [name for name in listed.stdout.split("\0") if name and (self.root / name).is_file()]
        return [str(file.relative_to(self.root)) for file in self.root.rglob("*")
                if file.is_file() and "build" not in file.relative_to(self.root).parts]

    def update(self, switched):
        """Brings the copy to what the project is now, but for the files of `switched`, which have that text. What does
        not change keeps its date."""
        wanted = set(self.files())
        self.folder.mkdir(parents=True, exist_ok=True)
        write_if_other(self.header, switches.HEADER.encode())
        for file in self.tree.rglob("*") if self.tree.exists() else []:
            if not file.is_dir() and str(file.relative_to(self.tree)) not in wanted:
                file.unlink()
        for name in wanted:
            content = switched.get(name)
            write_if_other(self.tree / name, (self.root / name).read_bytes() if content is None else content.encode(),
                           self.root / name)

    def configure(self):
        if (self.build_folder / "build.ninja").exists():
            return
        options = {"CMAKE_BUILD_TYPE": "Debug", "CMAKE_CXX_FLAGS_DEBUG": "-O0 -g0 -w", "KELM_UNITY_SOURCES": "ON",
                   "KELM_UNITY_TESTS": "ON"}
        result = run_quietly(["cmake", "-G", "Ninja", "-S", str(self.tree), "-B", str(self.build_folder),
                              *(f"-D{name}={value}" for name, value in options.items())], env=self.environment())
        if result.returncode != 0:
            raise Failure(f"the copy could not be configured: {result.stderr.strip()}")

    def environment(self):
        return {**os.environ, "CCACHE_BASEDIR": str(self.tree), "CCACHE_SLOPPINESS":
                "pch_defines,time_macros,include_file_mtime,include_file_ctime"}

    def build(self, program, jobs):
        """Builds a test program; what the compiler said where that fails, else nothing."""
        command = ["nice", "-n", "10", "ninja", "-C", str(self.build_folder), "-k", "0", f"-j{jobs}", program]
        result = run_quietly(command, env=self.environment())
        return result.stdout + result.stderr if result.returncode != 0 else ""

    def errors(self, said):
        """The files and lines that the compiler's errors name, as {file: {line, ...}}."""
        found = {}
        for path, line in re.findall(r"^(\S+?):(\d+):(?:\d+:)? (?:fatal )?error:", said, re.MULTILINE):
            # Headers are included by links to them.
            full = os.path.realpath(os.path.join(self.build_folder, path))
            found.setdefault(os.path.relpath(full, os.path.realpath(self.tree)), set()).add(int(line))
        return found

    def tests(self, room):
        """The tests of a room's folder, by the program that they are in: {program: [Test]}."""
        result = run_quietly(["ctest", "--test-dir", str(self.build_folder), "--show-only=json-v1"])
        programs = {}
        index = self.build_folder / "tests" / "index.txt"
        known = dict(line.split() for line in index.read_text().splitlines() if line)
        top = room.split("/")[0]
        for entry in json.loads(result.stdout)["tests"]:
            if entry["name"].split("/")[0] == top and entry["name"] in known:
                programs.setdefault(known[entry["name"]], []).append(Test(entry, self.tree))
        # Those that know no widget first, whose programs are soon built.
        return dict(sorted(programs.items(), key=lambda item: ("view" in item[0], item[0])))


def write_if_other(file, content, model=None):
    if file.exists() and file.read_bytes() == content:
        return
    file.parent.mkdir(parents=True, exist_ok=True)
    file.write_bytes(content)
    if model is not None:
        shutil.copymode(model, file)


class Test:
    """A test as the test runner would start it."""

    def __init__(self, entry, tree):
        self.name = entry["name"]
        self.command = entry.get("command", [])
        properties = {each["name"]: each["value"] for each in entry.get("properties", [])}
        self.environment = dict(pair.split("=", 1) for pair in properties.get("ENVIRONMENT", []))
        source = tree / "tests" / f"{self.name}.cpp"
        self.includes = set(re.findall(r'#include "([^"]+)"', source.read_text(encoding="utf-8"))) \
            if source.exists() else set()
        # How long it took without a change, in seconds, and the numbers of the mutants that it came to.
        self.took = 0.0
        self.reached = set()

    def nearness(self, file):
        """What sorts the tests of a changed file: the one that is named after it first, then those that include it."""
        stem = os.path.splitext(os.path.basename(file))[0]
        own = os.path.basename(self.name).removesuffix("_test")
        header = os.path.splitext(file.removeprefix("src/"))[0] + ".h"
        kin = own == stem or own.startswith(stem + "_") or stem.startswith(own + "_")
        return (0 if kin else 1 if header in self.includes else 2, self.took)


class Guard:
    """Where tests of mutants run: a changed program may send signals to anybody and write anywhere."""

    def __init__(self, is_open):
        self.before = ["unshare", "--pid", "--fork", "--mount-proc", "--kill-child"]
        if os.getuid() != 0:
            self.before += ["--user", "--map-root-user"]
        # The first process of its own world, which takes leave of those whose parent has gone.
        self.before += ["sh", "-c", '"$@"; exit $?', "sh"]
        if is_open:
            self.before = []
        elif run_quietly([*self.before, "true"]).returncode != 0:
            raise Failure("mutants need processes of their own, which unshare does not give here; --unguarded runs "
                          "them without, and one may then end any process of yours")

    def run(self, test, limit, **more):
        """"passed", "failed" or "time", for that many seconds at most."""
        if not test.command:
            raise Failure(f"{test.name} has no program")
        with tempfile.TemporaryDirectory(prefix="kelm-mutants-", ignore_cleanup_errors=True) as folder:
            # Some tests become another user.
            os.chmod(folder, 0o755)
            environment = {**os.environ, **test.environment, "HOME": folder, "TMPDIR": folder,
                           "GIT_CEILING_DIRECTORIES": os.path.dirname(folder), **more}
            for name in ("config", "data", "cache", "state"):
                environment[f"XDG_{name.upper()}_HOME"] = f"{folder}/{name}"
            # pylint: disable=consider-using-with
            process = subprocess.Popen(["nice", "-n", "10", *self.before, *test.command], cwd=folder, env=environment,
                                       stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                       stderr=subprocess.DEVNULL, start_new_session=True, preexec_fn=bound)
            try:
                return "passed" if process.wait(limit) == 0 else "failed"
            except subprocess.TimeoutExpired:
                return "time"
            finally:
                try:
                    os.killpg(process.pid, signal.SIGKILL)
                except ProcessLookupError:
                    pass
                process.wait()


def bound():
    resource.setrlimit(resource.RLIMIT_AS, (MOST_MEMORY, MOST_MEMORY))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
