#include "workbench/view/held_keys.h"

#include <QApplication>
#include <QKeyEvent>

namespace kelm {

HeldKeys::HeldKeys(QObject* parent) : QObject(parent)
{
    qApp->installEventFilter(this);
}

bool HeldKeys::eventFilter(QObject* watched, QEvent* event)
{
    if (!watched->isWindowType()) {
        return false;
    }
    if (event->type() == QEvent::KeyRelease) {
        const auto* key = static_cast<QKeyEvent*>(event);
        released_ = key->nativeScanCode();
        releasedAt_ = key->timestamp();
        return false;
    }
    if (event->type() != QEvent::KeyPress) {
        return false;
    }
    const auto* key = static_cast<QKeyEvent*>(event);
    // Whoever sends a key that nobody has pressed need not say when.
    if (key->isAutoRepeat() || key->timestamp() == 0 || key->timestamp() != releasedAt_ ||
        key->nativeScanCode() != released_) {
        return false;
    }
    QKeyEvent repeat(QEvent::KeyPress, key->key(), key->modifiers(), key->nativeScanCode(), key->nativeVirtualKey(),
                     key->nativeModifiers(), key->text(), true, quint16(key->count()), key->device());
    repeat.setTimestamp(key->timestamp());
    QCoreApplication::sendEvent(watched, &repeat);
    event->setAccepted(repeat.isAccepted());
    return true;
}

} // namespace kelm
