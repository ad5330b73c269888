#include "workbench/view/keyboard_place.h"

#include "platform/events/main_queue.h"

#include <QApplication>
#include <QMenuBar>

#include <utility>

namespace kelm {

KeyboardPlace::KeyboardPlace(QWidget& window, std::function<void()> home, std::function<QWidget*()> cover,
                             const QWidget* leftFree)
    : QObject(&window), window_(window), home_(std::move(home)), cover_(std::move(cover)), leftFree_(leftFree)
{
    window_.installEventFilter(this);
    connect(qApp, &QApplication::focusChanged, this, &KeyboardPlace::follow);
}

bool KeyboardPlace::takeFromHidden(const std::function<bool(const QWidget& hidden)>& inSight)
{
    const QWidget* const focused = window_.focusWidget();
    if (focused == nullptr || focused->isVisible() || !window_.isVisible() || inSight(*focused)) {
        return false;
    }
    takeHome();
    return true;
}

bool KeyboardPlace::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == &window_ && event->type() == QEvent::WindowActivate) {
        const QWidget* const focused = window_.focusWidget();
        const QWidget* const cover = cover_();
        // Else the first button of the window would get it.
        if (focused == nullptr || !focused->isVisible() || isBehind(cover, *focused)) {
            takeHome();
        }
    }
    return QObject::eventFilter(watched, event);
}

void KeyboardPlace::follow(QWidget* before, QWidget* now)
{
    if (now == nullptr) {
        // Something else may be about to take it, or the window about to go to the background.
        onMainQueue(this, [this] { takeIfNowhere(); });
        return;
    }
    const QWidget* const cover = cover_();
    if (!isBehind(cover, *now) || qobject_cast<QMenuBar*>(now) != nullptr) {
        return;
    }
    if (before != nullptr && cover->isAncestorOf(before) && before->isVisible()) {
        before->setFocus(Qt::OtherFocusReason);
    } else {
        takeHome();
    }
}

bool KeyboardPlace::isBehind(const QWidget* cover, const QWidget& widget) const
{
    return cover != nullptr && widget.window() == &window_ && !cover->isAncestorOf(&widget) &&
           (leftFree_ == nullptr || !leftFree_->isAncestorOf(&widget));
}

void KeyboardPlace::takeIfNowhere()
{
    const bool isHere = QApplication::activeWindow() == &window_ && QApplication::activePopupWidget() == nullptr &&
                        QApplication::activeModalWidget() == nullptr;
    if (isHere && QApplication::focusWidget() == nullptr) {
        takeHome();
    }
}

void KeyboardPlace::takeHome()
{
    if (QWidget* const cover = cover_()) {
        cover->setFocus(Qt::OtherFocusReason);
    } else {
        home_();
    }
}

} // namespace kelm
