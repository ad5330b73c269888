#include "editor/minimap/view/editor_minimap_view.h"

#include "editor/minimap/view/minimap_painter.h"
#include "platform/view/accessible_role.h"

#include <QMouseEvent>
#include <QPainter>
#include <QTimer>

namespace kelm {

EditorMinimapView::EditorMinimapView(QWidget* parent) : QWidget(parent)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAccessibleRole(*this, QAccessible::Graphic);
    setAccessibleName(tr("Minimap"));
    applyThemeToLayer();
}

void EditorMinimapView::setTextView(TextView* textView)
{
    if (textView_) {
        textView_->storage().disconnect(this);
    }
    textView_ = textView;
    bars_.forget();
    if (textView != nullptr) {
        connect(&textView->storage(), &TextStorage::edited, this, [this](const TextEdit& edit) {
            const QRectF changed = bars_.textEdited(*shownText(), edit);
            // An image that nobody has asked for yet has no place.
            update(changed.isEmpty() ? rect() : changed.toAlignedRect());
        });
    }
    update();
}

void EditorMinimapView::applyThemeToLayer()
{
    applyMinimapBackground(*this, theme);
}

void EditorMinimapView::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    if (!paintMinimap(painter, *this, {shownText(), bars_, theme, currentVisibleRect, {}})) {
        // Keys and the text itself come between.
        QTimer::singleShot(0, this, qOverload<>(&QWidget::update));
    }
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
    return textView_ ? &textView_->storage() : nullptr;
}

void EditorMinimapView::selectLineAt(qreal y)
{
    const MinimapGeometry geometry = minimapGeometry(*this, shownText());
    if (geometry.isDrawable() && onLineSelected) {
        onLineSelected(geometry.lineAt(y));
    }
}

} // namespace kelm
