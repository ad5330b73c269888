#include "editor/folding/pair_matching.h"

#include <algorithm>
#include <utility>

namespace kelm {

/// The openings of all names that are not closed yet.
class PairMatching::Stacks
{
public:
    struct Node
    {
        qsizetype chunk;
        size_t fate;
        quint32 openings;
        quint32 openingsOnLastLine;
        quint32 below;
    };

    explicit Stacks(qsizetype nameCount) : tops_(size_t(nameCount), none) {}

    void push(const Group& group, qsizetype chunk, size_t fate)
    {
        quint32& top = tops_[group.name];
        nodes_.push_back({chunk, fate, group.openings, group.openingsOnLastLine, top});
        top = quint32(nodes_.size() - 1);
    }

    /// Takes the last opening for each of a group's closings. `taken` is told of each node that any come from, as it
    /// was before; of the first closing, and of how many.
    template <typename Taken>
    void close(const Group& group, Taken taken)
    {
        quint32& top = tops_[group.name];
        for (quint32 closed = 0; closed < group.closings && top != none;) {
            Node& node = nodes_[top];
            const quint32 count = std::min(node.openings, group.closings - closed);
            taken(node, closed, count);
            closed += count;
            node.openings -= count;
            if (node.openings == 0) {
                top = node.below;
            }
        }
    }

private:
    static constexpr quint32 none = ~quint32(0);

    std::vector<Node> nodes_;
    std::vector<quint32> tops_;
};

std::shared_ptr<const PairMatching> PairMatching::of(const QList<FoldStretch>& stretches, qsizetype nameCount,
                                                     const Earlier& earlier)
{
    if (earlier.matching && earlier.matching->chunkCount() == stretches.size()) {
        bool isSame = true;
        for (qsizetype chunk = earlier.sameAtStart; isSame && chunk < stretches.size() - earlier.sameAtEnd; ++chunk) {
            isSame = earlier.matching->hasGroups(chunk, stretches.at(chunk).reading<PairReading>().groups);
        }
        if (isSame) {
            return earlier.matching;
        }
    }
    auto matching = std::make_shared<PairMatching>();
    matching->gather(stretches, earlier);
    matching->match(nameCount);
    return matching;
}

bool PairMatching::hasGroups(qsizetype chunk, const std::vector<Group>& groups) const
{
    return std::equal(groups.begin(), groups.end(), groups_.begin() + qsizetype(firstGroups_[size_t(chunk)]),
                      groups_.begin() + qsizetype(firstGroups_[size_t(chunk) + 1]));
}

void PairMatching::gather(const QList<FoldStretch>& stretches, const Earlier& earlier)
{
    firstGroups_.reserve(size_t(stretches.size()) + 1);
    if (earlier.matching) {
        groups_.reserve(earlier.matching->groups_.size() + 64);
        gather(*earlier.matching, 0, earlier.sameAtStart);
    }
    for (qsizetype chunk = earlier.sameAtStart; chunk < stretches.size() - earlier.sameAtEnd; ++chunk) {
        const std::vector<Group>& groups = stretches.at(chunk).reading<PairReading>().groups;
        groups_.insert(groups_.end(), groups.begin(), groups.end());
        firstGroups_.push_back(groups_.size());
    }
    if (earlier.matching) {
        const qsizetype end = earlier.matching->chunkCount();
        gather(*earlier.matching, end - earlier.sameAtEnd, end);
    }
}

/// The groups of some chunks of another matching.
void PairMatching::gather(const PairMatching& other, qsizetype first, qsizetype end)
{
    const size_t begin = other.firstGroups_[size_t(first)];
    const size_t before = groups_.size();
    groups_.insert(groups_.end(), other.groups_.begin() + qsizetype(begin),
                   other.groups_.begin() + qsizetype(other.firstGroups_[size_t(end)]));
    for (qsizetype chunk = first; chunk < end; ++chunk) {
        firstGroups_.push_back(before + other.firstGroups_[size_t(chunk) + 1] - begin);
    }
}

void PairMatching::match(qsizetype nameCount)
{
    Stacks stacks(nameCount);
    fates_.resize(groups_.size() + 1);
    regionsClosed_.reserve(size_t(chunkCount()));
    // In the order of the closings, each with the fate of its openings.
    std::vector<std::pair<size_t, Taking>> found;
    for (qsizetype chunk = 0; chunk < chunkCount(); ++chunk) {
        qsizetype regions = 0;
        const size_t first = firstGroups_[size_t(chunk)];
        for (size_t own = first; own < firstGroups_[size_t(chunk) + 1]; ++own) {
            const Group& group = groups_[own];
            stacks.close(group, [&](const Stacks::Node& node, quint32 closing, quint32 count) {
                found.push_back({node.fate, {chunk, quint32(own - first), closing, node.openings, count}});
                fates_[own].closed = closing + count;
                if (closing == 0 && node.chunk + 1 == chunk) {
                    const quint32 adjoining = std::min(node.openingsOnLastLine, group.closingsOnFirstLine);
                    fates_[own].closedShort = adjoining;
                    fates_[node.fate].openedShort = adjoining;
                }
                ++fates_[node.fate + 1].firstTaking;
            });
            regions += fates_[own].closed - fates_[own].closedShort;
            if (group.openings > 0) {
                stacks.push(group, chunk, own);
            }
        }
        regionsClosed_.push_back(regions);
    }
    for (size_t fate = 1; fate < fates_.size(); ++fate) {
        fates_[fate].firstTaking += fates_[fate - 1].firstTaking;
    }
    // By the group of the openings, and in each in their order.
    std::vector<quint32> places(fates_.size());
    takings_.resize(found.size());
    for (const auto& [fate, taking] : found) {
        takings_[fates_[fate].firstTaking + places[fate]++] = taking;
    }
}

std::optional<PairMatching::Closing> PairMatching::closingOf(qsizetype chunk, quint32 group, quint32 index) const
{
    const size_t own = firstGroups_[size_t(chunk)] + group;
    const auto first = takings_.begin() + fates_[own].firstTaking;
    const auto end = takings_.begin() + fates_[own + 1].firstTaking;
    const auto taking =
        std::partition_point(first, end, [index](const Taking& at) { return at.openingsEnd - at.count > index; });
    if (taking == end) {
        return {};
    }
    return Closing{taking->chunk, taking->group, taking->firstClosing + (taking->openingsEnd - 1 - index)};
}

} // namespace kelm
