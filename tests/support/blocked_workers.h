// Work of other threads that does not begin before a test lets it.
#pragma once

#include "platform/events/worker_pool.h"

#include <semaphore>

namespace kelm::test {

/// While it lives, all workers of background tasks are busy, so that what is begun waits.
class BlockedWorkers
{
public:
    BlockedWorkers()
    {
        WorkerPool& pool = backgroundWorkers();
        pool.waitForDone();
        for (int worker = 0; worker < pool.maxThreadCount(); ++worker) {
            pool.start([this] { end_.acquire(); });
        }
    }
    ~BlockedWorkers()
    {
        end_.release(backgroundWorkers().maxThreadCount());
        backgroundWorkers().waitForDone();
    }
    BlockedWorkers(const BlockedWorkers&) = delete;
    BlockedWorkers& operator=(const BlockedWorkers&) = delete;

private:
    std::counting_semaphore<> end_{0};
};

} // namespace kelm::test
