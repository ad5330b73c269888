// Keys and pointer that have to wait.
#pragma once

#include "app/state/notices.h"

#include <QObject>

#include <deque>
#include <functional>
#include <memory>

class QEvent;
class QKeyEvent;
class QMouseEvent;
class QWidget;

namespace kelm {

/// Keeps a window's input waiting while a notice holds it. Keys, and what input methods compose, are kept and given to
/// the window in their order once it goes on, so that no typed character is lost; what the pointer does is dropped,
/// since by then other things may be under it. Escape ends what the notice tells of, whether it holds the input or not.
///
/// Other windows, and menus and dialogs above this one, have their input as ever. Main thread only.
class HeldInput final : public QObject
{
    Q_OBJECT

public:
    /// Both outlive it; it is the window's child. `escapeIsTaken` tells whether something in the window is closed by
    /// Escape first, which goes before a notice that does not hold the input.
    HeldInput(Notices& notices, QWidget& window, std::function<bool()> escapeIsTaken);
    ~HeldInput() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void follow();
    bool isHolding() const { return notices_.holdsInput() || !waiting_.empty(); }
    bool isOfWindow(const QObject* watched) const;
    /// Whether the key is Escape, and it was for the notice.
    bool takeEscape(QKeyEvent& event);
    /// Whether the event has to wait, or is dropped.
    bool hold(QEvent& event);
    bool holdButton(const QMouseEvent& event);
    void giveBack();
    void give(QEvent& event);

    Notices& notices_;
    QWidget& window_;
    const std::function<bool()> escapeIsTaken_;
    std::deque<std::unique_ptr<QEvent>> waiting_;
    /// The buttons whose press was dropped, and whose release is to be.
    Qt::MouseButtons heldButtons_;
    bool isGivingBack_ = false;
};

} // namespace kelm
