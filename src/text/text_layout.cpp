#include "text/text_layout.h"

#include <QFontMetricsF>

#include <algorithm>
#include <cmath>

namespace kelm {

namespace {

/// How many pieces are kept; several screens of lines.
constexpr std::size_t keptPieces = 600;
constexpr int columnsPerTab = 4;

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
    metrics_.rowHeight = rowHeight.value_or(std::ceil(measure.ascent() + measure.descent()));
    metrics_.baseline = std::round((metrics_.rowHeight - measure.ascent() - measure.descent()) / 2 + measure.ascent());
    advance_ = std::max<qreal>(1, measure.horizontalAdvance(u'0'));
    metrics_.tabStop = advance_ * columnsPerTab;
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

std::vector<TextRow> TextLayout::rowsBetween(qreal top, qreal bottom)
{
    std::vector<TextRow> rows;
    const RowPosition first = table_.at(static_cast<qsizetype>(std::floor(top / metrics_.rowHeight)));
    PieceKey key{first.line, 0};
    if (const LinePieces* pieces = longLines_.find(first.line)) {
        qsizetype rowsBefore = 0;
        while (key.piece + 1 < pieces->rows.size() && rowsBefore + pieces->rows[key.piece] <= first.row) {
            rowsBefore += pieces->rows[key.piece++];
        }
    }
    qreal y = topOfPiece(key);
    while (key.line < table_.lineCount() && y < bottom) {
        const PlacedPiece piece = ensure(key);
        for (int row = 0; row < piece.layout->rowCount() && y < bottom; ++row, y += metrics_.rowHeight) {
            if (y + metrics_.rowHeight > top) {
                rows.push_back(rowIn(piece, row));
                rows.back().top = y;
            }
        }
        key = piece.isLastOfLine ? PieceKey{key.line + 1, 0} : PieceKey{key.line, key.piece + 1};
    }
    dropFarPieces();
    return rows;
}

TextRow TextLayout::rowOf(CaretPlace place)
{
    const PlacedPiece piece = ensure(pieceAt(place));
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

CaretPlace TextLayout::placeInRow(const TextRow& row, qreal x)
{
    const auto [piece, number] = pieceOf(row);
    const qsizetype offset = piece.range.location + piece.layout->offsetAt(x, number);
    return {offset, !row.isLastOfLine && offset == row.range.end()};
}

std::optional<TextRow> TextLayout::neighbour(const TextRow& row, int direction)
{
    const auto [piece, number] = pieceOf(row);
    if (direction > 0) {
        if (number + 1 < piece.layout->rowCount()) {
            return rowIn(piece, number + 1);
        }
        if (!piece.isLastOfLine) {
            return rowIn(ensure({piece.key.line, piece.key.piece + 1}), 0);
        }
        if (piece.key.line + 1 < table_.lineCount()) {
            return rowIn(ensure({piece.key.line + 1, 0}), 0);
        }
        return {};
    }
    if (number > 0) {
        return rowIn(piece, number - 1);
    }
    if (piece.key.piece == 0 && piece.key.line == 0) {
        return {};
    }
    const PieceKey above = piece.key.piece > 0 ? PieceKey{piece.key.line, piece.key.piece - 1}
                                               : PieceKey{piece.key.line - 1, pieceCount(piece.key.line - 1) - 1};
    const PlacedPiece previous = ensure(above);
    return rowIn(previous, previous.layout->rowCount() - 1);
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
            pieces_.erase(pieceAt({preedit_->offset, false}));
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
    const PlacedPiece piece = ensure(pieceAt({preedit_->offset, false}));
    const auto [x, row] = piece.layout->preeditCaret();
    return QRectF(x, topOfPiece(piece.key) + row * metrics_.rowHeight, 0, metrics_.rowHeight);
}

void TextLayout::textEdited(const TextEdit& edit)
{
    if (edit.linesRemoved == 1 && edit.linesAdded == 1 && longLines_.find(edit.firstLine) != nullptr) {
        longLineEdited(edit);
        return;
    }
    const qsizetype shift = edit.linesAdded - edit.linesRemoved;
    // Pieces of the touched lines are laid out anew, those behind keep their layout under another line number.
    pieces_.erase(pieces_.lower_bound({edit.firstLine, 0}),
                  pieces_.lower_bound({edit.firstLine + edit.linesRemoved, 0}));
    if (shift != 0) {
        std::map<PieceKey, std::unique_ptr<LaidOutPiece>> moved;
        for (auto piece = pieces_.lower_bound({edit.firstLine, 0}); piece != pieces_.end();) {
            auto node = pieces_.extract(piece++);
            node.key().line += shift;
            moved.insert(moved.end(), std::move(node));
        }
        pieces_.merge(moved);
    }
    longLines_.linesReplaced(edit);
    reestimate(edit.firstLine, edit.linesRemoved, edit.linesAdded);
}

void TextLayout::longLineEdited(const TextEdit& edit)
{
    const qsizetype line = edit.firstLine;
    const TextRange content = lineContent(line);
    LinePieces& pieces = *longLines_.find(line);
    const qsizetype editStart = edit.range.location - content.location;
    const std::size_t first = pieces.pieceAt(std::max<qsizetype>(0, editStart - 1));
    const std::size_t last = pieces.pieceAt(editStart + edit.range.length);
    const std::size_t oldCount = pieces.starts.size();

    // Only the touched pieces are cut anew. Those behind keep their cuts and their layout under another number.
    const qsizetype from = pieces.starts[first];
    const qsizetype to = last + 1 < oldCount ? pieces.starts[last + 1] + edit.changeInLength() : content.length;
    LinePieces fresh = cutLine({content.location + from, to - from});
    for (qsizetype& start : fresh.starts) {
        start += from;
    }
    if (to == from && oldCount > last - first + 1) {
        fresh = {};
    }
    const qsizetype shift = static_cast<qsizetype>(fresh.starts.size()) - static_cast<qsizetype>(last - first + 1);
    for (std::size_t piece = last + 1; piece < oldCount; ++piece) {
        pieces.starts[piece] += edit.changeInLength();
    }
    const auto replaceIn = [first, last](auto& list, const auto& with) {
        const auto at =
            list.erase(list.begin() + static_cast<qsizetype>(first), list.begin() + static_cast<qsizetype>(last) + 1);
        list.insert(at, with.begin(), with.end());
    };
    replaceIn(pieces.starts, fresh.starts);
    replaceIn(pieces.rows, fresh.rows);

    pieces_.erase(pieces_.lower_bound({line, first}), pieces_.lower_bound({line, last + 1}));
    if (shift != 0) {
        std::map<PieceKey, std::unique_ptr<LaidOutPiece>> moved;
        for (auto piece = pieces_.lower_bound({line, first}); piece != pieces_.lower_bound({line + 1, 0});) {
            auto node = pieces_.extract(piece++);
            node.key().piece = static_cast<std::size_t>(static_cast<qsizetype>(node.key().piece) + shift);
            moved.insert(moved.end(), std::move(node));
        }
        pieces_.merge(moved);
    }
    table_.setRows(line, static_cast<int>(pieces.rowCount()));
    if (content.length <= longestPiece) {
        // The line is short enough to be one piece again.
        pieces_.erase(pieces_.lower_bound({line, 0}), pieces_.lower_bound({line + 1, 0}));
        longLines_.erase(line);
        reestimate(line, 1, 1);
    }
}

void TextLayout::colorsChanged(TextRange range)
{
    for (auto& [key, piece] : pieces_) {
        const TextRange units = pieceRange(key);
        if (units.end() > range.location && units.location < range.end()) {
            piece->colorsAreStale = true;
        }
    }
}

void TextLayout::estimateAll()
{
    longLines_.clear();
    const LineIndex& lines = storage_.lines();
    std::vector<int> rows(static_cast<std::size_t>(lines.lineCount()));
    for (qsizetype line = 0; line < lines.lineCount(); ++line) {
        rows[static_cast<std::size_t>(line)] = estimateLine(line);
    }
    table_.assign(rows);
    // What is laid out already is known better.
    for (const auto& [key, piece] : pieces_) {
        piece->wrappedFor = -1;
    }
}

int TextLayout::estimatedRows(qsizetype units) const
{
    const auto columns = std::max<qsizetype>(1, static_cast<qsizetype>(metrics_.width / advance_));
    return static_cast<int>(std::max<qsizetype>(1, (units + columns - 1) / columns));
}

int TextLayout::estimateLine(qsizetype line)
{
    const LineIndex& lines = storage_.lines();
    const qsizetype units = lines.end(line) - lines.start(line);
    if (units <= longestPiece) {
        // A terminator of one unit is as good as always there.
        return estimatedRows(std::max<qsizetype>(0, units - 1));
    }
    const TextRange content = lineContent(line);
    if (content.length <= longestPiece) {
        return estimatedRows(content.length);
    }
    LinePieces pieces = cutLine(content);
    const auto rows = static_cast<int>(pieces.rowCount());
    longLines_.insert(line, std::move(pieces));
    return rows;
}

void TextLayout::reestimate(qsizetype first, qsizetype removed, qsizetype added)
{
    std::vector<int> rows;
    rows.reserve(static_cast<std::size_t>(added));
    for (qsizetype line = first; line < first + added; ++line) {
        rows.push_back(estimateLine(line));
    }
    table_.replaceLines(first, removed, rows);
}

LinePieces TextLayout::cutLine(TextRange range) const
{
    LinePieces pieces;
    pieces.starts = cutIntoPieces(QStringView(storage_.text()).mid(range.location, range.length));
    for (std::size_t piece = 0; piece < pieces.starts.size(); ++piece) {
        const qsizetype end = piece + 1 < pieces.starts.size() ? pieces.starts[piece + 1] : range.length;
        pieces.rows.push_back(estimatedRows(end - pieces.starts[piece]));
    }
    return pieces;
}

TextRange TextLayout::lineContent(qsizetype line) const
{
    const LineIndex& lines = storage_.lines();
    const qsizetype start = lines.start(line);
    qsizetype end = lines.end(line);
    const QString& text = storage_.text();
    if (line + 1 < lines.lineCount()) {
        end -= end - start >= 2 && text[end - 1] == u'\n' && text[end - 2] == u'\r' ? 2 : 1;
    }
    return {start, end - start};
}

std::size_t TextLayout::pieceCount(qsizetype line) const
{
    const LinePieces* pieces = longLines_.find(line);
    return pieces != nullptr ? pieces->starts.size() : 1;
}

TextRange TextLayout::pieceRange(PieceKey key) const
{
    const TextRange content = lineContent(key.line);
    const LinePieces* pieces = longLines_.find(key.line);
    if (pieces == nullptr) {
        return content;
    }
    const qsizetype start = pieces->starts[key.piece];
    const qsizetype end = key.piece + 1 < pieces->starts.size() ? pieces->starts[key.piece + 1] : content.length;
    return {content.location + start, end - start};
}

TextLayout::PieceKey TextLayout::pieceAt(CaretPlace place) const
{
    const qsizetype line = storage_.lines().lineAt(place.offset);
    const LinePieces* pieces = longLines_.find(line);
    if (pieces == nullptr) {
        return {line, 0};
    }
    const qsizetype inLine = place.offset - storage_.lines().start(line);
    const std::size_t piece = pieces->pieceAt(inLine);
    return {line, place.atRowEnd && piece > 0 && pieces->starts[piece] == inLine ? piece - 1 : piece};
}

TextLayout::PlacedPiece TextLayout::ensure(PieceKey key)
{
    const TextRange range = pieceRange(key);
    std::unique_ptr<LaidOutPiece>& piece = pieces_[key];
    if (!piece) {
        piece = makePiece(key, range);
        ++layoutsMade_;
        noteRows(key, piece->rowCount());
    } else if (piece->wrappedFor != metrics_.width) {
        piece->rewrap(metrics_);
        ++layoutsMade_;
        noteRows(key, piece->rowCount());
    }
    if (piece->colorsAreStale) {
        piece->setColors(colorsOf(range), metrics_);
    }
    piece->lastUse = ++clock_;
    return {piece.get(), key, range, key.piece + 1 == pieceCount(key.line)};
}

std::unique_ptr<LaidOutPiece> TextLayout::makePiece(PieceKey key, TextRange range)
{
    std::optional<Preedit> composed;
    if (preedit_ && pieceAt({preedit_->offset, false}) == key) {
        composed = preedit_;
        composed->offset = std::clamp<qsizetype>(composed->offset - range.location, 0, range.length);
    }
    return std::make_unique<LaidOutPiece>(storage_.substring(range), colorsOf(range), composed ? &*composed : nullptr,
                                          metrics_);
}

std::vector<ColorRun> TextLayout::colorsOf(TextRange range) const
{
    std::vector<ColorRun> colors = storage_.foreground().runsIn(range);
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
    if (pieces_.size() <= keptPieces) {
        return;
    }
    std::vector<quint64> uses;
    uses.reserve(pieces_.size());
    for (const auto& [key, piece] : pieces_) {
        uses.push_back(piece->lastUse);
    }
    const auto oldest = uses.begin() + static_cast<qsizetype>(uses.size() - keptPieces / 2);
    std::nth_element(uses.begin(), oldest, uses.end());
    std::erase_if(pieces_, [limit = *oldest](const auto& entry) { return entry.second->lastUse < limit; });
}

qreal TextLayout::topOfPiece(PieceKey key) const
{
    const LinePieces* pieces = longLines_.find(key.line);
    const qsizetype before = pieces != nullptr ? pieces->rowsBefore(key.piece) : 0;
    return topOfLine(key.line) + static_cast<qreal>(before) * metrics_.rowHeight;
}

TextRow TextLayout::rowIn(const PlacedPiece& piece, int row) const
{
    TextRange units = piece.layout->rowRange(row);
    units.location += piece.range.location;
    return {piece.key.line, units, topOfPiece(piece.key) + row * metrics_.rowHeight, piece.key.piece == 0 && row == 0,
            piece.isLastOfLine && row + 1 == piece.layout->rowCount()};
}

std::pair<TextLayout::PlacedPiece, int> TextLayout::pieceOf(const TextRow& row)
{
    // A row without units is the only one of its line, unless a composition fills it.
    const PlacedPiece piece = ensure(pieceAt({row.range.location, false}));
    int number = piece.layout->rowAt(row.range.location - piece.range.location, false);
    while (number > 0 && piece.layout->rowRange(number).location + piece.range.location > row.range.location) {
        --number;
    }
    return {piece, number};
}

} // namespace kelm
