// The regions between openings and closings of a text in chunks.
#pragma once

#include "editor/folding/fold_join.h"

namespace kelm {

/// Pairs what the chunks have left over. Making one takes a step for each name that a chunk has something left over of,
/// not for each opening or closing.
class PairJoin : public FoldJoin
{
public:
    /// Of chunks that hold `PairReading`s, of names with numbers below `nameCount`.
    PairJoin(QList<FoldStretch> stretches, FoldType type, qsizetype nameCount);

    std::optional<FoldableRegion> firstRegionStartingAt(qsizetype line) const override;
    std::vector<FoldableRegion> all() const override;

private:
    /// What the rest of the text makes of a group's left-overs.
    struct Fate
    {
        /// How many closings have an opening, from the first on, and how many of these make no region, since that is on
        /// the line before.
        quint32 closed = 0;
        quint32 closedShort = 0;
        /// How many openings make no region for that reason, from the last back.
        quint32 openedShort = 0;
        /// Its first taking; its last stands before the next group's first.
        quint32 firstTaking = 0;
    };
    /// Openings of a group that are closed by a group of another chunk, the last one by the first closing. Those of a
    /// group are in the order of the closings: from its last openings back.
    struct Taking
    {
        qsizetype chunk;
        quint32 group;
        quint32 firstClosing;
        /// Behind the last of the openings.
        quint32 openingsEnd;
        quint32 count;
    };
    /// A closing left over in a chunk: the one with this index in its group.
    struct Closing
    {
        qsizetype chunk;
        quint32 group;
        quint32 index;
    };
    class Stacks;

    const PairReading& reading(qsizetype chunk) const { return stretch(chunk).reading<PairReading>(); }
    const Fate& fate(qsizetype chunk, quint32 group) const { return fates_[firstFates_[size_t(chunk)] + group]; }

    void join(qsizetype nameCount);
    void count();

    /// The closing of an opening left over, if it has one: the one with this index in its group.
    std::optional<Closing> closingOf(qsizetype chunk, quint32 group, quint32 index) const;
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
    /// Those of all chunks, by chunk and group; and where each chunk's begin.
    std::vector<Fate> fates_;
    std::vector<size_t> firstFates_;
    std::vector<Taking> takings_;
    /// How many regions are found before each chunk's first closing.
    std::vector<qsizetype> regionsBefore_;
};

} // namespace kelm
