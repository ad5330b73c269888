#include "workbench/view/overlay_layer.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <utility>

namespace kelm {

OverlayLayer::OverlayLayer(QWidget* content, double dimOpacity, std::function<void()> dismiss, QWidget* parent)
    : QWidget(parent), content_(content), dimOpacity_(dimOpacity), dismiss_(std::move(dismiss))
{
    constexpr int margin = 24;
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(margin, margin, margin, margin);
    column->addWidget(content_, 0, Qt::AlignCenter);
    setFocusProxy(content_);
    setGeometry(parent->rect());
    parent->installEventFilter(this);
}

bool OverlayLayer::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == parentWidget() && event->type() == QEvent::Resize) {
        setGeometry(parentWidget()->rect());
    }
    return QWidget::eventFilter(watched, event);
}

void OverlayLayer::paintEvent(QPaintEvent*)
{
    QColor dim(Qt::black);
    dim.setAlphaF(static_cast<float>(dimOpacity_));
    QPainter(this).fillRect(rect(), dim);
}

void OverlayLayer::mousePressEvent(QMouseEvent* event)
{
    isPressedBeside_ = event->button() == Qt::LeftButton && isBeside(event->pos());
    event->accept();
}

void OverlayLayer::mouseReleaseEvent(QMouseEvent* event)
{
    event->accept();
    if (std::exchange(isPressedBeside_, false) && event->button() == Qt::LeftButton && isBeside(event->pos())) {
        dismiss_();
    }
}

bool OverlayLayer::isBeside(const QPoint& place) const
{
    // What the content leaves unanswered arrives here too, and is no click beside it.
    const QRect card = content_->geometry().marginsRemoved(content_->contentsMargins());
    return !card.contains(place) && rect().contains(place);
}

void OverlayLayer::mouseDoubleClickEvent(QMouseEvent* event)
{
    event->accept();
}

void OverlayLayer::wheelEvent(QWheelEvent* event)
{
    event->accept();
}

void OverlayLayer::keyPressEvent(QKeyEvent* event)
{
    // Its content answers keys; what that leaves is not for the window below.
    event->accept();
}

bool OverlayLayer::focusNextPrevChild(bool next)
{
    // The keyboard stays on the layer, as the mouse does.
    QWidget* const start = focusWidget() != nullptr ? focusWidget() : content_;
    const auto step = [next](QWidget* widget) {
        return next ? widget->nextInFocusChain() : widget->previousInFocusChain();
    };
    for (QWidget* widget = step(start); widget != start; widget = step(widget)) {
        const bool isStop = (widget->focusPolicy() & Qt::TabFocus) != 0 && widget->isEnabled() &&
                            isAncestorOf(widget) && widget->isVisibleTo(this);
        if (isStop) {
            widget->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
            break;
        }
    }
    return true;
}

} // namespace kelm
