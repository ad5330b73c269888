#include "platform/view/focus_ring.h"

#include "platform/style/view/style.h"

#include <QAbstractScrollArea>
#include <QFocusEvent>
#include <QPainter>

namespace kelm {

namespace {

class Ring final : public QWidget
{
public:
    explicit Ring(QWidget* parent) : QWidget(parent)
    {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setGeometry(parent->rect());
        raise();
        show();
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        style::drawFocusRing(painter, QRectF(rect()), 0, *this);
    }
};

} // namespace

void FocusSign::follow(const QFocusEvent& event)
{
    isHere_ = event.gotFocus();
    const Qt::FocusReason reason = event.reason();
    const bool comesBack =
        reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason || reason == Qt::MenuBarFocusReason;
    if (isHere_ && !comesBack) {
        isByKey_ = reason != Qt::MouseFocusReason;
    }
}

FocusRing::FocusRing(QAbstractScrollArea& area) : QObject(&area), area_(area)
{
    area_.installEventFilter(this);
}

bool FocusRing::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) {
        sign_.follow(*static_cast<QFocusEvent*>(event));
        delete ring_;
        ring_ = sign_.isShown() ? new Ring(&area_) : nullptr;
    } else if (event->type() == QEvent::Resize && ring_) {
        ring_->setGeometry(area_.rect());
    }
    return QObject::eventFilter(watched, event);
}

} // namespace kelm
