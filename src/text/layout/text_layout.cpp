#include "text/layout/text_layout.h"

#include "text/boundaries/text_boundaries.h"

#include <QFontMetricsF>

#include <algorithm>
#include <cmath>

namespace kelm {

namespace {

constexpr int columnsPerTab = 4;

/// The boundary between characters that is nearest to an x: the toolkit's own places lie within some characters.
qsizetype wholeCharacterAt(TextLayout& layout, const TextRow& row, qsizetype offset, qreal x)
{
    const TextTree& text = layout.storage().tree();
    const qsizetype start = graphemeBoundaryAtOrBefore(text, offset);
    if (start == offset) {
        return offset;
    }
    const qsizetype end = nextGraphemeBoundary(text, start);
    if (start < row.range.location) {
        return std::min(end, row.range.end());
    }
    if (end > row.range.end()) {
        return start;
    }
    return std::abs(layout.xInRow(row, end) - x) < std::abs(layout.xInRow(row, start) - x) ? end : start;
}

} // namespace

TextLayout::TextLayout(TextStorage& storage, QObject* parent) : QObject(parent), storage_(storage)
{
    metrics_.width = 600;
    setFont(QFont());
    connect(&storage, &TextStorage::edited, this, &TextLayout::textEdited);
    connect(&storage, &TextStorage::attributesChanged, this, &TextLayout::colorsChanged);
}

TextLayout::~TextLayout() = default;

void TextLayout::setFont(const QFont& font, std::optional<qreal> rowHeight)
{
    metrics_.font = font;
    const QFontMetricsF measure(font);
    metrics_.rowHeight = std::max<qreal>(1, rowHeight.value_or(std::ceil(measure.ascent() + measure.descent())));
    metrics_.baseline = std::round((metrics_.rowHeight - measure.ascent() - measure.descent()) / 2 + measure.ascent());
    advance_ = std::max<qreal>(1, measure.horizontalAdvance(u'0'));
    metrics_.tabStop = advance_ * columnsPerTab;
    pieces_.clear();
    estimateAll();
}

void TextLayout::setShowsControlCharacters(bool shows)
{
    metrics_.showsControls = shows;
    pieces_.clear();
    estimateAll();
}

void TextLayout::setWidth(qreal width)
{
    const qreal wanted = std::max(width, advance_);
    if (wanted != metrics_.width) {
        metrics_.width = wanted;
        estimateAll();
    }
}

qsizetype TextLayout::lineAtY(qreal y) const
{
    return table_.at(static_cast<qsizetype>(std::floor(y / metrics_.rowHeight))).line;
}

PagePlace TextLayout::pagePlaceAt(qreal y) const
{
    const PieceKey key = pieceOfRow(table_.at(static_cast<qsizetype>(std::floor(y / metrics_.rowHeight))));
    return {cutOf(key), y - topOfPiece(key)};
}

qreal TextLayout::yOf(PagePlace place) const
{
    return topOfPiece(pieceAt({place.offset, false})) + place.distance;
}

PagePlace TextLayout::movedBy(PagePlace place, qreal distance)
{
    const auto heightOf = [this](const PlacedPiece& piece) { return piece.layout->rowCount() * metrics_.rowHeight; };
    PlacedPiece piece = ensure(pieceAt({place.offset, false}));
    distance += place.distance;
    while (distance < 0) {
        const auto above = previousPiece(piece.key);
        if (!above) {
            break;
        }
        piece = ensure(*above);
        distance += heightOf(piece);
    }
    while (distance >= heightOf(piece)) {
        const auto below = nextPiece(piece.key);
        if (!below) {
            break;
        }
        distance -= heightOf(piece);
        piece = ensure(*below);
    }
    return {cutOf(piece.key), distance};
}

PagePlace TextLayout::carriedOver(PagePlace place, const TextEdit& edit)
{
    const qsizetype offset = std::min(edit.moved(place.offset, false), storage_.length());
    if (cutOf(pieceAt({offset, false})) == offset) {
        return {offset, place.distance};
    }
    // Where the line is cut otherwise now, the row that has the old cut takes its place.
    const TextRow row = rowOf({offset, false});
    const PieceKey key{row.line, row.piece};
    return {cutOf(key), row.rowInPiece * metrics_.rowHeight + place.distance};
}

std::vector<TextRow> TextLayout::rowsBetween(qreal top, qreal bottom)
{
    std::vector<TextRow> rows;
    std::optional<PieceKey> key = pieceOfRow(table_.at(static_cast<qsizetype>(std::floor(top / metrics_.rowHeight))));
    for (qreal y = topOfPiece(*key); key && y < bottom; key = nextPiece(*key)) {
        const PlacedPiece piece = ensure(*key);
        for (int row = 0; row < piece.layout->rowCount() && y < bottom; ++row, y += metrics_.rowHeight) {
            if (y + metrics_.rowHeight > top) {
                rows.push_back(rowIn(piece, row, y));
            }
        }
    }
    return rows;
}

TextRow TextLayout::rowOf(CaretPlace place)
{
    const PlacedPiece piece = ensureAt(place);
    const qsizetype offset = std::clamp(place.offset, piece.range.location, piece.range.end());
    return rowIn(piece, piece.layout->rowAt(offset - piece.range.location, place.atRowEnd));
}

QRectF TextLayout::caretRect(CaretPlace place)
{
    const TextRow row = rowOf(place);
    return {xInRow(row, place.offset), row.top, 0, metrics_.rowHeight};
}

CaretPlace TextLayout::placeAt(QPointF point)
{
    if (point.y() < 0) {
        return {0, false};
    }
    if (point.y() >= height()) {
        return {storage_.length(), false};
    }
    // Laying the line out may show that it has fewer rows than was estimated: then its last row is meant.
    std::vector<TextRow> rows = rowsBetween(point.y(), point.y() + metrics_.rowHeight / 4);
    if (rows.empty()) {
        return {storage_.length(), false};
    }
    return placeInRow(rows.front(), point.x());
}

qreal TextLayout::xInRow(const TextRow& row, qsizetype offset)
{
    const auto [piece, number] = pieceOf(row);
    return piece.layout->xAt(std::clamp(offset, row.range.location, row.range.end()) - piece.range.location, number);
}

std::vector<XSpan> TextLayout::spansInRow(const TextRow& row, TextRange range)
{
    const auto [piece, number] = pieceOf(row);
    return piece.layout->spansOf({range.location - piece.range.location, range.length}, number);
}

CaretPlace TextLayout::placeInRow(const TextRow& row, qreal x)
{
    const auto [piece, number] = pieceOf(row);
    const qsizetype offset = wholeCharacterAt(*this, row, piece.range.location + piece.layout->offsetAt(x, number), x);
    return {offset, !row.isLastOfLine && offset == row.range.end()};
}

std::optional<TextRow> TextLayout::neighbour(const TextRow& row, int direction)
{
    const auto [piece, number] = pieceOf(row);
    const int wanted = direction > 0 ? number + 1 : number - 1;
    if (wanted >= 0 && wanted < piece.layout->rowCount()) {
        return rowIn(piece, wanted);
    }
    const auto key = direction > 0 ? nextPiece(piece.key) : previousPiece(piece.key);
    if (!key) {
        return {};
    }
    const PlacedPiece next = ensure(*key);
    return rowIn(next, direction > 0 ? 0 : next.layout->rowCount() - 1);
}

void TextLayout::paintRow(QPainter& painter, const TextRow& row, QPointF pageOrigin)
{
    const auto [piece, number] = pieceOf(row);
    piece.layout->paintRow(painter, pageOrigin + QPointF(0, row.top - number * metrics_.rowHeight), number);
}

void TextLayout::setPreedit(std::optional<Preedit> preedit)
{
    const auto forget = [this] {
        if (preedit_) {
            const qsizetype line = pieceAt({preedit_->offset, false}).line;
            forgetPiecesThatSee(line, preedit_->offset - storage_.lines().start(line));
        }
    };
    forget();
    preedit_ = std::move(preedit);
    forget();
}

std::optional<QRectF> TextLayout::preeditCaretRect()
{
    if (!preedit_ || !preedit_->cursor) {
        return {};
    }
    const PlacedPiece piece = ensureAt({preedit_->offset, false});
    const auto [x, row] = piece.layout->preeditCaret();
    return QRectF(x, topOfPiece(piece.key) + row * metrics_.rowHeight, 0, metrics_.rowHeight);
}

const LinePieces* TextLayout::piecesOf(qsizetype line) const
{
    table_.rowsOf(line);
    return longLines_.find(line);
}

std::size_t TextLayout::pieceCount(qsizetype line) const
{
    const LinePieces* pieces = piecesOf(line);
    return pieces != nullptr ? pieces->starts.size() : 1;
}

std::optional<TextLayout::PieceKey> TextLayout::nextPiece(PieceKey key) const
{
    if (key.piece + 1 < pieceCount(key.line)) {
        return PieceKey{key.line, key.piece + 1};
    }
    return key.line + 1 < table_.lineCount() ? std::optional(PieceKey{key.line + 1, 0}) : std::nullopt;
}

std::optional<TextLayout::PieceKey> TextLayout::previousPiece(PieceKey key) const
{
    if (key.piece > 0) {
        return PieceKey{key.line, key.piece - 1};
    }
    return key.line > 0 ? std::optional(PieceKey{key.line - 1, pieceCount(key.line - 1) - 1}) : std::nullopt;
}

TextLayout::PieceKey TextLayout::pieceOfRow(RowPosition position) const
{
    const LinePieces* pieces = piecesOf(position.line);
    return {position.line, pieces != nullptr ? pieces->pieceAtRow(position.row) : 0};
}

TextRange TextLayout::pieceRange(PieceKey key) const
{
    const TextRange content = lineContent(key.line);
    const LinePieces* pieces = piecesOf(key.line);
    if (pieces == nullptr) {
        return content;
    }
    const qsizetype start = pieces->starts[key.piece];
    const qsizetype end = key.piece + 1 < pieces->starts.size() ? pieces->starts[key.piece + 1] : content.length;
    return {content.location + start, end - start};
}

qsizetype TextLayout::cutOf(PieceKey key) const
{
    const LinePieces* pieces = piecesOf(key.line);
    return storage_.lines().start(key.line) + (pieces != nullptr ? pieces->cuts[key.piece] : 0);
}

TextLayout::PieceKey TextLayout::pieceAt(CaretPlace place) const
{
    const qsizetype offset = std::clamp<qsizetype>(place.offset, 0, storage_.length());
    const qsizetype line = storage_.lines().lineAt(offset);
    const LinePieces* pieces = piecesOf(line);
    if (pieces == nullptr) {
        return {line, 0};
    }
    const qsizetype inLine = offset - storage_.lines().start(line);
    const std::size_t piece = pieces->pieceAt(inLine);
    return {line, place.atRowEnd && piece > 0 && pieces->starts[piece] == inLine ? piece - 1 : piece};
}

qreal TextLayout::topOfPiece(PieceKey key) const
{
    const LinePieces* pieces = piecesOf(key.line);
    const qsizetype before = pieces != nullptr ? pieces->rowsBefore(key.piece) : 0;
    return topOfLine(key.line) + static_cast<qreal>(before) * metrics_.rowHeight;
}

TextRow TextLayout::rowIn(const PlacedPiece& piece, int row) const
{
    return rowIn(piece, row, topOfPiece(piece.key) + row * metrics_.rowHeight);
}

TextRow TextLayout::rowIn(const PlacedPiece& piece, int row, qreal top) const
{
    TextRange units = piece.layout->rowRange(row);
    units.location += piece.range.location;
    const bool isLast = piece.isLastOfLine && row + 1 == piece.layout->rowCount();
    return {piece.key.line, units, top, piece.key.piece == 0 && row == 0, isLast, piece.key.piece, row};
}

std::pair<TextLayout::PlacedPiece, int> TextLayout::pieceOf(const TextRow& row)
{
    // A row that was kept across a change may be gone; the nearest one answers.
    const qsizetype line = std::min(row.line, table_.lineCount() - 1);
    const PlacedPiece piece = ensure({line, std::min(row.piece, pieceCount(line) - 1)});
    return {piece, std::min(row.rowInPiece, piece.layout->rowCount() - 1)};
}

} // namespace kelm
