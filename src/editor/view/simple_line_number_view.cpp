#include "editor/view/simple_line_number_view.h"

#include "editor/view/numbered_rows.h"
#include "platform/desktop/named_colors.h"
#include "platform/style/view/style.h"
#include "platform/view/accessible_role.h"

#include <QFontMetricsF>
#include <QMouseEvent>
#include <QPainter>

namespace kelm {

namespace {

constexpr int numberFontSize = 12;
/// Distance of the numbers from the right edge.
constexpr qreal numberMargin = 8;
/// A click left of this x, or the pointing hand, means the triangle.
constexpr qreal foldZoneWidth = 22;
constexpr qreal foldBoxSize = 12;
constexpr qreal foldBoxLeft = 3;
/// Between the left edge and the longest numbers.
constexpr qreal leastMargin = 1;

/// The font of numbers: smaller figures for those that would not find room otherwise. Numbers of one length are alike.
class NumberFont
{
public:
    explicit NumberFont(qreal room) : room_(room) {}

    const QFont& of(const QString& number)
    {
        if (number.size() != digits_) {
            digits_ = number.size();
            int size = numberFontSize;
            do {
                font_ = style::monospaced(size);
            } while (QFontMetricsF(font_).horizontalAdvance(number) > room_ && --size > smallest);
        }
        return font_;
    }

private:
    static constexpr int smallest = 5;

    const qreal room_;
    QFont font_;
    qsizetype digits_ = 0;
};

} // namespace

SimpleLineNumberView::SimpleLineNumberView(QWidget* parent) : QWidget(parent)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    setAccessibleRole(*this, QAccessible::Graphic);
    setAccessibleName(tr("Line numbers"));
    refreshSystemColors();
}

void SimpleLineNumberView::drawFoldIndicator(QPainter& painter, qreal y, qreal height, bool isFolded) const
{
    const QRectF box(foldBoxLeft, y + (height - foldBoxSize) / 2, foldBoxSize, foldBoxSize);
    QPolygonF triangle;
    if (isFolded) {
        triangle << QPointF(box.left() + 3, box.top() + 1) << QPointF(box.right() - 1, box.center().y())
                 << QPointF(box.left() + 3, box.bottom() - 1);
    } else {
        triangle << QPointF(box.left() + 1, box.top() + 3) << QPointF(box.right() - 1, box.top() + 3)
                 << QPointF(box.center().x(), box.bottom() - 1);
    }
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(isFolded ? foldedColor_ : foldIndicatorColor);
    painter.drawPolygon(triangle);
    painter.restore();
}

void SimpleLineNumberView::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), backgroundColor);
    if (!textView) {
        return;
    }
    NumberFont numberFont(width() - numberMargin - leastMargin);
    const qreal rowHeight = textView->textLayout().rowHeight();
    for (const NumberedRow& row : numberedRows(*textView)) {
        const bool isInLesson = lessonRegion && lessonRegion->contains(row.line);
        if (isInLesson) {
            painter.fillRect(QRectF(0, row.top, width(), rowHeight), lessonHighlightColor);
        }
        if (const auto mark = markAt(row.line)) {
            drawFoldIndicator(painter, row.top, rowHeight, mark->isFolded);
        }
        const QString number = QString::number(row.line);
        painter.setFont(numberFont.of(number));
        const QFontMetricsF measure(painter.font());
        const qreal top = row.top + (rowHeight - measure.height()) / 2;
        painter.setPen(isInLesson ? lessonNumberColor : textColor);
        painter.drawText(QPointF(width() - measure.horizontalAdvance(number) - numberMargin, top + measure.ascent()),
                         number);
    }
}

void SimpleLineNumberView::mousePressEvent(QMouseEvent* event)
{
    const std::optional<qsizetype> line = foldableLineAt(event->position());
    if (event->button() == Qt::LeftButton && line && onFoldToggle) {
        onFoldToggle(*line);
        update();
    }
}

void SimpleLineNumberView::mouseMoveEvent(QMouseEvent* event)
{
    setCursor(foldableLineAt(event->position()) ? Qt::PointingHandCursor : Qt::ArrowCursor);
}

void SimpleLineNumberView::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange) {
        refreshSystemColors();
        update();
    }
    QWidget::changeEvent(event);
}

std::optional<CodeFoldingManager::Mark> SimpleLineNumberView::markAt(qsizetype line) const
{
    return codeFoldingManager ? codeFoldingManager->markAt(line) : std::nullopt;
}

std::optional<qsizetype> SimpleLineNumberView::foldableLineAt(QPointF point) const
{
    if (!textView || point.x() >= foldZoneWidth) {
        return {};
    }
    const std::optional<qsizetype> line = lineAtRow(*textView, point.y());
    return line && markAt(*line) ? line : std::nullopt;
}

void SimpleLineNumberView::refreshSystemColors()
{
    const Appearance appearance = style::appearanceOf(*this);
    foldIndicatorColor = systemColor(SystemColor::gray, appearance);
    foldedColor_ = systemColor(SystemColor::orange, appearance);
    lessonNumberColor = systemColor(SystemColor::blue, appearance);
    lessonHighlightColor = lessonNumberColor;
    lessonHighlightColor.setAlphaF(0.1F);
}

} // namespace kelm
