#include "workbench/view/held_input.h"

#include "platform/events/main_queue.h"
#include "platform/process/orderly_end.h"

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

namespace {

/// Whether a place of a window or a widget is in a text that takes keys.
bool isInText(const QObject& receiver, QPoint place)
{
    const auto* under = qobject_cast<const QWidget*>(&receiver);
    for (const QWidget* const top : QApplication::topLevelWidgets()) {
        if (top->windowHandle() == &receiver) {
            under = top;
        }
    }
    if (under == nullptr) {
        return false;
    }
    if (const QWidget* const child = under->childAt(place)) {
        under = child;
    }
    // A text's viewport is its child.
    const QWidget* const around = under->parentWidget();
    return under->testAttribute(Qt::WA_InputMethodEnabled) ||
           (around != nullptr && around->testAttribute(Qt::WA_InputMethodEnabled));
}

bool isTyping(const QEvent& event)
{
    const bool isKey = event.type() == QEvent::KeyPress || event.type() == QEvent::KeyRelease;
    return event.type() == QEvent::InputMethod ||
           (isKey && !(static_cast<const QKeyEvent&>(event).modifiers() & (Qt::ControlModifier | Qt::AltModifier)));
}

} // namespace

HeldInput::HeldInput(Notices& notices, QWidget& window, std::function<bool()> escapeIsTaken)
    : QObject(&window), notices_(notices), window_(window), escapeIsTaken_(std::move(escapeIsTaken))
{
    connect(&notices_, &Notices::currentChanged, this, &HeldInput::follow);
    connect(&notices_, &Notices::holdsInputChanged, this, &HeldInput::follow);
    // What was typed during the last wait of a program that ends is text that is kept; a command begins nothing more.
    onOrderlyEnd(this, [this](std::chrono::steady_clock::time_point) {
        if (!notices_.holdsInput()) {
            std::erase_if(waiting_, [](const Waiting& each) { return !isTyping(*each.event); });
            giveBack();
        }
    });
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
    // What is given back may begin a wait of its own, and what comes in that is held again.
    if ((isGivingBack_ && !notices_.holdsInput()) || !isOfWindow(watched)) {
        return false;
    }
    const bool isKey = event->type() == QEvent::ShortcutOverride || event->type() == QEvent::KeyPress;
    if (isKey && takeEscape(*static_cast<QKeyEvent*>(event))) {
        return true;
    }
    return isHolding() && hold(*watched, *event);
}

bool HeldInput::isOfWindow(const QObject* watched) const
{
    if (notices_.stopsAll()) {
        return watched->isWindowType() || watched->isWidgetType();
    }
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

bool HeldInput::hold(QObject& watched, QEvent& event)
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
        keep(watched, event);
        return true;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseMove:
        return holdPointer(watched, static_cast<const QMouseEvent&>(event));
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
    case QEvent::Close:
        return holdClosing(watched, event);
    default:
        return false;
    }
}

bool HeldInput::holdPointer(QObject& watched, const QMouseEvent& event)
{
    const bool isPress = event.type() == QEvent::MouseButtonPress || event.type() == QEvent::MouseButtonDblClick;
    if (isPress && notices_.stopsAll() && isInText(watched, event.position().toPoint())) {
        keptButtons_ |= event.button();
        keep(watched, event);
        return true;
    }
    if (isPress) {
        heldButtons_ |= event.button();
        return true;
    }
    if (event.type() == QEvent::MouseMove) {
        if (keptButtons_) {
            keep(watched, event);
        }
        return true;
    }
    if (keptButtons_.testFlag(event.button())) {
        keptButtons_.setFlag(event.button(), false);
        keep(watched, event);
        return true;
    }
    // Who was given the press waits for its release.
    const bool isHeld = heldButtons_.testFlag(event.button());
    heldButtons_.setFlag(event.button(), false);
    return isHeld;
}

bool HeldInput::holdClosing(QObject& watched, QEvent& event)
{
    // A widget's own is what comes of its window's.
    if (!notices_.stopsAll() || !watched.isWindowType()) {
        return false;
    }
    event.ignore();
    keep(watched, event);
    return true;
}

void HeldInput::keep(QObject& receiver, const QEvent& event)
{
    // What is given back says neither where on the keyboard the key is nor when it was pressed.
    if (event.type() == QEvent::KeyRelease) {
        repeats_.noteRelease(static_cast<const QKeyEvent&>(event));
    } else if (event.type() == QEvent::KeyPress && repeats_.isRepeat(static_cast<const QKeyEvent&>(event))) {
        waiting_.push_back({&receiver, asRepeat(static_cast<const QKeyEvent&>(event))});
        return;
    }
    waiting_.push_back({&receiver, std::unique_ptr<QEvent>(event.clone())});
}

void HeldInput::giveBack()
{
    if (isGivingBack_) {
        return;
    }
    // A key may begin the next thing that holds the input.
    while (!waiting_.empty() && !notices_.holdsInput()) {
        const Waiting next = std::move(waiting_.front());
        waiting_.pop_front();
        const QScopedValueRollback giving(isGivingBack_, true);
        if (next.receiver) {
            give(*next.receiver, *next.event);
        }
    }
    if (!isHolding()) {
        heldButtons_ = {};
        keptButtons_ = {};
    }
    if (!isHolding() && notices_.current() == nullptr) {
        qApp->removeEventFilter(this);
    }
}

void HeldInput::give(QObject& receiver, QEvent& event)
{
    const auto* const widget = qobject_cast<QWidget*>(&receiver);
    QWindow* const window = widget != nullptr ? widget->window()->windowHandle() : qobject_cast<QWindow*>(&receiver);
    if (event.type() == QEvent::KeyPress || event.type() == QEvent::KeyRelease) {
        const auto& key = static_cast<const QKeyEvent&>(event);
        qt_handleKeyEvent(window, key.type(), key.key(), key.modifiers(), key.text(), key.isAutoRepeat(),
                          ushort(key.count()));
    } else if (event.type() == QEvent::Close) {
        window->close();
    } else if (event.type() != QEvent::InputMethod || widget == nullptr) {
        QCoreApplication::sendEvent(&receiver, &event);
    } else if (QWidget* const focus = widget->window()->focusWidget()) {
        QCoreApplication::sendEvent(focus, &event);
    }
}

} // namespace kelm
