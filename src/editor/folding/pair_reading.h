// The openings and closings of a part of a text, paired as far as both stand in it.
#pragma once

#include <QtGlobal>

#include <vector>

namespace kelm {

/// What a chunk holds of things that open and close by name: tags, and braces, which all have one name. Lines count
/// from the chunk's first. Of each name the closings left over all stand before the openings left over.
struct PairReading
{
    /// A pair with a line of its own between the two.
    struct Region
    {
        quint16 startLine;
        quint16 endLine;
        /// How many were closed in the chunk before this one.
        quint16 rank;
    };
    /// A name of which something is left over.
    struct Group
    {
        quint32 name;
        quint32 closings;
        quint32 openings;
        /// Of those the ones that can meet the other on a neighbouring line of another chunk.
        quint32 closingsOnFirstLine;
        quint32 openingsOnLastLine;
        /// Its first run; its last stands before the next group's first.
        quint32 firstRun;

        friend bool operator==(const Group&, const Group&) = default;
    };
    /// Closings left over, of one group, with no other closing between them.
    struct ClosingRun
    {
        /// How many closings of the group, and of all groups, are left over before the run.
        quint32 first;
        quint32 firstOfAll;
        /// How many regions of the chunk are closed before it.
        quint16 regionsBefore;
        quint16 line;
    };
    /// All openings of one group that are left over on one line.
    struct OpeningRun
    {
        quint32 group;
        /// How many openings of the group are left over up to the end of this line.
        quint32 end;
        quint16 line;
    };

    /// By their start lines; of those on one line the one that closes first goes first.
    std::vector<Region> regions;
    /// Those with closings go first.
    std::vector<Group> groups;
    /// By group, and in each in their order.
    std::vector<ClosingRun> closings;
    /// By line.
    std::vector<OpeningRun> openings;
    /// The state at the chunk's end.
    bool endState = false;

    /// The runs of a group's closings.
    const ClosingRun* firstRun(qsizetype group) const { return closings.data() + groups[size_t(group)].firstRun; }
    const ClosingRun* endOfRuns(qsizetype group) const;
};

/// Pairs what opens and closes in a chunk, told from first to last.
class PairCollector
{
public:
    /// The group of a name that has none yet.
    quint32 addGroup(quint32 name);

    void open(quint32 group, qsizetype line);
    void close(quint32 group, qsizetype line);

    /// All that was told, of a chunk with this many line ends; the next chunk can be told then.
    PairReading finish(qsizetype lines, bool endState);

private:
    /// Openings of one group on one line.
    struct Node
    {
        quint32 line;
        quint32 group;
        /// How many of them are not closed.
        quint32 count;
        /// The node that is under this one on the group's stack.
        quint32 below;
    };
    struct Name
    {
        quint32 name;
        quint32 top;
        quint32 strays = 0;
    };
    /// A closing run with its group.
    struct Stray
    {
        quint32 group;
        PairReading::ClosingRun run;
        quint32 count;
    };

    void addGroups(PairReading& reading);
    void addOpenings(PairReading& reading, qsizetype lines);
    void addClosings(PairReading& reading);

    std::vector<Name> names_;
    std::vector<Node> nodes_;
    std::vector<Stray> strays_;
    quint32 strayCount_ = 0;
    std::vector<PairReading::Region> regions_;
    /// Of each name its group in the reading.
    std::vector<quint32> groups_;
    std::vector<quint32> places_;
};

} // namespace kelm
