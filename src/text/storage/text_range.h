// A stretch of text, in UTF-16 units.
#pragma once

#include <QtGlobal>

#include <algorithm>

namespace kelm {

/// A location and a length, both in UTF-16 units and never negative.
struct TextRange
{
    qsizetype location = 0;
    qsizetype length = 0;

    static TextRange between(qsizetype a, qsizetype b) { return {std::min(a, b), std::abs(b - a)}; }

    qsizetype end() const { return location + length; }
    bool isEmpty() const { return length == 0; }
    /// Whether the unit at `offset` lies in the range.
    bool contains(qsizetype offset) const { return offset >= location && offset < end(); }
    /// The part of this range within 0 and `textLength`.
    TextRange clampedTo(qsizetype textLength) const
    {
        const qsizetype start = std::clamp<qsizetype>(location, 0, textLength);
        return {start, std::clamp<qsizetype>(end(), start, textLength) - start};
    }
    TextRange intersected(TextRange other) const
    {
        const qsizetype start = std::max(location, other.location);
        return {start, std::max<qsizetype>(0, std::min(end(), other.end()) - start)};
    }

    friend bool operator==(TextRange a, TextRange b) = default;
};

/// What one edit did, told in a form from which offsets, line numbers and caches can be carried over.
///
/// The old text's `range` was replaced by `newLength` units. The old lines `firstLine` to `firstLine + linesRemoved -
/// 1` were replaced by the new lines `firstLine` to `firstLine + linesAdded - 1`; lines count from 0 here, both counts
/// are at least 1, and every other line kept its text.
struct TextEdit
{
    TextRange range;
    qsizetype newLength = 0;
    qsizetype firstLine = 0;
    qsizetype linesRemoved = 0;
    qsizetype linesAdded = 0;

    qsizetype changeInLength() const { return newLength - range.length; }
    TextRange newRange() const { return {range.location, newLength}; }

    /// Where an offset of the old text stands in the new one. What stood inside the replaced range goes to its new end,
    /// and so does an offset right at an insertion when `leansRight`.
    qsizetype moved(qsizetype offset, bool leansRight = true) const
    {
        if (offset < range.location || (offset == range.location && !leansRight)) {
            return offset;
        }
        return offset >= range.end() ? offset + changeInLength() : range.location + newLength;
    }

    /// This edit followed by `next`, as one edit over the union of both.
    TextEdit followedBy(const TextEdit& next) const;
};

} // namespace kelm
