#include "platform/events/worker_pool.h"

#include "platform/events/handing_over.h"

#include <QCoreApplication>
#include <QRunnable>
#include <QThread>
#include <QThreadPool>

#include <algorithm>
#include <memory>
#include <utility>

namespace kelm {

namespace {

HandingOver begun;
HandingOver done;

/// Its pool deletes it, on the worker.
class PooledWork final : public QRunnable
{
public:
    explicit PooledWork(std::function<void()> work) : work_(std::move(work)) {}

    void run() override
    {
        begun.take();
        // What the work holds goes here, before it is told to be done.
        std::exchange(work_, nullptr)();
        done.leave();
    }

private:
    std::function<void()> work_;
};

} // namespace

void WorkerPool::start(std::function<void()> work)
{
    auto pooled = std::make_unique<PooledWork>(std::move(work));
    begun.leave();
    threads_.start(pooled.release());
}

bool WorkerPool::waitForDone()
{
    return waitForDone(std::chrono::milliseconds(-1));
}

bool WorkerPool::waitForDone(std::chrono::milliseconds longest)
{
    const bool isDone = threads_.waitForDone(static_cast<int>(longest.count()));
    done.take();
    return isDone;
}

int WorkerPool::maxThreadCount() const
{
    return threads_.maxThreadCount();
}

void WorkerPool::releaseThread()
{
    threads_.releaseThread();
}

void WorkerPool::reserveThread()
{
    threads_.reserveThread();
}

WorkerPool& backgroundWorkers()
{
    static QThreadPool threads;
    static WorkerPool workers(threads);
    static const bool isSetUp = [] {
        // One that takes long leaves another for the others.
        threads.setMaxThreadCount(std::max(QThread::idealThreadCount(), 2));
        qAddPostRoutine([] { workers.waitForDone(); });
        return true;
    }();
    Q_UNUSED(isSetUp)
    return workers;
}

WorkerPool& commonWorkers()
{
    static WorkerPool workers(*QThreadPool::globalInstance());
    return workers;
}

} // namespace kelm
