// Running the script and typing into the terminal.
#include "run/code_runner.h"
#include "run/view/terminal_text_view.h"
#include "run/view/terminal_view.h"
#include "soak/action.h"
#include "soak/project_files.h"
#include "soak/world.h"

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

} // namespace

std::vector<Action> runningActions()
{
    return {
        {"open the script", 2, nullptr, openScript},
        {"run the script", 6, canRun, run},
        {"type into the terminal", 3, nullptr, useTerminal},
        {"interrupt the terminal", 1, nullptr, interrupt},
    };
}

} // namespace kelm::soak
