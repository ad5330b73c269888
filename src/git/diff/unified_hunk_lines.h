// A hunk in the unified form: one line below the other.
#pragma once

#include "git/diff/diff.h"
#include "git/diff/word_diff.h"

#include <QMap>

#include <optional>

namespace kelm {

/// Which lines of a hunk are compared word by word when they stand below each other: the last removed line of a run
/// with the first added line behind it, and no others.
class UnifiedHunkLines
{
public:
    /// The words of one line: of a removed line as `oldSeg`, of an added one as `newSeg`.
    struct LineWords
    {
        std::optional<QList<WordDiff::Segment>> oldSeg;
        std::optional<QList<WordDiff::Segment>> newSeg;

        bool operator==(const LineWords&) const = default;
    };

    /// `shown` has to outlive this.
    explicit UnifiedHunkLines(const DiffHunk& shown) : hunk(shown) {}

    const DiffHunk& hunk;

    /// The compared lines by their index in the hunk's lines. Compares every pair.
    QMap<qsizetype, LineWords> wordDiffMap() const;
    /// The index of the line that `line` is compared with, in constant time.
    std::optional<qsizetype> partner(qsizetype line) const;
};

} // namespace kelm
