#include "editor/folding/pair_join.h"

#include <algorithm>
#include <limits>
#include <tuple>
#include <utility>

namespace kelm {

PairJoin::PairJoin(QList<FoldStretch> stretches, FoldType type, qsizetype nameCount, const PairJoin* earlier)
    : FoldJoin(std::move(stretches)), type_(type)
{
    PairMatching::Earlier same;
    if (earlier != nullptr) {
        same.matching = earlier->matching_;
        std::tie(same.sameAtStart, same.sameAtEnd) = sharedWith(*earlier);
    }
    matching_ = PairMatching::of(this->stretches(), nameCount, same);
    regionsBefore_.reserve(size_t(chunkCount()));
    qsizetype regions = 0;
    for (qsizetype chunk = 0; chunk < chunkCount(); ++chunk) {
        regionsBefore_.push_back(regions);
        regions += stretch(chunk).regions + matching_->regionsClosedIn(chunk);
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
    const quint32 openedShort = matching_->fate(chunk, run.group).openedShort;
    if (run.end == group.openings && openedShort > 0) {
        // The chunk's last line: the openings on it are those that may make none.
        return openedShort < group.openingsOnLastLine
                   ? matching_->closingOf(chunk, run.group, group.openings - openedShort - 1)
                   : std::nullopt;
    }
    return matching_->closingOf(chunk, run.group, run.end - 1);
}

template <typename Before>
qsizetype PairJoin::regionsAcrossBefore(qsizetype chunk, Before before) const
{
    const PairReading& read = reading(chunk);
    qsizetype regions = 0;
    for (quint32 group = 0; group < read.groups.size() && read.groups[group].closings > 0; ++group) {
        const Fate& own = matching_->fate(chunk, group);
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
            const auto closing = matching_->closingOf(chunk, run.group, index);
            if (closing && closing->index >= matching_->fate(closing->chunk, closing->group).closedShort) {
                regions.push_back(regionAcross(linesBefore(chunk) + run.line + 1, *closing));
            }
        }
    }
}

} // namespace kelm
