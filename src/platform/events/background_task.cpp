#include "platform/events/background_task.h"

#include "platform/events/main_queue.h"

#include <QCoreApplication>
#include <QThread>
#include <QThreadPool>

#include <algorithm>
#include <utility>

namespace kelm {

QThreadPool& backgroundWorkers()
{
    static QThreadPool workers;
    static const bool isSetUp = [] {
        // One that takes long leaves another for the others.
        workers.setMaxThreadCount(std::max(QThread::idealThreadCount(), 2));
        qAddPostRoutine([] { workers.waitForDone(); });
        return true;
    }();
    Q_UNUSED(isSetUp)
    return workers;
}

/// What the two threads share. What one of them leaves for the other is ordered by the two atomics, not by the queues
/// of the toolkit alone.
struct BackgroundTask::InHand
{
    StopFlag stop = false;
    std::atomic<bool> isDone = false;
    Work work;
    Delivery delivery;
};

void BackgroundTask::start(Work work)
{
    stop();
    inHand_ = std::make_shared<InHand>();
    inHand_->work = std::move(work);
    inHand_->stop.store(false, std::memory_order_release);
    backgroundWorkers().start([this, inHand = inHand_] {
        if (inHand->stop.load(std::memory_order_acquire)) {
            return;
        }
        inHand->delivery = inHand->work(inHand->stop);
        inHand->isDone.store(true, std::memory_order_release);
        // The flag is set on the main thread alone: while it is not, the task is there.
        onMainQueue([this, inHand] {
            if (inHand->isDone.load(std::memory_order_acquire) && !inHand->stop) {
                inHand_.reset();
                inHand->delivery();
            }
        });
    });
}

void BackgroundTask::stop()
{
    if (const auto inHand = std::exchange(inHand_, nullptr)) {
        inHand->stop = true;
    }
}

} // namespace kelm
