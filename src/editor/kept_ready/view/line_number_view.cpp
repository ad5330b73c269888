#include "editor/kept_ready/view/line_number_view.h"

#include "editor/view/numbered_rows.h"
#include "platform/desktop/named_colors.h"
#include "platform/style/view/style.h"
#include "platform/view/accessible_role.h"
#include "text/storage/text_position.h"

#include <QFontMetricsF>
#include <QMouseEvent>
#include <QPainter>

namespace kelm {

namespace {

constexpr int numberFontSize = 12;
/// A click left of this x is meant for the bookmark.
constexpr qreal bookmarkZoneWidth = 12;
constexpr qreal bookmarkSize = 6;
constexpr qreal foldBoxSize = 10;
/// Distance of the box from the left edge of its area.
constexpr qreal foldBoxMargin = 2;
/// Half the length of the strokes of a plus or a minus.
constexpr qreal signReach = 2.5;

} // namespace

LineNumberView::LineNumberView(NotificationCenter& center, QWidget* parent)
    : QWidget(parent), font(style::monospaced(numberFontSize)), center_(center)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAccessibleRole(*this, QAccessible::Graphic);
    setAccessibleName(tr("Line numbers"));
}

void LineNumberView::toggleBookmark(qsizetype line)
{
    if (bookmarks_.erase(line) == 0) {
        bookmarks_.insert(line);
    }
    update();
    center_.post(notifications::bookmarksChanged, QVariant::fromValue(static_cast<QObject*>(this)),
                 {{QStringLiteral("line"), line}});
}

void LineNumberView::drawFoldingIndicator(QPainter& painter, qreal y, qreal height, bool isFolded) const
{
    const QRectF box(width() - foldingAreaWidth + foldBoxMargin, y + (height - foldBoxSize) / 2, foldBoxSize,
                     foldBoxSize);
    const QPointF middle = box.center();
    painter.fillRect(box, QColor::fromRgbF(0.25F, 0.25F, 0.25F));
    painter.setPen(QPen(Qt::white, 1));
    painter.drawLine(middle - QPointF(signReach, 0), middle + QPointF(signReach, 0));
    if (isFolded) {
        painter.drawLine(middle - QPointF(0, signReach), middle + QPointF(0, signReach));
    }
}

void LineNumberView::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), backgroundColor);
    if (!textView) {
        return;
    }
    painter.setFont(font);
    const QFontMetricsF measure(font);
    const qreal rowHeight = textView->textLayout().rowHeight();
    const qsizetype currentLine = lineAndColumnAt(textView->storage().tree(), textView->selectedRange().location).line;
    for (const NumberedRow& row : numberedRows(*textView)) {
        if (bookmarks_.count(row.line) > 0) {
            drawBookmark(painter, row.top, rowHeight);
        }
        const bool isFoldShown = showFoldingIndicators && codeFoldingManager;
        if (const auto mark = isFoldShown ? codeFoldingManager->markAt(row.line) : std::nullopt) {
            drawFoldingIndicator(painter, row.top, rowHeight, mark->isFolded);
        }
        const QString number = QString::number(row.line);
        const qreal right = width() - foldingAreaWidth - padding;
        const qreal top = row.top + (rowHeight - measure.height()) / 2;
        painter.setPen(row.line == currentLine ? currentLineColor : textColor);
        painter.drawText(QPointF(right - measure.horizontalAdvance(number), top + measure.ascent()), number);
    }
    painter.fillRect(QRectF(width() - 1, 0, 1, height()), QColor::fromRgbF(0.5F, 0.5F, 0.5F, 0.3F));
}

void LineNumberView::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || !textView) {
        return;
    }
    const std::optional<qsizetype> line = lineAtRow(*textView, event->position().y());
    if (!line) {
        return;
    }
    if (event->position().x() >= width() - foldingAreaWidth) {
        toggleFold(*line);
    } else if (event->position().x() < bookmarkZoneWidth) {
        toggleBookmark(*line);
    }
}

void LineNumberView::drawBookmark(QPainter& painter, qreal y, qreal height) const
{
    const QPointF middle(bookmarkAreaWidth / 2, y + height / 2);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(systemColor(SystemColor::blue, style::appearanceOf(*this)));
    painter.drawEllipse(middle, bookmarkSize / 2, bookmarkSize / 2);
    painter.restore();
}

void LineNumberView::toggleFold(qsizetype line)
{
    if (!codeFoldingManager || !codeFoldingManager->markAt(line)) {
        return;
    }
    // What is being composed belongs to the text that is about to change.
    textView->commitComposition();
    codeFoldingManager->toggle(line);
    if (onFoldToggled) {
        onFoldToggled();
    }
    update();
}

} // namespace kelm
