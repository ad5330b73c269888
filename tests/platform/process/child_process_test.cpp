#include "platform/process/child_process.h"
#include "support/process_roles.h"
#include "support/test_program.h"

#include <QEventLoop>
#include <QSignalSpy>
#include <QThread>
#include <QtTest>

#include <csignal>
#include <sys/stat.h>

namespace child_process_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

namespace {

/// What one child has been heard to say, in the order of the signals.
struct Listener
{
    explicit Listener(ChildProcess& child)
    {
        QObject::connect(&child, &ChildProcess::outputRead, &child, [this](const QString& text) {
            output += text;
            order += QLatin1Char(exit ? 'x' : 'o');
        });
        QObject::connect(&child, &ChildProcess::errorRead, &child, [this](const QString& text) {
            error += text;
            order += QLatin1Char(exit ? 'x' : 'e');
        });
        QObject::connect(&child, &ChildProcess::finished, &child, [this](const ProcessExit& how) { exit = how; });
    }

    QString output;
    QString error;
    QString order;
    std::optional<ProcessExit> exit;
};

} // namespace

class ChildProcessTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everythingIsReportedBeforeTheEnd();
    void nothingIsReportedFromInsideStart();
    void aFloodIsReadInChunks();
    void manySmallWritesAreGathered();
    void charactersCutByTheChildArriveWhole();
    void chunkThatIsNotUtf8IsDropped();
    void launchFailureIsAText();
    void signalsEndTheChild_data();
    void signalsEndTheChild();
    void theWholeGroupIsEnded();
    void groupIsInterruptedThoughTheApplicationIgnoresIt();
    void processLeftBehindDoesNotHoldBackTheEnd();
    void processLeftBehindMayGoOnWriting();
    void localEventLoopSeesOutputAsItComes();
    void childIsLeftAloneWhenTheObjectGoes();
    void objectMayGoInsideItsOwnSignal();
    void inputTextIsWritten();
    void anyThreadWithAnEventLoopWillDo();
    void aThreadThatEndsFirstLeavesNothingBehind();
    void endedChildIsNotSignalled();
};

void ChildProcessTest::everythingIsReportedBeforeTheEnd()
{
    for (int turn = 0; turn < 20; ++turn) {
        ChildProcess child;
        Listener heard(child);
        QVERIFY(!child.start(roleCommand({u"say"_s, u"all of it"_s, u"and this"_s, u"3"_s})));
        QVERIFY(child.isRunning());
        QVERIFY(child.processId() > 0);
        QTRY_VERIFY(heard.exit.has_value());
        QCOMPARE(heard.output, u"all of it"_s);
        QCOMPARE(heard.error, u"and this"_s);
        QVERIFY(!heard.order.contains(u'x'));
        QCOMPARE(*heard.exit, (ProcessExit{3, false}));
        QVERIFY(!child.isRunning());
        QCOMPARE(child.processId(), 0);
    }
}

void ChildProcessTest::nothingIsReportedFromInsideStart()
{
    ChildProcess child;
    Listener heard(child);
    QVERIFY(!child.start(roleCommand({u"say"_s, u"x"_s, u""_s, u"0"_s})));
    QVERIFY(heard.order.isEmpty());
    QVERIFY(!heard.exit);
    QTRY_VERIFY(heard.exit.has_value());
}

void ChildProcessTest::aFloodIsReadInChunks()
{
    ChildProcess child;
    qsizetype output = 0;
    qsizetype error = 0;
    qsizetype longest = 0;
    connect(&child, &ChildProcess::outputRead, &child, [&](const QString& text) {
        output += text.size();
        longest = std::max(longest, text.size());
    });
    connect(&child, &ChildProcess::errorRead, &child, [&](const QString& text) { error += text.size(); });
    QSignalSpy finished(&child, &ChildProcess::finished);
    QVERIFY(!child.start(roleCommand({u"flood"_s, u"100"_s, u"100"_s})));
    QVERIFY(finished.wait(60000));
    QCOMPARE(output, 100 * 1024 * 1024);
    QCOMPARE(error, 100 * 1024 * 1024);
    QVERIFY(longest <= 64 * 1024);
}

void ChildProcessTest::manySmallWritesAreGathered()
{
    constexpr int lines = 20000;
    ChildProcess child;
    Listener heard(child);
    QSignalSpy chunks(&child, &ChildProcess::outputRead);
    QVERIFY(!child.start(roleCommand({u"lines"_s, QString::number(lines)})));
    QTRY_VERIFY_WITH_TIMEOUT(heard.exit.has_value(), 30000);
    QCOMPARE(heard.output, u"line\n"_s.repeated(lines));
    QVERIFY2(chunks.size() < lines / 4, qPrintable(QString::number(chunks.size())));
}

void ChildProcessTest::charactersCutByTheChildArriveWhole()
{
    ChildProcess child;
    Listener heard(child);
    // u"한"_s and an emoji, each cut in the middle.
    QVERIFY(!child.start(roleCommand({u"pieces"_s, u"61ed"_s, u"959cf09f"_s, u"9880"_s, u"0a"_s})));
    QTRY_VERIFY(heard.exit.has_value());
    QCOMPARE(heard.output, u"a한😀\n"_s);
}

void ChildProcessTest::chunkThatIsNotUtf8IsDropped()
{
    ChildProcess child;
    Listener heard(child);
    QVERIFY(!child.start(roleCommand({u"pieces"_s, u"ff"_s, u"6f6b"_s, u"ed"_s})));
    QTRY_VERIFY(heard.exit.has_value());
    QCOMPARE(heard.output, u"ok"_s);
}

void ChildProcessTest::launchFailureIsAText()
{
    ChildProcess child;
    Listener heard(child);
    const auto error = child.start({.program = u"/nowhere/at/all"_s});
    QVERIFY(error.has_value());
    QVERIFY(error->contains(u"/nowhere/at/all"_s));
    QVERIFY(!child.isRunning());
    child.interrupt();
    child.kill();
    QCoreApplication::processEvents();
    QVERIFY(!heard.exit);
}

void ChildProcessTest::signalsEndTheChild_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("interrupt") << SIGINT;
    QTest::newRow("terminate") << SIGTERM;
    QTest::newRow("kill") << SIGKILL;
}

void ChildProcessTest::signalsEndTheChild()
{
    QFETCH(int, number);
    ChildProcess child;
    Listener heard(child);
    QVERIFY(!child.start(roleCommand({u"wait"_s})));
    QTRY_COMPARE(heard.output, u"ready"_s);
    number == SIGINT ? child.interrupt() : number == SIGTERM ? child.terminate() : child.kill();
    QTRY_VERIFY(heard.exit.has_value());
    QCOMPARE(*heard.exit, (ProcessExit{number, true}));
}

void ChildProcessTest::theWholeGroupIsEnded()
{
    ProcessCommand command = roleCommand({u"wait-with-child"_s});
    command.ownGroup = true;
    ChildProcess child;
    Listener heard(child);
    QVERIFY(!child.start(command));
    QTRY_COMPARE(heard.output, u"readyready"_s);
    const pid_t group = static_cast<pid_t>(child.processId());
    child.interrupt();
    QTRY_VERIFY(heard.exit.has_value());
    QTRY_VERIFY(::kill(-group, 0) != 0 && errno == ESRCH);
}

void ChildProcessTest::groupIsInterruptedThoughTheApplicationIgnoresIt()
{
    const auto before = ::signal(SIGINT, SIG_IGN);
    ProcessCommand command = roleCommand({u"wait"_s});
    command.ownGroup = true;
    ChildProcess child;
    Listener heard(child);
    const auto error = child.start(command);
    ::signal(SIGINT, before);
    QVERIFY(!error);
    QTRY_COMPARE(heard.output, u"ready"_s);
    child.interrupt();
    QTRY_VERIFY(heard.exit.has_value());
    QCOMPARE(*heard.exit, (ProcessExit{SIGINT, true}));
}

void ChildProcessTest::processLeftBehindDoesNotHoldBackTheEnd()
{
    ChildProcess child;
    Listener heard(child);
    QVERIFY(!child.start(roleCommand({u"leave-behind"_s})));
    QTRY_VERIFY_WITH_TIMEOUT(heard.exit.has_value(), 20000);
    QCOMPARE(heard.output, u"left"_s);
}

void ChildProcessTest::processLeftBehindMayGoOnWriting()
{
    const QTemporaryDir folder;
    const auto path = [&folder](const char* name) { return folder.filePath(QString::fromLatin1(name)); };
    QCOMPARE(::mkfifo(QFile::encodeName(path("go")).constData(), 0600), 0);
    ChildProcess child;
    Listener heard(child);
    QVERIFY(
        !child.start({.program = u"/bin/sh"_s,
                      .arguments = {u"-c"_s, u"{ read word; echo late; echo later >&2; : > done; } < go & exit 0"_s},
                      .workingDirectory = folder.path()}));
    QTRY_VERIFY(heard.exit.has_value());
    QFile go(path("go"));
    QVERIFY(go.open(QIODevice::WriteOnly));
    go.write("go\n");
    go.close();
    // A broken pipe would have ended it before.
    QTRY_VERIFY(QFile::exists(path("done")));
    QVERIFY(heard.order.isEmpty());
}

void ChildProcessTest::localEventLoopSeesOutputAsItComes()
{
    ChildProcess child;
    Listener heard(child);
    QEventLoop loop;
    connect(&child, &ChildProcess::outputRead, &loop, [&](const QString&) { child.terminate(); });
    connect(&child, &ChildProcess::finished, &loop, &QEventLoop::quit);
    QVERIFY(!child.start(roleCommand({u"wait"_s})));
    loop.exec();
    QCOMPARE(heard.output, u"ready"_s);
    QVERIFY(heard.exit.has_value());
}

void ChildProcessTest::childIsLeftAloneWhenTheObjectGoes()
{
    QTemporaryDir folder;
    qint64 process = 0;
    {
        ChildProcess child;
        QSignalSpy ready(&child, &ChildProcess::outputRead);
        QVERIFY(!child.start(roleCommand({u"wait"_s})));
        QVERIFY(ready.wait(kelm::test::patience));
        process = child.processId();
    }
    QCoreApplication::processEvents();
    QCOMPARE(::kill(static_cast<pid_t>(process), 0), 0);
    ::kill(static_cast<pid_t>(process), SIGKILL);
    // Its exit is still collected.
    QTRY_VERIFY(::kill(static_cast<pid_t>(process), 0) != 0);
}

void ChildProcessTest::objectMayGoInsideItsOwnSignal()
{
    auto* child = new ChildProcess;
    QPointer<ChildProcess> guard = child;
    connect(child, &ChildProcess::outputRead, child, [child] { delete child; });
    QVERIFY(!child->start(roleCommand({u"say"_s, u"x"_s, u"y"_s, u"0"_s})));
    QTRY_VERIFY(guard.isNull());
    QCoreApplication::processEvents();
}

void ChildProcessTest::inputTextIsWritten()
{
    ProcessCommand command = roleCommand({u"copy"_s});
    command.standardInput = QByteArray(3 * 1024 * 1024, 'z');
    ChildProcess child;
    Listener heard(child);
    QVERIFY(!child.start(command));
    QTRY_VERIFY_WITH_TIMEOUT(heard.exit.has_value(), 20000);
    QCOMPARE(heard.output.size(), 3 * 1024 * 1024);
}

void ChildProcessTest::anyThreadWithAnEventLoopWillDo()
{
    QString output;
    std::optional<ProcessExit> exit;
    const std::unique_ptr<QThread> thread(QThread::create([&] {
        QEventLoop loop;
        ChildProcess child;
        connect(&child, &ChildProcess::outputRead, &loop, [&](const QString& text) { output += text; });
        connect(&child, &ChildProcess::finished, &loop, [&](const ProcessExit& how) {
            exit = how;
            loop.quit();
        });
        if (!child.start(roleCommand({u"say"_s, u"there"_s, u""_s, u"7"_s}))) {
            loop.exec();
        }
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }));
    thread->start();
    QVERIFY(thread->wait(20000));
    QCOMPARE(output, u"there"_s);
    QCOMPARE(exit, (ProcessExit{7, false}));
}

void ChildProcessTest::aThreadThatEndsFirstLeavesNothingBehind()
{
    // The child's own child holds the outputs open when the thread is over; the sanitizer's leak check is the judge of
    // what stays behind.
    std::optional<ProcessExit> exit;
    const std::unique_ptr<QThread> thread(QThread::create([&] {
        QEventLoop loop;
        ChildProcess child;
        connect(&child, &ChildProcess::finished, &loop, [&](const ProcessExit& how) {
            exit = how;
            loop.quit();
        });
        ProcessCommand command;
        command.program = u"/bin/sh"_s;
        command.arguments = {u"-c"_s, u"sleep 2 & exit 3"_s};
        if (!child.start(command)) {
            loop.exec();
        }
    }));
    thread->start();
    QVERIFY(thread->wait(20000));
    QCOMPARE(exit, (ProcessExit{3, false}));
}

void ChildProcessTest::endedChildIsNotSignalled()
{
    ChildProcess child;
    Listener heard(child);
    QVERIFY(!child.start(roleCommand({u"say"_s, u""_s, u""_s, u"0"_s})));
    QTRY_VERIFY(heard.exit.has_value());
    child.interrupt();
    child.terminate();
    child.kill();
    QCOMPARE(*heard.exit, (ProcessExit{0, false}));
}

const kelm::test::Registered<ChildProcessTest> registered;

} // namespace child_process_test

#include "child_process_test.moc"
