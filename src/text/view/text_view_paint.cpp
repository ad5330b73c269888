// How a text view paints: only the rows that meet what has to be painted.
#include "text/view/text_view.h"

#include <QPaintEvent>
#include <QPainter>

#include <cmath>

namespace kelm {

namespace {

constexpr qreal caretWidth = 2;

} // namespace

void TextView::paintEvent(QPaintEvent* event)
{
    QPainter painter(viewport());
    const QRectF dirty = event->rect();
    painter.fillRect(dirty, colors_.background);
    painter.setPen(colors_.text);
    std::vector<TextRow> rows = visibleRows();
    const QPointF origin(pageOrigin().x(), 0);
    for (const TextRow& row : rows) {
        const QRectF box(0, row.top, viewport()->width(), layout_.rowHeight());
        // Letters of some scripts reach out of their row.
        if (!box.adjusted(0, -layout_.rowHeight() / 2, 0, layout_.rowHeight() / 2).intersects(dirty)) {
            continue;
        }
        paintRowBackground(painter, row, storage_.background().runsIn(row.range));
        layout_.paintRow(painter, row, origin);
    }
    paintCarets(painter);
}

void TextView::paintRowBackground(QPainter& painter, const TextRow& row, const std::vector<ColorRun>& marks)
{
    for (const ColorRun& mark : marks) {
        paintRange(painter, row, mark.range, QColor::fromRgba(mark.color), false);
    }
    // Highlights are in order: those of this row are found without a look at all of them.
    const auto first = std::partition_point(highlights_.begin(), highlights_.end(), [&row](const TextHighlight& mark) {
        return mark.range.end() <= row.range.location;
    });
    for (auto mark = first; mark != highlights_.end() && mark->range.location < row.range.end(); ++mark) {
        paintRange(painter, row, mark->range, mark->color, false);
    }
    for (const Selection& selection : editor_.selections().all()) {
        paintRange(painter, row, selection.range(), colors_.selection, true);
    }
}

void TextView::paintRange(QPainter& painter, const TextRow& row, TextRange range, const QColor& color, bool toEdge)
{
    const bool startsBefore = range.location < row.range.location;
    const bool endsBehind = range.end() > row.range.end();
    if (range.isEmpty() || range.end() < row.range.location || range.location > row.range.end() ||
        (range.end() == row.range.location && !row.range.isEmpty()) ||
        (range.end() == row.range.location && startsBefore)) {
        return;
    }
    if (range.location == row.range.end() && !row.isLastOfLine) {
        return;
    }
    const qreal left = pageOrigin().x();
    const qreal from = startsBefore ? 0 : layout_.xInRow(row, range.location);
    const qreal to = endsBehind && toEdge ? viewport()->width() - left : layout_.xInRow(row, range.end());
    const qreal right = viewport()->width() - inset_.width();
    const QRectF box(left + std::min(from, to), row.top, std::abs(to - from), layout_.rowHeight());
    painter.fillRect(box.intersected(QRectF(0, row.top, right, layout_.rowHeight())), color);
}

QRectF TextView::caretBox(CaretPlace place)
{
    const QRectF place0 = caretRect(place);
    // A blank that hangs over the edge keeps its caret within the view.
    const qreal right = viewport()->width() - caretWidth;
    return {std::clamp<qreal>(std::round(place0.x() - caretWidth / 2), 0, std::max<qreal>(0, right)), place0.y(),
            caretWidth, place0.height()};
}

void TextView::paintCarets(QPainter& painter)
{
    if (dropCaret_) {
        painter.fillRect(caretBox(*dropCaret_), colors_.insertionPoint);
    }
    if (!hasFocus() || !isCaretOn_ || isReadOnly()) {
        return;
    }
    if (isComposing()) {
        if (const auto composed = layout_.preeditCaretRect()) {
            QRectF box = composed->translated(pageOrigin());
            box.setWidth(caretWidth);
            painter.fillRect(box, colors_.insertionPoint);
        }
        return;
    }
    const QRectF visible = visibleRect();
    for (const Selection& selection : editor_.selections().all()) {
        // Only what can be on screen is asked for: the layout of a far line costs time.
        const qreal lineTop = layout_.topOfLine(storage_.lines().lineAt(selection.head.offset));
        const qreal nextTop = layout_.topOfLine(storage_.lines().lineAt(selection.head.offset) + 1);
        if (selection.isCaret() && nextTop + 2 * inset_.height() >= visible.top() && lineTop <= visible.bottom()) {
            painter.fillRect(caretBox(selection.head), colors_.insertionPoint);
        }
    }
}

} // namespace kelm
