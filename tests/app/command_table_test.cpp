#include "app/command_table.h"
#include "run/code_runner.h"
#include "support/app_state_fixture.h"
#include "support/test_program.h"

#include <QKeySequence>
#include <QtTest>

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

const MenuItem* findCommand(const std::vector<MenuItem>& items, const QString& label)
{
    for (const MenuItem& item : items) {
        if (item.kind == MenuItem::Kind::command && item.label == label) {
            return &item;
        }
        if (const MenuItem* inner = findCommand(item.items, label)) {
            return inner;
        }
    }
    return nullptr;
}

void run(const QString& label, AppState& state)
{
    for (const MenuGroup& group : commandTable()) {
        if (const MenuItem* command = findCommand(group.items, label)) {
            command->action(state);
            return;
        }
    }
    QFAIL(qPrintable(u"no command "_s + label));
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
    items[1].action(state());
    QVERIFY(state().currentDocument()->fileURL() == url);
    QCOMPARE(state().recentFiles().first(), url);
}

void CommandTableTest::clearingTheMenuEmptiesAndStores()
{
    state().addToRecentFiles(fixture_->write(u"a.txt"_s, "text"));
    const auto items = makeOpenRecentItems(state());
    items.back().action(state());
    QVERIFY(state().recentFiles().isEmpty());
    QVERIFY(fixture_->userDefaults.data(u"recentFiles"_s) == QByteArray("[]"));
    QVERIFY(makeOpenRecentItems(state()).empty());
}

void CommandTableTest::aNewWindowDoesNothing()
{
    run(u"New Window"_s, state());
    QVERIFY(state().documents().isEmpty());
    QVERIFY(fixture_->log.written.isEmpty() && fixture_->log.printed.isEmpty());
}

void CommandTableTest::fileCommandsWork()
{
    run(u"New File"_s, state());
    QCOMPARE(state().documents().size(), 1);
    run(u"Open..."_s, state());
    QCOMPARE(fixture_->filePanels.openPanelsShown, 1);

    state().currentDocument()->setContent(u"one"_s);
    fixture_->filePanels.saveAnswer = fixture_->url(u"a.txt"_s);
    run(u"Save"_s, state());
    QCOMPARE(fixture_->bytesOf(u"a.txt"_s), QByteArray("one"));
    fixture_->filePanels.saveAnswer = fixture_->url(u"b.txt"_s);
    run(u"Save As..."_s, state());
    QCOMPARE(fixture_->bytesOf(u"b.txt"_s), QByteArray("one"));
    state().currentDocument()->setContent(u"two"_s);
    run(u"Save All"_s, state());
    QCOMPARE(fixture_->bytesOf(u"a.txt"_s), QByteArray("one"));
    QCOMPARE(fixture_->bytesOf(u"b.txt"_s), QByteArray("two"));
    QCOMPARE(fixture_->filePanels.savePanelsShown, 2);
}

void CommandTableTest::cloningShowsItsDialog()
{
    run(u"Clone Repository…"_s, state());
    QVERIFY(state().showCloneDialog());
    run(u"Clone Repository…"_s, state());
    QVERIFY(state().showCloneDialog());
}

void CommandTableTest::sortCommandsWork()
{
    run(u"Sort Lines Ascending"_s, state());
    run(u"Sort Lines Descending"_s, state());
    fixture_->openTabs({u"b\na"_s});
    run(u"Sort Lines Ascending"_s, state());
    QCOMPARE(state().currentDocument()->content(), u"a\nb"_s);
    run(u"Sort Lines Descending"_s, state());
    QCOMPARE(state().currentDocument()->content(), u"b\na"_s);
}

void CommandTableTest::togglesFlip()
{
    for (const bool isFlipped : {true, false}) {
        run(u"Toggle Sidebar"_s, state());
        run(u"Toggle Bottom Panel"_s, state());
        run(u"Toggle Minimap"_s, state());
        QCOMPARE(state().showSidebar(), !isFlipped);
        QCOMPARE(state().showBottomPanel(), isFlipped);
        QCOMPARE(state().showMinimap(), !isFlipped);
    }
}

void CommandTableTest::runRunsTheCurrentDocument()
{
    run(u"Run"_s, state());
    QVERIFY(!state().showBottomPanel());
    state().openSnippet(u"select 1"_s, Language::sql, std::nullopt);
    run(u"Run"_s, state());
    QVERIFY(state().showBottomPanel());
    QCOMPARE(state().bottomPanelTab(), BottomPanelTab(BottomPanelTab::output));
    QCOMPARE(state().codeRunner().output(), u"Error: language 'SQL' is not runnable."_s);
}

void CommandTableTest::runInTerminalOnlyShowsThePanel()
{
    state().openSnippet(u"select 1"_s, Language::sql, std::nullopt);
    state().setBottomPanelTab(BottomPanelTab::problems);
    run(u"Run in Terminal"_s, state());
    QVERIFY(state().showBottomPanel());
    QCOMPARE(state().bottomPanelTab(), BottomPanelTab(BottomPanelTab::problems));
    QVERIFY(state().codeRunner().output().isEmpty());
    run(u"Run in Terminal"_s, state());
    QVERIFY(state().showBottomPanel());
}

void CommandTableTest::findCommandsShowTheirOverlay_data()
{
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<int>("mode");
    QTest::newRow("find") << u"Find..."_s << u"search"_s << int(SearchMode::find);
    QTest::newRow("replace") << u"Find and Replace..."_s << u"search"_s << int(SearchMode::replace);
    QTest::newRow("project") << u"Find in Project..."_s << u"search"_s << int(SearchMode::project);
    QTest::newRow("file") << u"Go to File..."_s << u"quickOpen"_s << int(SearchMode::replace);
    QTest::newRow("line") << u"Go to Line..."_s << u"goToLine"_s << int(SearchMode::replace);
}

void CommandTableTest::findCommandsShowTheirOverlay()
{
    QFETCH(QString, label);
    QFETCH(QString, shown);
    QFETCH(int, mode);
    state().setSearchMode(SearchMode::replace);
    // A second call shows what is shown already.
    for (int i = 0; i < 2; ++i) {
        run(label, state());
        QCOMPARE(state().showSearch(), shown == u"search");
        QCOMPARE(state().showQuickOpen(), shown == u"quickOpen");
        QCOMPARE(state().showGoToLine(), shown == u"goToLine");
        QCOMPARE(int(state().searchMode()), mode);
    }
}

void CommandTableTest::textCommandsRewriteTheWholeContent_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    QTest::newRow("JSON") << u"Format JSON"_s << u"{\"b\":1,\"a\":2}"_s << u"{\n  \"a\" : 2,\n  \"b\" : 1\n}"_s;
    QTest::newRow("bad JSON stays") << u"Format JSON"_s << u"{,}"_s << u"{,}"_s;
    QTest::newRow("XML that is not well formed") << u"Format XML"_s << u"<a><b>"_s << u"<a>\n  <b>"_s;
    QTest::newRow("XML") << u"Format XML"_s << u"<a><b/></a>"_s << u"<a>\n    <b/>\n</a>"_s;
    QTest::newRow("upper") << u"UPPERCASE"_s << u"straße"_s << u"STRASSE"_s;
    QTest::newRow("lower") << u"lowercase"_s << u"ÀB"_s << u"àb"_s;
    QTest::newRow("title") << u"Title Case"_s << u"foo_bar don't"_s << u"Foo_Bar Don't"_s;
    QTest::newRow("camel") << u"camelCase"_s << u"fooBar baz-qux"_s << u"fooBarBazQux"_s;
    QTest::newRow("snake") << u"snake_case"_s << u"fooBar baz-qux"_s << u"foo_bar_baz_qux"_s;
}

void CommandTableTest::textCommandsRewriteTheWholeContent()
{
    QFETCH(QString, command);
    QFETCH(QString, before);
    QFETCH(QString, after);
    state().createNewTab();
    const std::shared_ptr<Document> document = state().currentDocument();
    document->setContent(before);
    document->setIsModified(false);
    run(command, state());
    QCOMPARE(document->content(), after);
    QCOMPARE(document->isModified(), before != after);
}

void CommandTableTest::textCommandsWithoutADocumentDoNothing()
{
    for (const char* command :
         {"Format JSON", "Format XML", "UPPERCASE", "lowercase", "Title Case", "camelCase", "snake_case"}) {
        run(QString::fromLatin1(command), state());
    }
    QVERIFY(state().documents().isEmpty());
}

const kelm::test::Registered<CommandTableTest> registered;

} // namespace command_table_test

#include "command_table_test.moc"
