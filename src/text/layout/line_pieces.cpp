#include "text/layout/line_pieces.h"

#include "text/boundaries/text_boundaries.h"

#include <QChar>

#include <algorithm>
#include <numeric>

namespace kelm {

namespace {

/// Where the piece that begins at `start` ends; the line goes on behind its longest extent.
qsizetype pieceEnd(const TextTree& text, TextRange line, qsizetype start)
{
    const qsizetype rest = line.length - start;
    const qsizetype limit = start + (rest < 2 * longestPiece ? (rest + 1) / 2 : longestPiece);
    const qsizetype nearStart = limit - longestPiece / 4;
    const QString near = text.substring({line.location + nearStart, longestPiece / 4 + 1});
    for (qsizetype at = limit; at > nearStart; --at) {
        const QChar before = near[at - 1 - nearStart];
        if (before == u' ' || before == u'\t') {
            return at;
        }
    }
    const qsizetype boundary = graphemeBoundaryAtOrBefore(text, line.location + limit) - line.location;
    if (boundary > start) {
        return boundary;
    }
    const bool isInPair = near[limit - nearStart].isLowSurrogate() && near[limit - 1 - nearStart].isHighSurrogate();
    return isInPair ? limit - 1 : limit;
}

} // namespace

LinePieces LinePieces::cutAt(std::vector<qsizetype> cuts)
{
    LinePieces pieces;
    pieces.starts = cuts;
    pieces.cuts = std::move(cuts);
    return pieces;
}

std::size_t LinePieces::firstThatSees(qsizetype offset) const
{
    std::size_t piece = pieceAt(offset);
    while (piece > 0 && offset <= cuts[piece] + lookAhead) {
        --piece;
    }
    return piece;
}

std::size_t LinePieces::pieceAt(qsizetype offset) const
{
    const auto behind = std::upper_bound(starts.begin(), starts.end(), offset);
    return static_cast<std::size_t>(std::max<qsizetype>(1, behind - starts.begin()) - 1);
}

qsizetype LinePieces::rowCount() const
{
    return rowsBefore(rows.size());
}

qsizetype LinePieces::rowsBefore(std::size_t piece) const
{
    return std::accumulate(rows.begin(), rows.begin() + static_cast<qsizetype>(piece), qsizetype(0));
}

std::size_t LinePieces::pieceAtRow(qsizetype row) const
{
    std::size_t piece = 0;
    for (; piece + 1 < rows.size() && row >= rows[piece]; ++piece) {
        row -= rows[piece];
    }
    return piece;
}

void LinePieces::replace(std::size_t first, std::size_t count, const LinePieces& with, qsizetype change)
{
    const auto at = static_cast<qsizetype>(first);
    const auto behind = static_cast<qsizetype>(first) + static_cast<qsizetype>(count);
    const auto exchange = [at, behind](auto& values, const auto& added) {
        values.insert(values.erase(values.begin() + at, values.begin() + behind), added.begin(), added.end());
    };
    const qsizetype origin = starts[first];
    for (const auto& [offsets, others] : {std::pair(&starts, &with.starts), std::pair(&cuts, &with.cuts)}) {
        std::vector<qsizetype> added = *others;
        for (qsizetype& offset : added) {
            offset += origin;
        }
        std::for_each(offsets->begin() + behind, offsets->end(), [change](qsizetype& offset) { offset += change; });
        exchange(*offsets, added);
    }
    exchange(rows, with.rows);
}

std::vector<qsizetype> cutIntoPieces(const TextTree& text, TextRange line)
{
    std::vector<qsizetype> starts{0};
    while (line.length - starts.back() > longestPiece) {
        starts.push_back(pieceEnd(text, line, starts.back()));
    }
    return starts;
}

LinePieces* LongLines::find(qsizetype line)
{
    const auto found = lines_.find(line);
    return found == lines_.end() ? nullptr : &found->second;
}

const LinePieces* LongLines::find(qsizetype line) const
{
    const auto found = lines_.find(line);
    return found == lines_.end() ? nullptr : &found->second;
}

void LongLines::linesReplaced(const TextEdit& edit)
{
    lines_.erase(lines_.lower_bound(edit.firstLine), lines_.lower_bound(edit.firstLine + edit.linesRemoved));
    const qsizetype change = edit.linesAdded - edit.linesRemoved;
    if (change == 0) {
        return;
    }
    Lines moved;
    for (auto line = lines_.lower_bound(edit.firstLine); line != lines_.end();) {
        auto node = lines_.extract(line++);
        node.key() += change;
        moved.insert(moved.end(), std::move(node));
    }
    lines_.merge(moved);
}

} // namespace kelm
