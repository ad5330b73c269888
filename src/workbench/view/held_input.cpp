#include "workbench/view/held_input.h"

#include "platform/events/main_queue.h"

#include <QApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScopedValueRollback>
#include <QWidget>
#include <QWindow>

#include <utility>

QT_BEGIN_NAMESPACE
/// Gives a window a key as the system does, shortcuts and all. The toolkit's test library, which cannot be linked into
/// a program, lives on this function; no declared one looks for shortcuts.
Q_GUI_EXPORT void qt_handleKeyEvent(QWindow* window, QEvent::Type type, int key, Qt::KeyboardModifiers modifiers,
                                    const QString& text, bool autorepeat, ushort count);
QT_END_NAMESPACE

namespace kelm {

HeldInput::HeldInput(Notices& notices, QWidget& window, std::function<bool()> escapeIsTaken)
    : QObject(&window), notices_(notices), window_(window), escapeIsTaken_(std::move(escapeIsTaken))
{
    connect(&notices_, &Notices::currentChanged, this, &HeldInput::follow);
    connect(&notices_, &Notices::holdsInputChanged, this, &HeldInput::follow);
    follow();
}

HeldInput::~HeldInput() = default;

void HeldInput::follow()
{
    if (notices_.current() != nullptr) {
        // Twice installed is once installed.
        qApp->installEventFilter(this);
    }
    if (!notices_.holdsInput()) {
        // What has ended the notice is still being answered, and the keys are for what comes of it.
        onMainQueue(this, [this] { giveBack(); });
    }
}

bool HeldInput::eventFilter(QObject* watched, QEvent* event)
{
    if (isGivingBack_ || !isOfWindow(watched)) {
        return false;
    }
    const bool isKey = event->type() == QEvent::ShortcutOverride || event->type() == QEvent::KeyPress;
    if (isKey && takeEscape(*static_cast<QKeyEvent*>(event))) {
        return true;
    }
    return isHolding() && hold(*event);
}

bool HeldInput::isOfWindow(const QObject* watched) const
{
    if (watched->isWindowType()) {
        return watched == window_.windowHandle();
    }
    return watched->isWidgetType() && static_cast<const QWidget*>(watched)->window() == &window_;
}

bool HeldInput::takeEscape(QKeyEvent& event)
{
    const bool isEscape = event.key() == Qt::Key_Escape && event.modifiers() == Qt::NoModifier;
    if (!isEscape || !notices_.canStop() || (!notices_.holdsInput() && escapeIsTaken_())) {
        return false;
    }
    event.accept();
    // A key that is held down ends one thing.
    if (event.type() == QEvent::KeyPress && !event.isAutoRepeat()) {
        notices_.stop();
    }
    return true;
}

bool HeldInput::hold(QEvent& event)
{
    switch (event.type()) {
    case QEvent::ShortcutOverride:
        // Taken as a key, which then waits, and not as a command.
        event.accept();
        return true;
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::InputMethod:
        event.accept();
        waiting_.emplace_back(event.clone());
        return true;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseButtonRelease:
        return holdButton(static_cast<const QMouseEvent&>(event));
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::ContextMenu:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TabletPress:
    case QEvent::TabletMove:
    case QEvent::TabletRelease:
    case QEvent::NativeGesture:
        event.accept();
        return true;
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
        event.ignore();
        return true;
    default:
        return false;
    }
}

bool HeldInput::holdButton(const QMouseEvent& event)
{
    if (event.type() != QEvent::MouseButtonRelease) {
        heldButtons_ |= event.button();
        return true;
    }
    // Who was given the press waits for its release.
    const bool isHeld = heldButtons_.testFlag(event.button());
    heldButtons_.setFlag(event.button(), false);
    return isHeld;
}

void HeldInput::giveBack()
{
    if (isGivingBack_) {
        return;
    }
    // A key may begin the next thing that holds the input.
    while (!waiting_.empty() && !notices_.holdsInput()) {
        const std::unique_ptr<QEvent> event = std::move(waiting_.front());
        waiting_.pop_front();
        const QScopedValueRollback giving(isGivingBack_, true);
        give(*event);
    }
    if (!isHolding()) {
        heldButtons_ = {};
    }
    if (!isHolding() && notices_.current() == nullptr) {
        qApp->removeEventFilter(this);
    }
}

void HeldInput::give(QEvent& event)
{
    if (event.type() == QEvent::InputMethod) {
        if (QWidget* const focus = window_.focusWidget()) {
            QCoreApplication::sendEvent(focus, &event);
        }
        return;
    }
    const auto& key = static_cast<const QKeyEvent&>(event);
    qt_handleKeyEvent(window_.windowHandle(), key.type(), key.key(), key.modifiers(), key.text(), key.isAutoRepeat(),
                      ushort(key.count()));
}

} // namespace kelm
