#include "editor/folding/pair_reading.h"

#include <utility>

namespace kelm {
namespace {

constexpr quint32 none = ~quint32(0);

/// Sorts by the start line, and leaves those on one line in their order; linear.
void sortByLine(std::vector<PairReading::Region>& regions, std::vector<quint32>& places, qsizetype lines)
{
    // Behind the last line end there may be a line without one.
    places.assign(size_t(lines) + 2, 0);
    for (const PairReading::Region& region : regions) {
        ++places[region.startLine + 1U];
    }
    for (size_t line = 1; line < places.size(); ++line) {
        places[line] += places[line - 1];
    }
    std::vector<PairReading::Region> sorted(regions.size());
    for (const PairReading::Region& region : regions) {
        sorted[places[region.startLine]++] = region;
    }
    regions = std::move(sorted);
}

} // namespace

const PairReading::ClosingRun* PairReading::endOfRuns(qsizetype group) const
{
    const auto next = size_t(group) + 1;
    return closings.data() + (next < groups.size() ? groups[next].firstRun : closings.size());
}

quint32 PairCollector::addGroup(quint32 name)
{
    names_.push_back({name, none});
    return quint32(names_.size() - 1);
}

void PairCollector::open(quint32 group, qsizetype line)
{
    quint32& top = names_[group].top;
    if (top != none && nodes_[top].line == line) {
        ++nodes_[top].count;
        return;
    }
    nodes_.push_back({quint32(line), group, 1, top});
    top = quint32(nodes_.size() - 1);
}

void PairCollector::close(quint32 group, qsizetype line)
{
    Name& name = names_[group];
    if (name.top == none) {
        const auto regions = quint16(regions_.size());
        if (strays_.empty() || strays_.back().group != group || strays_.back().run.line != line ||
            strays_.back().run.regionsBefore != regions) {
            strays_.push_back({group, {name.strays, strayCount_, regions, quint16(line)}, 0});
        }
        ++strays_.back().count;
        ++name.strays;
        ++strayCount_;
        return;
    }
    Node& opening = nodes_[name.top];
    if (opening.line + 1U < line) {
        regions_.push_back({quint16(opening.line), quint16(line), quint16(regions_.size())});
    }
    if (--opening.count == 0) {
        name.top = opening.below;
        while (!nodes_.empty() && nodes_.back().count == 0) {
            nodes_.pop_back();
        }
    }
}

PairReading PairCollector::finish(qsizetype lines, bool endState)
{
    PairReading reading;
    reading.endState = endState;
    if (!regions_.empty()) {
        sortByLine(regions_, places_, lines);
        reading.regions = regions_;
    }
    addGroups(reading);
    addOpenings(reading, lines);
    addClosings(reading);
    names_.clear();
    nodes_.clear();
    strays_.clear();
    strayCount_ = 0;
    regions_.clear();
    return reading;
}

void PairCollector::addGroups(PairReading& reading)
{
    groups_.assign(names_.size(), none);
    for (const bool hasClosings : {true, false}) {
        for (size_t index = 0; index < names_.size(); ++index) {
            const Name& name = names_[index];
            if ((name.strays > 0 || name.top != none) && (name.strays > 0) == hasClosings) {
                groups_[index] = quint32(reading.groups.size());
                reading.groups.push_back({name.name, name.strays, 0, 0, 0, 0});
            }
        }
    }
    reading.groups.shrink_to_fit();
}

void PairCollector::addOpenings(PairReading& reading, qsizetype lines)
{
    size_t count = 0;
    for (const Node& node : nodes_) {
        count += node.count > 0 ? 1 : 0;
    }
    reading.openings.reserve(count);
    for (const Node& node : nodes_) {
        if (node.count > 0) {
            const quint32 index = groups_[node.group];
            PairReading::Group& group = reading.groups[index];
            group.openings += node.count;
            group.openingsOnLastLine += node.line + 1 == lines ? node.count : 0;
            reading.openings.push_back({index, group.openings, quint16(node.line)});
        }
    }
}

void PairCollector::addClosings(PairReading& reading)
{
    // Counted by group and put into place, in their order.
    places_.assign(reading.groups.size() + 1, 0);
    for (const Stray& stray : strays_) {
        const quint32 group = groups_[stray.group];
        ++places_[group + 1];
        reading.groups[group].closingsOnFirstLine += stray.run.line == 0 ? stray.count : 0;
    }
    for (size_t group = 0; group < reading.groups.size(); ++group) {
        places_[group + 1] += places_[group];
        reading.groups[group].firstRun = places_[group];
    }
    reading.closings.resize(strays_.size());
    for (const Stray& stray : strays_) {
        reading.closings[places_[groups_[stray.group]]++] = stray.run;
    }
}

} // namespace kelm
