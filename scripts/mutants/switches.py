"""Many mutants in one program: each stands behind a switch that is set when the program starts."""

import re

# What a changed source includes. The number of the one mutant that is on is in KELM_MUTANT; KELM_MUTANTS_REACHED names
# a file of as many bytes as there are mutants, in which a byte is set once the place of its mutant was come to.
HEADER = r"""#pragma once
#include <cstdlib>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

struct KelmMutants
{
    int on = -1;
    volatile unsigned char* reached = nullptr;
    long size = 0;

    KelmMutants()
    {
        if (const char* number = ::getenv("KELM_MUTANT")) {
            on = std::atoi(number);
        }
        if (const char* file = ::getenv("KELM_MUTANTS_REACHED")) {
            const int handle = ::open(file, O_RDWR | O_CLOEXEC);
            struct stat facts;
            if (handle >= 0 && ::fstat(handle, &facts) == 0 && facts.st_size > 0) {
                const auto length = static_cast<std::size_t>(facts.st_size);
                void* const bytes = ::mmap(nullptr, length, PROT_READ | PROT_WRITE, MAP_SHARED, handle, 0);
                reached = bytes == MAP_FAILED ? nullptr : static_cast<volatile unsigned char*>(bytes);
                size = facts.st_size;
            }
            ::close(handle);
        }
    }
};

inline bool kelmMutant(int number)
{
    static const KelmMutants mutants;
    if (mutants.reached != nullptr && number < mutants.size) {
        mutants.reached[number] = 1;
    }
    return mutants.on == number;
}
"""


def one_line(text):
    return re.sub(r"\s*\n\s*", " ", text)


def switched(code, mutants, header):
    """The code with all these (number, mutant) behind switches. It has one line more than it had, the first."""
    slots, starts = {}, {}
    for number, mutant in mutants:
        if mutant.slot is not None:
            slots.setdefault(mutant.slot, []).append((number, mutant))
        else:
            starts.setdefault(mutant.statement, []).append((number, mutant))
    return f'#include "{header}"\n' + rendered(code, 0, len(code), slots, starts)


def rendered(code, start, end, slots, starts, without=None):
    """A stretch of the code. `without` is the slot that is being written itself."""
    result = []
    here = start
    # The widest of those that begin at a place comes first.
    inside = sorted((slot for slot in slots if start <= slot[0] and slot[1] <= end and slot != without),
                    key=lambda slot: (slot[0], -slot[1]))
    marks = sorted(place for place in starts if start <= place < end) if without is None or without[0] != start else \
        sorted(place for place in starts if start < place < end)
    while True:
        slot = next((each for each in inside if each[0] >= here), None)
        mark = next((each for each in marks if each >= here), None)
        if slot is None and mark is None:
            return "".join(result) + code[here:end]
        if mark is not None and (slot is None or mark <= slot[0]):
            marks.remove(mark)
            result.append(code[here:mark] + prefix(starts[mark]))
            here = mark
            continue
        result.append(code[here:slot[0]] + choice(code, slot, slots, starts))
        here = slot[1]


def prefix(mutants):
    """What stands before a statement that is left out or returns something else."""
    return "".join(f"if (kelmMutant({number})) {mutant.after} else " for number, mutant in mutants)


def choice(code, slot, slots, starts):
    start, end = slot
    is_condition = any(mutant.what in ("condition", "negation") for _, mutant in slots[slot])
    cast = "bool" if is_condition else ""
    text = "("
    for number, mutant in slots[slot]:
        changed = code[start:mutant.start] + mutant.after + code[mutant.end:end]
        text += f"kelmMutant({number}) ? {cast}({one_line(changed)}) : "
    return text + f"{cast}({rendered(code, start, end, slots, starts, without=slot)}))"


def changed(code, mutant):
    """The code with nothing but this change, and as many lines as before."""
    lines = code.count("\n", mutant.start, mutant.end) - mutant.after.count("\n")
    return code[:mutant.start] + mutant.after + "\n" * lines + code[mutant.end:]


def lines_of(source, mutant):
    """The first and last line that an error about the mutant behind its switch can name."""
    start, end = mutant.slot or (mutant.statement, mutant.end)
    return source.line(start) + 1, source.line(end) + 1


def shown(code, mutant):
    """What the changed lines say before and after, in one line each."""
    first = code.rfind("\n", 0, mutant.start) + 1
    last = code.find("\n", mutant.end)
    last = len(code) if last < 0 else last
    before = code[first:last]
    after = code[first:mutant.start] + mutant.after + code[mutant.end:last]
    return " ".join(before.split()), " ".join(after.split())
