// How a text view paints: only the rows that meet what has to be painted.
#include "text/view/text_view.h"

#include <QPaintEvent>
#include <QPainter>

#include <algorithm>
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
    paintCarets(painter, rows);
    painted_ = {scrollY(), layout_.rowsRevision(), placesOfCarets(rows)};
}

std::optional<QRegion> TextView::placesOfCarets(const std::vector<TextRow>& rows)
{
    if (isComposing() || dropCaret_ || editor_.selections().hasText()) {
        return {};
    }
    QRegion places;
    for (const QRectF& box : caretBoxes(rows)) {
        places += box.toAlignedRect().adjusted(-1, -1, 1, 1);
    }
    return places;
}

void TextView::updateCarets()
{
    const bool isSame = painted_.carets && painted_.scrollY == scrollY() && editor_.selections().isSingle();
    const std::optional<QRegion> now = isSame ? placesOfCarets(visibleRows()) : std::nullopt;
    if (now && painted_.rowsRevision == layout_.rowsRevision()) {
        viewport()->update(*painted_.carets + *now);
        // Those that were painted are covered when the next painting comes, whatever moves until then.
        painted_.carets = *painted_.carets + *now;
    } else {
        viewport()->update();
    }
}

std::optional<QRect> TextView::placeOfEdit(const TextEdit& edit)
{
    if (edit.linesRemoved != 1 || edit.linesAdded != 1 || isComposing() || !painted_.carets ||
        painted_.scrollY != scrollY()) {
        return {};
    }
    // Laid out now, its line may turn out to have other rows.
    visibleRows();
    if (painted_.rowsRevision != layout_.rowsRevision() || painted_.scrollY != scrollY()) {
        return {};
    }
    // Letters of some scripts reach out of their row.
    const qreal reach = layout_.rowHeight() / 2;
    const qreal top = layout_.topOfLine(edit.firstLine) + pageOrigin().y();
    const qreal bottom = layout_.topOfLine(edit.firstLine + 1) + pageOrigin().y();
    return QRectF(0, top - reach, viewport()->width(), bottom - top + 2 * reach).toAlignedRect();
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
    const std::vector<Selection>& all = editor_.selections().all();
    auto selection = std::partition_point(all.begin(), all.end(), [&row](const Selection& candidate) {
        return candidate.range().end() < row.range.location;
    });
    for (; selection != all.end() && selection->range().location <= row.range.end(); ++selection) {
        paintRange(painter, row, selection->range(), colors_.selection, true);
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
    const QPointF topLeft(pageOrigin().x(), row.top);
    const QRectF paintable(0, row.top, viewport()->width() - inset_.width(), layout_.rowHeight());
    const auto fill = [&](XSpan span) {
        const QRectF box(topLeft.x() + span.left, row.top, span.right - span.left, layout_.rowHeight());
        painter.fillRect(box.intersected(paintable), color);
    };
    const qsizetype start = startsBefore ? row.range.location : range.location;
    const std::vector<XSpan> spans =
        layout_.spansInRow(row, TextRange::between(start, std::min(range.end(), row.range.end())));
    std::for_each(spans.begin(), spans.end(), fill);
    if (endsBehind && toEdge) {
        // The line end is selected too.
        qreal right = 0;
        for (const XSpan span : layout_.spansInRow(row, row.range)) {
            right = std::max(right, span.right);
        }
        fill({right, paintable.right()});
    }
}

QRectF TextView::caretBox(CaretPlace place)
{
    const QRectF line = caretRect(place);
    // A blank that hangs over the edge keeps its caret within the view.
    const qreal right = viewport()->width() - caretWidth;
    return {std::clamp<qreal>(std::round(line.x() - caretWidth / 2), 0, std::max<qreal>(0, right)), line.y(),
            caretWidth, line.height()};
}

std::vector<QRectF> TextView::caretBoxes(const std::vector<TextRow>& rows)
{
    std::vector<QRectF> boxes;
    if (isComposing()) {
        if (const auto composed = layout_.preeditCaretRect()) {
            boxes.push_back(composed->translated(pageOrigin()));
            boxes.back().setWidth(caretWidth);
        }
        return boxes;
    }
    if (rows.empty()) {
        return boxes;
    }
    // Only carets on screen are asked for their place: the layout of a far line costs time.
    const std::vector<Selection>& all = editor_.selections().all();
    auto selection = std::partition_point(all.begin(), all.end(), [&rows](const Selection& candidate) {
        return candidate.range().end() < rows.front().range.location;
    });
    for (; selection != all.end() && selection->range().location <= rows.back().range.end(); ++selection) {
        if (selection->isCaret()) {
            boxes.push_back(caretBox(selection->head));
        }
    }
    return boxes;
}

void TextView::paintCarets(QPainter& painter, const std::vector<TextRow>& rows)
{
    if (dropCaret_) {
        painter.fillRect(caretBox(*dropCaret_), colors_.insertionPoint);
    }
    if (!hasFocus() || !isCaretOn_ || isReadOnly()) {
        return;
    }
    for (const QRectF& box : caretBoxes(rows)) {
        painter.fillRect(box, colors_.insertionPoint);
    }
}

} // namespace kelm
