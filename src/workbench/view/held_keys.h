// Which keys are held down.
#pragma once

#include <QObject>

namespace kelm {

/// Tells all windows that a key repeats where the toolkit takes it for one that is pressed again. On X11 a repeat comes
/// as a release and a press of the same moment, and the toolkit knows it for one only when both are there by the time
/// it looks at the first; about one of four is not. So whoever does a thing once for a key that is held down can go by
/// `QKeyEvent::isAutoRepeat`. The release that such a repeat begins with has been told by then.
class HeldKeys final : public QObject
{
public:
    explicit HeldKeys(QObject* parent);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    /// The key that was released last, by its place on the keyboard, and when, in milliseconds of the display's clock.
    quint32 released_ = 0;
    quint64 releasedAt_ = 0;
};

} // namespace kelm
