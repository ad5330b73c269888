#include "platform/events/held_work.h"
#include "platform/events/main_queue.h"
#include "platform/events/scheduler.h"
#include "support/test_program.h"

#include <QTimer>
#include <QtTest>

#include <memory>
#include <optional>

namespace held_work_test {

using namespace kelm;
using namespace std::chrono_literals;

class HeldWorkTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void workOfTheMainQueueWaitsAndKeepsItsOrder();
    void whatIsDueMeanwhileRunsAfterwards();
    void whatNeedNotWaitDoesNot();
    void contextsThatHaveGoneTakeTheirWorkAlong();
    void twoHoldsAreOne();
    void oneTurnOfTheQueueRunsThemAll();
    void workThatHoldsAgainKeepsTheRestWaiting();
};

void HeldWorkTest::workOfTheMainQueueWaitsAndKeepsItsOrder()
{
    QStringList done;
    std::optional<HeldWork> held;
    held.emplace();
    onMainQueue([&] { done += QStringLiteral("first"); });
    onMainQueue([&] { done += QStringLiteral("second"); });
    QCoreApplication::processEvents();
    QVERIFY(done.isEmpty());
    // Still on its way when the hold ends.
    onMainQueue([&] { done += QStringLiteral("third"); });
    held.reset();
    onMainQueue([&] { done += QStringLiteral("fourth"); });
    QVERIFY(done.isEmpty());
    QTRY_COMPARE(done.join(u' '), QStringLiteral("first second third fourth"));
}

void HeldWorkTest::whatIsDueMeanwhileRunsAfterwards()
{
    QStringList done;
    bool hasPassed = false;
    {
        const HeldWork held;
        Scheduler::system().after(1ms, this, [&] { done += QStringLiteral("early"); });
        Scheduler::system().after(20ms, this, [&] { done += QStringLiteral("late"); });
        QTimer::singleShot(40ms, this, [&] { hasPassed = true; });
        QTRY_VERIFY(hasPassed);
        QVERIFY(done.isEmpty());
    }
    QTRY_COMPARE(done.join(u' '), QStringLiteral("early late"));
}

void HeldWorkTest::whatNeedNotWaitDoesNot()
{
    bool isDone = false;
    const HeldWork held;
    onMainQueueInAnyCase([&] { isDone = true; });
    QVERIFY(!isDone);
    QTRY_VERIFY(isDone);
}

void HeldWorkTest::contextsThatHaveGoneTakeTheirWorkAlong()
{
    bool isDone = false;
    bool isBehind = false;
    auto context = std::make_unique<QObject>();
    {
        const HeldWork held;
        onMainQueue(context.get(), [&] { isDone = true; });
        onMainQueue([&] { isBehind = true; });
        QCoreApplication::processEvents();
        context.reset();
    }
    QTRY_VERIFY(isBehind);
    QVERIFY(!isDone);
}

void HeldWorkTest::twoHoldsAreOne()
{
    bool isDone = false;
    std::optional<HeldWork> outer;
    outer.emplace();
    {
        const HeldWork inner;
        onMainQueue([&] { isDone = true; });
        QCoreApplication::processEvents();
    }
    QCoreApplication::processEvents();
    QVERIFY(HeldWork::isHolding());
    QVERIFY(!isDone);
    outer.reset();
    QVERIFY(!HeldWork::isHolding());
    QTRY_VERIFY(isDone);
}

void HeldWorkTest::oneTurnOfTheQueueRunsThemAll()
{
    QStringList done;
    {
        const HeldWork held;
        for (const char* name : {"a", "b", "c", "d"}) {
            onMainQueue([&done, name] { done += QLatin1String(name); });
        }
        QCoreApplication::processEvents();
        const HeldWork again;
    }
    QCoreApplication::processEvents();
    QCOMPARE(done.join(u' '), QStringLiteral("a b c d"));
}

void HeldWorkTest::workThatHoldsAgainKeepsTheRestWaiting()
{
    QStringList done;
    {
        const HeldWork held;
        onMainQueue([&] {
            const HeldWork again;
            QCoreApplication::processEvents();
            done += QStringLiteral("first");
        });
        onMainQueue([&] { done += QStringLiteral("second"); });
        QCoreApplication::processEvents();
    }
    QTRY_COMPARE(done.join(u' '), QStringLiteral("first second"));
}

const kelm::test::Registered<HeldWorkTest> registered;

} // namespace held_work_test

#include "held_work_test.moc"
