#include "platform/events/serial_worker.h"
#include "support/test_program.h"

#include <QtTest>

#include <algorithm>
#include <memory>
#include <semaphore>
#include <thread>
#include <vector>

namespace serial_worker_test {

using namespace kelm;
using namespace std::chrono_literals;

class SerialWorkerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void workIsDoneInItsOrderOnOneThread();
    void waitingEndsInTimeAndTellsOfWhatIsLeft();
    void whatWorkHeldIsLetGoByTheWorker();
    void itsEndLeavesWhatHasNotBegun();
};

void SerialWorkerTest::workIsDoneInItsOrderOnOneThread()
{
    SerialWorker worker;
    QVERIFY(worker.waitUntilIdle(0ms));
    std::vector<int> done;
    std::vector<std::thread::id> threads;
    for (int piece = 0; piece < 100; ++piece) {
        worker.add([&, piece] {
            done.push_back(piece);
            threads.push_back(std::this_thread::get_id());
        });
    }
    QVERIFY(worker.waitUntilIdle(30s));
    QCOMPARE(done.size(), std::size_t(100));
    QVERIFY(std::is_sorted(done.begin(), done.end()));
    QVERIFY(threads.front() != std::this_thread::get_id());
    QCOMPARE(std::count(threads.begin(), threads.end(), threads.front()), 100);
}

void SerialWorkerTest::waitingEndsInTimeAndTellsOfWhatIsLeft()
{
    std::counting_semaphore<> end{0};
    SerialWorker worker;
    worker.add([&end] { end.acquire(); });
    QVERIFY(!worker.waitUntilIdle(1ms));
    end.release();
    QVERIFY(worker.waitUntilIdle(30s));
}

void SerialWorkerTest::whatWorkHeldIsLetGoByTheWorker()
{
    std::thread::id thread;
    SerialWorker worker;
    worker.add([held = std::shared_ptr<int>(new int, [&thread](int* value) {
                    delete value;
                    thread = std::this_thread::get_id();
                })] {});
    QVERIFY(worker.waitUntilIdle(30s));
    QVERIFY(thread != std::thread::id());
    QVERIFY(thread != std::this_thread::get_id());
}

void SerialWorkerTest::itsEndLeavesWhatHasNotBegun()
{
    // The thread may outlive this function by a moment.
    const auto begun = std::make_shared<std::counting_semaphore<>>(0);
    const auto end = std::make_shared<std::counting_semaphore<>>(0);
    const auto isLeft = std::make_shared<int>();
    {
        SerialWorker worker;
        worker.add([begun, end] {
            begun->release();
            end->acquire();
        });
        worker.add([isLeft] { *isLeft = 1; });
        begun->acquire();
    }
    const std::weak_ptr<int> held = isLeft;
    end->release();
    // What is left goes with the thread.
    QTRY_COMPARE(held.use_count(), 1);
    QCOMPARE(*isLeft, 0);
}

const kelm::test::Registered<SerialWorkerTest> registered;

} // namespace serial_worker_test

#include "serial_worker_test.moc"
