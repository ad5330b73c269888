#include "platform/events/main_queue.h"
#include "platform/files/user_defaults.h"
#include "platform/process/application_exit.h"
#include "platform/process/orderly_end.h"
#include "platform/process/ways_to_end.h"
#include "support/roles.h"
#include "support/test_program.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QtTest>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <unistd.h>

namespace ways_to_end_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

void say(const char* line)
{
    std::puts(line);
    std::fflush(stdout);
}

/// Only a signal comes through.
[[noreturn]] void hang()
{
    for (;;) {
        ::pause();
    }
}

/// Says "ready" when it can be ended, and "closed" when it brings to safety what it has. What it does then is an
/// argument: waits in its loop or in one inside it, does not come back from its own work or from its closer, or exits
/// from inside.
int playProgram(const QStringList& arguments)
{
    const QString kind = arguments[0];
    if (kind == u"ignoring"_s) {
        ::signal(SIGHUP, SIG_IGN);
    }
    QObject owner;
    onOrderlyEnd(&owner, [kind](auto) {
        say("closed");
        if (kind == u"closerHangs"_s) {
            hang();
        }
    });
    watchWaysToEnd(UserDefaults::shared());
    onMainQueue([kind] {
        say("ready");
        if (kind == u"nested"_s) {
            QEventLoop().exec();
            say("left");
        } else if (kind == u"hangs"_s) {
            hang();
        } else if (kind == u"exits"_s) {
            std::exit(9);
        } else if (kind == u"losesWayland"_s) {
            qWarning("The Wayland connection broke. Did the Wayland compositor die?");
            ::_exit(9);
        }
    });
    const int status = QCoreApplication::exec();
    say("behind");
    return leaveWithoutWaiting(status, UserDefaults::shared());
}

/// A program that is told to end, and what becomes of it.
class Program
{
public:
    explicit Program(const QString& kind) { startRole(process_, u"playProgram"_s, {kind}); }
    ~Program()
    {
        process_.kill();
        process_.waitForFinished();
    }

    void tell(int number)
    {
        if (const auto process = pid_t(process_.processId()); process > 0) {
            ::kill(process, number);
        }
    }

    bool says(const QByteArray& line)
    {
        while (!process_.canReadLine()) {
            if (!process_.waitForReadyRead()) {
                return false;
            }
        }
        return process_.readLine() == line + '\n';
    }

    /// The signal that has ended it, the negative of the status that it ended with, or nothing.
    std::optional<int> end(int milliseconds = 30'000)
    {
        if (process_.state() != QProcess::NotRunning && !process_.waitForFinished(milliseconds)) {
            return std::nullopt;
        }
        return process_.exitStatus() == QProcess::CrashExit ? process_.exitCode() : -process_.exitCode();
    }

    QByteArray rest() { return process_.readAllStandardOutput(); }

private:
    QProcess process_;
};

} // namespace

class WaysToEndTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aSignalEndsInOrder_data();
    void aSignalEndsInOrder();
    void aSignalThatComesTwiceInOneGoIsOne();
    void aLoopInsideIsLeft();
    void anIgnoredSignalStaysIgnored();
    void aSecondSignalEndsAtOnce();
    void whoDoesNotComeBackIsEnded_data();
    void whoDoesNotComeBackIsEnded();
    void anExitFromInsideIsOneInOrder_data();
    void anExitFromInsideIsOneInOrder();
};

void WaysToEndTest::aSignalEndsInOrder_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("the terminal has gone") << SIGHUP;
    QTest::newRow("interrupted") << SIGINT;
    QTest::newRow("terminated") << SIGTERM;
}

void WaysToEndTest::aSignalEndsInOrder()
{
    QFETCH(int, number);
    Program program(u"waits"_s);
    QVERIFY(program.says("ready"));
    program.tell(number);
    QCOMPARE(program.end(), std::optional(number));
    QCOMPARE(program.rest(), QByteArray("closed\nbehind\n"));
}

void WaysToEndTest::aSignalThatComesTwiceInOneGoIsOne()
{
    for (int turn = 0; turn < 20; ++turn) {
        Program program(u"waits"_s);
        QVERIFY(program.says("ready"));
        QElapsedTimer timer;
        timer.start();
        program.tell(SIGHUP);
        program.tell(SIGHUP);
        const bool isOneGo = timer.elapsed() < 200;
        program.tell(SIGTERM);
        QVERIFY(program.end() > 0);
        // This process may have been held between the two; it was another case then.
        if (isOneGo) {
            QCOMPARE(program.rest(), QByteArray("closed\nbehind\n"));
        }
    }
}

void WaysToEndTest::aLoopInsideIsLeft()
{
    Program program(u"nested"_s);
    QVERIFY(program.says("ready"));
    program.tell(SIGTERM);
    QCOMPARE(program.end(), std::optional(SIGTERM));
    QCOMPARE(program.rest(), QByteArray("closed\nleft\nbehind\n"));
}

void WaysToEndTest::anIgnoredSignalStaysIgnored()
{
    Program program(u"ignoring"_s);
    QVERIFY(program.says("ready"));
    program.tell(SIGHUP);
    program.tell(SIGTERM);
    QCOMPARE(program.end(), std::optional(SIGTERM));
}

void WaysToEndTest::aSecondSignalEndsAtOnce()
{
    Program program(u"closerHangs"_s);
    QVERIFY(program.says("ready"));
    program.tell(SIGTERM);
    QVERIFY(program.says("closed"));
    // It is told again until that counts as a second time; another signal does not.
    program.tell(SIGHUP);
    std::optional<int> end;
    QTRY_VERIFY_WITH_TIMEOUT((program.tell(SIGTERM), end = program.end(1)).has_value(), 30'000);
    QCOMPARE(end, std::optional(SIGTERM));
    QVERIFY(program.rest().isEmpty());
}

void WaysToEndTest::whoDoesNotComeBackIsEnded_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("the main thread") << u"hangs"_s;
    QTest::newRow("a closer") << u"closerHangs"_s;
}

void WaysToEndTest::whoDoesNotComeBackIsEnded()
{
    QFETCH(QString, kind);
    Program program(kind);
    QVERIFY(program.says("ready"));
    program.tell(SIGTERM);
    QCOMPARE(program.end(), std::optional(SIGTERM));
}

void WaysToEndTest::anExitFromInsideIsOneInOrder_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("as for an X display") << u"exits"_s;
    QTest::newRow("as for a Wayland display") << u"losesWayland"_s;
}

void WaysToEndTest::anExitFromInsideIsOneInOrder()
{
    QFETCH(QString, kind);
    Program program(kind);
    QCOMPARE(program.end(), std::optional(-1));
    QCOMPARE(program.rest(), QByteArray("ready\nclosed\n"));
}

const kelm::test::Registered<WaysToEndTest> registered(kelm::test::Toolkit::gui, {{u"playProgram"_s, playProgram}});

} // namespace ways_to_end_test

#include "ways_to_end_test.moc"
