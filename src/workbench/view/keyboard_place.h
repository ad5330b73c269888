// Where the keyboard of the window is.
#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

#include <functional>

namespace kelm {

/// Keeps the keyboard on what a person sees. When what had it goes out of sight, or the window comes back to the front
/// with it on nothing, it goes home; and while something lies over the window, nothing behind that takes it. The menu
/// bar, menus and other windows are left alone. Main thread only.
class KeyboardPlace final : public QObject
{
public:
    /// `home` gives the keyboard to where it belongs while nothing else has it, and `cover` tells what lies over the
    /// window, or null. `leftFree` is a part of the window that is never behind it.
    KeyboardPlace(QWidget& window, std::function<void()> home, std::function<QWidget*()> cover,
                  const QWidget* leftFree = nullptr);

    /// For what is about to pass the keyboard on: when what has it is hidden, and `inSight` does not tell of a part of
    /// the window round it that is still there, takes it home and returns true.
    bool takeFromHidden(const std::function<bool(const QWidget& hidden)>& inSight);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void follow(QWidget* before, QWidget* now);
    void takeIfNowhere();
    void takeHome();
    /// Whether something of the window lies behind what is over it.
    bool isBehind(const QWidget* cover, const QWidget& widget) const;

    QWidget& window_;
    const std::function<void()> home_;
    const std::function<QWidget*()> cover_;
    const QWidget* const leftFree_;
};

} // namespace kelm
