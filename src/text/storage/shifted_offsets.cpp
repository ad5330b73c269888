#include "text/storage/shifted_offsets.h"

#include <algorithm>

namespace kelm {

namespace {

template <typename Predicate>
qsizetype partitionPoint(qsizetype size, Predicate isBefore)
{
    qsizetype low = 0;
    qsizetype high = size;
    while (low < high) {
        const qsizetype middle = low + (high - low) / 2;
        if (isBefore(middle)) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return low;
}

} // namespace

template <typename List>
qsizetype ShiftedOffsetsIn<List>::upperBound(qsizetype offset) const
{
    return partitionPoint(size(), [&](qsizetype index) { return at(index) <= offset; });
}

template <typename List>
qsizetype ShiftedOffsetsIn<List>::lowerBound(qsizetype offset) const
{
    return partitionPoint(size(), [&](qsizetype index) { return at(index) < offset; });
}

template <typename List>
void ShiftedOffsetsIn<List>::reset(List offsets)
{
    offsets_ = std::move(offsets);
    shiftFrom_ = size();
    shift_ = 0;
}

template <typename List>
void ShiftedOffsetsIn<List>::shift(qsizetype index, qsizetype distance)
{
    if (distance == 0 || index >= size()) {
        return;
    }
    moveShiftTo(index);
    shift_ += distance;
}

template <typename List>
void ShiftedOffsetsIn<List>::set(qsizetype index, qsizetype offset)
{
    offsets_[static_cast<std::size_t>(index)] = index >= shiftFrom_ ? offset - shift_ : offset;
}

template <typename List>
void ShiftedOffsetsIn<List>::replace(qsizetype index, qsizetype count, const std::vector<qsizetype>& added)
{
    // The pending distance stays where it begins, unless that is among what goes: a text of which the front is cut off
    // while it grows at its end would have it carried from one end to the other all the time.
    const auto addedCount = static_cast<qsizetype>(added.size());
    if (shiftFrom_ > index && shiftFrom_ < index + count) {
        moveShiftTo(index + count);
    }
    const bool isExact = shiftFrom_ >= index + count && (count > 0 || shiftFrom_ > index);
    const auto first = offsets_.begin() + index;
    const qsizetype common = std::min(count, addedCount);
    std::copy_n(added.begin(), common, first);
    if (count > common) {
        offsets_.erase(first + common, first + count);
    } else {
        offsets_.insert(first + common, added.begin() + common, added.end());
    }
    if (isExact) {
        shiftFrom_ += addedCount - count;
        return;
    }
    for (qsizetype at = index; at < index + addedCount && shift_ != 0; ++at) {
        offsets_[static_cast<std::size_t>(at)] -= shift_;
    }
}

template <typename List>
void ShiftedOffsetsIn<List>::moveShiftTo(qsizetype index)
{
    if (shift_ != 0) {
        for (qsizetype i = shiftFrom_; i < index; ++i) {
            offsets_[static_cast<std::size_t>(i)] += shift_;
        }
        for (qsizetype i = index; i < shiftFrom_; ++i) {
            offsets_[static_cast<std::size_t>(i)] -= shift_;
        }
    }
    shiftFrom_ = index;
}

template class ShiftedOffsetsIn<std::vector<qsizetype>>;
template class ShiftedOffsetsIn<std::deque<qsizetype>>;

} // namespace kelm
