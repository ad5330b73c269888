#include "platform/desktop/view/bring_to_front.h"

#include "platform/desktop/view/x11_window.h"
#include "platform/events/start_tokens.h"

#include <QApplication>
#include <QTimer>
#include <QWidget>
#include <QWindow>

#include <chrono>

namespace kelm {

namespace {

/// As long a desktop may take to let a window come to the front.
constexpr std::chrono::milliseconds activationTime(1000);

/// Wayland's way: the toolkit takes the token from the environment when a window asks for activation.
void activateByToken(QWidget& window, const QString& token)
{
    putStartTokens({{}, token});
    window.activateWindow();
    if (window.windowHandle() != nullptr) {
        window.windowHandle()->requestActivate();
    }
    takeStartTokens();
}

} // namespace

void bringToFront(QWidget& window, const openRequest::Tokens& tokens)
{
    if (window.isVisible()) {
        x11::moveToCurrentWorkspace(window);
    }
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    const quint32 time = x11::timeOfStartupId(tokens.startupId);
    // What is active is raised. Raising it before would be another wish, of a time of its own.
    if (time == 0 || !x11::activate(window, time)) {
        window.raise();
        activateByToken(window, tokens.activation);
    }
    QTimer::singleShot(activationTime, &window, [&window] {
        if (window.isVisible() && !window.isActiveWindow() && QApplication::activeModalWidget() == nullptr) {
            QApplication::alert(&window);
        }
    });
}

void completeStart(const openRequest::Tokens& tokens)
{
    x11::endStartup(tokens.startupId);
}

} // namespace kelm
