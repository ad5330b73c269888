// The sign of what has the keyboard.
#pragma once

#include <QObject>
#include <QPointer>

class QAbstractScrollArea;
class QFocusEvent;
class QWidget;

namespace kelm {

/// Whether a control shows that it has the keyboard: not where a click gave it that. It is told of each focus event of
/// the control. When another window or a menu had the keyboard in between, it shows what it showed before.
class FocusSign
{
public:
    void follow(const QFocusEvent& event);
    bool isShown() const { return isByKey_ && isHere_; }

private:
    bool isByKey_ = false;
    bool isHere_ = false;
};

/// Draws a ring round an area that has the keyboard and shows no caret. It belongs to the area.
class FocusRing final : public QObject
{
public:
    explicit FocusRing(QAbstractScrollArea& area);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QAbstractScrollArea& area_;
    /// Its own, which is asked for no more when the area is being taken down.
    QWidget* const viewport_;
    FocusSign sign_;
    /// There only while it is shown.
    QPointer<QWidget> ring_;
};

} // namespace kelm
