#include "platform/events/worker_pool.h"
#include "support/blocked_workers.h"
#include "support/test_program.h"

#include <QThread>
#include <QThreadPool>
#include <QtTest>

#include <algorithm>
#include <memory>
#include <semaphore>
#include <vector>

namespace worker_pool_test {

using namespace kelm;
using namespace std::chrono_literals;

class WorkerPoolTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void workIsDoneInItsOrderAndSeenByWhoWaits();
    void whatWorkHoldsGoesOnTheWorkerBeforeItIsDone();
    void aWaitEndsWithItsTime();
    void whoOnlyWaitsLeavesItsPlace();
    void theBackgroundIsNotTheToolkitsOwn();
};

void WorkerPoolTest::workIsDoneInItsOrderAndSeenByWhoWaits()
{
    QThreadPool threads;
    threads.setMaxThreadCount(1);
    WorkerPool pool(threads);
    std::vector<int> done;
    for (int piece = 0; piece < 100; ++piece) {
        pool.start([&done, piece] { done.push_back(piece); });
    }
    QVERIFY(pool.waitForDone());
    QCOMPARE(done.size(), std::size_t(100));
    QVERIFY(std::is_sorted(done.begin(), done.end()));
}

void WorkerPoolTest::whatWorkHoldsGoesOnTheWorkerBeforeItIsDone()
{
    QThreadPool threads;
    WorkerPool pool(threads);
    QThread* last = nullptr;
    auto held = std::shared_ptr<int>(std::make_unique<int>().release(), [&last](const int* value) {
        last = QThread::currentThread();
        const std::unique_ptr<const int> owner(value);
    });
    pool.start([kept = std::move(held)] { Q_UNUSED(kept) });
    pool.waitForDone();
    QVERIFY(last != nullptr);
    QVERIFY(last != QThread::currentThread());
}

void WorkerPoolTest::aWaitEndsWithItsTime()
{
    QThreadPool threads;
    WorkerPool pool(threads);
    std::counting_semaphore<> end(0);
    pool.start([&end] { end.acquire(); });
    QVERIFY(!pool.waitForDone(0ms));
    QVERIFY(!pool.waitForDone(1ms));
    end.release();
    QVERIFY(pool.waitForDone(30s));
    QVERIFY(pool.waitForDone(0ms));
}

void WorkerPoolTest::whoOnlyWaitsLeavesItsPlace()
{
    QThreadPool threads;
    threads.setMaxThreadCount(1);
    WorkerPool pool(threads);
    QCOMPARE(pool.maxThreadCount(), 1);
    std::counting_semaphore<> end(0);
    pool.start([&] {
        pool.releaseThread();
        end.acquire();
        pool.reserveThread();
    });
    pool.start([&end] { end.release(); });
    QVERIFY(pool.waitForDone(30s));
}

void WorkerPoolTest::theBackgroundIsNotTheToolkitsOwn()
{
    const test::BlockedWorkers blocked;
    QVERIFY(backgroundWorkers().maxThreadCount() >= 2);
    bool isDone = false;
    commonWorkers().start([&isDone] { isDone = true; });
    QVERIFY(commonWorkers().waitForDone(30s));
    QVERIFY(isDone);
    QVERIFY(!backgroundWorkers().waitForDone(0ms));
}

const kelm::test::Registered<WorkerPoolTest> registered;

} // namespace worker_pool_test

#include "worker_pool_test.moc"
