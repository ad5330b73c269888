#include "platform/view/mnemonics.h"
#include "run/code_runner.h"
#include "run/view/output_view.h"
#include "support/test_program.h"
#include "workbench/view/menu_bar.h"
#include "workbench/view/window_fixture.h"

#include <QInputMethodEvent>
#include <QMenu>
#include <QMessageBox>

namespace menu_bar_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

/// The lines of a built menu: label and key, indented by a submenu's depth, "-" for a separator.
QStringList linesOf(const QMenu& menu, const QString& indent = {})
{
    QStringList lines;
    for (const QAction* action : menu.actions()) {
        if (action->isSeparator()) {
            lines.append(indent + u'-');
        } else if (action->menu() != nullptr) {
            lines.append(indent + action->text() + QStringLiteral(" >"));
            lines.append(linesOf(*action->menu(), indent + QStringLiteral("  ")));
        } else {
            const QString key = action->shortcut().toString(QKeySequence::PortableText);
            lines.append(indent + action->text() + (key.isEmpty() ? QString() : QStringLiteral(" | ") + key));
        }
    }
    return lines;
}

QMenu* menuOf(MainWindow& window, const QString& title)
{
    for (const QAction* action : window.menuBar()->actions()) {
        if (withoutMnemonicMarks(action->text()) == title) {
            return action->menu();
        }
    }
    return nullptr;
}

} // namespace

class MenuBarTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void menusStandInTheirOrder();
    void eachMenuHasALetterOfItsOwn();
    void aKeyOpensTheFirstMenu();
    void noKeyStandsForTwoCommands();
    void whatDesktopsTakeHasASecondKey_data();
    void whatDesktopsTakeHasASecondKey();
    void eachKeyOfTheTableGivesItsCommand_data();
    void eachKeyOfTheTableGivesItsCommand();
    void linesReadBackAsTheTableHasThem_data();
    void linesReadBackAsTheTableHasThem();
    void updatesCanBeLookedForOnlyWhereThereIsAnUpdater();
    void everyCommandHasOneAction();
    void aboutTellsTheVersion();
    void openRecentFollowsTheState();
    void anAmpersandInANameIsNoMnemonic();
    void newWindowDoesNothing();
    void togglesFlipTheState();
    void runHandsTheTextOnScreenToTheRunner();
    void editingCommandsGoToWhatHasTheKeyboard();
    void findCommandsReachTheTextFromItsBar();
    void aCompositionIsPutInBeforeACommandRuns();
};

void MenuBarTest::menusStandInTheirOrder()
{
    WindowFixture fixture;
    QStringList titles;
    for (const QAction* action : fixture.window.menuBar()->actions()) {
        titles.append(withoutMnemonicMarks(action->text()));
    }
    QCOMPARE(titles, (QStringList{QStringLiteral("KelmWright"), QStringLiteral("File"), QStringLiteral("Edit"),
                                  QStringLiteral("View"), QStringLiteral("Run"), QStringLiteral("Find"),
                                  QStringLiteral("Window")}));
}

void MenuBarTest::eachMenuHasALetterOfItsOwn()
{
    WindowFixture fixture;
    fixture.state.createNewTab();
    QSet<QString> letters;
    for (QAction* action : fixture.window.menuBar()->actions()) {
        const QKeySequence letter = QKeySequence::mnemonic(action->text());
        QVERIFY2(!letter.isEmpty(), qPrintable(action->text()));
        QVERIFY2(!letters.contains(letter.toString()), qPrintable(action->text()));
        letters.insert(letter.toString());
        // No command has it.
        for (const QAction* command : fixture.window.menuBar()->findChildren<QAction*>()) {
            QVERIFY2(!command->shortcuts().contains(letter), qPrintable(command->text()));
        }
        QTest::keyClick(fixture.window.windowHandle(), letter[0].key(), Qt::AltModifier);
        QTRY_VERIFY2(action->menu()->isVisible(), qPrintable(action->text()));
        action->menu()->close();
        fixture.turnQueue();
        fixture.text().setFocus();
    }
    QVERIFY(fixture.text().text().isEmpty());
}

void MenuBarTest::aKeyOpensTheFirstMenu()
{
    WindowFixture fixture;
    fixture.state.createNewTab();
    QTest::keyClick(fixture.window.windowHandle(), Qt::Key_F10);
    QMenu* const first = fixture.window.menuBar()->actions().first()->menu();
    QTRY_VERIFY(first->isVisible());
    QCOMPARE(first->activeAction(), first->actions().first());
    QTest::keyClick(first, Qt::Key_Escape);
    QVERIFY(!first->isVisible());
    QTest::keyClick(fixture.window.menuBar(), Qt::Key_Escape);
    QTRY_VERIFY(fixture.text().hasFocus());
}

void MenuBarTest::noKeyStandsForTwoCommands()
{
    WindowFixture fixture;
    QHash<QKeySequence, QString> taken;
    for (const QAction* action : fixture.window.menuBar()->findChildren<QAction*>()) {
        for (const QKeySequence& key : action->shortcuts()) {
            QVERIFY2(!taken.contains(key), qPrintable(action->text() + u" and "_s + taken.value(key)));
            taken.insert(key, action->text());
        }
    }
}

void MenuBarTest::whatDesktopsTakeHasASecondKey_data()
{
    QTest::addColumn<Command>("command");
    QTest::addColumn<QString>("keys");
    QTest::newRow("Save All") << Command::saveAll << u"Ctrl+Alt+S; Ctrl+Shift+A"_s;
    QTest::newRow("Find in Text") << Command::showFindBar << u"Ctrl+Alt+F; Ctrl+I"_s;
    QTest::newRow("Replace in Text") << Command::showReplaceBar << u"Ctrl+Alt+R; Ctrl+Shift+I"_s;
    QTest::newRow("Use Selection") << Command::useSelectionForFind << u"Ctrl+F3; Ctrl+Shift+F3"_s;
}

void MenuBarTest::whatDesktopsTakeHasASecondKey()
{
    QFETCH(Command, command);
    QFETCH(QString, keys);
    WindowFixture fixture;
    QAction* const action = fixture.command(command);
    QCOMPARE(QKeySequence::listToString(action->shortcuts(), QKeySequence::PortableText), keys);
    fixture.state.createNewTab();
    QSignalSpy given(action, &QAction::triggered);
    QTest::keyClick(fixture.window.windowHandle(), action->shortcuts().last()[0].key(),
                    action->shortcuts().last()[0].keyboardModifiers());
    QCOMPARE(given.count(), 1);
}

void MenuBarTest::eachKeyOfTheTableGivesItsCommand_data()
{
    constexpr Qt::Modifiers shift = Qt::CTRL | Qt::SHIFT;
    QTest::addColumn<QKeyCombination>("key");
    QTest::addColumn<Command>("command");
    const auto row = [](const char* name, QKeyCombination key, Command command) {
        QTest::newRow(name) << key << command;
    };
    row("New File", Qt::CTRL | Qt::Key_N, Command::newFile);
    row("New Window", shift | Qt::Key_N, Command::newWindow);
    row("Open", Qt::CTRL | Qt::Key_O, Command::open);
    row("Clone Repository", shift | Qt::Key_K, Command::cloneRepository);
    row("Save", Qt::CTRL | Qt::Key_S, Command::save);
    row("Save As", shift | Qt::Key_S, Command::saveAs);
    row("Save All", Qt::CTRL | Qt::ALT | Qt::Key_S, Command::saveAll);
    row("Format JSON", shift | Qt::Key_J, Command::formatJson);
    row("Format XML", shift | Qt::Key_X, Command::formatXml);
    row("Toggle Sidebar", Qt::CTRL | Qt::Key_B, Command::toggleSidebar);
#ifdef Q_OS_MACOS
    row("Toggle Bottom Panel", Qt::META | Qt::Key_QuoteLeft, Command::toggleBottomPanel);
#else
    row("Toggle Bottom Panel", Qt::CTRL | Qt::Key_QuoteLeft, Command::toggleBottomPanel);
#endif
    row("Toggle Minimap", shift | Qt::Key_M, Command::toggleMinimap);
    row("Run", Qt::CTRL | Qt::Key_R, Command::run);
    row("Run in Terminal", shift | Qt::Key_R, Command::runInTerminal);
    row("Find", Qt::CTRL | Qt::Key_F, Command::find);
    row("Find and Replace", Qt::CTRL | Qt::Key_H, Command::findAndReplace);
    row("Find in Project", shift | Qt::Key_F, Command::findInProject);
    row("Go to File", Qt::CTRL | Qt::Key_P, Command::goToFile);
    row("Go to Line", Qt::CTRL | Qt::Key_G, Command::goToLine);
}

void MenuBarTest::eachKeyOfTheTableGivesItsCommand()
{
    QFETCH(QKeyCombination, key);
    QFETCH(Command, command);
    WindowFixture fixture;
    fixture.state.openFile(fixture.write(u"a.txt"_s, "{}"));
    fixture.turnQueue();
    // The text, which has keys of its own, takes none of these.
    QVERIFY(fixture.text().hasFocus());
    QList<int> given;
    for (const QAction* action : fixture.window.menuBar()->findChildren<QAction*>()) {
        connect(action, &QAction::triggered, this, [&given, action] { given.append(action->data().toInt()); });
    }
    // With Control a letter's key types a control character.
    const bool isLetter = key.key() >= Qt::Key_A && key.key() <= Qt::Key_Z;
    const QString typed = isLetter ? QString(QChar(key.key() - Qt::Key_A + 1)) : QString();
    QTest::sendKeyEvent(QTest::Click, fixture.window.windowHandle(), key.key(), typed, key.keyboardModifiers());
    QCOMPARE(given, QList<int>{int(command)});
    // A key that is held down gives it once.
    QVERIFY(!fixture.command(command)->autoRepeat());
}

void MenuBarTest::linesReadBackAsTheTableHasThem_data()
{
    QTest::addColumn<QString>("menu");
    QTest::addColumn<QString>("lines");
    QTest::newRow("application") << QStringLiteral("KelmWright")
                                 << QStringLiteral("About KelmWright\n-\nCheck for Updates…\n-\n"
                                                   "Uninstall KelmWright…\n-\nSettings… | Ctrl+,\n-\n"
                                                   "Quit KelmWright | Ctrl+Q");
    QTest::newRow("file") << QStringLiteral("File")
                          << QStringLiteral("New File | Ctrl+N\nNew Window | Ctrl+Shift+N\n-\nOpen... | Ctrl+O\n"
                                            "Open Recent >\n-\nClone Repository… | Ctrl+Shift+K\n-\n"
                                            "Save | Ctrl+S\nSave As... | Ctrl+Shift+S\n"
                                            "Save All | Ctrl+Alt+S");
    QTest::newRow("edit") << QStringLiteral("Edit")
                          << QStringLiteral(
                                 "Undo | Ctrl+Z\nRedo | Ctrl+Shift+Z\n-\nCut | Ctrl+X\nCopy | Ctrl+C\nPaste | Ctrl+V\n"
                                 "Select All | Ctrl+A\n-\nFind >\n  Find in Text… | Ctrl+Alt+F\n"
                                 "  Replace in Text… | Ctrl+Alt+R\n  Find Next | F3\n  Find Previous | Shift+F3\n"
                                 "  Use Selection for Find | Ctrl+F3\n-\nFormat >\n  Format JSON | Ctrl+Shift+J\n"
                                 "  Format XML | Ctrl+Shift+X\n  -\n  Sort Lines Ascending\n  Sort Lines Descending\n"
                                 "Transform >\n  UPPERCASE\n  lowercase\n  Title Case\n  camelCase\n  snake_case");
    QTest::newRow("view") << QStringLiteral("View")
                          << QStringLiteral("Toggle Sidebar | Ctrl+B\nToggle Bottom Panel | Ctrl+`\n"
                                            "Toggle Minimap | Ctrl+Shift+M");
    QTest::newRow("run") << QStringLiteral("Run") << QStringLiteral("Run | Ctrl+R\nRun in Terminal | Ctrl+Shift+R");
    QTest::newRow("find") << QStringLiteral("Find")
                          << QStringLiteral("Find... | Ctrl+F\nFind and Replace... | Ctrl+H\n"
                                            "Find in Project... | Ctrl+Shift+F\n-\nGo to File... | Ctrl+P\n"
                                            "Go to Line... | Ctrl+G");
    QTest::newRow("window") << QStringLiteral("Window")
                            << QStringLiteral("Next Recent Tab | Ctrl+Tab\nPrevious Recent Tab | Ctrl+Shift+Tab\n"
                                              "Next Tab | Ctrl+PgDown\nPrevious Tab | Ctrl+PgUp\nGo to Tab >\n"
                                              "  Tab 1 | Alt+1\n  Tab 2 | Alt+2\n  Tab 3 | Alt+3\n  Tab 4 | Alt+4\n"
                                              "  Tab 5 | Alt+5\n  Tab 6 | Alt+6\n  Tab 7 | Alt+7\n  Tab 8 | Alt+8\n"
                                              "  Last Tab | Alt+9\n-\nClose Tab | Ctrl+W\n"
                                              "Reopen Closed Tab | Ctrl+Shift+T\n-\nNext Pane | F6\n"
                                              "Previous Pane | Shift+F6");
}

void MenuBarTest::linesReadBackAsTheTableHasThem()
{
    QFETCH(QString, menu);
    QFETCH(QString, lines);
    WindowFixture fixture;
    QCOMPARE(linesOf(*menuOf(fixture.window, menu)).join(u'\n'), lines);
}

void MenuBarTest::updatesCanBeLookedForOnlyWhereThereIsAnUpdater()
{
    // Without an application image there is none.
    WindowFixture fixture;
    QAction* check = fixture.command(Command::checkForUpdates);
    QVERIFY(!check->isEnabled());
    // The menu asks anew each time it opens.
    check->setEnabled(true);
    Q_EMIT menuOf(fixture.window, QStringLiteral("KelmWright"))->aboutToShow();
    QVERIFY(!check->isEnabled());
}

void MenuBarTest::everyCommandHasOneAction()
{
    WindowFixture fixture;
    QList<int> commands;
    for (const QAction* action : fixture.window.menuBar()->findChildren<QAction*>()) {
        if (action->data().isValid()) {
            commands.append(action->data().toInt());
        }
    }
    std::sort(commands.begin(), commands.end());
    QList<int> all(int(lastCommand) + 1);
    std::iota(all.begin(), all.end(), 0);
    QCOMPARE(commands, all);
}

void MenuBarTest::aboutTellsTheVersion()
{
    WindowFixture fixture;
    const QString versionBefore = QCoreApplication::applicationVersion();
    QCoreApplication::setApplicationVersion(u"12.3"_s);
    QString told;
    QTimer::singleShot(0, &fixture.window, [&told] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (box == nullptr) {
            qFatal("no box");
        }
        told = box->text();
        box->close();
    });
    fixture.command(Command::about)->trigger();
    QTRY_COMPARE(told, u"KelmWright 12.3\n\nA code editor for writing and learning."_s);
    QCoreApplication::setApplicationVersion(versionBefore);
}

void MenuBarTest::openRecentFollowsTheState()
{
    WindowFixture fixture;
    QMenu* recent = nullptr;
    for (const QAction* action : menuOf(fixture.window, QStringLiteral("File"))->actions()) {
        recent = action->text() == QStringLiteral("Open Recent") ? action->menu() : recent;
    }
    QVERIFY(recent != nullptr);
    QVERIFY(recent->isEmpty());
    const QUrl url = fixture.write(QStringLiteral("a.txt"), "text");
    fixture.state.openFile(url);
    Q_EMIT recent->aboutToShow();
    QCOMPARE(linesOf(*recent),
             (QStringList{QStringLiteral("a.txt"), QStringLiteral("-"), QStringLiteral("Clear Menu")}));
    fixture.state.closeTab(0);
    recent->actions().first()->trigger();
    QCOMPARE(fixture.state.documents().size(), 1);
    recent->actions().last()->trigger();
    Q_EMIT recent->aboutToShow();
    QVERIFY(recent->isEmpty());
    QVERIFY(fixture.state.recentFiles().isEmpty());
}

void MenuBarTest::anAmpersandInANameIsNoMnemonic()
{
    WindowFixture fixture;
    fixture.state.openFile(fixture.write(QStringLiteral("a & b.txt"), "text"));
    QMenu* recent = nullptr;
    for (const QAction* action : menuOf(fixture.window, QStringLiteral("File"))->actions()) {
        recent = action->text() == QStringLiteral("Open Recent") ? action->menu() : recent;
    }
    Q_EMIT recent->aboutToShow();
    QCOMPARE(recent->actions().first()->text(), QStringLiteral("a && b.txt"));
}

void MenuBarTest::newWindowDoesNothing()
{
    WindowFixture fixture;
    fixture.command(Command::newWindow)->trigger();
    QVERIFY(fixture.state.documents().isEmpty());
    QVERIFY(fixture.log.written.isEmpty());
    QVERIFY(fixture.log.printed.isEmpty());
}

void MenuBarTest::togglesFlipTheState()
{
    WindowFixture fixture;
    fixture.state.createNewTab();
    QVERIFY(fixture.window.editorArea().currentEditor()->showMinimap());
    fixture.command(Command::toggleMinimap)->trigger();
    fixture.turnQueue();
    QVERIFY(!fixture.state.showMinimap());
    QVERIFY(!fixture.window.editorArea().currentEditor()->showMinimap());
}

void MenuBarTest::runHandsTheTextOnScreenToTheRunner()
{
    WindowFixture fixture;
    fixture.command(Command::run)->trigger();
    QVERIFY(!fixture.state.showBottomPanel());
    fixture.openSnippet(QString(), Language::shell);
    QTest::keyClicks(&fixture.text(), QStringLiteral("echo typed"));
    QTest::keyClick(&fixture.text(), Qt::Key_R, Qt::ControlModifier);
    QTRY_VERIFY(fixture.state.codeRunner().lastExitCode().has_value());
    QVERIFY(fixture.state.codeRunner().output().contains(QStringLiteral("\ntyped\n")));
    QVERIFY(fixture.state.showBottomPanel());
    QCOMPARE(fixture.window.findChild<OutputView*>()->output(),
             QStringLiteral("typed\n\n\nProcess exited with code 0\n"));
}

void MenuBarTest::editingCommandsGoToWhatHasTheKeyboard()
{
    WindowFixture fixture;
    fixture.command(Command::undo)->trigger();
    fixture.state.createNewTab();
    QTest::keyClicks(&fixture.text(), QStringLiteral("abc"));
    fixture.command(Command::selectAll)->trigger();
    QCOMPARE(fixture.text().selectedRange(), (TextRange{0, 3}));
    fixture.command(Command::cut)->trigger();
    QCOMPARE(fixture.text().text(), QString());
    fixture.command(Command::paste)->trigger();
    fixture.command(Command::undo)->trigger();
    QCOMPARE(fixture.text().text(), QString());
    fixture.command(Command::redo)->trigger();
    QCOMPARE(fixture.text().text(), QStringLiteral("abc"));
}

void MenuBarTest::findCommandsReachTheTextFromItsBar()
{
    WindowFixture fixture;
    fixture.openSnippet(QStringLiteral("a b a"), Language::swift);
    fixture.turnQueue();
    fixture.text().setFocus();
    fixture.text().setSelectedRange({0, 1});
    fixture.command(Command::showFindBar)->trigger();
    QVERIFY(!fixture.text().hasFocus());
    fixture.command(Command::findNext)->trigger();
    QCOMPARE(fixture.text().selectedRange(), (TextRange{4, 1}));
}

void MenuBarTest::aCompositionIsPutInBeforeACommandRuns()
{
    WindowFixture fixture;
    const QUrl url = fixture.write(QStringLiteral("a.txt"), "text");
    fixture.state.openFile(url);
    fixture.turnQueue();
    fixture.text().setFocus();
    QInputMethodEvent composing(QStringLiteral("한"), {});
    QCoreApplication::sendEvent(&fixture.text(), &composing);
    QVERIFY(fixture.text().isComposing());
    fixture.command(Command::save)->trigger();
    QCOMPARE(WindowFixture::read(url), QByteArray("한text"));
    QVERIFY(!fixture.state.currentDocument()->isModified());
}

const kelm::test::Registered<MenuBarTest> registered(kelm::test::Toolkit::widgets);

} // namespace menu_bar_test

#include "menu_bar_test.moc"
