#include "platform/events/main_queue.h"
#include "platform/events/scheduler.h"
#include "platform/process/patient_runner.h"
#include "platform/process/process_stop.h"
#include "support/process_roles.h"
#include "support/test_program.h"

#include <QSemaphore>
#include <QSocketNotifier>
#include <QThread>
#include <QTimer>
#include <QtTest>

#include <atomic>
#include <thread>
#include <unistd.h>

namespace patient_runner_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;
using namespace std::chrono_literals;

namespace {

/// Runs "children" that end when they are let, or stopped.
class LetRunner final : public ProcessRunner
{
public:
    ProcessResult run(const ProcessCommand& command) override
    {
        ProcessStop stop;
        return runStoppable(command, stop);
    }
    ProcessResult runStoppable(const ProcessCommand& command, ProcessStop& stop) override
    {
        isOnMainThread = QThread::currentThread() == QCoreApplication::instance()->thread();
        while (!end.tryAcquire(1, 1)) {
            if (stop.isAsked()) {
                return {.exit = {15, true}, .isStopped = true};
            }
        }
        return {.standardOutput = command.arguments.join(u' ').toUtf8()};
    }

    QSemaphore end;
    std::atomic<bool> isOnMainThread = false;
};

struct Fixture
{
    std::shared_ptr<LetRunner> children = std::make_shared<LetRunner>();
    QStringList told;
    std::function<void()> stop;
    PatientRunner runner{children,
                         {.began =
                              [this](const ProcessCommand& command, std::function<void()> ending) {
                                  told += u"began "_s + command.arguments.join(u' ');
                                  stop = std::move(ending);
                              },
                          .lasted =
                              [this](std::chrono::seconds time) {
                                  told += u"%1 s"_s.arg(time.count());
                                  if (atSecond) {
                                      atSecond();
                                  }
                              },
                          .ended = [this] { told += u"ended"_s; }}};
    std::function<void()> atSecond;

    /// Does something from inside the wait, behind which the child ends.
    ProcessResult runWhile(const std::function<void()>& during)
    {
        QTimer::singleShot(0, QCoreApplication::instance(), [this, during] {
            during();
            QTimer::singleShot(30ms, QCoreApplication::instance(), [this] { children->end.release(); });
        });
        return runner.run({.program = u"/git"_s, .arguments = {u"status"_s}});
    }
};

} // namespace

class PatientRunnerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aShortChildIsWaitedForWithoutTheLoop();
    void theLoopTurnsWhileALongChildRuns();
    void theLoopTurnsWhileManyShortChildrenRun();
    void workOfTheProgramWaits();
    void pipesAreNotReadMeanwhile();
    void aChildInsideAWaitIsWaitedForPlainly();
    void otherThreadsWaitPlainly();
    void aLongWaitIsToldOf();
    void itIsStoppedByWhoeverIsTold();
    void aShortWaitIsNotToldOf();
    void theEndOfTheProgramStopsTheChild();
    void aCallersOwnStopHolds();
    void workIsDoneBeside();
};

void PatientRunnerTest::aShortChildIsWaitedForWithoutTheLoop()
{
    Fixture fixture;
    bool hasTurned = false;
    QMetaObject::invokeMethod(
        this, [&] { hasTurned = true; }, Qt::QueuedConnection);
    const PatientRunner::Signs none;
    PatientRunner runner(ProcessRunner::sharedSystem(), none);
    const ProcessResult missing = runner.run({.program = u"/nowhere"_s});
    QVERIFY(missing.launchError);
    fixture.children->end.release();
    const ProcessResult result = fixture.runner.run({.program = u"/git"_s, .arguments = {u"a"_s, u"b"_s}});
    QCOMPARE(result.standardOutput, QByteArray("a b"));
    QVERIFY(!fixture.children->isOnMainThread);
    QCoreApplication::processEvents();
    QVERIFY(hasTurned);
}

void PatientRunnerTest::theLoopTurnsWhileALongChildRuns()
{
    Fixture fixture;
    bool hasTurned = false;
    const ProcessResult result = fixture.runWhile([&] { hasTurned = true; });
    QVERIFY(hasTurned);
    QCOMPARE(result.standardOutput, QByteArray("status"));
}

void PatientRunnerTest::theLoopTurnsWhileManyShortChildrenRun()
{
    PatientRunner runner(ProcessRunner::sharedSystem(), {});
    bool hasTurned = false;
    QMetaObject::invokeMethod(
        this, [&] { hasTurned = true; }, Qt::QueuedConnection);
    // A hundred take longer together than a window may stand still, and none of them does.
    for (int child = 0; child < 100 && !hasTurned; ++child) {
        QVERIFY(runner.run(roleCommand({u"say"_s, u""_s, u""_s, u"0"_s})).exit.isSuccess());
    }
    QVERIFY(hasTurned);
}

void PatientRunnerTest::workOfTheProgramWaits()
{
    Fixture fixture;
    QStringList done;
    onMainQueue([&] { done += u"queued before"_s; });
    fixture.runWhile([&] {
        onMainQueue([&] { done += u"queued meanwhile"_s; });
        Scheduler::system().after(1ms, this, [&] { done += u"due"_s; });
    });
    QVERIFY2(done.isEmpty(), qPrintable(done.join(u',')));
    QTRY_COMPARE(done.join(u','), u"queued before,queued meanwhile,due"_s);
}

void PatientRunnerTest::pipesAreNotReadMeanwhile()
{
    Fixture fixture;
    int ends[2] = {-1, -1};
    QVERIFY(::pipe(ends) == 0);
    QSocketNotifier notifier(ends[0], QSocketNotifier::Read);
    int reads = 0;
    connect(&notifier, &QSocketNotifier::activated, this, [&] {
        char byte = 0;
        reads += int(::read(ends[0], &byte, 1));
    });
    fixture.runWhile([&] { QCOMPARE(::write(ends[1], "x", 1), ssize_t(1)); });
    QCOMPARE(reads, 0);
    QTRY_COMPARE(reads, 1);
    QVERIFY(notifier.isEnabled());
    ::close(ends[0]);
    ::close(ends[1]);
}

void PatientRunnerTest::aChildInsideAWaitIsWaitedForPlainly()
{
    Fixture fixture;
    QByteArray inside;
    bool hasTurned = false;
    fixture.runWhile([&] {
        // Both wait for the same end, and one of them is enough for it here.
        fixture.children->end.release(2);
        QMetaObject::invokeMethod(
            this, [&] { hasTurned = true; }, Qt::QueuedConnection);
        inside = fixture.runner.run({.program = u"/git"_s, .arguments = {u"log"_s}}).standardOutput;
        QVERIFY(!hasTurned);
    });
    QCOMPARE(inside, QByteArray("log"));
    // The end that nobody waits for any more is given from the loop.
    QTRY_VERIFY(fixture.children->end.available() > 0);
}

void PatientRunnerTest::otherThreadsWaitPlainly()
{
    Fixture fixture;
    ProcessResult result;
    std::thread thread([&] { result = fixture.runner.run({.program = u"/git"_s, .arguments = {u"fetch"_s}}); });
    fixture.children->end.release();
    thread.join();
    QCOMPARE(result.standardOutput, QByteArray("fetch"));
    QVERIFY(fixture.told.isEmpty());
}

void PatientRunnerTest::aLongWaitIsToldOf()
{
    Fixture fixture;
    fixture.atSecond = [&] {
        if (fixture.told.size() == 3) {
            fixture.children->end.release();
        }
    };
    fixture.runner.run({.program = u"/git"_s, .arguments = {u"commit"_s, u"-m"_s}});
    QCOMPARE(fixture.told.join(u','), u"began commit -m,1 s,2 s,ended"_s);
}

void PatientRunnerTest::itIsStoppedByWhoeverIsTold()
{
    Fixture fixture;
    fixture.atSecond = [&] { fixture.stop(); };
    const ProcessResult result = fixture.runner.run({.program = u"/git"_s, .arguments = {u"gc"_s}});
    QVERIFY(result.isStopped);
    QCOMPARE(fixture.told.join(u','), u"began gc,1 s,ended"_s);
}

void PatientRunnerTest::aShortWaitIsNotToldOf()
{
    Fixture fixture;
    fixture.runWhile([] {});
    QVERIFY(fixture.told.isEmpty());
}

void PatientRunnerTest::theEndOfTheProgramStopsTheChild()
{
    Fixture fixture;
    ProcessResult result;
    // The end leads out of every loop, as in the program itself.
    QTimer::singleShot(0, this, [&] {
        QTimer::singleShot(0, this, [] { QCoreApplication::exit(7); });
        result = fixture.runner.run({.program = u"/git"_s});
    });
    QCOMPARE(QCoreApplication::exec(), 7);
    QVERIFY(result.isStopped);
}

void PatientRunnerTest::aCallersOwnStopHolds()
{
    Fixture fixture;
    ProcessStop stop;
    QTimer::singleShot(0, this, [&] { stop.stop(); });
    QVERIFY(fixture.runner.runStoppable({.program = u"/git"_s}, stop).isStopped);
}

void PatientRunnerTest::workIsDoneBeside()
{
    Fixture fixture;
    QThread* thread = nullptr;
    bool hasTurned = false;
    QTimer::singleShot(0, this, [&] {
        hasTurned = true;
        fixture.children->end.release();
    });
    fixture.runner.compute([&] {
        thread = QThread::currentThread();
        fixture.children->end.acquire();
    });
    QVERIFY(hasTurned);
    QVERIFY(thread != nullptr && thread != QThread::currentThread());
    // A runner that waits for nobody does it at once.
    ProcessRunner::system().compute([&] { thread = QThread::currentThread(); });
    QCOMPARE(thread, QThread::currentThread());
}

const kelm::test::Registered<PatientRunnerTest> registered;

} // namespace patient_runner_test

#include "patient_runner_test.moc"
