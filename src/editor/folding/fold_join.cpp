#include "editor/folding/fold_join.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace kelm {

FoldJoin::FoldJoin(QList<FoldStretch> stretches) : stretches_(std::move(stretches))
{
    linesBefore_.reserve(size_t(stretches_.size()));
    qsizetype lines = 0;
    for (const FoldStretch& stretch : std::as_const(stretches_)) {
        linesBefore_.push_back(lines);
        lines += stretch.lines;
    }
}

std::pair<qsizetype, qsizetype> FoldJoin::sharedWith(const FoldJoin& other) const
{
    const auto isSame = [](const FoldStretch& a, const FoldStretch& b) {
        return a.chunk == b.chunk && a.state == b.state;
    };
    const QList<FoldStretch>& others = other.stretches_;
    const auto [end, othersEnd] =
        std::mismatch(stretches_.begin(), stretches_.end(), others.begin(), others.end(), isSame);
    const auto fromEnd = std::mismatch(stretches_.rbegin(), std::make_reverse_iterator(end), others.rbegin(),
                                       std::make_reverse_iterator(othersEnd), isSame);
    return {end - stretches_.begin(), fromEnd.first - stretches_.rbegin()};
}

qsizetype FoldJoin::chunkOfLine(qsizetype line) const
{
    const auto behind = std::upper_bound(linesBefore_.begin(), linesBefore_.end(), line);
    return behind - linesBefore_.begin() - 1;
}

} // namespace kelm
