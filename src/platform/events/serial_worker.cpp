#include "platform/events/serial_worker.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>

namespace kelm {

struct SerialWorker::Queue
{
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<Work> waiting;
    bool isWorking = false;
    bool isClosed = false;

    void workUntilClosed()
    {
        std::unique_lock lock(mutex);
        for (;;) {
            changed.wait(lock, [this] { return isClosed || !waiting.empty(); });
            if (isClosed) {
                return;
            }
            Work work = std::move(waiting.front());
            waiting.pop_front();
            isWorking = true;
            lock.unlock();
            work();
            // What it held may be large, and goes here.
            work = nullptr;
            lock.lock();
            isWorking = false;
            changed.notify_all();
        }
    }
};

SerialWorker::SerialWorker() : queue_(std::make_shared<Queue>()) {}

SerialWorker::~SerialWorker()
{
    const std::lock_guard lock(queue_->mutex);
    queue_->isClosed = true;
    queue_->changed.notify_all();
}

void SerialWorker::add(Work work)
{
    if (!std::exchange(hasBegun_, true)) {
        std::thread([queue = queue_] { queue->workUntilClosed(); }).detach();
    }
    const std::lock_guard lock(queue_->mutex);
    queue_->waiting.push_back(std::move(work));
    queue_->changed.notify_all();
}

bool SerialWorker::waitUntilIdle(std::chrono::milliseconds longest) const
{
    std::unique_lock lock(queue_->mutex);
    return queue_->changed.wait_for(lock, longest, [this] { return queue_->waiting.empty() && !queue_->isWorking; });
}

} // namespace kelm
