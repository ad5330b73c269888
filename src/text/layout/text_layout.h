// Where the text of a storage stands on an endless page of a given width.
#pragma once

#include "text/layout/laid_out_piece.h"
#include "text/layout/line_pieces.h"
#include "text/layout/row_table.h"
#include "text/storage/text_storage.h"

#include <QFont>
#include <QObject>
#include <QPointF>
#include <QRectF>

#include <map>
#include <memory>
#include <optional>
#include <vector>

class QPainter;

namespace kelm {

/// One row as it stands on the page.
struct TextRow
{
    /// The line it belongs to, from 0.
    qsizetype line = 0;
    /// Its units, without the line's terminator.
    TextRange range;
    qreal top = 0;
    bool isFirstOfLine = false;
    bool isLastOfLine = false;
    /// For the layout: the piece of the line, and which of the piece's rows it is.
    std::size_t piece = 0;
    int rowInPiece = 0;
};

/// A height on the page that stays where it is when lines above turn out to have other rows: a distance, possibly
/// negative, from the top of the line that begins at `offset`, or of the piece of a long line that was cut there. The
/// cut stays where it is when the piece turns out to begin with a row before it, and its first row holds it.
struct PagePlace
{
    qsizetype offset = 0;
    qreal distance = 0;

    friend bool operator==(PagePlace, PagePlace) = default;
};

/// A caret's place between two units. At the border of two rows of one line the same offset stands in both.
struct CaretPlace
{
    qsizetype offset = 0;
    bool atRowEnd = false;

    friend bool operator==(CaretPlace, CaretPlace) = default;
};

/// Rows of one fixed height, wrapped at the page's width. Lines are laid out when they are asked for and kept while
/// they are near; for all others the number of rows is an estimate from their length. When a line turns out to have
/// another number of rows, everything below it moves: whoever shows a part of the page remembers its place as a
/// `PagePlace`, not as a y.
///
/// Coordinates are device-independent pixels from the page's top left. A long line is laid out in pieces, each
/// beginning a row. A piece that is laid out ends where a row is full, so that its end is not seen. Where the piece
/// above is not laid out yet, a piece begins at a place of its own; once that one is, its rows are broken anew.
/// Main thread only.
class TextLayout final : public QObject, private RowMeasure
{
    Q_OBJECT

public:
    explicit TextLayout(TextStorage& storage, QObject* parent = nullptr);
    ~TextLayout() override;

    const TextStorage& storage() const { return storage_; }
    const QFont& font() const { return metrics_.font; }
    /// Sets the font and the height of the rows: the font's own height, rounded up, where none is given.
    void setFont(const QFont& font, std::optional<qreal> rowHeight = {});
    qreal rowHeight() const { return metrics_.rowHeight; }
    /// The width of one digit.
    qreal advance() const { return advance_; }
    qreal width() const { return metrics_.width; }
    void setWidth(qreal width);

    /// Whether control characters are shown by signs that have a width; not so at first. The text stays as it is.
    bool showsControlCharacters() const { return metrics_.showsControls; }
    void setShowsControlCharacters(bool shows);

    qreal height() const { return static_cast<qreal>(table_.rowCount()) * metrics_.rowHeight; }
    /// The top of a line's first row.
    qreal topOfLine(qsizetype line) const { return static_cast<qreal>(table_.firstRow(line)) * metrics_.rowHeight; }
    /// The line at a y, the first or last one outside the page.
    qsizetype lineAtY(qreal y) const;
    PagePlace pagePlaceAt(qreal y) const;
    qreal yOf(PagePlace place) const;
    /// The place `distance` further down, or up. What lies between is laid out, so that no estimate is part of the way.
    PagePlace movedBy(PagePlace place, qreal distance);
    /// A place carried over an edit that the layout has taken in.
    PagePlace carriedOver(PagePlace place, const TextEdit& edit);

    /// The rows that meet top to bottom, laid out. What is above `top` is not laid out and keeps its estimate.
    std::vector<TextRow> rowsBetween(qreal top, qreal bottom);
    /// The row that shows a caret's place.
    TextRow rowOf(CaretPlace place);
    /// A rectangle without width at a caret's place, as high as a row.
    QRectF caretRect(CaretPlace place);
    CaretPlace placeAt(QPointF point);
    /// The x at which an offset stands in a row.
    qreal xInRow(const TextRow& row, qsizetype offset);
    /// Where the units of a range stand in a row, in x.
    std::vector<XSpan> spansInRow(const TextRow& row, TextRange range);
    /// The place in a row that is nearest to an x.
    CaretPlace placeInRow(const TextRow& row, qreal x);
    /// The row above or below, absent at the page's end.
    std::optional<TextRow> neighbour(const TextRow& row, int direction);

    /// Paints the letters of rows in their colours; where they have none, in the painter's pen.
    void paintRow(QPainter& painter, const TextRow& row, QPointF pageOrigin);

    /// Shows a composition, or none.
    void setPreedit(std::optional<Preedit> preedit);
    const std::optional<Preedit>& preedit() const { return preedit_; }
    /// Where the composition's own caret stands; absent without a composition or where it hides its caret.
    std::optional<QRectF> preeditCaretRect();

    /// Grows whenever a row may stand at another height than before.
    quint64 rowsRevision() const { return table_.revision(); }

    /// How many pieces are laid out at the moment; for tests and benchmarks.
    std::size_t cachedPieces() const { return pieces_.size(); }
    /// How many pieces have been laid out or wrapped since the start; for tests and benchmarks.
    quint64 layoutsMade() const { return layoutsMade_; }

Q_SIGNALS:
    /// Lines laid out just now take another number of rows than was estimated.
    void rowsCorrected();

private:
    struct PieceKey
    {
        qsizetype line;
        std::size_t piece;

        // NOLINTNEXTLINE(modernize-use-nullptr): the check takes the comparison that is made here for one with 0.
        friend auto operator<=>(const PieceKey&, const PieceKey&) = default;
    };
    using Pieces = std::map<PieceKey, std::unique_ptr<LaidOutPiece>>;
    /// A piece with its place: units from the start of the text, and its first row's top.
    struct PlacedPiece
    {
        LaidOutPiece* layout;
        PieceKey key;
        TextRange range;
        bool isLastOfLine;
    };

    void textEdited(const TextEdit& edit);
    void longLineEdited(const TextEdit& edit);
    void keepCuts(const TextEdit& edit, const LinePieces& before);
    void movePreedit(const TextEdit& edit);
    void colorsChanged(TextRange range);
    // RowMeasure
    std::vector<int> rowsOfLines(qsizetype first, qsizetype count) override;
    qsizetype guessedRows(qsizetype first, qsizetype count) override;
    void guessCorrected() override { Q_EMIT rowsCorrected(); }

    void estimateAll();
    int estimatedRows(qsizetype units) const;
    int estimateLine(qsizetype line, TextRange extent);
    void reestimate(qsizetype first, qsizetype removed, qsizetype added);
    LinePieces cutLine(TextRange range) const;
    /// The same for pieces that were edited, which may be longer before they are cut.
    LinePieces cutEdited(TextRange range) const;
    void estimatePieces(LinePieces& pieces, qsizetype length) const;

    /// A line's units without its terminator.
    TextRange lineContent(qsizetype line) const { return storage_.lines().content(line); }
    /// The pieces of a line, if it is a long one. Knowing that takes measuring the lines around it.
    const LinePieces* piecesOf(qsizetype line) const;
    std::size_t pieceCount(qsizetype line) const;
    std::optional<PieceKey> nextPiece(PieceKey key) const;
    std::optional<PieceKey> previousPiece(PieceKey key) const;
    /// The piece at a row counted from the line's first.
    PieceKey pieceOfRow(RowPosition position) const;
    TextRange pieceRange(PieceKey key) const;
    /// What a place in a piece counts from: its line's start, or where the line was cut.
    qsizetype cutOf(PieceKey key) const;
    PieceKey pieceAt(CaretPlace place) const;
    /// The piece, laid out for the width and colours of now.
    PlacedPiece ensure(PieceKey key);
    /// The piece that holds a place. Laying a piece out may show that the place belongs to the next one.
    PlacedPiece ensureAt(CaretPlace place);
    std::unique_ptr<LaidOutPiece> layOut(PieceKey key);
    /// Lays out a piece that is not its line's last together with some of what follows, and moves its end to the last
    /// row that begins at or before the next cut.
    std::unique_ptr<LaidOutPiece> layOutToRowEnd(PieceKey key);
    /// Moves the start of a piece that is not its line's first, counted from the line's start.
    void moveStart(PieceKey key, qsizetype start);
    /// Forgets the layout of the piece that holds an offset, counted from the line's start, and of those before that
    /// end where they do because of what stands there.
    void forgetPiecesThatSee(qsizetype line, qsizetype offset);
    std::unique_ptr<LaidOutPiece> makePiece(qsizetype line, TextRange range);
    std::vector<ColorRun> colorsOf(TextRange range) const;
    void noteRows(PieceKey key, int rows);
    void dropFarPieces();
    /// Gives the pieces from `first` to before `last` other keys, which stay in order and meet no other's.
    template <typename Rekey>
    void rekeyPieces(PieceKey first, PieceKey last, Rekey rekey);
    qreal topOfPiece(PieceKey key) const;
    TextRow rowIn(const PlacedPiece& piece, int row) const;
    TextRow rowIn(const PlacedPiece& piece, int row, qreal top) const;
    /// The piece that a row belongs to, and which of the piece's rows it is.
    std::pair<PlacedPiece, int> pieceOf(const TextRow& row);

    TextStorage& storage_;
    RowMetrics metrics_;
    qreal advance_ = 1;
    RowTable table_{this};
    LongLines longLines_;
    Pieces pieces_;
    std::optional<Preedit> preedit_;
    quint64 clock_ = 0;
    quint64 layoutsMade_ = 0;
};

} // namespace kelm
