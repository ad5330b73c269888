#include "editor/kept_ready/view/minimap_ns_view.h"

#include "editor/minimap/view/minimap_painter.h"
#include "platform/view/accessible_role.h"

#include <QMouseEvent>
#include <QPainter>
#include <QTimer>

namespace kelm {

MinimapNSView::MinimapNSView(NotificationCenter& center, QWidget* parent) : QWidget(parent), center_(center)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAccessibleRole(*this, QAccessible::Graphic);
    setAccessibleName(tr("Minimap"));
    applyThemeToLayer();
}

void MinimapNSView::setContent(const QString& content)
{
    content_.setText(content);
    bars_.forget();
    update();
}

void MinimapNSView::applyThemeToLayer()
{
    applyMinimapBackground(*this, theme);
}

void MinimapNSView::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    if (!paintMinimap(painter, *this, {&content_, bars_, theme, visibleRangeRect, cursorLine})) {
        QTimer::singleShot(0, this, qOverload<>(&QWidget::update));
    }
}

void MinimapNSView::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) {
        selectLineAt(event->position().y());
    }
}

void MinimapNSView::mouseMoveEvent(QMouseEvent* event)
{
    if (event->buttons().testFlag(Qt::LeftButton)) {
        selectLineAt(event->position().y());
    }
}

void MinimapNSView::selectLineAt(qreal y)
{
    const MinimapGeometry geometry = minimapGeometry(*this, &content_);
    if (geometry.isDrawable()) {
        center_.post(notifications::navigateToLine, geometry.lineAt(y));
    }
}

} // namespace kelm
