#include "app/commands/command_table.h"
#include "maintenance/auto_update_service.h"
#include "run/code_runner.h"
#include "support/app_state_fixture.h"
#include "support/test_program.h"

#include <QKeySequence>
#include <QtTest>

#include <numeric>

namespace command_table_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

/// A menu's lines as text: label and key, indented by a submenu's depth, "-" for a separator.
QStringList describe(const std::vector<MenuItem>& items, const AppState& state, const QString& indent = QString())
{
    QStringList lines;
    for (const MenuItem& item : items) {
        switch (item.kind) {
        case MenuItem::Kind::separator:
            lines << indent + u'-';
            break;
        case MenuItem::Kind::command:
            lines << indent + item.label +
                         (item.key ? u" | "_s + QKeySequence(*item.key).toString(QKeySequence::PortableText)
                                   : QString());
            break;
        case MenuItem::Kind::submenu:
            lines << indent + item.label + u" >"_s;
            lines << describe(item.makeItems ? item.makeItems(state) : item.items, state, indent + u"  "_s);
            break;
        }
    }
    return lines;
}

void changeLabels(std::vector<MenuItem>& items)
{
    for (MenuItem& item : items) {
        item.label = u"another label"_s;
        changeLabels(item.items);
    }
}

/// The table under other labels, by which no behaviour may go.
const std::vector<MenuGroup>& relabeledTable()
{
    static const std::vector<MenuGroup> table = [] {
        std::vector<MenuGroup> groups = commandTable();
        for (MenuGroup& group : groups) {
            group.menu = u"another menu"_s;
            changeLabels(group.items);
        }
        return groups;
    }();
    return table;
}

/// What the commands of these tests act on; none of them removes the program.
CommandTargets targetsOf(AppState& state)
{
    static AutoUpdateService updates(UpdaterController::makeForPlatform());
    return {state, updates, [] { qFatal("no test asks for that"); }};
}

/// An updater that counts what it is asked for.
class CountingUpdater final : public UpdaterController
{
public:
    bool canCheckForUpdates() const override { return canCheck; }
    void checkForUpdates() override { ++checks; }

    bool canCheck = false;
    int checks = 0;
};

void run(Command command, AppState& state)
{
    commandItem(command, relabeledTable()).action(targetsOf(state));
}

} // namespace

class CommandTableTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textCommandsRewriteTheWholeContent_data();
    void textCommandsRewriteTheWholeContent();
    void textCommandsWithoutADocumentDoNothing();
    void init();
    void groupsStandInTheirOrder();
    void linesStandInTheirOrder_data();
    void linesStandInTheirOrder();
    void everyCommandHasAnActionAndNoKeyIsTwice();
    void everyCommandStandsInTheTableOnce();
    void anEmptyListOfRecentFilesIsAnEmptySubmenu();
    void recentFilesHaveTheirNames();
    void aRecentFileOpens();
    void clearingTheMenuEmptiesAndStores();
    void aNewWindowDoesNothing();
    void fileCommandsWork();
    void cloningShowsItsDialog();
    void sortCommandsWork();
    void togglesFlip();
    void runRunsTheCurrentDocument();
    void runInTerminalOnlyShowsThePanel();
    void checkingForUpdatesAsksTheUpdater();
    void uninstallingIsAsked();
    void findCommandsShowTheirOverlay_data();
    void findCommandsShowTheirOverlay();

private:
    AppState& state() { return fixture_->state; }

    std::unique_ptr<AppStateFixture> fixture_;
};

void CommandTableTest::init()
{
    fixture_ = std::make_unique<AppStateFixture>();
}

void CommandTableTest::groupsStandInTheirOrder()
{
    QList<std::pair<QString, MenuPlacement>> groups;
    for (const MenuGroup& group : commandTable()) {
        groups.append({group.menu, group.placement});
    }
    QCOMPARE(groups, (QList<std::pair<QString, MenuPlacement>>{{u"File"_s, MenuPlacement::replacingNewItems},
                                                               {u"File"_s, MenuPlacement::replacingSaveItems},
                                                               {u"Edit"_s, MenuPlacement::afterTextEditing},
                                                               {u"View"_s, MenuPlacement::afterToolbar},
                                                               {u"Run"_s, MenuPlacement::ownMenu},
                                                               {u"KelmWright"_s, MenuPlacement::afterAbout},
                                                               {u"Find"_s, MenuPlacement::ownMenu}}));
}

void CommandTableTest::linesStandInTheirOrder_data()
{
    QTest::addColumn<int>("group");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("new items") << 0
                               << QStringList{u"New File | Ctrl+N"_s,
                                              u"New Window | Ctrl+Shift+N"_s,
                                              u"-"_s,
                                              u"Open... | Ctrl+O"_s,
                                              u"Open Recent >"_s,
                                              u"-"_s,
                                              u"Clone Repository… | Ctrl+Shift+K"_s};
    QTest::newRow("save items") << 1
                                << QStringList{u"Save | Ctrl+S"_s, u"Save As... | Ctrl+Shift+S"_s,
                                               u"Save All | Ctrl+Alt+S"_s};
    QTest::newRow("edit") << 2
                          << QStringList{u"Format >"_s,
                                         u"  Format JSON | Ctrl+Shift+J"_s,
                                         u"  Format XML | Ctrl+Shift+X"_s,
                                         u"  -"_s,
                                         u"  Sort Lines Ascending"_s,
                                         u"  Sort Lines Descending"_s,
                                         u"Transform >"_s,
                                         u"  UPPERCASE"_s,
                                         u"  lowercase"_s,
                                         u"  Title Case"_s,
                                         u"  camelCase"_s,
                                         u"  snake_case"_s};
    QTest::newRow("view") << 3
                          << QStringList{u"Toggle Sidebar | Ctrl+B"_s,
#ifdef Q_OS_MACOS
                                         u"Toggle Bottom Panel | Meta+`"_s,
#else
                                         u"Toggle Bottom Panel | Ctrl+`"_s,
#endif
                                         u"Toggle Minimap | Ctrl+Shift+M"_s};
    QTest::newRow("run") << 4 << QStringList{u"Run | Ctrl+R"_s, u"Run in Terminal | Ctrl+Shift+R"_s};
    QTest::newRow("application") << 5 << QStringList{u"Check for Updates…"_s, u"-"_s, u"Uninstall KelmWright…"_s};
    QTest::newRow("find") << 6 << QStringList{u"Find... | Ctrl+F"_s,
                                              u"Find and Replace... | Ctrl+H"_s,
                                              u"Find in Project... | Ctrl+Shift+F"_s,
                                              u"-"_s,
                                              u"Go to File... | Ctrl+P"_s,
                                              u"Go to Line... | Ctrl+G"_s};
}

void CommandTableTest::linesStandInTheirOrder()
{
    QFETCH(int, group);
    QFETCH(QStringList, lines);
    QCOMPARE(describe(commandTable()[std::size_t(group)].items, state()), lines);
}

void CommandTableTest::everyCommandHasAnActionAndNoKeyIsTwice()
{
    QList<int> keys;
    const std::function<void(const std::vector<MenuItem>&)> walk = [&](const std::vector<MenuItem>& items) {
        for (const MenuItem& item : items) {
            QCOMPARE(bool(item.action), item.kind == MenuItem::Kind::command);
            if (item.key) {
                QVERIFY(!keys.contains(item.key->toCombined()));
                keys << item.key->toCombined();
            }
            walk(item.items);
        }
    };
    for (const MenuGroup& group : commandTable()) {
        walk(group.items);
    }
    QCOMPARE(keys.size(), 19);
}

void CommandTableTest::everyCommandStandsInTheTableOnce()
{
    QList<int> commands;
    const std::function<void(const std::vector<MenuItem>&)> walk = [&](const std::vector<MenuItem>& items) {
        for (const MenuItem& item : items) {
            QCOMPARE(item.command.has_value(), item.kind == MenuItem::Kind::command);
            if (item.command) {
                commands << int(*item.command);
                QCOMPARE(&commandItem(*item.command), &item);
            }
            walk(item.items);
        }
    };
    for (const MenuGroup& group : commandTable()) {
        walk(group.items);
    }
    std::sort(commands.begin(), commands.end());
    QList<int> all(int(lastTableCommand) + 1);
    std::iota(all.begin(), all.end(), 0);
    QCOMPARE(commands, all);
}

void CommandTableTest::anEmptyListOfRecentFilesIsAnEmptySubmenu()
{
    QVERIFY(makeOpenRecentItems(state()).empty());
}

void CommandTableTest::recentFilesHaveTheirNames()
{
    state().setRecentFiles({QUrl(u"file:///x/a%20b.txt"_s), QUrl(u"file:///y/a%20b.txt"_s), QUrl(u"file:///z/한"_s)});
    QCOMPARE(describe(makeOpenRecentItems(state()), state()),
             (QStringList{u"a b.txt"_s, u"a b.txt"_s, u"한"_s, u"-"_s, u"Clear Menu"_s}));
}

void CommandTableTest::aRecentFileOpens()
{
    const QUrl url = fixture_->write(u"a.txt"_s, "text");
    state().setRecentFiles({fixture_->url(u"other.txt"_s), url});
    const auto items = makeOpenRecentItems(state());
    items[1].action(targetsOf(state()));
    QVERIFY(state().currentDocument()->fileURL() == url);
    QCOMPARE(state().recentFiles().first(), url);
}

void CommandTableTest::clearingTheMenuEmptiesAndStores()
{
    state().addToRecentFiles(fixture_->write(u"a.txt"_s, "text"));
    const auto items = makeOpenRecentItems(state());
    items.back().action(targetsOf(state()));
    QVERIFY(state().recentFiles().isEmpty());
    QVERIFY(fixture_->userDefaults.data(u"recentFiles"_s) == QByteArray("[]"));
    QVERIFY(makeOpenRecentItems(state()).empty());
}

void CommandTableTest::aNewWindowDoesNothing()
{
    run(Command::newWindow, state());
    QVERIFY(state().documents().isEmpty());
    QVERIFY(fixture_->log.written.isEmpty() && fixture_->log.printed.isEmpty());
}

void CommandTableTest::fileCommandsWork()
{
    run(Command::newFile, state());
    QCOMPARE(state().documents().size(), 1);
    run(Command::open, state());
    QCOMPARE(fixture_->filePanels.openPanelsShown, 1);

    state().currentDocument()->setContent(u"one"_s);
    fixture_->filePanels.saveAnswer = fixture_->url(u"a.txt"_s);
    run(Command::save, state());
    QCOMPARE(fixture_->bytesOf(u"a.txt"_s), QByteArray("one"));
    fixture_->filePanels.saveAnswer = fixture_->url(u"b.txt"_s);
    run(Command::saveAs, state());
    QCOMPARE(fixture_->bytesOf(u"b.txt"_s), QByteArray("one"));
    state().currentDocument()->setContent(u"two"_s);
    run(Command::saveAll, state());
    QCOMPARE(fixture_->bytesOf(u"a.txt"_s), QByteArray("one"));
    QCOMPARE(fixture_->bytesOf(u"b.txt"_s), QByteArray("two"));
    QCOMPARE(fixture_->filePanels.savePanelsShown, 2);
}

void CommandTableTest::cloningShowsItsDialog()
{
    run(Command::cloneRepository, state());
    QVERIFY(state().showCloneDialog());
    run(Command::cloneRepository, state());
    QVERIFY(state().showCloneDialog());
}

void CommandTableTest::sortCommandsWork()
{
    run(Command::sortLinesAscending, state());
    run(Command::sortLinesDescending, state());
    fixture_->openTabs({u"b\na"_s});
    run(Command::sortLinesAscending, state());
    QCOMPARE(state().currentDocument()->content(), u"a\nb"_s);
    run(Command::sortLinesDescending, state());
    QCOMPARE(state().currentDocument()->content(), u"b\na"_s);
}

void CommandTableTest::togglesFlip()
{
    for (const bool isFlipped : {true, false}) {
        run(Command::toggleSidebar, state());
        run(Command::toggleBottomPanel, state());
        run(Command::toggleMinimap, state());
        QCOMPARE(state().showSidebar(), !isFlipped);
        QCOMPARE(state().showBottomPanel(), isFlipped);
        QCOMPARE(state().showMinimap(), !isFlipped);
    }
}

void CommandTableTest::runRunsTheCurrentDocument()
{
    run(Command::run, state());
    QVERIFY(!state().showBottomPanel());
    state().openSnippet(u"select 1"_s, Language::sql, std::nullopt);
    run(Command::run, state());
    QVERIFY(state().showBottomPanel());
    QCOMPARE(state().bottomPanelTab(), BottomPanelTab(BottomPanelTab::output));
    QCOMPARE(state().codeRunner().output(), u"Error: language 'SQL' is not runnable."_s);
}

void CommandTableTest::runInTerminalOnlyShowsThePanel()
{
    state().openSnippet(u"select 1"_s, Language::sql, std::nullopt);
    state().setBottomPanelTab(BottomPanelTab::problems);
    run(Command::runInTerminal, state());
    QVERIFY(state().showBottomPanel());
    QCOMPARE(state().bottomPanelTab(), BottomPanelTab(BottomPanelTab::problems));
    QVERIFY(state().codeRunner().output().isEmpty());
    run(Command::runInTerminal, state());
    QVERIFY(state().showBottomPanel());
}

void CommandTableTest::checkingForUpdatesAsksTheUpdater()
{
    auto owned = std::make_unique<CountingUpdater>();
    CountingUpdater& updater = *owned;
    AutoUpdateService updates(std::move(owned));
    const CommandTargets targets{state(), updates, [] { qFatal("no test asks for that"); }};
    const MenuItem& check = commandItem(Command::checkForUpdates, relabeledTable());
    QCoreApplication::processEvents();
    QVERIFY(!check.isEnabled(targets));
    updater.canCheck = true;
    Q_EMIT updater.canCheckForUpdatesChanged();
    QTRY_VERIFY(check.isEnabled(targets));
    check.action(targets);
    QCOMPARE(updater.checks, 1);
    updater.canCheck = false;
    Q_EMIT updater.canCheckForUpdatesChanged();
    QTRY_VERIFY(!check.isEnabled(targets));
    // No other command is ever disabled by the table.
    for (int command = 0; command <= int(lastTableCommand); ++command) {
        if (Command(command) != Command::checkForUpdates) {
            QVERIFY(!commandItem(Command(command)).isEnabled);
        }
    }
}

void CommandTableTest::uninstallingIsAsked()
{
    AutoUpdateService updates(UpdaterController::makeForPlatform());
    int asked = 0;
    commandItem(Command::uninstall, relabeledTable()).action({state(), updates, [&asked] { ++asked; }});
    QCOMPARE(asked, 1);
}

void CommandTableTest::findCommandsShowTheirOverlay_data()
{
    QTest::addColumn<Command>("command");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<int>("mode");
    QTest::newRow("find") << Command::find << u"search"_s << int(SearchMode::find);
    QTest::newRow("replace") << Command::findAndReplace << u"search"_s << int(SearchMode::replace);
    QTest::newRow("project") << Command::findInProject << u"search"_s << int(SearchMode::project);
    QTest::newRow("file") << Command::goToFile << u"quickOpen"_s << int(SearchMode::replace);
    QTest::newRow("line") << Command::goToLine << u"goToLine"_s << int(SearchMode::replace);
}

void CommandTableTest::findCommandsShowTheirOverlay()
{
    QFETCH(Command, command);
    QFETCH(QString, shown);
    QFETCH(int, mode);
    state().setSearchMode(SearchMode::replace);
    // A second call shows what is shown already.
    for (int i = 0; i < 2; ++i) {
        run(command, state());
        QCOMPARE(state().showSearch(), shown == u"search");
        QCOMPARE(state().showQuickOpen(), shown == u"quickOpen");
        QCOMPARE(state().showGoToLine(), shown == u"goToLine");
        QCOMPARE(int(state().searchMode()), mode);
    }
}

void CommandTableTest::textCommandsRewriteTheWholeContent_data()
{
    QTest::addColumn<Command>("command");
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    QTest::newRow("JSON") << Command::formatJson << u"{\"b\":1,\"a\":2}"_s << u"{\n  \"a\" : 2,\n  \"b\" : 1\n}"_s;
    QTest::newRow("bad JSON stays") << Command::formatJson << u"{,}"_s << u"{,}"_s;
    QTest::newRow("XML that is not well formed") << Command::formatXml << u"<a><b>"_s << u"<a>\n  <b>"_s;
    QTest::newRow("XML") << Command::formatXml << u"<a><b/></a>"_s << u"<a>\n    <b/>\n</a>"_s;
    QTest::newRow("upper") << Command::toUpperCase << u"straße"_s << u"STRASSE"_s;
    QTest::newRow("lower") << Command::toLowerCase << u"ÀB"_s << u"àb"_s;
    QTest::newRow("title") << Command::toTitleCase << u"foo_bar don't"_s << u"Foo_Bar Don't"_s;
    QTest::newRow("camel") << Command::toCamelCase << u"fooBar baz-qux"_s << u"fooBarBazQux"_s;
    QTest::newRow("snake") << Command::toSnakeCase << u"fooBar baz-qux"_s << u"foo_bar_baz_qux"_s;
}

void CommandTableTest::textCommandsRewriteTheWholeContent()
{
    QFETCH(Command, command);
    QFETCH(QString, before);
    QFETCH(QString, after);
    state().createNewTab();
    const std::shared_ptr<Document> document = state().currentDocument();
    document->setContent(before);
    document->setIsModified(false);
    // What is selected makes no difference.
    document->setSelection(TextSelection{{1, 1, 0}, {1, 2, 1}});
    run(command, state());
    QCOMPARE(document->content(), after);
    QCOMPARE(document->isModified(), before != after);
}

void CommandTableTest::textCommandsWithoutADocumentDoNothing()
{
    for (const Command command : {Command::formatJson, Command::formatXml, Command::toUpperCase, Command::toLowerCase,
                                  Command::toTitleCase, Command::toCamelCase, Command::toSnakeCase}) {
        run(command, state());
    }
    QVERIFY(state().documents().isEmpty());
}

const kelm::test::Registered<CommandTableTest> registered;

} // namespace command_table_test

#include "command_table_test.moc"
