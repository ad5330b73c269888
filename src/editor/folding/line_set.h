// A set of line numbers.
#pragma once

#include <QtGlobal>

#include <map>

namespace kelm {

/// Line numbers, kept as runs: what a fold of a million lines adds costs as much as one line.
class LineSet
{
public:
    /// Adds the lines from `first` up to but not including `end`; none if `end` is not greater.
    void insert(qsizetype first, qsizetype end);
    /// Takes the lines from `first` up to but not including `end` out.
    void remove(qsizetype first, qsizetype end);
    void clear() { runs_.clear(); }

    bool contains(qsizetype line) const;
    bool isEmpty() const { return runs_.empty(); }
    qsizetype count() const;

    friend bool operator==(const LineSet&, const LineSet&) = default;

private:
    /// From each run's first line to the line behind its last. Runs neither overlap nor adjoin.
    std::map<qsizetype, qsizetype> runs_;
};

} // namespace kelm
