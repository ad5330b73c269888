#include "editor/highlighter/dirty_ranges.h"

namespace kelm {

void DirtyRanges::clear()
{
    starts_.reset({});
    ends_.reset({});
}

void DirtyRanges::textReplaced(TextRange range, qsizetype newLength)
{
    const qsizetype change = newLength - range.length;
    const qsizetype first = ends_.lowerBound(range.location);
    const qsizetype behind = starts_.upperBound(range.end());
    qsizetype start = range.location;
    qsizetype end = range.end() + change;
    if (first < behind) {
        start = std::min(start, starts_.at(first));
        end = std::max(end, ends_.at(behind - 1) + change);
    }
    starts_.replace(first, behind - first, {start});
    ends_.replace(first, behind - first, {end});
    starts_.shift(first + 1, change);
    ends_.shift(first + 1, change);
    if (starts_.size() > mostRanges) {
        const TextRange all = TextRange::between(starts_.at(0), ends_.at(ends_.size() - 1));
        starts_.reset({all.location});
        ends_.reset({all.end()});
    }
}

void DirtyRanges::remove(qsizetype index, qsizetype count)
{
    starts_.replace(index, count, {});
    ends_.replace(index, count, {});
}

} // namespace kelm
