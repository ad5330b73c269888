"""Which mutants a run takes."""

import hashlib

import switches
from places import Places


class Drawn:
    """A mutant of a file, with what it is known by."""

    def __init__(self, file, source, mutant, count):
        self.file, self.source, self.mutant = file, source, mutant
        self.before, self.after = switches.shown(source.code, mutant)
        self.line = source.line(mutant.start)
        # The same change of the same text can stand in a file several times.
        seen = count.setdefault((self.before, self.after), 0)
        count[self.before, self.after] += 1
        self.key = (file, self.before, self.after, seen)


def engine_files(root, room):
    """The sources of a room that know no widget."""
    folder = root / "src" / room
    files = [file for kind in ("*.cpp", "*.h") for file in folder.rglob(kind)]
    return sorted(file for file in files if "view" not in file.relative_to(root).parts)


def mutants_of(root, room):
    """For each place of the room the list of its mutants."""
    for file in engine_files(root, room):
        places = Places(file.read_text(encoding="utf-8"))
        count = {}
        name = str(file.relative_to(root))
        for mutants in places.all():
            yield [Drawn(name, places.source, mutant, count) for mutant in mutants]


def lot(seed, *words):
    return hashlib.sha256("\0".join(map(str, (seed, *words))).encode()).digest()


def draw(root, room, seed):
    """All places in the order of their lots, and of each the one mutant that is drawn. A lot depends on nothing but the
    seed and the changed text, so that work elsewhere changes no run."""
    drawn = [min(mutants, key=lambda each: lot(seed, "which", *each.key)) for mutants in mutants_of(root, room)]
    return sorted(drawn, key=lambda each: lot(seed, "place", *each.key))
