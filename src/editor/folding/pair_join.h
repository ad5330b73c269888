// The regions between openings and closings of a text in chunks.
#pragma once

#include "editor/folding/fold_join.h"
#include "editor/folding/pair_matching.h"

#include <memory>
#include <optional>
#include <vector>

namespace kelm {

/// The regions that the chunks hold, and those of what they have left over.
class PairJoin : public FoldJoin
{
public:
    /// Of chunks that hold `PairReading`s, of names with numbers below `nameCount`. Takes over what it can from an
    /// earlier one of the same text; null if there is none.
    PairJoin(QList<FoldStretch> stretches, FoldType type, qsizetype nameCount, const PairJoin* earlier);

    std::optional<FoldableRegion> firstRegionStartingAt(qsizetype line) const override;
    std::vector<FoldableRegion> all() const override;

private:
    using Closing = PairMatching::Closing;
    using Fate = PairMatching::Fate;

    const PairReading& reading(qsizetype chunk) const { return stretch(chunk).reading<PairReading>(); }

    /// The closing of that opening among those of one run that makes a region first.
    std::optional<Closing> firstClosingOf(qsizetype chunk, const PairReading::OpeningRun& run) const;
    FoldableRegion regionInside(qsizetype chunk, const PairReading::Region& region) const;
    FoldableRegion regionAcross(qsizetype startLine, const Closing& closing) const;
    /// How many regions the chunk's left-over closings make before the place in it that `isBefore` tells of: whether a
    /// run begins before it, and how many of the run's closings stand there at most.
    template <typename Before>
    qsizetype regionsAcrossBefore(qsizetype chunk, Before before) const;
    void addAcross(qsizetype chunk, std::vector<FoldableRegion>& regions) const;

    FoldType type_;
    std::shared_ptr<const PairMatching> matching_;
    /// How many regions are found before each chunk's first closing.
    std::vector<qsizetype> regionsBefore_;
};

} // namespace kelm
