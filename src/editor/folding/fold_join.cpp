#include "editor/folding/fold_join.h"

#include <algorithm>
#include <utility>

namespace kelm {

FoldJoin::FoldJoin(QList<FoldStretch> stretches) : stretches_(std::move(stretches))
{
    linesBefore_.reserve(size_t(stretches_.size()));
    qsizetype lines = 0;
    for (const FoldStretch& stretch : std::as_const(stretches_)) {
        linesBefore_.push_back(lines);
        lines += stretch.chunk->lines;
    }
}

qsizetype FoldJoin::chunkOfLine(qsizetype line) const
{
    const auto behind = std::upper_bound(linesBefore_.begin(), linesBefore_.end(), line);
    return behind - linesBefore_.begin() - 1;
}

} // namespace kelm
