// Running the script and typing into the terminal.
#include "run/code_runner.h"
#include "run/view/terminal_text_view.h"
#include "run/view/terminal_view.h"
#include "soak/action.h"
#include "soak/files_on_disk.h"
#include "soak/invariants.h"
#include "soak/project_files.h"
#include "soak/world.h"

#include <QFile>
#include <QKeyEvent>
#include <QPointer>
#include <QTimer>

namespace kelm::soak {

using namespace Qt::Literals::StringLiterals;

namespace {

QByteArray scriptBytes()
{
    for (const ProjectFile& file : projectFiles()) {
        if (file.name == scriptName) {
            return file.bytes;
        }
    }
    return {};
}

/// Only the words that it began with are run: what was typed into it since might do harm.
bool canRun(World& world)
{
    const ShadowDocument* document = world.tabs.current();
    return document != nullptr && document->url == world.url(scriptName) &&
           world.disk.bytesOf(document->url->toLocalFile()) == scriptBytes();
}

void run(World& world)
{
    QTest::keyClick(&world.window, Qt::Key_R, Qt::ControlModifier);
    CodeRunner& runner = world.state.codeRunner();
    world.waitFor([&runner] { return !runner.isRunning(); }, u"the script ends"_s);
    world.expect(runner.output().contains(u"the script has run"_s) && runner.lastExitCode() == 3,
                 u"the script printed: "_s + runner.output());
}

/// The script as it was at first, and its tab.
void openScript(World& world)
{
    world.disk.writeAsAnother(world.path(scriptName), scriptBytes());
    world.state.openFile(world.url(scriptName));
    if (const auto open = world.tabs.indexOf(world.url(scriptName))) {
        world.tabs.select(*open);
    } else {
        world.tabs.open(ShadowDocument(QString::fromUtf8(scriptBytes()), world.url(scriptName)));
    }
}

TerminalView* terminal(World& world)
{
    world.state.setShowBottomPanel(true);
    world.state.setBottomPanelTab(BottomPanelTab::terminal);
    world.settle();
    auto* view = world.window.findChild<TerminalView*>();
    // The first prompt comes a moment after the session.
    world.waitFor([view] { return view->textView().text().contains(u"$ "_s); }, u"the terminal has a prompt"_s);
    view->textView().setFocus();
    return view;
}

void useTerminal(World& world)
{
    struct Line
    {
        QString typed;
        QString printed;
    };
    static const std::vector<Line> lines{
        {u"echo hello"_s, u"hello\n"_s}, {u"pwd"_s, u"/"_s},
        {u"history"_s, u"history"_s},    {u"printf '\\033[31mred\\033[0m\\n'"_s, u"red\n"_s},
        {u"cd /"_s, u"/ $ "_s},          {u"cd ~"_s, u" $ "_s},
        {u"clear"_s, u" $ "_s},          {u"seq 1 200"_s, u"\n200\n"_s},
        {u"echo oops >&2"_s, u"oops"_s}, {u"echo 한글"_s, u"한글\n"_s},
    };
    TerminalView* view = terminal(world);
    const Line& line = world.chance.pick(lines);
    world.note(line.typed);
    TextView& text = view->textView();
    QTest::keyClick(&text, Qt::Key_End, Qt::ControlModifier);
    for (const QChar unit : line.typed) {
        QTest::sendKeyEvent(QTest::Click, &text, Qt::Key_unknown, unit, Qt::NoModifier);
    }
    const qsizetype typed = text.text().size();
    QTest::keyClick(&text, Qt::Key_Return);
    const QString shown = line.typed == u"clear" ? text.text() : text.text().mid(typed);
    world.expect(shown.contains(line.printed), u"the terminal shows: "_s + shown);
    world.expect(text.text().endsWith(u" $ "_s), u"no prompt follows: "_s + text.text().right(60));
}

void interrupt(World& world)
{
    TerminalView* view = terminal(world);
    TextView& text = view->textView();
    QTest::keyClick(&text, Qt::Key_End, Qt::ControlModifier);
    QTest::keyClicks(&text, u"sleep 60"_s);
    QObject context;
    QObject::connect(&view->session(), &TerminalSession::isBusyChanged, &context, [&] {
        if (view->session().isBusy()) {
            // The command is waited for in an event loop, which takes the key.
            QTimer::singleShot(0, &context, [&text] { QTest::keyClick(&text, Qt::Key_Escape); });
        }
    });
    QTest::keyClick(&text, Qt::Key_Return);
    world.expect(text.text().contains(u"^C"_s), u"an interrupt does not show"_s);
}

/// What can be done beside a command that runs in the terminal.
const std::vector<Action>& otherActions()
{
    static const std::vector<Action> others = [] {
        std::vector<Action> all;
        for (const auto& some : {typingActions(), selectingActions(), foldingActions(), findingActions(),
                                 commandActions(), tabActions(), fileActions(), sourceControlActions()}) {
            all.insert(all.end(), some.begin(), some.end());
        }
        return all;
    }();
    return others;
}

void useAllElse(World& world)
{
    constexpr int steps = 12;
    for (int step = 0; step < steps && !world.failure; ++step) {
        std::vector<const Action*> possible;
        for (const Action& action : otherActions()) {
            if (action.isPossible == nullptr || action.isPossible(world)) {
                possible.push_back(&action);
            }
        }
        const Action& action = *world.chance.pick(possible);
        world.note(u"%1, %2"_s.arg(world.noted, QLatin1String(action.name)));
        const QString before = world.noted;
        world.bringToFront();
        const quint64 diskBefore = world.disk.revision();
        action.run(world);
        world.note(before);
        if (world.disk.revision() != diskBefore) {
            followDisk(world);
        }
        world.settle();
        checkInvariants(world);
    }
}

/// A command that goes on until all else has been used for a while.
void useAllElseWhileACommandRuns(World& world)
{
    const QPointer<TerminalView> view = terminal(world);
    const QString gate = world.store.filePath(u"gate"_s);
    const qsizetype written = view->textView().text().size();
    view->textView().replaceCurrentCommand(
        u"n=0; while [ ! -e '%1' ] && [ $n -lt 3000 ]; do sleep 0.02; n=$((n+1)); done; echo through"_s.arg(gate));
    QObject context;
    bool wasUsed = false;
    QObject::connect(&view->session(), &TerminalSession::isBusyChanged, &context, [&] {
        if (view && view->session().isBusy()) {
            QTimer::singleShot(0, &context, [&] {
                useAllElse(world);
                wasUsed = true;
                world.expect(view && view->session().isBusy(), u"the command did not go on meanwhile"_s);
                world.expect(QFile(gate).open(QIODevice::WriteOnly), u"the gate does not open"_s);
            });
        }
    });
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, {});
    QCoreApplication::sendEvent(&view->textView(), &press);
    QFile::remove(gate);
    world.expect(wasUsed, u"the command was not waited for"_s);
    if (world.expect(view, u"the terminal has gone"_s)) {
        const QString shown = view->textView().text().mid(written);
        world.expect(shown.contains(u"throughthrough\n"_s), u"the command did not end: "_s + shown.right(200));
        world.expect(shown.endsWith(u" $ "_s), u"no prompt follows: "_s + shown.right(60));
    }
}

} // namespace

std::vector<Action> runningActions()
{
    return {
        {"open the script", 2, nullptr, openScript},
        {"run the script", 6, canRun, run},
        {"type into the terminal", 3, nullptr, useTerminal},
        {"interrupt the terminal", 1, nullptr, interrupt},
        {"use all else while a command runs", 2, nullptr, useAllElseWhileACommandRuns},
    };
}

} // namespace kelm::soak
