#include "workbench/view/overlay_layer.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <algorithm>
#include <utility>

namespace kelm {

namespace {

constexpr int margin = 24;

} // namespace

OverlayLayer::OverlayLayer(QWidget* content, double dimOpacity, std::function<void()> dismiss, QWidget* parent)
    : QWidget(parent), content_(content), dimOpacity_(dimOpacity), dismiss_(std::move(dismiss))
{
    auto* column = new QVBoxLayout(this);
    const bool keepsTop = content_->maximumHeight() < QWIDGETSIZE_MAX;
    column->addWidget(content_, 0, keepsTop ? Qt::AlignHCenter | Qt::AlignTop : Qt::AlignCenter);
    setFocusProxy(content_);
    setGeometry(parent->rect());
    placeContent();
    parent->installEventFilter(this);
}

bool OverlayLayer::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == parentWidget() && event->type() == QEvent::Resize) {
        setGeometry(parentWidget()->rect());
        placeContent();
    }
    if (watched == free_) {
        switch (event->type()) {
        case QEvent::Show:
        case QEvent::Hide:
        case QEvent::Move:
        case QEvent::Resize:
            leaveFree();
            break;
        default:
            break;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void OverlayLayer::placeContent()
{
    const int greatest = content_->maximumHeight();
    const int top = greatest < QWIDGETSIZE_MAX ? std::max(margin, (height() - greatest) / 2) : margin;
    layout()->setContentsMargins(margin, top, margin, margin);
}

void OverlayLayer::setLeftFree(QWidget* part)
{
    free_ = part;
    free_->installEventFilter(this);
    leaveFree();
}

void OverlayLayer::leaveFree()
{
    if (!free_->isVisible()) {
        clearMask();
        return;
    }
    const QRect place(free_->mapTo(parentWidget(), QPoint()), free_->size());
    setMask(QRegion(rect()) - QRegion(place));
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
    stepFocus(next);
    return true;
}

void OverlayLayer::stepFocus(bool next)
{
    // The keyboard stays on the layer, as the mouse does.
    const auto isHere = [this](const QWidget* widget) {
        return isAncestorOf(widget) || (free_ != nullptr && free_->isVisible() && free_->isAncestorOf(widget));
    };
    QWidget* const focused = window()->focusWidget();
    QWidget* const start = focused != nullptr && isHere(focused) ? focused : content_;
    const auto step = [next](QWidget* widget) {
        return next ? widget->nextInFocusChain() : widget->previousInFocusChain();
    };
    for (QWidget* widget = step(start); widget != start; widget = step(widget)) {
        const bool isStop =
            (widget->focusPolicy() & Qt::TabFocus) != 0 && widget->isEnabled() && isHere(widget) && widget->isVisible();
        if (isStop) {
            widget->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
            break;
        }
    }
}

} // namespace kelm
