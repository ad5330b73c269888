#include "editor/folding/pair_join.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace kelm {

/// The openings of all names that are not closed yet.
class PairJoin::Stacks
{
public:
    explicit Stacks(qsizetype nameCount) : tops_(size_t(nameCount), none) {}

    void push(quint32 name, qsizetype chunk, size_t fate, const PairReading::Group& group)
    {
        nodes_.push_back({chunk, fate, group.openings, group.openingsOnLastLine, tops_[name]});
        tops_[name] = quint32(nodes_.size() - 1);
    }

    /// Takes the last opening for each of a group's closings; `taken` is told of each group of openings that any come
    /// from.
    template <typename Taken>
    void close(const PairReading::Group& group, Taken taken)
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

    struct Node
    {
        qsizetype chunk;
        size_t fate;
        quint32 openings;
        quint32 openingsOnLastLine;
        quint32 below;
    };

private:
    static constexpr quint32 none = ~quint32(0);

    std::vector<Node> nodes_;
    std::vector<quint32> tops_;
};

PairJoin::PairJoin(QList<FoldStretch> stretches, FoldType type, qsizetype nameCount)
    : FoldJoin(std::move(stretches)), type_(type)
{
    firstFates_.reserve(size_t(chunkCount()));
    size_t fates = 0;
    for (qsizetype chunk = 0; chunk < chunkCount(); ++chunk) {
        firstFates_.push_back(fates);
        fates += reading(chunk).groups.size();
    }
    // And one behind, for the end of the last one's takings.
    fates_.resize(fates + 1);
    join(nameCount);
    count();
}

void PairJoin::join(qsizetype nameCount)
{
    Stacks stacks(nameCount);
    // In the order of the closings, each with the fate of its openings.
    std::vector<std::pair<size_t, Taking>> found;
    for (qsizetype chunk = 0; chunk < chunkCount(); ++chunk) {
        const std::vector<PairReading::Group>& groups = reading(chunk).groups;
        for (quint32 index = 0; index < groups.size(); ++index) {
            const PairReading::Group& group = groups[index];
            const size_t own = firstFates_[size_t(chunk)] + index;
            stacks.close(group, [&](const Stacks::Node& node, quint32 first, quint32 count) {
                found.push_back({node.fate, {chunk, index, first, node.openings, count}});
                fates_[own].closed = first + count;
                if (first == 0 && node.chunk + 1 == chunk) {
                    const quint32 adjoining = std::min(node.openingsOnLastLine, group.closingsOnFirstLine);
                    fates_[own].closedShort = adjoining;
                    fates_[node.fate].openedShort = adjoining;
                }
                ++fates_[node.fate + 1].firstTaking;
            });
            if (group.openings > 0) {
                stacks.push(group.name, chunk, own, group);
            }
        }
    }
    for (size_t fate = 1; fate < fates_.size(); ++fate) {
        fates_[fate].firstTaking += fates_[fate - 1].firstTaking;
    }
    std::vector<quint32> places(fates_.size());
    takings_.resize(found.size());
    for (const auto& [fate, taking] : found) {
        takings_[fates_[fate].firstTaking + places[fate]++] = taking;
    }
}

void PairJoin::count()
{
    regionsBefore_.reserve(size_t(chunkCount()));
    qsizetype regions = 0;
    for (qsizetype chunk = 0; chunk < chunkCount(); ++chunk) {
        regionsBefore_.push_back(regions);
        const PairReading& read = reading(chunk);
        regions += qsizetype(read.regions.size());
        for (quint32 group = 0; group < read.groups.size(); ++group) {
            regions += fate(chunk, group).closed - fate(chunk, group).closedShort;
        }
    }
}

std::optional<FoldableRegion> PairJoin::firstRegionStartingAt(qsizetype line) const
{
    const qsizetype chunk = chunkOfLine(line - 1);
    if (chunk < 0) {
        return {};
    }
    const PairReading& read = reading(chunk);
    const qsizetype own = line - 1 - linesBefore(chunk);
    const auto isBefore = [](const auto& at, qsizetype wanted) { return at.line < wanted; };
    // What closes in the chunk closes before what closes behind it.
    const auto inside =
        std::lower_bound(read.regions.begin(), read.regions.end(), own,
                         [](const PairReading::Region& region, qsizetype wanted) { return region.startLine < wanted; });
    if (inside != read.regions.end() && inside->startLine == own) {
        return regionInside(chunk, *inside);
    }
    std::optional<FoldableRegion> first;
    for (auto run = std::lower_bound(read.openings.begin(), read.openings.end(), own, isBefore);
         run != read.openings.end() && run->line == own; ++run) {
        if (const auto closing = firstClosingOf(chunk, *run)) {
            const FoldableRegion region = regionAcross(line, *closing);
            first = !first || region.id < first->id ? region : first;
        }
    }
    return first;
}

std::optional<PairJoin::Closing> PairJoin::firstClosingOf(qsizetype chunk, const PairReading::OpeningRun& run) const
{
    const PairReading::Group& group = reading(chunk).groups[run.group];
    const quint32 openedShort = fate(chunk, run.group).openedShort;
    if (run.end == group.openings && openedShort > 0) {
        // The chunk's last line: the openings on it are those that may make none.
        return openedShort < group.openingsOnLastLine ? closingOf(chunk, run.group, group.openings - openedShort - 1)
                                                      : std::nullopt;
    }
    return closingOf(chunk, run.group, run.end - 1);
}

std::optional<PairJoin::Closing> PairJoin::closingOf(qsizetype chunk, quint32 group, quint32 index) const
{
    const size_t own = firstFates_[size_t(chunk)] + group;
    const auto first = takings_.begin() + fates_[own].firstTaking;
    const auto end = takings_.begin() + fates_[own + 1].firstTaking;
    const auto taking =
        std::partition_point(first, end, [index](const Taking& at) { return at.openingsEnd - at.count > index; });
    if (taking == end) {
        return {};
    }
    return Closing{taking->chunk, taking->group, taking->firstClosing + (taking->openingsEnd - 1 - index)};
}

template <typename Before>
qsizetype PairJoin::regionsAcrossBefore(qsizetype chunk, Before before) const
{
    const PairReading& read = reading(chunk);
    qsizetype regions = 0;
    for (quint32 group = 0; group < read.groups.size() && read.groups[group].closings > 0; ++group) {
        const Fate& own = fate(chunk, group);
        if (own.closed == own.closedShort) {
            continue;
        }
        const PairReading::ClosingRun* const first = read.firstRun(group);
        const PairReading::ClosingRun* const end = read.endOfRuns(group);
        const auto behind =
            std::partition_point(first, end, [&before](const PairReading::ClosingRun& run) { return before(run) > 0; });
        if (behind == first) {
            continue;
        }
        const quint32 next = behind == end ? read.groups[group].closings : behind->first;
        const auto closings = quint32(std::min<qsizetype>(next, behind[-1].first + before(behind[-1])));
        regions += std::clamp(closings, own.closedShort, own.closed) - own.closedShort;
    }
    return regions;
}

FoldableRegion PairJoin::regionInside(qsizetype chunk, const PairReading::Region& region) const
{
    const qsizetype across = regionsAcrossBefore(chunk, [&region](const PairReading::ClosingRun& run) {
        return run.regionsBefore <= region.rank ? std::numeric_limits<quint32>::max() : qsizetype(0);
    });
    const qsizetype lines = linesBefore(chunk) + 1;
    return {regionsBefore_[size_t(chunk)] + region.rank + across, lines + region.startLine, lines + region.endLine,
            type_};
}

FoldableRegion PairJoin::regionAcross(qsizetype startLine, const Closing& closing) const
{
    const PairReading& read = reading(closing.chunk);
    const PairReading::ClosingRun& own =
        *(std::partition_point(read.firstRun(closing.group), read.endOfRuns(closing.group),
                               [&closing](const PairReading::ClosingRun& run) { return run.first <= closing.index; }) -
          1);
    const qsizetype place = qsizetype(own.firstOfAll) + (closing.index - own.first);
    const qsizetype across = regionsAcrossBefore(closing.chunk, [place](const PairReading::ClosingRun& run) {
        return std::max<qsizetype>(0, place - run.firstOfAll);
    });
    return {regionsBefore_[size_t(closing.chunk)] + own.regionsBefore + across, startLine,
            linesBefore(closing.chunk) + own.line + 1, type_};
}

std::vector<FoldableRegion> PairJoin::all() const
{
    std::vector<FoldableRegion> regions;
    for (qsizetype chunk = 0; chunk < chunkCount(); ++chunk) {
        const auto first = qsizetype(regions.size());
        for (const PairReading::Region& region : reading(chunk).regions) {
            regions.push_back(regionInside(chunk, region));
        }
        addAcross(chunk, regions);
        std::sort(regions.begin() + first, regions.end(), [](const FoldableRegion& a, const FoldableRegion& b) {
            return std::pair(a.startLine, a.id) < std::pair(b.startLine, b.id);
        });
    }
    return regions;
}

void PairJoin::addAcross(qsizetype chunk, std::vector<FoldableRegion>& regions) const
{
    const PairReading& read = reading(chunk);
    std::vector<quint32> next(read.groups.size());
    for (const PairReading::OpeningRun& run : read.openings) {
        for (quint32& index = next[run.group]; index < run.end; ++index) {
            const auto closing = closingOf(chunk, run.group, index);
            if (closing && closing->index >= fate(closing->chunk, closing->group).closedShort) {
                regions.push_back(regionAcross(linesBefore(chunk) + run.line + 1, *closing));
            }
        }
    }
}

} // namespace kelm
