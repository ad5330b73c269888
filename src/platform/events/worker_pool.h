// Threads that do work beside the main one.
#pragma once

#include <chrono>
#include <functional>

class QThreadPool;

namespace kelm {

/// A pool of the toolkit's, whose work sees all that was written before it was handed in, and leaves all that it wrote
/// to whoever waits for it. From any thread.
class WorkerPool
{
public:
    explicit WorkerPool(QThreadPool& threads) : threads_(threads) {}

    /// Has a worker do `work`, behind what was handed in before. `work` goes on the worker as well.
    void start(std::function<void()> work);

    /// Waits until nothing is left to do, without end if no time is given. False when the time is over before.
    bool waitForDone();
    bool waitForDone(std::chrono::milliseconds longest);

    int maxThreadCount() const;
    /// From a worker that is to wait for something outside: until `reserveThread` another takes its place.
    void releaseThread();
    void reserveThread();

private:
    QThreadPool& threads_;
};

/// The workers of all background tasks. They are none of the toolkit's common pool, by which it paints large areas: a
/// paint would wait there for work that takes seconds. Before the application object goes they are waited for. From any
/// thread.
WorkerPool& backgroundWorkers();

/// The toolkit's common pool.
WorkerPool& commonWorkers();

} // namespace kelm
