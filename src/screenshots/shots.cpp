#include "screenshots/shots.h"

#include "app/state/app_state.h"
#include "app/state/notices.h"
#include "editor/view/editor_container_view.h"
#include "platform/view/labels.h"
#include "platform/view/plain_button.h"
#include "run/code_runner.h"
#include "run/view/output_view.h"
#include "screenshots/desk_shots.h"
#include "screenshots/panel_shots.h"
#include "screenshots/terminal_shots.h"
#include "text/view/find_bar.h"
#include "text/view/text_view.h"
#include "workbench/status/view/document_status.h"
#include "workbench/status/view/status_bar_items.h"
#include "workbench/status/view/status_bar_view.h"
#include "workbench/view/editor_area.h"
#include "workbench/view/main_window.h"
#include "workbench/view/notice_bar.h"
#include "workbench/view/tool_bar_view.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QLineEdit>
#include <QMouseEvent>
#include <QRegularExpression>
#include <QTimer>

using namespace Qt::Literals::StringLiterals;

namespace kelm::screenshots {

namespace {

const QString orchard = u"Sources/orchard.swift"_s;
const QString basket = u"Sources/basket.py"_s;
const QString forecast = u"Sources/Weather/forecast.ts"_s;
const QString readme = u"README.md"_s;

QString source(const char* path)
{
    return QDir(QStringLiteral(KELM_SOURCE_ROOT)).filePath(QString::fromLatin1(path));
}

void foldSecondRegion(Stage& stage)
{
    EditorContainerView& editor = *stage.window.editorArea().currentEditor();
    const std::vector<FoldableRegion> regions = editor.codeFoldingManager().foldableRegions();
    if (regions.size() > 2) {
        editor.codeFoldingManager().fold(regions[2]);
    }
}

void findWord(Stage& stage, const QString& word)
{
    EditorContainerView& editor = *stage.window.editorArea().currentEditor();
    editor.textView().showReplaceBar();
    editor.textView().findBar().findChild<QLineEdit*>()->setText(word);
    settle();
    editor.textView().findNext();
}

void press(QWidget& widget)
{
    const QPointF place = widget.rect().center();
    QMouseEvent event(QEvent::MouseButtonPress, place, widget.mapToGlobal(place), Qt::LeftButton, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&widget, &event);
    settle();
}

void runFile(Stage& stage)
{
    stage.state.runCurrentFile();
    // The page scrolls to its end when all is there.
    bool hasScrolled = false;
    settleUntil([&stage] { return !stage.state.codeRunner().isRunning(); });
    QTimer::singleShot(200, &stage.window, [&hasScrolled] { hasScrolled = true; });
    settleUntil([&hasScrolled] { return hasScrolled; });
    evenTimes(stage);
}

/// A run that goes on; it ends by itself when its picture is taken.
void runForAWhile(Stage& stage)
{
    const QString code = u"import time\n\nprint(\"Picking \\033[32mapples\\033[0m\", flush=True)\ntime.sleep(8)\n"_s;
    stage.state.openSnippet(code, Language::python, std::nullopt);
    settle();
    stage.state.runCurrentFile();
    settleUntil([&stage] { return stage.state.codeRunner().output().contains(u"Picking"_s); });
    bool hasLasted = false;
    QTimer::singleShot(2200, &stage.window, [&hasLasted] { hasLasted = true; });
    settleUntil([&hasLasted] { return hasLasted; });
    evenTimes(stage);
    QTimer::singleShot(1000, &stage.window, [&stage] { stage.state.codeRunner().stop(); });
}

/// A run that wanted to read.
void runWithoutInput(Stage& stage)
{
    stage.state.openSnippet(u"name = input(\"Which apple? \")\nprint(name)\n"_s, Language::python, std::nullopt);
    settle();
    runFile(stage);
}

void tell(Stage& stage, const QString& text, std::optional<double> progress)
{
    Notices& notices = stage.state.notices();
    const auto id = std::make_shared<Notices::Id>(0);
    *id = notices.add({text, progress, [&notices, id] { notices.remove(*id); }});
    settleUntil([&stage] { return stage.window.noticeBar().isVisible(); });
}

/// A picture of each menu of the status bar.
std::vector<Shot> menuShots()
{
    struct Menu
    {
        const char* name;
        std::function<QWidget&(MainWindow&)> button;
    };
    const std::vector<Menu> menus{
        {"menu-language",
         [](MainWindow& window) -> QWidget& { return window.statusBarView().leftStatus()->languageMenu(); }},
        {"menu-encoding",
         [](MainWindow& window) -> QWidget& { return window.statusBarView().leftStatus()->encodingMenu(); }},
        {"menu-line-ending",
         [](MainWindow& window) -> QWidget& { return window.statusBarView().leftStatus()->lineEndingMenu(); }},
        {"menu-counts",
         [](MainWindow& window) -> QWidget& { return window.statusBarView().rightStatus()->linesMenu(); }},
        {"menu-indent",
         [](MainWindow& window) -> QWidget& { return window.statusBarView().rightStatus()->indentMenu(); }},
        {"menu-theme", [](MainWindow& window) -> QWidget& { return window.statusBarView().themeMenu(); }},
    };
    std::vector<Shot> shots;
    shots.reserve(std::size(menus));
    for (const Menu& menu : menus) {
        shots.push_back({.name = menu.name,
                         .files = {forecast, basket},
                         .prepare = [menu](Stage& stage) { press(menu.button(stage.window)); },
                         .size = {900, 600}});
    }
    return shots;
}

} // namespace

void settle()
{
    for (int turn = 0; turn < 4; ++turn) {
        QCoreApplication::processEvents();
    }
}

void settleUntil(const std::function<bool()>& isDone)
{
    constexpr int patienceMilliseconds = 10'000;
    const QDeadlineTimer deadline(patienceMilliseconds);
    while (!isDone() && !deadline.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 50);
    }
    settle();
}

namespace {

void replaceInOutput(const Stage& stage, const QRegularExpression& pattern, const QString& text)
{
    for (const auto* page : stage.window.findChildren<OutputView*>()) {
        TextStorage& storage = page->findChild<TextView*>()->storage();
        for (QRegularExpressionMatch match = pattern.match(storage.text()); match.hasMatch();
             match = pattern.match(storage.text(), match.capturedStart() + 1)) {
            storage.replace({match.capturedStart(), match.capturedLength()}, text);
        }
    }
}

} // namespace

void evenTimes(const Stage& stage)
{
    static const QRegularExpression time(u"\\b(after|for) [0-9.]+ s$"_s);
    for (TextLabel* label : stage.window.findChildren<TextLabel*>()) {
        if (label->text().contains(time)) {
            label->setText(QString(label->text()).replace(time, u"\\1 2 s"_s));
        }
    }
    // A snippet runs from a file whose name is another one each time, and its errors come in other pieces.
    replaceInOutput(stage, QRegularExpression(u"/tmp/temp_[0-9A-F-]+"_s),
                    u"/tmp/temp_0D6A1E5C-7B0F-4C1B-9D53-52C0A5E8F7A1"_s);
    replaceInOutput(stage, QRegularExpression(u"(?<=\\n)\\[ERROR\\] (?=  |[A-Z]\\w+Error)"_s), {});
}

std::vector<Shot> shots()
{
    const QString swift = source("tests/editor/highlighter/data/swift.swift");
    const QString javascript = source("tests/editor/highlighter/data/javascript.js");
    const QString korean = source("docs/samples/korean.swift");
    std::vector<Shot> shots{
        {"welcome", {}, {}},
        {"editor", {orchard, basket, forecast, readme}},
        {.name = "themes",
         .files = {orchard, basket},
         .themes = {{u"Dracula"_s, u"dracula"_s},
                    {u"Solarized Dark"_s, u"solarized"_s},
                    {u"One Dark"_s, u"one-dark"_s},
                    {u"Neon Kelm"_s, u"neon"_s}}},
        {.name = "folded", .files = {swift}, .prepare = foldSecondRegion, .showsProject = false},
        {.name = "find",
         .files = {javascript},
         .prepare = [](Stage& stage) { findWord(stage, u"return"_s); },
         .showsProject = false},
        {"opening", {forecast, basket}, [](Stage& stage) { tell(stage, u"Opening harvest.log…"_s, 0.43); }},
        {"sorting", {basket}, [](Stage& stage) { tell(stage, u"Sorting lines…"_s, std::nullopt); }},
        {"output", {basket}, runFile},
        {"output-running", {basket}, runForAWhile},
        {"output-no-input", {basket}, runWithoutInput},
        {"terminal", {basket}, useTerminal},
        {.name = "terminal-interrupted", .files = {basket}, .prepareAround = interruptInVain},
        {.name = "korean", .files = {korean}, .showsProject = false},
        {.name = "korean-2x",
         .files = {korean},
         .scale = 2,
         .themes = {{u"Monokai"_s, u"dark"_s}},
         .showsProject = false},
    };
    for (auto* more : {menuShots, panelShots, deskShots}) {
        for (Shot& shot : more()) {
            shots.push_back(std::move(shot));
        }
    }
    return shots;
}

} // namespace kelm::screenshots
