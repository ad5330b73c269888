// How a layout lays pieces out, and how it brings the pieces of long lines to where rows end.
#include "text/layout/shown_units.h"
#include "text/layout/text_layout.h"

#include <algorithm>

namespace kelm {

namespace {

/// How many pieces are kept; several screens of lines. When there are more, the half that was used last stays.
constexpr std::size_t keptPieces = 600;

} // namespace

TextLayout::PlacedPiece TextLayout::ensure(PieceKey key)
{
    const LinePieces* pieces = piecesOf(key.line);
    const bool goesOn = pieces != nullptr && !pieces->isLast(key.piece);
    std::unique_ptr<LaidOutPiece>& piece = pieces_[key];
    if (!piece) {
        piece = layOut(key);
    } else if (piece->wrappedFor != metrics_.width) {
        piece->rewrap(metrics_);
        ++layoutsMade_;
        noteRows(key, piece->rowCount());
    }
    if (piece->colorsAreStale) {
        // Letters of two colours are not drawn into one another; that can make a row longer.
        const std::vector<ColorRun> colors = colorsOf({pieceRange(key).location, piece->length()});
        const bool changesUnits = piece->hasUnshown() || hasUnshown(colors);
        if ((goesOn || changesUnits) && !piece->hasColors(colors)) {
            piece = layOut(key);
        } else {
            piece->setColors(colors, metrics_);
            noteRows(key, piece->rowCount());
        }
    }
    piece->lastUse = ++clock_;
    LaidOutPiece* const layout = piece.get();
    if (pieces_.size() > keptPieces) {
        dropFarPieces();
    }
    return {layout, key, pieceRange(key), !goesOn};
}

TextLayout::PlacedPiece TextLayout::ensureAt(CaretPlace place)
{
    for (;;) {
        const PlacedPiece piece = ensure(pieceAt(place));
        if (pieceAt(place) == piece.key) {
            return piece;
        }
    }
}

std::unique_ptr<LaidOutPiece> TextLayout::layOut(PieceKey key)
{
    ++layoutsMade_;
    const LinePieces* pieces = piecesOf(key.line);
    const bool goesOn = pieces != nullptr && !pieces->isLast(key.piece);
    std::unique_ptr<LaidOutPiece> piece = goesOn ? layOutToRowEnd(key) : makePiece(key.line, pieceRange(key));
    noteRows(key, piece->rowCount());
    return piece;
}

std::unique_ptr<LaidOutPiece> TextLayout::layOutToRowEnd(PieceKey key)
{
    LinePieces& pieces = *longLines_.find(key.line);
    const TextRange line = lineContent(key.line);
    const qsizetype start = pieces.starts[key.piece];
    const qsizetype nextCut = pieces.cuts[key.piece + 1];
    const qsizetype seenEnd = std::min(line.length, nextCut + lookAhead);
    std::unique_ptr<LaidOutPiece> piece = makePiece(key.line, {line.location + start, seenEnd - start});
    const int row = piece->lastRowFrom(nextCut - start);
    const qsizetype rowStart = start + piece->rowRange(row).location;
    if (row == 0 || rowStart <= pieces.cuts[key.piece]) {
        // One row takes more than the whole piece.
        return makePiece(key.line, pieceRange(key));
    }
    piece->showRows(row);
    moveStart({key.line, key.piece + 1}, rowStart);
    return piece;
}

void TextLayout::moveStart(PieceKey key, qsizetype start)
{
    LinePieces& pieces = *longLines_.find(key.line);
    if (pieces.starts[key.piece] == start) {
        return;
    }
    const int before = estimatedRows(pieceRange(key).length);
    pieces.starts[key.piece] = start;
    const int change = estimatedRows(pieceRange(key).length) - before;
    // Its rows are others now.
    pieces_.erase(key);
    pieces.rows[key.piece] = std::max(1, pieces.rows[key.piece] + change);
    table_.setRows(key.line, static_cast<int>(pieces.rowCount()));
    Q_EMIT rowsCorrected();
}

void TextLayout::forgetPiecesThatSee(qsizetype line, qsizetype offset)
{
    LinePieces* pieces = longLines_.find(line);
    if (pieces == nullptr) {
        pieces_.erase({line, 0});
        return;
    }
    pieces_.erase(pieces_.lower_bound({line, pieces->firstThatSees(offset)}),
                  pieces_.lower_bound({line, pieces->pieceAt(offset) + 1}));
}

std::unique_ptr<LaidOutPiece> TextLayout::makePiece(qsizetype line, TextRange range)
{
    std::optional<Preedit> composed;
    if (preedit_ && storage_.lines().lineAt(preedit_->offset) == line && preedit_->offset >= range.location &&
        (preedit_->offset < range.end() || range.end() == lineContent(line).end())) {
        composed = preedit_;
        composed->offset = std::clamp<qsizetype>(composed->offset - range.location, 0, range.length);
    }
    return std::make_unique<LaidOutPiece>(storage_.substring(range), colorsOf(range), composed ? &*composed : nullptr,
                                          metrics_);
}

std::vector<ColorRun> TextLayout::colorsOf(TextRange range) const
{
    std::vector<ColorRun> colors = storage_.colorsIn(range);
    for (ColorRun& run : colors) {
        run.range.location -= range.location;
    }
    return colors;
}

void TextLayout::noteRows(PieceKey key, int rows)
{
    const qsizetype before = table_.rowsOf(key.line);
    if (LinePieces* pieces = longLines_.find(key.line)) {
        table_.setRows(key.line, static_cast<int>(before + rows - pieces->rows[key.piece]));
        pieces->rows[key.piece] = rows;
    } else {
        table_.setRows(key.line, rows);
    }
    if (table_.rowsOf(key.line) != before) {
        Q_EMIT rowsCorrected();
    }
}

void TextLayout::dropFarPieces()
{
    std::vector<quint64> uses;
    uses.reserve(pieces_.size());
    for (const auto& [key, piece] : pieces_) {
        uses.push_back(piece->lastUse);
    }
    const auto oldest = uses.begin() + static_cast<qsizetype>(uses.size() - keptPieces / 2);
    std::nth_element(uses.begin(), oldest, uses.end());
    std::erase_if(pieces_, [limit = *oldest](const auto& entry) { return entry.second->lastUse < limit; });
}

} // namespace kelm
