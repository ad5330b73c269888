#include "platform/events/main_queue.h"
#include "support/test_program.h"

#include <QThread>
#include <QtTest>

#include <memory>
#include <thread>
#include <vector>

namespace main_queue_test {

using namespace kelm;

class MainQueueTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void workComesBehindTheEventInHandAndInItsOrder();
    void workOfOtherThreadsRunsOnTheMainOne();
    void workForWhatHasGoneIsDropped();
    void whatDroppedWorkHoldsGoes();
    void workMayQueueMore();
};

void MainQueueTest::workComesBehindTheEventInHandAndInItsOrder()
{
    std::vector<int> done;
    onMainQueue([&] { done.push_back(1); });
    onMainQueue(this, [&] { done.push_back(2); });
    onMainQueueInAnyCase([&] { done.push_back(3); });
    QMetaObject::invokeMethod(
        this, [&] { done.push_back(4); }, Qt::QueuedConnection);
    onMainQueue([&] { done.push_back(5); });
    QVERIFY(done.empty());
    QCoreApplication::processEvents();
    QCOMPARE(done, (std::vector<int>{1, 2, 3, 4, 5}));
}

void MainQueueTest::workOfOtherThreadsRunsOnTheMainOne()
{
    // Read and written by one thread after the other: what a piece of work leaves, the queue hands over.
    std::vector<QThread*> threads;
    std::thread other([&] {
        for (int piece = 0; piece < 3; ++piece) {
            onMainQueue([&, text = std::make_shared<QString>(QStringLiteral("left"))] {
                threads.push_back(*text == QStringLiteral("left") ? QThread::currentThread() : nullptr);
            });
        }
    });
    QTRY_COMPARE(threads.size(), std::size_t(3));
    other.join();
    QCOMPARE(threads, std::vector(3, QCoreApplication::instance()->thread()));
}

void MainQueueTest::workForWhatHasGoneIsDropped()
{
    bool hasRun = false;
    {
        QObject context;
        onMainQueue(&context, [&] { hasRun = true; });
    }
    bool isPast = false;
    onMainQueue([&] { isPast = true; });
    QCoreApplication::processEvents();
    QVERIFY(isPast);
    QVERIFY(!hasRun);
}

void MainQueueTest::whatDroppedWorkHoldsGoes()
{
    const auto held = std::make_shared<int>();
    {
        QObject context;
        onMainQueue(&context, [held] { QFAIL("runs"); });
        QCOMPARE(held.use_count(), 2);
    }
    QCoreApplication::processEvents();
    QCOMPARE(held.use_count(), 1);
}

void MainQueueTest::workMayQueueMore()
{
    std::vector<int> done;
    onMainQueue([&] {
        onMainQueue([&] { done.push_back(3); });
        done.push_back(1);
    });
    onMainQueue([&] { done.push_back(2); });
    QTRY_COMPARE(done, (std::vector<int>{1, 2, 3}));
}

const kelm::test::Registered<MainQueueTest> registered;

} // namespace main_queue_test

#include "main_queue_test.moc"
