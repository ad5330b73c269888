// The stretches of a text that edits have touched since they were looked at.
#pragma once

#include "text/storage/shifted_offsets.h"
#include "text/storage/text_range.h"

namespace kelm {

/// Ranges in order that neither overlap nor touch; an empty one stands where something was taken away. Where edits have
/// left very many, all of them and what lies between become one: keeping them apart would cost more than it saves.
class DirtyRanges
{
public:
    static constexpr qsizetype mostRanges = 1000;

    bool isEmpty() const { return starts_.isEmpty(); }
    qsizetype size() const { return starts_.size(); }
    TextRange at(qsizetype index) const { return TextRange::between(starts_.at(index), ends_.at(index)); }

    void clear();
    /// Carries the ranges over an edit of the text, whose new text is dirty.
    void textReplaced(TextRange range, qsizetype newLength);
    /// Marks a range; ranges that meet become one.
    void add(TextRange range) { textReplaced(range, range.length); }
    void remove(qsizetype index, qsizetype count);

private:
    ShiftedOffsets starts_;
    ShiftedOffsets ends_;
};

} // namespace kelm
