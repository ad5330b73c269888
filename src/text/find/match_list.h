// The matches of a search, in the order of the text.
#pragma once

#include "text/storage/shifted_offsets.h"
#include "text/storage/text_range.h"

#include <vector>

namespace kelm {

/// Ranges of a text in order, none overlapping another. An edit moves all that stand behind it at once, however many
/// there are. Indexes count from 0.
class MatchList
{
public:
    qsizetype size() const { return starts_.size(); }
    bool isEmpty() const { return starts_.isEmpty(); }
    TextRange at(qsizetype index) const { return {starts_.at(index), lengths_[static_cast<std::size_t>(index)]}; }
    /// The ranges from one index up to another, that one not taken in.
    std::vector<TextRange> between(qsizetype first, qsizetype last) const;
    std::vector<TextRange> all() const { return between(0, size()); }

    /// The first index whose range begins at or behind `offset`, or `size()`.
    qsizetype firstFrom(qsizetype offset) const { return starts_.lowerBound(offset); }
    /// The first index whose range ends behind `offset`, or `size()`.
    qsizetype firstEndingBehind(qsizetype offset) const;

    void append(const std::vector<TextRange>& added) { replace(size(), 0, added); }
    /// Puts ranges in the place of those from `first` up to `last`.
    void replace(qsizetype first, qsizetype last, const std::vector<TextRange>& added);
    /// Moves all ranges from `index` on.
    void shift(qsizetype index, qsizetype distance) { starts_.shift(index, distance); }
    /// Forgets all ranges from `index` on.
    void cutTo(qsizetype index) { replace(index, size(), {}); }

private:
    ShiftedOffsets starts_;
    std::vector<qsizetype> lengths_;
};

} // namespace kelm
