// A hunk in the side-by-side form: the old lines to the left, the new ones to the right.
#pragma once

#include "git/diff/diff.h"
#include "git/diff/word_diff.h"

#include <optional>
#include <vector>

namespace kelm {

/// Pairs the lines of a hunk: in each run of changes the first removed line with the first added one and so on, and
/// what is left over stands alone.
class SideBySideHunkLines
{
public:
    enum class Side { oldSide, newSide };

    struct Row
    {
        std::optional<DiffLine> oldLine;
        std::optional<DiffLine> newLine;
        std::optional<QList<WordDiff::Segment>> oldWord;
        std::optional<QList<WordDiff::Segment>> newWord;

        bool operator==(const Row&) const = default;
    };

    /// A row by the indices of its lines in the hunk; -1 where a side is empty. A line that both sides show stands in
    /// both.
    struct Pairing
    {
        qint32 oldLine = -1;
        qint32 newLine = -1;

        bool operator==(const Pairing&) const = default;
        /// Whether two lines face each other, which are then compared word by word.
        bool isCompared() const { return oldLine >= 0 && newLine >= 0 && oldLine != newLine; }
    };

    /// `shown` has to outlive this.
    explicit SideBySideHunkLines(const DiffHunk& shown) : hunk(shown) {}

    const DiffHunk& hunk;

    /// All rows with their words. Compares every pair.
    QList<Row> rows() const;
    /// All rows without their words, in one pass.
    std::vector<Pairing> pairings() const;
    /// The number of rows, in one pass and without making them.
    qsizetype rowCount() const;
};

} // namespace kelm
