#include "support/forwarded_input.h"
#include "support/process_roles.h"
#include "support/roles.h"
#include "support/terminal_fixture.h"
#include "support/test_program.h"

#include <QSignalSpy>
#include <QTimer>
#include <QtTest>

#include <csignal>

namespace terminal_session_commands_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

class TerminalSessionCommandsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void outputFollowsTheTypedLine();
    void outputIsColored();
    void colorsDoNotOutliveAChunk();
    void eachChunkOfErrorsBeginsALine();
    void exitStatusIsNotShown_data();
    void exitStatusIsNotShown();
    void unknownCommandIsToldByTheShell();
    void lineGoesToTheShellUnchanged();
    void commandRunsInTheSessionsFolderAndEnvironment();
    void inputIsTheApplications();
    void multiByteCharactersArriveWhole();
    void chunkThatIsNotUtf8IsLeftOut();
    void commandThatPrintsNothing();
    void floodArrivesWhole();

    void firstExecutableShellIsTaken();
    void shellThatCannotBeStartedIsTold();
    void folderThatHasGoneIsTold();

    void outputAppearsWhileTheCommandRuns();
    void eventsAreServedWhileTheCommandRuns();
    void interruptEndsTheCommand_data();
    void interruptEndsTheCommand();
    void interruptReachesWhatTheCommandStarted();
    void interruptIsWrittenWithoutACommand();
    void commandThatHasEndedIsNotInterrupted();
    void processLeftBehindDoesNotHoldThePrompt();
    void whatIsLeftBehindWritesNothingMore();
    void sessionMayGoWhileItWaits();
    void sessionLeavesItsChildAlone();
    void quittingEndsTheWait();
    void twoSessionsMayWaitAtOnce();

    void workWaitsForTheCommandInItsOrder();
    void lineGivenMeanwhileWaitsForItsTurn();

    void fileIsRunByItsExtension_data();
    void fileIsRunByItsExtension();
    void unsupportedFileIsTold_data();
    void unsupportedFileIsTold();
    void whatIsNoUrlIsPassedOver();
    void eachSessionRunsTheFile();
    void fileWaitsForTheCommand();
    void scriptIsReallyRun();
};

void TerminalSessionCommandsTest::outputFollowsTheTypedLine()
{
    TerminalFixture fixture;
    fixture.screen.appendText(u"$ echo hello"_s, plainColors::green);
    fixture.session->executeCommand(u"echo hello"_s);
    QCOMPARE(fixture.screen.text, u"$ echo hellohello\n"_s);
    QCOMPARE(fixture.screen.writes.last(), u"output: green=hello\n"_s);
    QCOMPARE(fixture.session->commandHistory(), QStringList{u"echo hello"_s});
    QVERIFY(fixture.session->process() != nullptr);
    QVERIFY(!fixture.session->process()->isRunning());
}

void TerminalSessionCommandsTest::outputIsColored()
{
    TerminalFixture fixture;
    QCOMPARE(fixture.run(u"printf '\\033[97mwhite\\033[0m plain\\033[2K'"_s),
             QStringList{u"output: white=white green= plain\x1b[2K"_s});
}

void TerminalSessionCommandsTest::colorsDoNotOutliveAChunk()
{
    TerminalFixture fixture;
    // ESC[97m and "a"; then "b", ESC[9; then 7m and "c".
    QCOMPARE(fixture.run(TerminalFixture::roleLine(u"pieces 1b5b39376d61 621b5b39 376d63"_s)),
             (QStringList{u"output: white=a"_s, u"output: green=b\x1b[9"_s, u"output: green=7mc"_s}));
}

void TerminalSessionCommandsTest::eachChunkOfErrorsBeginsALine()
{
    TerminalFixture fixture;
    // "one\ntwo" and "three", with a colour that is not looked at.
    QCOMPARE(fixture.run(TerminalFixture::roleLine(u"error-pieces 6f6e650a74776f 1b5b39376d7468726565"_s)),
             (QStringList{u"red: \none\ntwo"_s, u"red: \n\x1b[97mthree"_s}));
}

void TerminalSessionCommandsTest::exitStatusIsNotShown_data()
{
    QTest::addColumn<QString>("line");
    QTest::newRow("success") << u"true"_s;
    QTest::newRow("failure") << u"false"_s;
    QTest::newRow("status 3") << u"(exit 3)"_s;
    QTest::newRow("signal") << u"kill -9 $$"_s;
}

void TerminalSessionCommandsTest::exitStatusIsNotShown()
{
    QFETCH(QString, line);
    TerminalFixture fixture;
    QVERIFY(fixture.run(line).isEmpty());
}

void TerminalSessionCommandsTest::unknownCommandIsToldByTheShell()
{
    TerminalFixture fixture;
    (void)fixture.run(u"kelm-no-such-command"_s);
    QVERIFY(fixture.screen.text.startsWith(u'\n'));
    QVERIFY(fixture.screen.text.contains(u"kelm-no-such-command"_s));
    QCOMPARE(fixture.screen.redText, fixture.screen.text);
}

void TerminalSessionCommandsTest::lineGoesToTheShellUnchanged()
{
    TerminalFixture fixture;
    (void)fixture.run(u"X='a  \"b\"'; echo \"$X\" | cat && echo 한글 #comment"_s);
    QCOMPARE(fixture.screen.text, u"a  \"b\"\n한글\n"_s);
}

void TerminalSessionCommandsTest::commandRunsInTheSessionsFolderAndEnvironment()
{
    TerminalFixture fixture;
    fixture.makeFolder(u"x y"_s);
    fixture.session->executeCommand(u"cd x y"_s);
    fixture.session->executeCommand(u"export KELM_TEST=b c"_s);
    fixture.session->executeCommand(u"export =nothing"_s);
    (void)fixture.run(u"pwd -P; printf %s \"$KELM_TEST\""_s.prepend(u"command "_s));
    QCOMPARE(fixture.screen.text, fixture.path(u"x y"_s) + u"\nb c"_s);
    // What a command changes is its own.
    (void)fixture.run(u"KELM_TEST=d; true && cd /"_s);
    (void)fixture.run(u"command pwd -P; printf %s \"$KELM_TEST\""_s);
    QCOMPARE(fixture.screen.text, fixture.path(u"x y"_s) + u"\nb c"_s);
    QVERIFY(!qEnvironmentVariableIsSet("KELM_TEST"));
}

void TerminalSessionCommandsTest::inputIsTheApplications()
{
    TerminalFixture fixture;
    const ForwardedInput input("from the application\n");
    (void)fixture.run(u"cat"_s);
    QCOMPARE(fixture.screen.text, u"from the application\n"_s);
}

void TerminalSessionCommandsTest::multiByteCharactersArriveWhole()
{
    TerminalFixture fixture;
    QCOMPARE(fixture.run(TerminalFixture::roleLine(u"pieces ed 95 9c f0 9f 98 80 0a"_s)),
             (QStringList{u"output: green=한"_s, u"output: green=😀"_s, u"output: green=\n"_s}));
}

void TerminalSessionCommandsTest::chunkThatIsNotUtf8IsLeftOut()
{
    TerminalFixture fixture;
    QCOMPARE(fixture.run(TerminalFixture::roleLine(u"pieces 61 6c6f7374ff 62"_s)),
             (QStringList{u"output: green=a"_s, u"output: green=b"_s}));
    QCOMPARE(fixture.run(TerminalFixture::roleLine(u"error-pieces 61 6c6f7374ff 62"_s)),
             (QStringList{u"red: \na"_s, u"red: \nb"_s}));
}

void TerminalSessionCommandsTest::commandThatPrintsNothing()
{
    TerminalFixture fixture;
    QVERIFY(fixture.run(u"true"_s).isEmpty());
}

void TerminalSessionCommandsTest::floodArrivesWhole()
{
    TerminalFixture fixture;
    (void)fixture.run(TerminalFixture::roleLine(u"flood 20 0"_s));
    QCOMPARE(fixture.screen.outputLength, 20 * 1024 * 1024);
}

void TerminalSessionCommandsTest::firstExecutableShellIsTaken()
{
    QCOMPARE(TerminalSession::usualShells(), (QStringList{u"/bin/zsh"_s, u"/bin/bash"_s, u"/bin/sh"_s}));

    TerminalFixture fixture;
    fixture.makeFile(u"ordinary"_s, "#!/bin/sh\necho ordinary");
    for (const QString& name : {u"first"_s, u"second"_s}) {
        fixture.makeFile(name, "#!/bin/sh\necho " + name.toUtf8() + " \"$@\"\n");
        QVERIFY(QFile::setPermissions(fixture.path(name), QFile::ReadOwner | QFile::ExeOwner | QFile::ExeUser));
    }
    fixture.makeSession({fixture.path(u"none"_s), fixture.path(u"ordinary"_s), fixture.home(), fixture.path(u"first"_s),
                         fixture.path(u"second"_s)});
    (void)fixture.run(u"the  line"_s);
    QCOMPARE(fixture.screen.text, u"first -c the  line\n"_s);
}

void TerminalSessionCommandsTest::shellThatCannotBeStartedIsTold()
{
    TerminalFixture fixture;
    fixture.makeSession({fixture.path(u"none"_s), fixture.path(u"nor this"_s)});
    const QStringList writes = fixture.run(u"echo hello"_s);
    QCOMPARE(writes.size(), 1);
    QVERIFY2(writes[0].startsWith(u"red: \nError: "_s), qPrintable(writes[0]));
    QVERIFY(writes[0].contains(fixture.path(u"none"_s)));
    QCOMPARE(fixture.session->commandHistory(), QStringList{u"echo hello"_s});
    QVERIFY(!fixture.session->isBusy());
}

void TerminalSessionCommandsTest::folderThatHasGoneIsTold()
{
    TerminalFixture fixture;
    fixture.makeFolder(u"short-lived"_s);
    fixture.session->executeCommand(u"cd short-lived"_s);
    QVERIFY(QDir(fixture.home()).rmdir(u"short-lived"_s));
    const QStringList writes = fixture.run(u"echo hello"_s);
    QCOMPARE(writes.size(), 1);
    QVERIFY(writes[0].startsWith(u"red: \nError: "_s));
    QVERIFY(writes[0].contains(u"short-lived"_s));
    QVERIFY(fixture.run(u"cd"_s).isEmpty());
    QCOMPARE(fixture.run(u"echo hello"_s), QStringList{u"output: green=hello\n"_s});
}

void TerminalSessionCommandsTest::outputAppearsWhileTheCommandRuns()
{
    TerminalFixture fixture;
    bool wasBusy = false;
    QSignalSpy changes(fixture.session.get(), &TerminalSession::isBusyChanged);
    onFirstOutput(fixture, [&] {
        wasBusy = fixture.session->isBusy() && fixture.session->process()->isRunning();
        fixture.makeFile(u"go on"_s);
    });
    (void)fixture.run(u"echo first; until [ -e 'go on' ]; do sleep 0.01; done; echo second"_s);
    QVERIFY(wasBusy);
    QVERIFY(!fixture.session->isBusy());
    QCOMPARE(changes.size(), 2);
    QCOMPARE(fixture.screen.text, u"first\nsecond\n"_s);
}

void TerminalSessionCommandsTest::eventsAreServedWhileTheCommandRuns()
{
    TerminalFixture fixture;
    int turns = 0;
    QTimer timer;
    connect(&timer, &QTimer::timeout, this, [&] {
        if (++turns == 20) {
            fixture.session->sendInterrupt();
        }
    });
    timer.start(5);
    fixture.session->executeCommand(u"sleep 30"_s);
    QVERIFY(turns >= 20);
}

void TerminalSessionCommandsTest::interruptEndsTheCommand_data()
{
    QTest::addColumn<QString>("line");
    QTest::newRow("one program") << u"echo ready; exec sleep 30"_s;
    QTest::newRow("programs in a row") << u"echo ready; sleep 30; echo never"_s;
    QTest::newRow("pipeline") << u"echo ready; sleep 30 | cat"_s;
    QTest::newRow("loop") << u"echo ready; while true; do sleep 1; done"_s;
    QTest::newRow("flood") << u"yes"_s;
    QTest::newRow("flood through a pipe") << u"yes | cat"_s;
    QTest::newRow("flood of errors") << u"echo ready; yes >&2"_s;
}

void TerminalSessionCommandsTest::interruptEndsTheCommand()
{
    QFETCH(QString, line);
    TerminalFixture fixture;
    onFirstOutput(fixture, [&] { fixture.session->sendInterrupt(); });
    (void)fixture.run(line);
    QVERIFY(!fixture.session->isBusy());
    QVERIFY(!fixture.session->process()->isRunning());
    QVERIFY(fixture.screen.writes.contains(u"red: ^C"_s));
    QVERIFY(!fixture.screen.text.contains(u"never"_s));
}

void TerminalSessionCommandsTest::interruptReachesWhatTheCommandStarted()
{
    TerminalFixture fixture;
    qint64 group = 0;
    int outputs = 0;
    fixture.screen.onOutput = [&] {
        if (fixture.screen.text.count(u"ready"_s) == 2 && ++outputs == 1) {
            group = fixture.session->process()->processId();
            QTimer::singleShot(0, this, [&] { fixture.session->sendInterrupt(); });
        }
    };
    (void)fixture.run(TerminalFixture::roleLine(u"wait-with-child"_s) + u"; true"_s);
    QVERIFY(group > 0);
    QTRY_VERIFY(::kill(static_cast<pid_t>(-group), 0) != 0 && errno == ESRCH);
}

void TerminalSessionCommandsTest::interruptIsWrittenWithoutACommand()
{
    TerminalFixture fixture;
    fixture.session->sendInterrupt();
    QCOMPARE(fixture.screen.writes,
             (QStringList{u"red: ^C"_s, u"cyan: "_s + TerminalSession::promptText(fixture.home())}));
    QVERIFY(fixture.session->commandHistory().isEmpty());
}

void TerminalSessionCommandsTest::commandThatHasEndedIsNotInterrupted()
{
    TerminalFixture fixture;
    // The background process is of the same group, and is left alone as well.
    (void)fixture.run(u"sleep 30 >/dev/null 2>&1 & echo $!"_s);
    const pid_t background = fixture.screen.text.trimmed().toInt();
    QVERIFY(background > 0);
    fixture.session->sendInterrupt();
    QCOMPARE(::kill(background, 0), 0);
    ::kill(background, SIGKILL);
    QCOMPARE(fixture.screen.writes.size(), 3);
}

void TerminalSessionCommandsTest::processLeftBehindDoesNotHoldThePrompt()
{
    TerminalFixture fixture;
    QCOMPARE(fixture.run(u"sleep 30 & echo started; echo $! >pid"_s), QStringList{u"output: green=started\n"_s});
    QFile file(fixture.path(u"pid"_s));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const pid_t background = file.readAll().trimmed().toInt();
    QCOMPARE(::kill(background, 0), 0);
    ::kill(background, SIGKILL);
}

void TerminalSessionCommandsTest::whatIsLeftBehindWritesNothingMore()
{
    TerminalFixture fixture;
    (void)fixture.run(u"(until [ -e 'go on' ]; do sleep 0.01; done; echo late; echo >done) & echo started"_s);
    fixture.makeFile(u"go on"_s);
    QTRY_VERIFY(QFile::exists(fixture.path(u"done"_s)));
    QTest::qWait(20);
    QCOMPARE(fixture.screen.text, u"started\n"_s);
}

void TerminalSessionCommandsTest::sessionMayGoWhileItWaits()
{
    TerminalFixture fixture;
    qint64 process = 0;
    onFirstOutput(fixture, [&] {
        process = fixture.session->process()->processId();
        fixture.session.reset();
    });
    TerminalSession* session = fixture.session.get();
    session->executeCommand(u"echo ready; exec sleep 30"_s);
    QVERIFY(!fixture.session);
    QCOMPARE(::kill(static_cast<pid_t>(process), 0), 0);
    ::kill(static_cast<pid_t>(process), SIGKILL);
    QCoreApplication::processEvents();
}

void TerminalSessionCommandsTest::sessionLeavesItsChildAlone()
{
    TerminalFixture fixture;
    onFirstOutput(fixture, [&] { fixture.session.reset(); });
    TerminalSession* session = fixture.session.get();
    session->executeCommand(u"echo ready; until [ -e 'go on' ]; do sleep 0.01; done; echo late; echo >done"_s);
    fixture.makeFile(u"go on"_s);
    QTRY_VERIFY(QFile::exists(fixture.path(u"done"_s)));
    QCOMPARE(fixture.screen.text, u"ready\n"_s);
}

void TerminalSessionCommandsTest::quittingEndsTheWait()
{
    QByteArray output;
    QCOMPARE(runRole(u"quit-while-waiting"_s, {}, &output), 0);
    const QList<QByteArray> lines = output.split('\n');
    QCOMPARE(lines.size(), 2);
    const pid_t child = lines[0].toInt();
    QVERIFY(child > 0);
    QCOMPARE(lines[1], QByteArray("came back"));
    QCOMPARE(::kill(child, 0), 0);
    ::kill(child, SIGKILL);
}

void TerminalSessionCommandsTest::twoSessionsMayWaitAtOnce()
{
    TerminalFixture fixture;
    FakeTerminalScreen otherScreen;
    TerminalSession other(TerminalSession::Services{fixture.scheduler, fixture.notifications});
    other.setTextView(&otherScreen);
    onFirstOutput(fixture, [&] {
        other.executeCommand(u"echo >'go on'; echo inner"_s);
        QVERIFY(fixture.session->isBusy() || !fixture.session->process()->isRunning());
    });
    (void)fixture.run(u"echo outer; until [ -e 'go on' ]; do sleep 0.01; done; echo end"_s);
    QCOMPARE(fixture.screen.text, u"outer\nend\n"_s);
    QCOMPARE(otherScreen.text, u"inner\n"_s);
}

void TerminalSessionCommandsTest::workWaitsForTheCommandInItsOrder()
{
    TerminalFixture fixture;
    QStringList steps;
    fixture.session->whenIdle([&] { steps.append(u"at once"_s); });
    QCOMPARE(steps, QStringList{u"at once"_s});
    onFirstOutput(fixture, [&] {
        fixture.session->whenIdle([&] {
            steps.append(u"one"_s);
            // It may start a command, and whatever waits behind goes on waiting.
            fixture.session->executeCommand(u"echo again"_s);
            steps.append(u"two"_s);
        });
        fixture.session->whenIdle([&] { steps.append(u"three"_s); });
        steps.append(u"asked"_s);
        fixture.makeFile(u"go on"_s);
    });
    fixture.session->executeCommand(u"echo ready; until [ -e 'go on' ]; do sleep 0.01; done"_s);
    steps.append(u"prompt"_s);
    QTRY_COMPARE(steps.size(), 6);
    QCOMPARE(steps, (QStringList{u"at once"_s, u"asked"_s, u"prompt"_s, u"one"_s, u"two"_s, u"three"_s}));
}

void TerminalSessionCommandsTest::lineGivenMeanwhileWaitsForItsTurn()
{
    TerminalFixture fixture;
    onFirstOutput(fixture, [&] {
        fixture.session->executeCommand(u"echo second"_s);
        fixture.session->executeCommand(u"pwd"_s);
        QCOMPARE(fixture.session->commandHistory().size(), 1);
        fixture.makeFile(u"go on"_s);
    });
    fixture.session->executeCommand(u"echo first; until [ -e 'go on' ]; do sleep 0.01; done"_s);
    fixture.screen.appendPrompt();
    const QString prompt = TerminalSession::promptText(fixture.home());
    QTRY_COMPARE(fixture.session->commandHistory().size(), 3);
    QTRY_COMPARE(fixture.screen.text, u"first\n"_s + prompt + u"second\n"_s + prompt + u'\n' + fixture.home() + prompt);
}

void TerminalSessionCommandsTest::fileIsRunByItsExtension_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("line");
    const auto row = [](const QString& path, const QString& line) { QTest::newRow(qPrintable(path)) << path << line; };
    row(u"/a/b.py"_s, u"python3 \"/a/b.py\""_s);
    row(u"/a/b.js"_s, u"node \"/a/b.js\""_s);
    row(u"/a/b.sh"_s, u"bash \"/a/b.sh\""_s);
    row(u"/a/b.rb"_s, u"ruby \"/a/b.rb\""_s);
    row(u"/a/b.swift"_s, u"swift \"/a/b.swift\""_s);
    row(u"/a/b.go"_s, u"go run \"/a/b.go\""_s);
    row(u"/a/b.rs"_s, u"rustc \"/a/b.rs\" -o /tmp/rust_out && /tmp/rust_out"_s);
    row(u"/a b/C.PY"_s, u"python3 \"/a b/C.PY\""_s);
    row(u"/a/한글.py"_s, u"python3 \"/a/한글.py\""_s);
}

void TerminalSessionCommandsTest::fileIsRunByItsExtension()
{
    QFETCH(QString, path);
    QFETCH(QString, line);
    TerminalFixture fixture;
    // A shell that shows its line, so that no interpreter is needed.
    fixture.makeFile(u"shell"_s, "#!/bin/sh\nprintf %s \"$2\"\n");
    QVERIFY(QFile::setPermissions(fixture.path(u"shell"_s), QFile::ReadOwner | QFile::ExeOwner | QFile::ExeUser));
    fixture.makeSession({fixture.path(u"shell"_s)});
    fixture.notifications.post(notifications::runFile, QUrl::fromLocalFile(path));
    // The line enters the history and is not echoed; the prompt follows.
    QCOMPARE(fixture.session->commandHistory(), QStringList{line});
    QCOMPARE(fixture.screen.text, line + TerminalSession::promptText(fixture.home()));
}

void TerminalSessionCommandsTest::unsupportedFileIsTold_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("message");
    QTest::newRow("text") << u"/a/b.txt"_s << u"red: \nUnsupported file type: .txt\n"_s;
    QTest::newRow("small letters") << u"/a/b.TXT"_s << u"red: \nUnsupported file type: .txt\n"_s;
    QTest::newRow("none") << u"/a/Makefile"_s << u"red: \nUnsupported file type: .\n"_s;
    QTest::newRow("type that only the runner knows") << u"/a/b.ts"_s << u"red: \nUnsupported file type: .ts\n"_s;
}

void TerminalSessionCommandsTest::unsupportedFileIsTold()
{
    QFETCH(QString, path);
    QFETCH(QString, message);
    TerminalFixture fixture;
    fixture.notifications.post(notifications::runFile, QUrl::fromLocalFile(path));
    QCOMPARE(fixture.screen.writes, (QStringList{message, u"cyan: "_s + TerminalSession::promptText(fixture.home())}));
    QVERIFY(fixture.session->commandHistory().isEmpty());
}

void TerminalSessionCommandsTest::whatIsNoUrlIsPassedOver()
{
    TerminalFixture fixture;
    fixture.notifications.post(notifications::runFile);
    fixture.notifications.post(notifications::runFile, u"/a/b.py"_s);
    fixture.notifications.post(notifications::runFile, 3);
    fixture.notifications.post(notifications::codeOutput, QUrl::fromLocalFile(u"/a/b.txt"_s));
    QVERIFY(fixture.screen.writes.isEmpty());
    QVERIFY(fixture.session->commandHistory().isEmpty());
}

void TerminalSessionCommandsTest::eachSessionRunsTheFile()
{
    TerminalFixture fixture;
    fixture.makeFile(u"a.sh"_s, "echo hello");
    auto other = std::make_unique<TerminalSession>(
        TerminalSession::Services{fixture.scheduler, fixture.notifications, TerminalSession::usualShells()});
    const QUrl file = QUrl::fromLocalFile(fixture.path(u"a.sh"_s));
    fixture.notifications.post(notifications::runFile, file);
    QCOMPARE(fixture.session->commandHistory().size(), 1);
    QCOMPARE(other->commandHistory().size(), 1);
    other.reset();
    fixture.notifications.post(notifications::runFile, file);
    QCOMPARE(fixture.session->commandHistory().size(), 2);
}

void TerminalSessionCommandsTest::fileWaitsForTheCommand()
{
    TerminalFixture fixture;
    fixture.makeFile(u"a.sh"_s, "echo hello");
    onFirstOutput(fixture, [&] {
        fixture.notifications.post(notifications::runFile, QUrl::fromLocalFile(fixture.path(u"a.sh"_s)));
        QCOMPARE(fixture.session->commandHistory().size(), 1);
        fixture.makeFile(u"go on"_s);
    });
    fixture.session->executeCommand(u"echo first; until [ -e 'go on' ]; do sleep 0.01; done"_s);
    fixture.screen.appendPrompt();
    const QString prompt = TerminalSession::promptText(fixture.home());
    QTRY_COMPARE(fixture.screen.text, u"first\n"_s + prompt + u"hello\n"_s + prompt);
}

void TerminalSessionCommandsTest::scriptIsReallyRun()
{
    TerminalFixture fixture;
    if (QStandardPaths::findExecutable(u"bash"_s).isEmpty()) {
        QSKIP("There is no bash.");
    }
    fixture.makeFolder(u"it's a folder"_s);
    fixture.makeFile(u"it's a folder/-n run.sh"_s, R"(printf "%s|" "$0" "$PWD")");
    const QString path = fixture.path(u"it's a folder/-n run.sh"_s);
    fixture.notifications.post(notifications::runFile, QUrl::fromLocalFile(path));
    QCOMPARE(fixture.screen.text, path + u'|' + fixture.home() + u'|' + TerminalSession::promptText(fixture.home()));
}

/// An application that quits while its terminal waits for a command; prints the number of the child, and that the wait
/// came to its end.
static int quitWhileWaiting(const QStringList& /*arguments*/)
{
    TerminalSession session({Scheduler::system(), NotificationCenter::shared()});
    QTimer::singleShot(0, &session, [&session] {
        session.executeCommand(u"exec sleep 60"_s);
        writeAll(1, "came back");
    });
    QTimer::singleShot(50, &session, [&session] {
        writeAll(1, std::to_string(session.process()->processId()) + '\n');
        QCoreApplication::quit();
    });
    return QCoreApplication::exec();
}

const kelm::test::Registered<TerminalSessionCommandsTest> registered(kelm::test::Toolkit::core,
                                                                     {{u"quit-while-waiting"_s, quitWhileWaiting}});

} // namespace terminal_session_commands_test

#include "terminal_session_commands_test.moc"
