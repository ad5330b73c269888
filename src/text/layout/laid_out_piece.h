// One line, or one piece of a long line, laid out in rows.
#pragma once

#include "text/storage/color_runs.h"
#include "text/storage/text_range.h"

#include <QTextLayout>

#include <algorithm>
#include <limits>
#include <optional>
#include <vector>

class QPainter;

namespace kelm {

/// What an input method is composing: text that is shown at an offset but does not belong to the storage yet.
struct Preedit
{
    qsizetype offset = 0;
    QString text;
    /// Ranges count within `text`.
    QList<QTextLayout::FormatRange> formats;
    /// Where the input method's caret stands within `text`; absent when it is hidden.
    std::optional<int> cursor;
};

/// A stretch of a row, in x.
struct XSpan
{
    qreal left = 0;
    qreal right = 0;
};

/// How rows are made: all that makes two layouts of the same text differ.
struct RowMetrics
{
    QFont font;
    qreal width = 0;
    qreal rowHeight = 0;
    /// From the top of a row to the base line of its letters.
    qreal baseline = 0;
    qreal tabStop = 0;
    /// Whether control characters are shown by signs.
    bool showsControls = false;
};

/// The layout of one piece of text without a line terminator. Offsets count from the piece's start and leave a
/// composition out of account; x counts from the left edge of the text, y from the top of the piece.
///
/// A piece may be laid out with some of the text that follows it, whose rows are then hidden.
class LaidOutPiece
{
public:
    LaidOutPiece(const QString& text, const std::vector<ColorRun>& colors, const Preedit* preedit,
                 const RowMetrics& metrics);

    /// The rows that are shown; all answers are about them alone.
    int rowCount() const { return std::min(layout_.lineCount(), shownRows_); }
    /// The last row that begins at or before an offset, hidden or not. Rows that begin within a composition or right
    /// behind it are left out: a composition belongs to one piece. 0 is answered where there is no other.
    int lastRowFrom(qsizetype offset) const;
    /// Hides all rows but the first `rows`, one at least.
    void showRows(int rows) { shownRows_ = rows; }
    /// The units that are laid out, hidden ones included.
    qsizetype length() const { return layout_.text().size(); }
    /// The units of a row, a blank at its end included.
    TextRange rowRange(int row) const;
    /// The row that shows an offset: at the border of two rows the first of them when `atRowEnd`, else the second.
    int rowAt(qsizetype offset, bool atRowEnd) const;
    qreal xAt(qsizetype offset, int row) const;
    qsizetype offsetAt(qreal x, int row) const;
    /// Where the units of a range stand in a row. Text of both directions in one row makes several spans.
    std::vector<XSpan> spansOf(TextRange range, int row) const;
    /// Where the composition's caret stands, in x, and in which row.
    std::pair<qreal, int> preeditCaret() const;

    void rewrap(const RowMetrics& metrics);
    bool hasColors(const std::vector<ColorRun>& colors) const { return formatsOf(colors) == layout_.formats(); }
    void setColors(const std::vector<ColorRun>& colors, const RowMetrics& metrics);
    /// Paints one row, with the piece's top left at `origin`.
    void paintRow(QPainter& painter, QPointF origin, int row) const;

    /// Set by the owner: which width the rows were made for, and whether the colours are those of the text.
    qreal wrappedFor = 0;
    bool colorsAreStale = false;
    quint64 lastUse = 0;

private:
    QList<QTextLayout::FormatRange> formatsOf(const std::vector<ColorRun>& colors) const;
    void makeRows(const RowMetrics& metrics);
    int toLayout(qsizetype offset) const;
    qsizetype fromLayout(int position) const;

    QTextLayout layout_;
    int shownRows_ = std::numeric_limits<int>::max();
    int preeditStart_ = -1;
    int preeditLength_ = 0;
    int preeditCursor_ = 0;
    QList<QTextLayout::FormatRange> signFormats_;
    QList<QTextLayout::FormatRange> preeditFormats_;
};

} // namespace kelm
