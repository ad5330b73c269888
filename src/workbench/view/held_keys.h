// Which keys are held down.
#pragma once

#include <QObject>

#include <memory>

class QKeyEvent;

namespace kelm {

/// Tells a key that repeats from one that is pressed again, where the toolkit does not. On X11 a repeat comes as a
/// release and a press of the same moment, and the toolkit knows it for one only when both are there by the time it
/// looks at the first; about one of four is not.
class KeyRepeats
{
public:
    /// To be told of each release.
    void noteRelease(const QKeyEvent& event);
    /// Whether the press, or what announces it, is a repeat of the key that was released last. Of a key without a place
    /// on the keyboard or without a time nobody can say, and it is none.
    bool isRepeat(const QKeyEvent& event) const;

private:
    /// The key that was released last, by its place on the keyboard, and when, in milliseconds of the display's clock.
    quint32 released_ = 0;
    quint64 releasedAt_ = 0;
};

/// The press as one that repeats.
std::unique_ptr<QKeyEvent> asRepeat(const QKeyEvent& press);

/// Has the presses of all windows say so when they repeat (`KeyRepeats`), and keeps such a press from the shortcuts
/// that are not to repeat. So whoever does a thing once for a key that is held down can go by
/// `QKeyEvent::isAutoRepeat`. The release that such a repeat begins with has been told by then.
class HeldKeys final : public QObject
{
public:
    explicit HeldKeys(QObject* parent);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    KeyRepeats repeats_;
    /// Whether the key that was announced last repeats.
    bool isHeld_ = false;
};

} // namespace kelm
