#include "workbench/view/held_keys.h"

#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QShortcut>

namespace kelm {

namespace {

bool mayRepeat(const QObject& owner)
{
    if (const auto* action = qobject_cast<const QAction*>(&owner)) {
        return action->autoRepeat();
    }
    const auto* shortcut = qobject_cast<const QShortcut*>(&owner);
    return shortcut == nullptr || shortcut->autoRepeat();
}

} // namespace

void KeyRepeats::noteRelease(const QKeyEvent& event)
{
    released_ = event.nativeScanCode();
    releasedAt_ = event.timestamp();
}

bool KeyRepeats::isRepeat(const QKeyEvent& event) const
{
    return event.isAutoRepeat() || (event.nativeScanCode() != 0 && event.timestamp() != 0 &&
                                    event.nativeScanCode() == released_ && event.timestamp() == releasedAt_);
}

std::unique_ptr<QKeyEvent> asRepeat(const QKeyEvent& press)
{
    auto repeat = std::make_unique<QKeyEvent>(press.type(), press.key(), press.modifiers(), press.nativeScanCode(),
                                              press.nativeVirtualKey(), press.nativeModifiers(), press.text(), true,
                                              quint16(press.count()), press.device());
    repeat->setTimestamp(press.timestamp());
    return repeat;
}

HeldKeys::HeldKeys(QObject* parent) : QObject(parent)
{
    qApp->installEventFilter(this);
}

bool HeldKeys::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        isHeld_ = repeats_.isRepeat(*static_cast<QKeyEvent*>(event));
        return false;
    }
    if (event->type() == QEvent::Shortcut) {
        return isHeld_ && !mayRepeat(*watched);
    }
    if (!watched->isWindowType()) {
        return false;
    }
    if (event->type() == QEvent::KeyRelease) {
        repeats_.noteRelease(*static_cast<QKeyEvent*>(event));
    } else if (event->type() == QEvent::KeyPress) {
        const auto& press = *static_cast<QKeyEvent*>(event);
        if (!press.isAutoRepeat() && repeats_.isRepeat(press)) {
            const std::unique_ptr<QKeyEvent> repeat = asRepeat(press);
            QCoreApplication::sendEvent(watched, repeat.get());
            event->setAccepted(repeat->isAccepted());
            return true;
        }
    }
    return false;
}

} // namespace kelm
