#include "platform/process/process.h"
#include "platform/process/process_stop.h"
#include "platform/process/process_table.h"
#include "support/process_roles.h"
#include "support/test_program.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <csignal>
#include <thread>

namespace process_stop_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

namespace {

/// Runs a shell's words on a thread of their own until they have written their numbers to the file "ready".
struct Running
{
    QTemporaryDir folder;
    ProcessStop stop;
    ProcessResult result;
    std::atomic<bool> hasEnded = false;
    std::thread thread;

    void start(const QString& words)
    {
        const ProcessCommand command{
            .program = u"/bin/sh"_s, .arguments = {u"-c"_s, words}, .workingDirectory = folder.path()};
        thread = std::thread([this, command] {
            result = ProcessRunner::system().runStoppable(command, stop);
            hasEnded = true;
        });
    }
    ~Running()
    {
        stop.stop();
        thread.join();
    }
    bool isReady() const { return QFileInfo(folder.filePath(u"ready"_s)).size() > 0; }
    qint64 number(const QString& name) const
    {
        QFile file(folder.filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed().toLongLong() : 0;
    }
};

bool isThere(qint64 process)
{
    const std::vector<ProcessEntry> table = processTable();
    return std::any_of(table.begin(), table.end(),
                       [process](const ProcessEntry& each) { return each.id == process && !each.hasEnded; });
}

} // namespace

class ProcessStopTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aChildIsEndedWithWhatItHasStarted_data();
    void aChildIsEndedWithWhatItHasStarted();
    void aChildThatEndsWellAllTheSameHasNotFailed();
    void aChildThatStartsLaterIsEndedToo();
    void nobodyElseIsStopped();
    void aChildReadsFromNoTerminal();
};

void ProcessStopTest::aChildIsEndedWithWhatItHasStarted_data()
{
    QTest::addColumn<QString>("words");
    QTest::newRow("one that obeys") << u"sleep 60 & echo $! > child; echo $$ > ready; wait"_s;
    QTest::newRow("one that takes no notice")
        << u"trap '' TERM; sleep 60 & echo $! > child; echo $$ > ready; wait; sleep 60"_s;
    QTest::newRow("one whose child takes no notice")
        << u"(trap '' TERM; sleep 60; sleep 60) & echo $! > child; echo $$ > ready; wait"_s;
    QTest::newRow("one that stands still") << u"sleep 60 & echo $! > child; echo $$ > ready; kill -STOP $$; sleep 60"_s;
}

void ProcessStopTest::aChildIsEndedWithWhatItHasStarted()
{
    QFETCH(QString, words);
    Running running;
    running.start(words);
    QTRY_VERIFY(running.isReady());
    const qint64 leader = running.number(u"ready"_s);
    const qint64 child = running.number(u"child"_s);
    QVERIFY(isThere(leader) && isThere(child));
    running.stop.stop();
    QTRY_VERIFY(running.hasEnded);
    QVERIFY(running.result.isStopped);
    QVERIFY(!running.result.exit.isSuccess());
    QTRY_VERIFY(!isThere(leader) && !isThere(child));
}

void ProcessStopTest::aChildThatEndsWellAllTheSameHasNotFailed()
{
    Running running;
    running.start(u"trap 'exit 0' TERM; echo $$ > ready; while :; do sleep 0.01; done"_s);
    QTRY_VERIFY(running.isReady());
    running.stop.stop();
    QTRY_VERIFY(running.hasEnded);
    QVERIFY(running.result.exit.isSuccess());
    QVERIFY(!running.result.isStopped);
}

void ProcessStopTest::aChildThatStartsLaterIsEndedToo()
{
    Running running;
    running.stop.stop();
    running.start(u"sleep 60"_s);
    QTRY_VERIFY(running.hasEnded);
    QVERIFY(running.result.isStopped);
}

void ProcessStopTest::nobodyElseIsStopped()
{
    ProcessStop stop;
    const ProcessResult failed =
        ProcessRunner::system().runStoppable(roleCommand({u"say"_s, u"out"_s, u"err"_s, u"3"_s}), stop);
    QVERIFY(!failed.isStopped);
    QCOMPARE(failed.exit.status, 3);
    QCOMPARE(failed.standardOutput, QByteArray("out"));
    QCOMPARE(failed.standardError, QByteArray("err"));
    // There is nobody any more, and least of all this program itself.
    stop.stop();
    QVERIFY(stop.isAsked());
    ProcessStop missing;
    QVERIFY(ProcessRunner::system().runStoppable({.program = u"/nowhere"_s}, missing).launchError);
    QCOMPARE(ProcessRunner::system().runStoppable(roleCommand({u"group"_s}), missing).standardOutput,
             QByteArray("own"));
}

void ProcessStopTest::aChildReadsFromNoTerminal()
{
    if (!QFile::exists(u"/proc/self/status"_s)) {
        QSKIP("no process table");
    }
    ProcessStop stop;
    const ProcessResult result = ProcessRunner::system().runStoppable(
        {.program = u"/bin/sh"_s, .arguments = {u"-c"_s, u"grep SigIgn /proc/self/status"_s}}, stop);
    const quint64 ignored = result.standardOutput.trimmed().split('\t').last().toULongLong(nullptr, 16);
    for (const int number : {SIGTTIN, SIGTTOU}) {
        QVERIFY((ignored >> (number - 1) & 1) != 0);
    }
}

const kelm::test::Registered<ProcessStopTest> registered;

} // namespace process_stop_test

#include "process_stop_test.moc"
