// Which openings and closings belong together that stand in different chunks.
#pragma once

#include "editor/folding/fold_chunk.h"

#include <QList>

#include <memory>
#include <optional>
#include <vector>

namespace kelm {

/// Pairs what the chunks of a text have left over, name by name. Making one takes a step for each group, that is for
/// each name that a chunk has something left over of, not for each opening or closing. Never changed once it is made.
class PairMatching
{
public:
    using Group = PairReading::Group;

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
    /// A closing left over in a chunk: the one with this index in its group.
    struct Closing
    {
        qsizetype chunk;
        quint32 group;
        quint32 index;
    };
    /// What an earlier matching was made of, and how many stretches at the start and at the end are still the same.
    struct Earlier
    {
        std::shared_ptr<const PairMatching> matching;
        qsizetype sameAtStart = 0;
        qsizetype sameAtEnd = 0;
    };

    /// Of stretches that hold `PairReading`s, of names with numbers below `nameCount`. The earlier one itself, when no
    /// chunk has something else left over.
    static std::shared_ptr<const PairMatching> of(const QList<FoldStretch>& stretches, qsizetype nameCount,
                                                  const Earlier& earlier);

    const Fate& fate(qsizetype chunk, quint32 group) const { return fates_[firstGroups_[size_t(chunk)] + group]; }
    /// How many closings left over in a chunk make a region.
    qsizetype regionsClosedIn(qsizetype chunk) const { return regionsClosed_[size_t(chunk)]; }
    /// The closing of an opening left over, if it has one: of the one with this index in its group.
    std::optional<Closing> closingOf(qsizetype chunk, quint32 group, quint32 index) const;

private:
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
    class Stacks;

    qsizetype chunkCount() const { return qsizetype(firstGroups_.size()) - 1; }
    bool hasGroups(qsizetype chunk, const std::vector<Group>& groups) const;
    void gather(const QList<FoldStretch>& stretches, const Earlier& earlier);
    void gather(const PairMatching& other, qsizetype first, qsizetype end);
    void match(qsizetype nameCount);

    /// The groups of all chunks side by side, since all are walked through again and again; where each chunk's begin,
    /// and where the last one's end.
    std::vector<Group> groups_;
    std::vector<size_t> firstGroups_{0};
    /// One for each group, and one behind.
    std::vector<Fate> fates_;
    std::vector<Taking> takings_;
    std::vector<qsizetype> regionsClosed_;
};

} // namespace kelm
