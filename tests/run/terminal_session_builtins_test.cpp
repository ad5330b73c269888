#include "platform/files/native_path.h"
#include "support/terminal_fixture.h"
#include "support/test_program.h"
#include "support/unprivileged.h"

#include <QRegularExpression>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QtTest>

#include <sys/stat.h>
#include <unistd.h>

namespace terminal_session_builtins_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

class TerminalSessionBuiltinsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void newSessionStartsAtHome();
    void bannerComesAfterATenthOfASecond();
    void bannerOfASessionThatIsGoneIsNotWritten();
    void promptShowsTheWholePath();
    void emptyLineIsPassedOver();
    void builtinsWriteTheirText_data();
    void builtinsWriteTheirText();
    void onlyTheExactNameIsABuiltin_data();
    void onlyTheExactNameIsABuiltin();
    void clearWritesAPromptOfItsOwn();
    void exitPutsThePanelAway();

    void cdChangesTheFolder_data();
    void cdChangesTheFolder();
    void cdReportsWhatWasTyped_data();
    void cdReportsWhatWasTyped();
    void cdFromTheRootStaysThere();
    void cdTakesASymbolicLinkByItsName();
    void cdMovesTheWholeApplication();
    void cdLeavesAFolderThatHasGone();
    void cdEntersAFolderWithoutPermission();
    void cdEntersAFolderWhoseNameIsNotUtf8();

    void exportSetsVariables_data();
    void exportSetsVariables();
    void exportListsVariablesInOrder();

    void historyNumbersItsLines();
    void historyKeepsDuplicates();
    void nextCommandMovesForward();

    void nothingIsWrittenWithoutAView();
    void titleIsPublished();
};

void TerminalSessionBuiltinsTest::newSessionStartsAtHome()
{
    TerminalFixture fixture;
    QVERIFY(QDir::setCurrent(u"/"_s));
    fixture.makeSession();
    const TerminalSession& session = *fixture.session;
    QCOMPARE(session.currentDirectory(), fixture.home());
    QCOMPARE(session.title(), u"Terminal"_s);
    QCOMPARE(session.commandHistory(), QStringList());
    QCOMPARE(session.historyIndex(), 0);
    QVERIFY(session.process() == nullptr);
    QVERIFY(!session.isBusy());
    QCOMPARE(session.environment().value(u"HOME"_s), fixture.home());
    QCOMPARE(session.environment().value(u"PATH"_s), qEnvironmentVariable("PATH"));
    QVERIFY(session.id() != TerminalSession({fixture.scheduler, fixture.notifications}).id());
    QVERIFY(!session.id().isNull());
}

void TerminalSessionBuiltinsTest::bannerComesAfterATenthOfASecond()
{
    TerminalFixture fixture;
    fixture.scheduler.advance(std::chrono::milliseconds(99));
    QVERIFY(fixture.screen.writes.isEmpty());
    fixture.scheduler.advance(std::chrono::milliseconds(1));
    QCOMPARE(fixture.screen.writes,
             (QStringList{u"cyan: KelmWright Terminal v2.0\n"_s, u"gray: Type 'help' for available commands\n"_s,
                          u"cyan: \n"_s + fixture.home() + u" $ "_s}));
    fixture.scheduler.advance(std::chrono::seconds(10));
    QCOMPARE(fixture.screen.writes.size(), 3);
}

void TerminalSessionBuiltinsTest::bannerOfASessionThatIsGoneIsNotWritten()
{
    TerminalFixture fixture;
    fixture.session.reset();
    fixture.scheduler.advance(std::chrono::seconds(1));
    QVERIFY(fixture.screen.writes.isEmpty());
}

void TerminalSessionBuiltinsTest::promptShowsTheWholePath()
{
    QCOMPARE(TerminalSession::promptText(u"/home/anna"), u"\n/home/anna $ "_s);
    QCOMPARE(TerminalSession::promptText(u"/%1 %2"), u"\n/%1 %2 $ "_s);
}

void TerminalSessionBuiltinsTest::emptyLineIsPassedOver()
{
    TerminalFixture fixture;
    QVERIFY(fixture.run(u""_s).isEmpty());
    QVERIFY(fixture.session->commandHistory().isEmpty());
    QCOMPARE(fixture.session->historyIndex(), 0);
    QVERIFY(fixture.session->process() == nullptr);
}

void TerminalSessionBuiltinsTest::builtinsWriteTheirText_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("write");
    QTest::newRow("pwd") << u"pwd"_s << u"white: \n$HOME"_s;
    QTest::newRow("pwd passes over what follows") << u"pwd x"_s << u"white: \n$HOME"_s;
    QTest::newRow("blanks of other kinds") << u"pwd\u00a0\tx"_s << u"white: \n$HOME"_s;
    QTest::newRow("alias") << u"alias"_s << u"yellow: \nAliases not yet implemented"_s;
    QTest::newRow("alias with a name") << u"alias ll='ls -l'"_s << u"yellow: \nAliases not yet implemented"_s;
    QTest::newRow("help") << u"help"_s
                          << u"cyan: \nAvailable commands:\n"
                             "  cd [path]     - Change directory\n"
                             "  pwd           - Print working directory\n"
                             "  clear         - Clear terminal\n"
                             "  history       - Show command history\n"
                             "  export [VAR]  - Set/show environment variables\n"
                             "  exit          - Close terminal\n"
                             "  help          - Show this help\n"
                             "\n"
                             "Tab completion is available for file paths.\n"
                             "Any other command will be executed in the shell.\n"_s;
}

void TerminalSessionBuiltinsTest::builtinsWriteTheirText()
{
    QFETCH(QString, line);
    QFETCH(QString, write);
    TerminalFixture fixture;
    QCOMPARE(fixture.run(line), QStringList{write.replace(u"$HOME"_s, fixture.home())});
    QCOMPARE(fixture.session->commandHistory(), QStringList{line});
    QVERIFY(fixture.session->process() == nullptr);
}

void TerminalSessionBuiltinsTest::onlyTheExactNameIsABuiltin_data()
{
    QTest::addColumn<QString>("line");
    for (const QString& line : {u"CD"_s, u"Pwd"_s, u" true"_s, u" cd /"_s, u"cd; true"_s, u"'cd' /"_s, u"helper"_s}) {
        QTest::newRow(qPrintable(line)) << line;
    }
}

void TerminalSessionBuiltinsTest::onlyTheExactNameIsABuiltin()
{
    QFETCH(QString, line);
    TerminalFixture fixture;
    (void)fixture.run(line);
    QVERIFY(fixture.session->process() != nullptr);
    QCOMPARE(fixture.session->currentDirectory(), fixture.home());
}

void TerminalSessionBuiltinsTest::clearWritesAPromptOfItsOwn()
{
    TerminalFixture fixture;
    fixture.screen.appendText(u"old text"_s, plainColors::white);
    const QString prompt = TerminalSession::promptText(fixture.home());
    QCOMPARE(fixture.run(u"clear"_s), (QStringList{u"clear"_s, u"cyan: "_s + prompt}));
    // The caller's own follows, so there are two.
    fixture.screen.appendPrompt();
    QCOMPARE(fixture.screen.text, prompt + prompt);
}

void TerminalSessionBuiltinsTest::exitPutsThePanelAway()
{
    // By the session itself: it may have no view.
    ManualScheduler scheduler;
    NotificationCenter notifications;
    int hidden = 0;
    TerminalSession session(
        {.scheduler = scheduler, .notifications = notifications, .hideBottomPanel = [&] { ++hidden; }});
    session.executeCommand(u"exit"_s);
    QCOMPARE(hidden, 1);
    FakeTerminalScreen screen;
    session.setTextView(&screen);
    screen.appendText(u"old text"_s, plainColors::white);
    session.executeCommand(u"exit 3"_s);
    QCOMPARE(hidden, 2);
    QCOMPARE(screen.text, u"old text"_s);
    // The session goes on.
    session.executeCommand(u"pwd"_s);
    QCOMPARE(screen.text, u"old text\n"_s + session.currentDirectory());
    QCOMPARE(session.commandHistory(), (QStringList{u"exit"_s, u"exit 3"_s, u"pwd"_s}));
}

void TerminalSessionBuiltinsTest::cdChangesTheFolder_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("folder");
    QTest::newRow("alone: home") << u"cd"_s << u"$HOME"_s;
    QTest::newRow("tilde") << u"cd ~"_s << u"$HOME"_s;
    QTest::newRow("below the tilde, with a blank") << u"cd ~/x y"_s << u"$HOME/x y"_s;
    QTest::newRow("relative") << u"cd x y"_s << u"$HOME/sub/x y"_s;
    QTest::newRow("tab becomes a blank") << u"cd x\ty"_s << u"$HOME/sub/x y"_s;
    QTest::newRow("absolute") << u"cd /"_s << u"/"_s;
    QTest::newRow("up") << u"cd .."_s << u"$HOME"_s;
    QTest::newRow("here") << u"cd ."_s << u"$HOME/sub"_s;
    QTest::newRow("up and down") << u"cd ../sub/./x y/"_s << u"$HOME/sub/x y"_s;
    QTest::newRow("blank at the end is part of the name") << u"cd blank "_s << u"$HOME/sub/blank "_s;
    QTest::newRow("two blanks: one is part of the name") << u"cd  led"_s << u"$HOME/sub/ led"_s;
    QTest::newRow("quotes are part of the name") << u"cd 'q'"_s << u"$HOME/sub/'q'"_s;
}

void TerminalSessionBuiltinsTest::cdChangesTheFolder()
{
    QFETCH(QString, line);
    QFETCH(QString, folder);
    TerminalFixture fixture;
    for (const QString& name : {u"x y"_s, u"sub/x y"_s, u"sub/blank "_s, u"sub/ led"_s, u"sub/'q'"_s}) {
        fixture.makeFolder(name);
    }
    fixture.session->executeCommand(u"cd sub"_s);
    QCOMPARE(fixture.session->currentDirectory(), fixture.path(u"sub"_s));
    QVERIFY(fixture.run(line).isEmpty());
    QCOMPARE(fixture.session->currentDirectory(), folder.replace(u"$HOME"_s, fixture.home()));
}

void TerminalSessionBuiltinsTest::cdReportsWhatWasTyped_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("path");
    QTest::newRow("relative") << u"cd nowhere"_s << u"nowhere"_s;
    QTest::newRow("before the tilde is expanded") << u"cd ~/nowhere"_s << u"~/nowhere"_s;
    QTest::newRow("absolute") << u"cd /no/where"_s << u"/no/where"_s;
    QTest::newRow("file") << u"cd file"_s << u"file"_s;
    QTest::newRow("quotes are not honoured") << u"cd \"sub\""_s << u"\"sub\""_s;
    QTest::newRow("minus has no meaning") << u"cd -"_s << u"-"_s;
    QTest::newRow("nor has a variable") << u"cd $HOME"_s << u"$HOME"_s;
}

void TerminalSessionBuiltinsTest::cdReportsWhatWasTyped()
{
    QFETCH(QString, line);
    QFETCH(QString, path);
    TerminalFixture fixture;
    fixture.makeFile(u"file"_s);
    fixture.makeFolder(u"sub"_s);
    QCOMPARE(fixture.run(line), QStringList{u"red: \ncd: no such directory: "_s + path});
    QCOMPARE(fixture.session->currentDirectory(), fixture.home());
}

void TerminalSessionBuiltinsTest::cdFromTheRootStaysThere()
{
    TerminalFixture fixture;
    for (const QString& line : {u"cd /"_s, u"cd .."_s, u"cd ../.."_s}) {
        QVERIFY(fixture.run(line).isEmpty());
        QCOMPARE(fixture.session->currentDirectory(), u"/"_s);
    }
    QCOMPARE(fixture.run(u"pwd"_s), QStringList{u"white: \n/"_s});
}

void TerminalSessionBuiltinsTest::cdTakesASymbolicLinkByItsName()
{
    TerminalFixture fixture;
    fixture.makeFolder(u"a/b"_s);
    QVERIFY(QFile::link(fixture.path(u"a/b"_s), fixture.path(u"link"_s)));
    QVERIFY(fixture.run(u"cd link"_s).isEmpty());
    QCOMPARE(fixture.session->currentDirectory(), fixture.path(u"link"_s));
    QVERIFY(fixture.run(u"cd .."_s).isEmpty());
    QCOMPARE(fixture.session->currentDirectory(), fixture.home());
}

void TerminalSessionBuiltinsTest::cdMovesTheWholeApplication()
{
    TerminalFixture fixture;
    fixture.makeFolder(u"sub"_s);
    fixture.session->executeCommand(u"cd sub"_s);
    QCOMPARE(QDir::currentPath(), fixture.path(u"sub"_s));
    fixture.session->executeCommand(u"cd nowhere"_s);
    QCOMPARE(QDir::currentPath(), fixture.path(u"sub"_s));
}

void TerminalSessionBuiltinsTest::cdLeavesAFolderThatHasGone()
{
    TerminalFixture fixture;
    fixture.makeFolder(u"outer/inner"_s);
    fixture.makeFolder(u"outer/other"_s);
    for (const QString& line : {u"cd .."_s, u"cd ../other"_s}) {
        fixture.session->executeCommand(u"cd "_s + fixture.path(u"outer/inner"_s));
        QVERIFY(QDir(fixture.home()).rmdir(u"outer/inner"_s));
        QVERIFY(fixture.run(line).isEmpty());
        QCOMPARE(fixture.session->currentDirectory(),
                 fixture.path(line.endsWith(u"other"_s) ? u"outer/other"_s : u"outer"_s));
        fixture.makeFolder(u"outer/inner"_s);
    }
}

void TerminalSessionBuiltinsTest::cdEntersAFolderWithoutPermission()
{
    // What stands in it cannot be reached, but it is there; the next command tells.
    TerminalFixture fixture;
    fixture.makeFolder(u"closed"_s);
    QVERIFY(QFile::setPermissions(fixture.home(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner |
                                                      QFile::ReadGroup | QFile::ExeGroup | QFile::ReadOther |
                                                      QFile::ExeOther));
    QVERIFY(QFile::setPermissions(fixture.path(u"closed"_s), QFile::Permissions()));
    QStringList entering;
    QStringList running;
    {
        const Unprivileged user;
        entering = fixture.run(u"cd closed"_s);
        running = fixture.run(u"echo hello"_s);
    }
    QVERIFY(QFile::setPermissions(fixture.path(u"closed"_s), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QVERIFY(entering.isEmpty());
    QCOMPARE(fixture.session->currentDirectory(), fixture.path(u"closed"_s));
    QCOMPARE(running.size(), 1);
    QVERIFY2(running[0].startsWith(u"red: \nError: "_s), qPrintable(running[0]));
    QCOMPARE(fixture.session->commandHistory().last(), u"echo hello"_s);
}

void TerminalSessionBuiltinsTest::cdEntersAFolderWhoseNameIsNotUtf8()
{
    TerminalFixture fixture;
    const RawFolder raw(fixture);
    QVERIFY(fixture.run(u"cd "_s + raw.name).isEmpty());
    QCOMPARE(fixture.session->currentDirectory(), fixture.path(raw.name));
    QCOMPARE(nativePath(currentFolder()), raw.outer);
    QVERIFY(fixture.run(u"cd inner"_s).isEmpty());
    QCOMPARE(nativePath(currentFolder()), raw.inner);
    QVERIFY(fixture.run(u"cd .."_s).isEmpty());
    QCOMPARE(nativePath(currentFolder()), raw.outer);
    // Commands run there too.
    QCOMPARE(fixture.run(u"ls"_s), QStringList{u"output: green=inner\n"_s});
}

void TerminalSessionBuiltinsTest::exportSetsVariables_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("write");
    QTest::newRow("plain") << u"export A=b"_s << u"A"_s << u"b"_s << u"gray: \nSet A=b"_s;
    QTest::newRow("value with a blank") << u"export A=b c"_s << u"A"_s << u"b c"_s << u"gray: \nSet A=b c"_s;
    QTest::newRow("tab becomes a blank") << u"export A=b\tc"_s << u"A"_s << u"b c"_s << u"gray: \nSet A=b c"_s;
    QTest::newRow("value with an equals sign") << u"export A=b=c"_s << u"A"_s << u"b=c"_s << u"gray: \nSet A=b=c"_s;
    QTest::newRow("empty value") << u"export A="_s << u"A"_s << u""_s << u"gray: \nSet A="_s;
    QTest::newRow("empty key") << u"export =x"_s << u""_s << u"x"_s << u"gray: \nSet =x"_s;
    QTest::newRow("quotes stay") << u"export A=\"b\""_s << u"A"_s << u"\"b\""_s << u"gray: \nSet A=\"b\""_s;
    QTest::newRow("variables are not expanded")
        << u"export A=$HOME"_s << u"A"_s << u"$HOME"_s << u"gray: \nSet A=$HOME"_s;
    QTest::newRow("key with a blank") << u"export A B=c"_s << u"A B"_s << u"c"_s << u"gray: \nSet A B=c"_s;
    QTest::newRow("no equals sign") << u"export KELM_UNSET"_s << u"KELM_UNSET"_s << QString() << QString();
    QTest::newRow("only a blank") << u"export "_s << u""_s << QString() << QString();
}

void TerminalSessionBuiltinsTest::exportSetsVariables()
{
    QFETCH(QString, line);
    QFETCH(QString, key);
    QFETCH(QString, value);
    QFETCH(QString, write);
    TerminalFixture fixture;
    const QStringList writes = fixture.run(line);
    QCOMPARE(writes, write.isNull() ? QStringList() : QStringList{write});
    QCOMPARE(fixture.session->environment().contains(key), !value.isNull());
    QCOMPARE(fixture.session->environment().value(key), value);
    QVERIFY(fixture.session->process() == nullptr);
}

void TerminalSessionBuiltinsTest::exportListsVariablesInOrder()
{
    TerminalFixture fixture;
    fixture.session->executeCommand(u"export KELM_B=2"_s);
    fixture.session->executeCommand(u"export KELM_A=1 2"_s);
    fixture.session->executeCommand(u"export kelm=small"_s);
    const QStringList writes = fixture.run(u"export"_s);
    QCOMPARE(writes.size(), 1);
    QVERIFY(writes[0].startsWith(u"white: \n"_s));
    QVERIFY(writes[0].contains(u"\nKELM_A=1 2\nKELM_B=2\n"_s));
    QString expected = u"white: \n"_s;
    QStringList keys = fixture.session->environment().keys();
    keys.sort();
    for (const QString& key : keys) {
        expected += key + u'=' + fixture.session->environment()[key] + u'\n';
    }
    QCOMPARE(writes[0], expected);
    QVERIFY(expected.endsWith(u"kelm=small\n"_s) || expected.indexOf(u"kelm=") > expected.indexOf(u"KELM_B"));
}

void TerminalSessionBuiltinsTest::historyNumbersItsLines()
{
    TerminalFixture fixture;
    fixture.session->executeCommand(u"pwd"_s);
    fixture.session->executeCommand(u"cd ~"_s);
    QCOMPARE(fixture.run(u"history -c"_s), QStringList{u"white: \n1  pwd\n2  cd ~\n3  history -c\n"_s});
}

void TerminalSessionBuiltinsTest::historyKeepsDuplicates()
{
    TerminalFixture fixture;
    for (int count = 0; count < 3; ++count) {
        fixture.session->executeCommand(u"pwd"_s);
    }
    fixture.session->setHistoryIndex(1);
    fixture.session->executeCommand(u"cd nowhere"_s);
    QCOMPARE(fixture.session->commandHistory(), (QStringList{u"pwd"_s, u"pwd"_s, u"pwd"_s, u"cd nowhere"_s}));
    QCOMPARE(fixture.session->historyIndex(), 4);
}

void TerminalSessionBuiltinsTest::nextCommandMovesForward()
{
    TerminalFixture fixture;
    TerminalSession& session = *fixture.session;
    QCOMPARE(session.getNextCommand(), u""_s);
    QCOMPARE(session.historyIndex(), 0);
    session.executeCommand(u"pwd"_s);
    session.executeCommand(u"help"_s);
    session.executeCommand(u"alias"_s);
    session.setHistoryIndex(0);
    QCOMPARE(session.getNextCommand(), u"help"_s);
    QCOMPARE(session.historyIndex(), 1);
    QCOMPARE(session.getNextCommand(), u"alias"_s);
    QCOMPARE(session.historyIndex(), 2);
    for (int count = 0; count < 2; ++count) {
        QCOMPARE(session.getNextCommand(), u""_s);
        QCOMPARE(session.historyIndex(), 3);
    }
}

void TerminalSessionBuiltinsTest::nothingIsWrittenWithoutAView()
{
    TerminalFixture fixture;
    {
        FakeTerminalScreen screen;
        fixture.session->setTextView(&screen);
        QVERIFY(fixture.session->textView() == &screen);
    }
    QVERIFY(fixture.session->textView() == nullptr);
    fixture.scheduler.advance(std::chrono::seconds(1));
    for (const QString& line : {u"pwd"_s, u"clear"_s, u"cd nowhere"_s, u"export"_s, u"echo hello; echo no >&2"_s}) {
        fixture.session->executeCommand(line);
    }
    fixture.session->sendInterrupt();
    (void)fixture.session->getTabCompletion(u""_s);
    QCOMPARE(fixture.session->commandHistory().size(), 5);
    QVERIFY(fixture.screen.writes.isEmpty());
}

void TerminalSessionBuiltinsTest::titleIsPublished()
{
    TerminalFixture fixture;
    QSignalSpy changes(fixture.session.get(), &TerminalSession::titleChanged);
    fixture.session->setTitle(u"Terminal 2"_s);
    fixture.session->setTitle(u"Terminal 2"_s);
    QCOMPARE(fixture.session->title(), u"Terminal 2"_s);
    QCOMPARE(changes.size(), 1);
}

const kelm::test::Registered<TerminalSessionBuiltinsTest> registered;

} // namespace terminal_session_builtins_test

#include "terminal_session_builtins_test.moc"
