#include "editor/minimap/view/editor_minimap_view.h"

#include "editor/minimap/view/minimap_painter.h"

#include <QMouseEvent>
#include <QPainter>

namespace kelm {

EditorMinimapView::EditorMinimapView(QWidget* parent) : QWidget(parent)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAccessibleName(tr("Minimap"));
    applyThemeToLayer();
}

void EditorMinimapView::applyThemeToLayer()
{
    applyMinimapBackground(*this, theme);
}

void EditorMinimapView::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    paintMinimap(painter, *this, {shownText(), theme, currentVisibleRect, {}});
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

const TextStorage* EditorMinimapView::shownText() const
{
    return textView ? &textView->storage() : nullptr;
}

void EditorMinimapView::selectLineAt(qreal y)
{
    const MinimapGeometry geometry = minimapGeometry(*this, shownText());
    if (geometry.isDrawable() && onLineSelected) {
        onLineSelected(geometry.lineAt(y));
    }
}

} // namespace kelm
