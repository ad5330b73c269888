#include "editor/view/editor_minimap_view.h"

#include "editor/view/minimap_painter.h"

#include <QMouseEvent>
#include <QPainter>

namespace kelm {

namespace {

/// How far the strip's colour is taken from the text's background.
constexpr qreal tintFraction = 0.04;

QColor blended(const QColor& color, qreal fraction, const QColor& with)
{
    const auto mix = [fraction](float from, float to) { return static_cast<float>(from + (to - from) * fraction); };
    return QColor::fromRgbF(mix(color.redF(), with.redF()), mix(color.greenF(), with.greenF()),
                            mix(color.blueF(), with.blueF()), mix(color.alphaF(), with.alphaF()));
}

QColor withAlpha(QColor color, float alpha)
{
    color.setAlphaF(alpha);
    return color;
}

} // namespace

EditorMinimapView::EditorMinimapView(QWidget* parent) : QWidget(parent)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAccessibleName(tr("Minimap"));
    applyThemeToLayer();
}

void EditorMinimapView::applyThemeToLayer()
{
    QPalette colors = palette();
    colors.setColor(QPalette::Window, theme.backgroundColor.toColor());
    setPalette(colors);
}

void EditorMinimapView::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const QColor background = theme.backgroundColor.toColor();
    painter.fillRect(rect(), blended(background, tintFraction, theme.isDark ? Qt::white : Qt::black));
    painter.fillRect(QRectF(0, 0, 1, height()), withAlpha(theme.lineNumberColor.toColor(), 0.4F));
    const MinimapGeometry geometry = geometryNow();
    if (geometry.isDrawable()) {
        const QColor box = theme.isDark ? QColor::fromRgbF(1, 1, 1, 0.1F) : QColor::fromRgbF(0, 0, 0, 0.08F);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.fillRect(geometry.viewportBox(currentVisibleRect), box);
        paintMinimapBars(painter, minimapBars(textView->storage(), geometry, theme, devicePixelRatioF()), geometry,
                         devicePixelRatioF());
        painter.fillRect(QRectF(0, 0, 1, height()), withAlpha(QColor(128, 128, 128), 0.3F));
    }
    // The layer's border lies over everything.
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(QPen(QColor::fromRgbF(0.5F, 0.5F, 0.5F, 0.3F), 1));
    painter.drawRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5));
}

void EditorMinimapView::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) {
        selectLineAt(event->position().y());
    }
}

void EditorMinimapView::mouseMoveEvent(QMouseEvent* event)
{
    if (event->buttons().testFlag(Qt::LeftButton)) {
        selectLineAt(event->position().y());
    }
}

MinimapGeometry EditorMinimapView::geometryNow() const
{
    const qsizetype lines = textView ? minimapLineCount(textView->storage()) : 0;
    return {static_cast<qreal>(width()), static_cast<qreal>(height()), lines};
}

void EditorMinimapView::selectLineAt(qreal y)
{
    const MinimapGeometry geometry = geometryNow();
    if (geometry.isDrawable() && onLineSelected) {
        onLineSelected(geometry.lineAt(y));
    }
}

} // namespace kelm
