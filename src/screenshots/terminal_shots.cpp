#include "screenshots/terminal_shots.h"

#include "app/state/app_state.h"
#include "run/view/terminal_text_view.h"
#include "workbench/view/main_window.h"

#include <QCoreApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QTimer>

namespace kelm::screenshots {

using namespace Qt::Literals::StringLiterals;

namespace {

void press(TerminalTextView& terminal, Qt::Key key)
{
    QKeyEvent event(QEvent::KeyPress, key, {});
    QCoreApplication::sendEvent(&terminal, &event);
}

void type(TerminalTextView& terminal, const QString& text)
{
    QInputMethodEvent event;
    event.setCommitString(text);
    QCoreApplication::sendEvent(&terminal, &event);
}

TerminalTextView& openTerminal(Stage& stage)
{
    stage.state.setBottomPanelTab(BottomPanelTab::terminal);
    stage.state.setShowBottomPanel(true);
    auto& terminal = *stage.window.findChild<TerminalTextView*>();
    settleUntil([&terminal] { return terminal.text().endsWith(u"$ "); });
    terminal.setFocus();
    // What the last picture left on the line counts as output now.
    press(terminal, Qt::Key_Escape);
    return terminal;
}

void runLine(TerminalTextView& terminal, const QString& line)
{
    type(terminal, line);
    press(terminal, Qt::Key_Return);
}

} // namespace

void useTerminal(Stage& stage)
{
    qputenv("HOME", stage.project.toLocal8Bit());
    TerminalTextView& terminal = openTerminal(stage);
    for (const QString& line :
         {u"clear"_s, u"cd"_s, u"ls --color"_s, u"export SEASON=가을"_s, u"echo $SEASON"_s, u"cd Sources"_s}) {
        runLine(terminal, line);
    }
    type(terminal, u"python3 ba"_s);
    press(terminal, Qt::Key_Tab);
}

void interruptInVain(Stage& stage, const std::function<void()>& takePicture)
{
    qputenv("HOME", stage.project.toLocal8Bit());
    TerminalTextView& terminal = openTerminal(stage);
    runLine(terminal, u"clear"_s);
    runLine(terminal, u"cd"_s);
    // The command is waited for within the key that starts it.
    QTimer::singleShot(0, &terminal, [&terminal, takePicture] {
        settleUntil([&terminal] { return terminal.text().endsWith(u"port 8000\n"); });
        press(terminal, Qt::Key_Escape);
        settleUntil([&terminal] { return terminal.session()->isInterruptOutlasted(); });
        runLine(terminal, u"git status"_s);
        type(terminal, u"git log -"_s);
        settle();
        takePicture();
        press(terminal, Qt::Key_Escape);
    });
    runLine(terminal, u"trap '' INT; echo; echo serving on port 8000; while :; do sleep 0.1; done"_s);
}

} // namespace kelm::screenshots
