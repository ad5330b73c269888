#include "text/layout/laid_out_piece.h"

#include "text/layout/control_signs.h"

#include <QPainter>

#include <cmath>

namespace kelm {

namespace {

QList<QTextLayout::FormatRange> formatsFor(const std::vector<ColorRun>& colors)
{
    QList<QTextLayout::FormatRange> formats;
    formats.reserve(static_cast<qsizetype>(colors.size()));
    for (const ColorRun& run : colors) {
        QTextLayout::FormatRange format;
        format.start = static_cast<int>(run.range.location);
        format.length = static_cast<int>(run.range.length);
        format.format.setForeground(QColor::fromRgba(run.color));
        formats.append(format);
    }
    return formats;
}

/// Whether text may run from the right. Surrogates are not looked into: some of those scripts do.
bool mayRunLeft(QStringView text)
{
    return std::any_of(text.begin(), text.end(), [](QChar unit) {
        if (unit.unicode() < 0x0590) {
            return false;
        }
        switch (unit.direction()) {
        case QChar::DirR:
        case QChar::DirAL:
        case QChar::DirRLE:
        case QChar::DirRLO:
        case QChar::DirRLI:
            return true;
        default:
            return unit.isSurrogate();
        }
    });
}

} // namespace

LaidOutPiece::LaidOutPiece(const QString& text, const std::vector<ColorRun>& colors, const Preedit* preedit,
                           const RowMetrics& metrics)
    : layout_(metrics.showsControls ? withControlSigns(text) : text, metrics.font)
{
    if (metrics.showsControls) {
        signFormats_ = controlSignFormats(text);
    }
    layout_.setCacheEnabled(true);
    if (preedit != nullptr) {
        preeditStart_ = static_cast<int>(preedit->offset);
        preeditLength_ = static_cast<int>(preedit->text.size());
        preeditCursor_ = std::clamp(preedit->cursor.value_or(preeditLength_), 0, preeditLength_);
        layout_.setPreeditArea(preeditStart_, preedit->text);
        for (QTextLayout::FormatRange format : preedit->formats) {
            // Input methods are other people's programs: what they say is kept within their text.
            const int start = std::clamp(format.start, 0, preeditLength_);
            format.length = std::clamp(format.start + format.length, start, preeditLength_) - start;
            format.start = start + preeditStart_;
            preeditFormats_.append(format);
        }
    }
    setColors(colors, metrics);
}

TextRange LaidOutPiece::rowRange(int row) const
{
    const QTextLine line = layout_.lineAt(row);
    const qsizetype start = fromLayout(line.textStart());
    return {start, fromLayout(line.textStart() + line.textLength()) - start};
}

int LaidOutPiece::rowAt(qsizetype offset, bool atRowEnd) const
{
    const int position = toLayout(offset);
    const QTextLine line = layout_.lineForTextPosition(position);
    const int row = line.isValid() ? line.lineNumber() : layout_.lineCount() - 1;
    const int wanted = atRowEnd && row > 0 && layout_.lineAt(row).textStart() == position ? row - 1 : row;
    return std::min(wanted, rowCount() - 1);
}

int LaidOutPiece::lastRowFrom(qsizetype offset) const
{
    const QTextLine line = layout_.lineForTextPosition(toLayout(offset));
    int row = line.isValid() ? line.lineNumber() : layout_.lineCount() - 1;
    for (; row > 0; --row) {
        const int start = layout_.lineAt(row).textStart();
        const bool touchesPreedit =
            preeditLength_ > 0 && start > preeditStart_ && start <= preeditStart_ + preeditLength_;
        if (!touchesPreedit && fromLayout(start) <= offset) {
            break;
        }
    }
    return row;
}

qreal LaidOutPiece::xAt(qsizetype offset, int row) const
{
    return layout_.lineAt(row).cursorToX(toLayout(offset));
}

qsizetype LaidOutPiece::offsetAt(qreal x, int row) const
{
    const QTextLine line = layout_.lineAt(row);
    int position = line.xToCursor(x);
    // The toolkit never answers with the end of a wrapped row, since that is the next row's start for it.
    const int end = line.textStart() + line.textLength();
    if (std::abs(x - line.cursorToX(end)) < std::abs(x - line.cursorToX(position))) {
        position = end;
    }
    return fromLayout(position);
}

std::vector<XSpan> LaidOutPiece::spansOf(TextRange range, int row) const
{
    const QTextLine line = layout_.lineAt(row);
    const int from = std::max(toLayout(range.location), line.textStart());
    const int to = std::min(toLayout(range.end()), line.textStart() + line.textLength());
    if (from >= to) {
        return {};
    }
    if (!mayRunLeft(layout_.text())) {
        return {{line.cursorToX(from), line.cursorToX(to)}};
    }
    std::vector<XSpan> spans;
    for (int at = from; at < to;) {
        const int next = std::max(at + 1, layout_.nextCursorPosition(at));
        const qreal leading = line.cursorToX(at, QTextLine::Leading);
        const qreal trailing = line.cursorToX(at, QTextLine::Trailing);
        const XSpan span{std::min(leading, trailing), std::max(leading, trailing)};
        if (!spans.empty() && span.left == spans.back().right) {
            spans.back().right = span.right;
        } else if (!spans.empty() && span.right == spans.back().left) {
            spans.back().left = span.left;
        } else {
            spans.push_back(span);
        }
        at = next;
    }
    return spans;
}

std::pair<qreal, int> LaidOutPiece::preeditCaret() const
{
    const int position = preeditStart_ + preeditCursor_;
    const QTextLine line = layout_.lineForTextPosition(position);
    return line.isValid() ? std::pair{line.cursorToX(position), line.lineNumber()} : std::pair{qreal(0), 0};
}

void LaidOutPiece::rewrap(const RowMetrics& metrics)
{
    makeRows(metrics);
}

QList<QTextLayout::FormatRange> LaidOutPiece::formatsOf(const std::vector<ColorRun>& colors) const
{
    QList<QTextLayout::FormatRange> formats = formatsFor(colors) + signFormats_;
    if (preeditLength_ > 0) {
        // Formats count over the text with the composition in it: what stands behind moves on, what goes across is
        // split.
        QList<QTextLayout::FormatRange> split;
        for (QTextLayout::FormatRange format : std::as_const(formats)) {
            const int before = std::clamp(preeditStart_ - format.start, 0, format.length);
            if (before > 0) {
                QTextLayout::FormatRange head = format;
                head.length = before;
                split.append(head);
            }
            if (before < format.length) {
                format.start += before + preeditLength_;
                format.length -= before;
                split.append(format);
            }
        }
        formats = split + preeditFormats_;
    }
    return formats;
}

void LaidOutPiece::setColors(const std::vector<ColorRun>& colors, const RowMetrics& metrics)
{
    const QList<QTextLayout::FormatRange> formats = formatsOf(colors);
    colorsAreStale = false;
    if (layout_.lineCount() == 0 || formats != layout_.formats()) {
        layout_.setFormats(formats);
        makeRows(metrics);
    }
}

void LaidOutPiece::paintRow(QPainter& painter, QPointF origin, int row) const
{
    // Drawing the whole layout with a clip paints the row before as well.
    layout_.lineAt(row).draw(&painter, origin);
}

void LaidOutPiece::makeRows(const RowMetrics& metrics)
{
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    option.setAlignment(Qt::AlignLeft | Qt::AlignAbsolute);
    option.setTabStopDistance(metrics.tabStop);
    layout_.setTextOption(option);
    layout_.beginLayout();
    qreal top = 0;
    for (;;) {
        QTextLine line = layout_.createLine();
        if (!line.isValid()) {
            break;
        }
        line.setLineWidth(metrics.width);
        // A fallback font may stand higher than the editor's own: the base line is what all rows share.
        line.setPosition({0, top + metrics.baseline - std::round(line.ascent())});
        top += metrics.rowHeight;
    }
    layout_.endLayout();
    wrappedFor = metrics.width;
}

int LaidOutPiece::toLayout(qsizetype offset) const
{
    const int position = static_cast<int>(offset);
    return preeditLength_ > 0 && position > preeditStart_ ? position + preeditLength_ : position;
}

qsizetype LaidOutPiece::fromLayout(int position) const
{
    if (preeditLength_ == 0 || position <= preeditStart_) {
        return position;
    }
    return std::max(preeditStart_, position - preeditLength_);
}

} // namespace kelm
