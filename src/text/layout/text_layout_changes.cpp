// How a layout takes in what changes: edits of the text, colours, and the estimates of rows that follow from them.
#include "text/layout/text_layout.h"

#include <algorithm>
#include <cmath>

namespace kelm {

namespace {

/// Up to this length all lines of a text are measured at once, some milliseconds; of a longer one those that are asked
/// for.
constexpr qsizetype mostMeasuredUnits = 1 << 20;

} // namespace

template <typename Rekey>
void TextLayout::rekeyPieces(PieceKey first, PieceKey last, Rekey rekey)
{
    Pieces moved;
    const auto end = pieces_.lower_bound(last);
    for (auto piece = pieces_.lower_bound(first); piece != end;) {
        auto node = pieces_.extract(piece++);
        rekey(node.key());
        moved.insert(moved.end(), std::move(node));
    }
    pieces_.merge(moved);
}

void TextLayout::textEdited(const TextEdit& edit)
{
    movePreedit(edit);
    if (edit.linesRemoved == 1 && edit.linesAdded == 1 && longLines_.find(edit.firstLine) != nullptr) {
        longLineEdited(edit);
        return;
    }
    // Pieces of the touched lines are laid out anew, those behind keep their layout under another line number.
    const auto firstTouched = pieces_.lower_bound({edit.firstLine, 0});
    const auto firstBehind = pieces_.lower_bound({edit.firstLine + edit.linesRemoved, 0});
    const bool wasLaidOut = firstTouched != firstBehind;
    pieces_.erase(firstTouched, firstBehind);
    if (const qsizetype shift = edit.linesAdded - edit.linesRemoved; shift != 0) {
        rekeyPieces({edit.firstLine, 0}, {storage_.lines().lineCount() + edit.linesRemoved, 0},
                    [shift](PieceKey& key) { key.line += shift; });
    }
    const LinePieces* const pieces = longLines_.find(edit.firstLine);
    const LinePieces firstBefore = pieces != nullptr ? *pieces : LinePieces();
    longLines_.linesReplaced(edit);
    keepCuts(edit, firstBefore);
    const qsizetype units = storage_.lines().end(edit.firstLine) - storage_.lines().start(edit.firstLine);
    if (wasLaidOut && edit.linesRemoved == 1 && edit.linesAdded == 1 && units <= longestPiece) {
        // The rows that the line had are a better guess than any, and keep the page from jumping at each key.
        return;
    }
    reestimate(edit.firstLine, edit.linesRemoved, edit.linesAdded);
}

/// A long line into which a line end comes keeps its cuts on both sides of that: to find them anew takes as long as the
/// line is.
void TextLayout::keepCuts(const TextEdit& edit, const LinePieces& before)
{
    if (before.starts.empty()) {
        return;
    }
    const TextRange head = lineContent(edit.firstLine);
    const qsizetype editStart = edit.range.location - head.location;
    if (head.length > longestPiece) {
        std::size_t kept = before.firstThatSees(std::max<qsizetype>(0, editStart - 1));
        while (kept > 0 && head.length - before.starts[kept] < shortestPiece) {
            --kept;
        }
        const qsizetype from = before.starts[kept];
        LinePieces pieces = before;
        pieces.replace(kept, before.starts.size() - kept, cutEdited({head.location + from, head.length - from}), 0);
        longLines_.insert(edit.firstLine, std::move(pieces));
    }
    const qsizetype lastLine = edit.firstLine + edit.linesAdded - 1;
    const TextRange tail = lineContent(lastLine);
    if (edit.linesRemoved != 1 || edit.linesAdded == 1 || tail.length <= longestPiece) {
        return;
    }
    const qsizetype editEnd = editStart + edit.range.length;
    const qsizetype shift = edit.range.location + edit.newLength - tail.location - editEnd;
    std::size_t firstBehind = before.pieceAt(editEnd) + 1;
    while (firstBehind < before.starts.size() && before.starts[firstBehind] + shift < shortestPiece) {
        ++firstBehind;
    }
    if (firstBehind == before.starts.size()) {
        return;
    }
    LinePieces pieces = before;
    pieces.replace(0, firstBehind, cutEdited({tail.location, before.starts[firstBehind] + shift}), shift);
    longLines_.insert(lastLine, std::move(pieces));
}

void TextLayout::movePreedit(const TextEdit& edit)
{
    if (preedit_) {
        preedit_->offset = std::min(edit.moved(preedit_->offset), storage_.length());
    }
}

void TextLayout::longLineEdited(const TextEdit& edit)
{
    const qsizetype line = edit.firstLine;
    const TextRange content = lineContent(line);
    if (content.length <= longestPiece) {
        // The line is short enough to be one piece again.
        pieces_.erase(pieces_.lower_bound({line, 0}), pieces_.lower_bound({line + 1, 0}));
        longLines_.erase(line);
        reestimate(line, 1, 1);
        return;
    }
    LinePieces& pieces = *longLines_.find(line);
    const qsizetype editStart = edit.range.location - content.location;
    std::size_t first = pieces.pieceAt(std::max<qsizetype>(0, editStart - 1));
    std::size_t last = pieces.pieceAt(editStart + edit.range.length);
    const std::size_t oldCount = pieces.starts.size();

    // Those before that looked ahead to what is edited now may end elsewhere.
    forgetPiecesThatSee(line, editStart);
    // Only the touched pieces are cut anew, with a neighbour where little is left of them. Those behind keep their cuts
    // and their layout under another number.
    const auto newStart = [&] { return pieces.starts[first]; };
    const auto newEnd = [&] {
        return last + 1 < oldCount ? pieces.starts[last + 1] + edit.changeInLength() : content.length;
    };
    if (newEnd() - newStart() < shortestPiece) {
        if (last + 1 < oldCount) {
            ++last;
        } else if (first > 0) {
            --first;
        }
    }
    LinePieces fresh = cutEdited({content.location + newStart(), newEnd() - newStart()});
    if (first == last && fresh.rows.size() == 1) {
        fresh.rows[0] = pieces.rows[first];
    }
    const qsizetype firstEnd = fresh.isLast(0) ? newEnd() : newStart() + fresh.starts[1];
    if (const qsizetype cut = pieces.cuts[first]; cut <= editStart && cut < firstEnd) {
        fresh.cuts[0] = cut - newStart();
    }
    pieces_.erase(pieces_.lower_bound({line, first}), pieces_.lower_bound({line, last + 1}));
    const std::size_t touched = last - first + 1;
    if (fresh.starts.size() != touched) {
        // Unsigned numbers wrap around: the difference may be negative.
        rekeyPieces({line, last + 1}, {line + 1, 0},
                    [shift = fresh.starts.size() - touched](PieceKey& key) { key.piece += shift; });
    }
    pieces.replace(first, touched, fresh, edit.changeInLength());
    table_.setRows(line, static_cast<int>(pieces.rowCount()));
}

void TextLayout::colorsChanged(TextRange range)
{
    for (auto& [key, piece] : pieces_) {
        const qsizetype start = pieceRange(key).location;
        if (start + piece->length() > range.location && start < range.end()) {
            piece->colorsAreStale = true;
        }
    }
}

void TextLayout::estimateAll()
{
    // What is laid out already is known better, once it has been wrapped again.
    for (const auto& [key, piece] : pieces_) {
        piece->wrappedFor = -1;
    }
    // The cuts of long lines stay, but no row is known to begin near them any more.
    longLines_.forEach([this](qsizetype line, LinePieces& pieces) {
        pieces_.erase(pieces_.lower_bound({line, 0}), pieces_.lower_bound({line + 1, 0}));
        pieces.resetStarts();
        estimatePieces(pieces, lineContent(line).length);
    });
    const qsizetype lines = storage_.lines().lineCount();
    if (storage_.length() > mostMeasuredUnits) {
        table_.assignUnmeasured(lines);
    } else {
        table_.assign(rowsOfLines(0, lines));
    }
}

int TextLayout::estimatedRows(qsizetype units) const
{
    const auto columns = std::max<qsizetype>(1, static_cast<qsizetype>(metrics_.width / advance_));
    return static_cast<int>(std::max<qsizetype>(1, (units + columns - 1) / columns));
}

int TextLayout::estimateLine(qsizetype line, TextRange extent)
{
    if (extent.length > longestPiece) {
        const TextRange content = lineContent(line);
        if (content.length <= longestPiece) {
            return estimatedRows(content.length);
        }
        LinePieces* pieces = longLines_.find(line);
        if (pieces == nullptr) {
            pieces = longLines_.insert(line, cutLine(content));
        }
        return static_cast<int>(pieces->rowCount());
    }
    const auto piece = pieces_.find({line, 0});
    if (piece != pieces_.end() && piece->second && piece->second->wrappedFor == metrics_.width) {
        return piece->second->rowCount();
    }
    // A terminator of one unit is as good as always there.
    return estimatedRows(std::max<qsizetype>(0, extent.length - 1));
}

std::vector<int> TextLayout::rowsOfLines(qsizetype first, qsizetype count)
{
    std::vector<int> rows;
    rows.reserve(static_cast<std::size_t>(count));
    forEachLine(storage_.tree(), first, count,
                [&](TextRange extent) { rows.push_back(estimateLine(first + qsizetype(rows.size()), extent)); });
    return rows;
}

qsizetype TextLayout::guessedRows(qsizetype first, qsizetype count)
{
    const TextTree& text = storage_.tree();
    const qsizetype units = text.lineStart(first + count) - text.lineStart(first);
    return std::max<qsizetype>(count, estimatedRows(units - count));
}

void TextLayout::reestimate(qsizetype first, qsizetype removed, qsizetype added)
{
    constexpr qsizetype mostLines = 10'000;
    if (added > mostLines) {
        table_.replaceWithUnmeasured(first, removed, added);
    } else {
        table_.replaceLines(first, removed, rowsOfLines(first, added));
    }
}

LinePieces TextLayout::cutLine(TextRange range) const
{
    LinePieces pieces = LinePieces::cutAt(cutIntoPieces(storage_.tree(), range));
    estimatePieces(pieces, range.length);
    return pieces;
}

LinePieces TextLayout::cutEdited(TextRange range) const
{
    if (range.length > longestEditedPiece) {
        return cutLine(range);
    }
    LinePieces pieces = LinePieces::cutAt({0});
    estimatePieces(pieces, range.length);
    return pieces;
}

void TextLayout::estimatePieces(LinePieces& pieces, qsizetype length) const
{
    pieces.rows.clear();
    for (std::size_t piece = 0; piece < pieces.starts.size(); ++piece) {
        const qsizetype end = piece + 1 < pieces.starts.size() ? pieces.starts[piece + 1] : length;
        pieces.rows.push_back(estimatedRows(end - pieces.starts[piece]));
    }
}

} // namespace kelm
