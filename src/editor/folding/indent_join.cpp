#include "editor/folding/indent_join.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace kelm {

IndentJoin::IndentJoin(QList<FoldStretch> stretches) : FoldJoin(std::move(stretches))
{
    places_.resize(size_t(chunkCount()) + 1);
    findLinesBefore();
    decideLastLines();
    count();
}

void IndentJoin::findLinesBefore()
{
    constexpr quint64 above = std::numeric_limits<quint64>::max();
    leastIndents_.assign(size_t(chunkCount()), above);
    leastOfBlocks_.assign(size_t((chunkCount() + block - 1) / block), above);
    for (qsizetype chunk = 0; chunk < chunkCount(); ++chunk) {
        const IndentReading& read = reading(chunk);
        qsizetype& lineBefore = places_[size_t(chunk) + 1].lineBefore;
        if (read.open.empty()) {
            lineBefore = places_[size_t(chunk)].lineBefore;
            continue;
        }
        lineBefore = linesBefore(chunk) + read.open.back().line;
        leastIndents_[size_t(chunk)] = read.minima.back().indent;
        quint64& least = leastOfBlocks_[size_t(chunk / block)];
        least = std::min<quint64>(least, read.minima.back().indent);
    }
}

void IndentJoin::decideLastLines()
{
    struct Next
    {
        qsizetype line;
        /// Not above any indent behind the text's end.
        qint64 indent;
    };
    // The two lines behind the chunk.
    std::array<Next, 2> next{{{0, -1}, {0, -1}}};
    for (qsizetype chunk = chunkCount() - 1; chunk >= 0; --chunk) {
        const IndentReading& read = reading(chunk);
        if (read.open.empty()) {
            continue;
        }
        Place& place = places_[size_t(chunk)];
        const IndentReading::Line last = read.open.back();
        // A line makes a region when one behind it that is not the next one is deeper, and all between.
        place.lastMakesRegion = next[0].indent > last.indent &&
                                (next[0].line > linesBefore(chunk) + last.line + 1 || next[1].indent > last.indent);
        if (read.open.size() > 1) {
            const IndentReading::Line lastButOne = read.open[read.open.size() - 2];
            place.lastButOneMakesRegion = last.line > lastButOne.line + 1 || next[0].indent > lastButOne.indent;
        }
        const auto global = [&](const IndentReading::Line& line) {
            return Next{linesBefore(chunk) + line.line, qint64(line.indent)};
        };
        next = {global(read.firstLines[0]), read.firstLines.size() > 1 ? global(read.firstLines[1]) : next[0]};
    }
}

void IndentJoin::count()
{
    for (qsizetype chunk = 0; chunk < chunkCount(); ++chunk) {
        const IndentReading& read = reading(chunk);
        const Place& place = places_[size_t(chunk)];
        const size_t open = read.open.size();
        const qsizetype across = qsizetype(open) - (open > 0 && !place.lastMakesRegion ? 1 : 0) -
                                 (open > 1 && !place.lastButOneMakesRegion ? 1 : 0);
        places_[size_t(chunk) + 1].regionsBefore = place.regionsBefore + stretch(chunk).regions + across;
    }
}

bool IndentJoin::makesRegion(qsizetype chunk, size_t open) const
{
    const size_t behind = reading(chunk).open.size() - open;
    const Place& place = places_[size_t(chunk)];
    return behind > 2 || (behind == 2 ? place.lastButOneMakesRegion : place.lastMakesRegion);
}

std::optional<FoldableRegion> IndentJoin::firstRegionStartingAt(qsizetype line) const
{
    const qsizetype chunk = chunkOfLine(line - 1);
    if (chunk < 0) {
        return {};
    }
    const IndentReading& read = reading(chunk);
    const qsizetype own = line - 1 - linesBefore(chunk);
    const auto inside = std::lower_bound(
        read.regions.begin(), read.regions.end(), own,
        [](const IndentReading::Region& region, qsizetype wanted) { return region.startLine < wanted; });
    if (inside != read.regions.end() && inside->startLine == own) {
        return regionInside(chunk, size_t(inside - read.regions.begin()));
    }
    const auto open =
        std::lower_bound(read.open.begin(), read.open.end(), own,
                         [](const IndentReading::Line& at, qsizetype wanted) { return at.line < wanted; });
    const auto index = size_t(open - read.open.begin());
    if (open != read.open.end() && open->line == own && makesRegion(chunk, index)) {
        return regionAcross(chunk, index);
    }
    return {};
}

FoldableRegion IndentJoin::regionInside(qsizetype chunk, size_t index) const
{
    const IndentReading& read = reading(chunk);
    const IndentReading::Region region = read.regions[index];
    // The lines open before it all make regions: it stands behind them.
    const auto openBefore =
        std::lower_bound(read.open.begin(), read.open.end(), region.startLine,
                         [](const IndentReading::Line& at, quint16 wanted) { return at.line < wanted; });
    const qsizetype before = places_[size_t(chunk)].regionsBefore + qsizetype(index) + (openBefore - read.open.begin());
    return {before, linesBefore(chunk) + region.startLine + 1, linesBefore(chunk) + region.endLine + 1,
            FoldType::indent};
}

FoldableRegion IndentJoin::regionAcross(qsizetype chunk, size_t open) const
{
    const IndentReading& read = reading(chunk);
    const IndentReading::Line line = read.open[open];
    const auto insideBefore =
        std::lower_bound(read.regions.begin(), read.regions.end(), line.line,
                         [](const IndentReading::Region& region, quint16 wanted) { return region.startLine < wanted; });
    // Where the last but one makes none, the last makes none either.
    const qsizetype before =
        places_[size_t(chunk)].regionsBefore + (insideBefore - read.regions.begin()) + qsizetype(open);
    return {before, linesBefore(chunk) + line.line + 1, endLine(chunk, line.indent) + 1, FoldType::indent};
}

qsizetype IndentJoin::endLine(qsizetype chunk, quint32 indent) const
{
    const qsizetype closing = closingChunk(chunk, indent);
    if (closing == chunkCount()) {
        return places_[size_t(closing)].lineBefore;
    }
    const std::vector<IndentReading::Minimum>& minima = reading(closing).minima;
    const auto minimum = std::partition_point(
        minima.begin(), minima.end(), [indent](const IndentReading::Minimum& at) { return at.indent > indent; });
    return minimum == minima.begin() ? places_[size_t(closing)].lineBefore : linesBefore(closing) + minimum->lineBefore;
}

qsizetype IndentJoin::closingChunk(qsizetype chunk, quint32 indent) const
{
    qsizetype next = chunk + 1;
    while (next < chunkCount() && leastIndents_[size_t(next)] > indent) {
        ++next;
        while (next % block == 0 && next < chunkCount() && leastOfBlocks_[size_t(next / block)] > indent) {
            next = std::min(next + block, chunkCount());
        }
    }
    return next;
}

std::vector<FoldableRegion> IndentJoin::all() const
{
    std::vector<FoldableRegion> regions;
    regions.reserve(size_t(places_.back().regionsBefore));
    for (qsizetype chunk = 0; chunk < chunkCount(); ++chunk) {
        const IndentReading& read = reading(chunk);
        size_t inside = 0;
        for (size_t open = 0; open <= read.open.size(); ++open) {
            while (inside < read.regions.size() &&
                   (open == read.open.size() || read.regions[inside].startLine < read.open[open].line)) {
                regions.push_back(regionInside(chunk, inside++));
            }
            if (open < read.open.size() && makesRegion(chunk, open)) {
                regions.push_back(regionAcross(chunk, open));
            }
        }
    }
    return regions;
}

} // namespace kelm
