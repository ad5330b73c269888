"""What is known of mutants: the outcomes of a run, and those that change nothing that can be seen."""

import json


class Results:
    """A file of JSON lines, one a mutant, to which a run adds as it goes."""

    def __init__(self, file):
        self.file = file
        self.known = {}
        for line in file.read_text(encoding="utf-8").splitlines() if file.exists() else []:
            try:
                entry = json.loads(line)
            except json.JSONDecodeError:
                # The last line of a run that was stopped.
                continue
            self.known[key_of(entry)] = entry

    def of(self, drawn):
        return self.known.get(drawn.key)

    def outcome(self, drawn):
        entry = self.of(drawn)
        return entry["outcome"] if entry else None

    def add(self, drawn, outcome, test=""):
        entry = {"file": drawn.file, "line": drawn.line, "before": drawn.before, "after": drawn.after,
                 "nth": drawn.key[3], "what": drawn.mutant.what, "outcome": outcome, "test": test}
        self.known[drawn.key] = entry
        self.file.parent.mkdir(parents=True, exist_ok=True)
        with self.file.open("a", encoding="utf-8") as stream:
            stream.write(json.dumps(entry, ensure_ascii=False) + "\n")


def key_of(entry):
    return entry["file"], entry["before"], entry["after"], entry["nth"]


class Equivalents:
    """The committed list: for each mutant a paragraph of its file, the text before, that after, and the reason."""

    def __init__(self, file):
        self.reasons = {}
        text = file.read_text(encoding="utf-8") if file.exists() else ""
        for paragraph in text.split("\n\n"):
            lines = [line for line in paragraph.strip().splitlines() if not line.startswith("#")]
            if len(lines) >= 4 and lines[1].startswith("- ") and lines[2].startswith("+ "):
                self.reasons[lines[0], lines[1][2:], lines[2][2:]] = " ".join(lines[3:])

    def holds(self, drawn):
        return drawn.key[:3] in self.reasons


def share(unnoticed, counted):
    return f"{100 * unnoticed / counted:5.1f} %" if counted else "    - %"


def table(rows):
    """The table of (room, outcomes of its mutants, how many are set apart)."""
    lines = [f"{'room':<20} {'mutants':>8} {'noticed':>8} {'unnoticed':>10} {'set apart':>10} {'share':>8}"]
    for room, outcomes, apart in rows:
        unnoticed = sum(outcome == "unnoticed" for outcome in outcomes)
        noticed = len(outcomes) - unnoticed
        lines.append(f"{room:<20} {len(outcomes) + apart:>8} {noticed:>8} {unnoticed:>10} {apart:>10} "
                     f"{share(unnoticed, len(outcomes)):>8}")
    return "\n".join(lines)


def as_diff(entry):
    return f"{entry['file']}:{entry['line']}\n- {entry['before']}\n+ {entry['after']}\n"
