// A sorted list of offsets into a text, of which all behind an edit can be moved at once.
#pragma once

#include <QtGlobal>

#include <deque>
#include <vector>

namespace kelm {

/// Sorted offsets. Moving all offsets from one on costs nothing now: the move is remembered as one pending distance
/// that holds for everything behind one index, and only the entries between the last edit and the next are ever
/// touched. Typing at one place of a text of three million lines therefore touches none of them. `List` holds them.
template <typename List>
class ShiftedOffsetsIn
{
public:
    qsizetype size() const { return static_cast<qsizetype>(offsets_.size()); }
    bool isEmpty() const { return offsets_.empty(); }
    qsizetype at(qsizetype index) const
    {
        return offsets_[static_cast<std::size_t>(index)] + (index >= shiftFrom_ ? shift_ : 0);
    }

    /// The first index whose offset is greater than `offset`, or `size()`.
    qsizetype upperBound(qsizetype offset) const;
    /// The first index whose offset is at least `offset`, or `size()`.
    qsizetype lowerBound(qsizetype offset) const;

    void reset(List offsets);
    /// Adds `distance` to every offset from `index` on. The order must hold afterwards.
    void shift(qsizetype index, qsizetype distance);
    void set(qsizetype index, qsizetype offset);
    /// Puts `added` in the place of `count` offsets from `index` on.
    void replace(qsizetype index, qsizetype count, const std::vector<qsizetype>& added);

private:
    /// Lets the pending distance hold from `index` on.
    void moveShiftTo(qsizetype index);

    List offsets_;
    qsizetype shiftFrom_ = 0;
    qsizetype shift_ = 0;
};

extern template class ShiftedOffsetsIn<std::vector<qsizetype>>;
extern template class ShiftedOffsetsIn<std::deque<qsizetype>>;

using ShiftedOffsets = ShiftedOffsetsIn<std::vector<qsizetype>>;
/// For what grows at its end by the million while its front goes: neither moves what stands between.
using QueuedOffsets = ShiftedOffsetsIn<std::deque<qsizetype>>;

} // namespace kelm
