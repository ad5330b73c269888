#include "platform/events/background_task.h"
#include "platform/events/worker_pool.h"
#include "support/blocked_workers.h"
#include "support/test_program.h"

#include <QSignalSpy>
#include <QtTest>

#include <semaphore>

namespace background_task_test {

using namespace kelm;
using namespace std::chrono_literals;

class BackgroundTaskTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void workIsDeliveredOnTheMainThread();
    void whatIsStoppedIsNotDelivered();
    void theToolkitsPoolIsFreeMeanwhile();
};

void BackgroundTaskTest::workIsDeliveredOnTheMainThread()
{
    BackgroundTask task;
    QThread* worker = nullptr;
    QThread* delivery = nullptr;
    task.start([&](const BackgroundTask::StopFlag&) -> BackgroundTask::Delivery {
        worker = QThread::currentThread();
        return [&] { delivery = QThread::currentThread(); };
    });
    QVERIFY(task.isRunning());
    QTRY_VERIFY(!task.isRunning());
    QCOMPARE(delivery, QThread::currentThread());
    QVERIFY(worker != delivery);
}

void BackgroundTaskTest::whatIsStoppedIsNotDelivered()
{
    BackgroundTask task;
    bool isDelivered = false;
    const auto work = [&](const BackgroundTask::StopFlag&) -> BackgroundTask::Delivery {
        return [&] { isDelivered = true; };
    };
    {
        const test::BlockedWorkers blocked;
        task.start(work);
        task.stop();
        QVERIFY(!task.isRunning());
    }
    QCoreApplication::processEvents();
    QVERIFY(!isDelivered);
}

void BackgroundTaskTest::theToolkitsPoolIsFreeMeanwhile()
{
    const test::BlockedWorkers blocked;
    std::counting_semaphore<> painted{0};
    commonWorkers().start([&painted] { painted.release(); });
    QVERIFY(painted.try_acquire_for(30s));
}

const kelm::test::Registered<BackgroundTaskTest> registered;

} // namespace background_task_test

#include "background_task_test.moc"
