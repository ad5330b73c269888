// The regions of a text, put together from its chunks.
#pragma once

#include "editor/folding/fold_chunk.h"
#include "editor/folding/foldable_region.h"

#include <QList>

#include <optional>
#include <utility>
#include <vector>

namespace kelm {

/// The regions of a text as its chunks tell them. Holds for each chunk what is counted before it, and finds what begins
/// in one chunk and ends in another when it is asked for. Never changed once it is made. Lines count from 1.
class FoldJoin
{
public:
    virtual ~FoldJoin() = default;
    FoldJoin(const FoldJoin&) = delete;
    FoldJoin& operator=(const FoldJoin&) = delete;

    virtual std::optional<FoldableRegion> firstRegionStartingAt(qsizetype line) const = 0;
    /// By start line, and of those on one line in the order of finding; linear.
    virtual std::vector<FoldableRegion> all() const = 0;

protected:
    /// Of stretches that were all read, each for the state at its start.
    explicit FoldJoin(QList<FoldStretch> stretches);

    const QList<FoldStretch>& stretches() const { return stretches_; }
    qsizetype chunkCount() const { return stretches_.size(); }
    const FoldStretch& stretch(qsizetype chunk) const { return stretches_.at(chunk); }
    /// How many stretches at the start and at the end are the same in both; together no more than either has.
    std::pair<qsizetype, qsizetype> sharedWith(const FoldJoin& other) const;
    /// The lines before a chunk.
    qsizetype linesBefore(qsizetype chunk) const { return linesBefore_[size_t(chunk)]; }
    /// The chunk that holds a line, which counts from 0 here; -1 for a text without chunks.
    qsizetype chunkOfLine(qsizetype line) const;

private:
    QList<FoldStretch> stretches_;
    std::vector<qsizetype> linesBefore_;
};

} // namespace kelm
