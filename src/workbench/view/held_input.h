// Keys and pointer that have to wait.
#pragma once

#include "app/state/notices.h"
#include "workbench/view/held_keys.h"

#include <QObject>
#include <QPointer>

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
/// since by then other things may be under it. A button that is pressed in a text is kept, with all up to its release:
/// keys that come after it are meant for that place. Escape ends what the notice tells of, whether it holds the input
/// or not.
///
/// Other windows, and menus and dialogs above this one, have their input as ever, unless the main thread itself waits:
/// then all windows are held in this way, and one that is closed goes afterwards. Main thread only.
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
    bool hold(QObject& watched, QEvent& event);
    bool holdPointer(QObject& watched, const QMouseEvent& event);
    bool holdClosing(QObject& watched, QEvent& event);
    void keep(QObject& receiver, const QEvent& event);
    void giveBack();
    static void give(QObject& receiver, QEvent& event);

    Notices& notices_;
    QWidget& window_;
    const std::function<bool()> escapeIsTaken_;
    struct Waiting
    {
        QPointer<QObject> receiver;
        std::unique_ptr<QEvent> event;
    };

    std::deque<Waiting> waiting_;
    KeyRepeats repeats_;
    /// The buttons whose press was dropped, and whose release is to be.
    Qt::MouseButtons heldButtons_;
    /// The buttons whose press was kept.
    Qt::MouseButtons keptButtons_;
    bool isGivingBack_ = false;
};

} // namespace kelm
