// A span of lines that can be folded.
#pragma once

#include <QtGlobal>

namespace kelm {

/// What makes a span foldable. `comment` and `region` are found by no scan.
enum class FoldType { braces, indent, tag, comment, region };

struct FoldableRegion
{
    /// The number of regions that were found before this one.
    qsizetype id = 0;
    /// The line of the opening, from 1.
    qsizetype startLine = 0;
    /// The line of the closing, from 1.
    qsizetype endLine = 0;
    FoldType type = FoldType::braces;

    friend bool operator==(const FoldableRegion&, const FoldableRegion&) = default;
};

} // namespace kelm
