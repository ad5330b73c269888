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
    explicit Ring(QAbstractScrollArea& area) : QWidget(&area)
    {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        // Its bars may be raised at any time.
        setGeometry(area.viewport()->geometry());
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

FocusRing::FocusRing(QAbstractScrollArea& area) : QObject(&area), area_(area), viewport_(area.viewport())
{
    area_.installEventFilter(this);
    viewport_->installEventFilter(this);
}

bool FocusRing::eventFilter(QObject* watched, QEvent* event)
{
    const bool isFocus = event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut;
    if (watched == &area_ && isFocus) {
        sign_.follow(*static_cast<QFocusEvent*>(event));
        delete ring_;
        ring_ = sign_.isShown() ? new Ring(area_) : nullptr;
    } else if (watched == viewport_ && event->type() == QEvent::Resize && ring_) {
        ring_->setGeometry(viewport_->geometry());
    }
    return QObject::eventFilter(watched, event);
}

} // namespace kelm
