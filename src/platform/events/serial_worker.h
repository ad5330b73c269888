// A thread that does one piece of work after the other.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace kelm {

/// Does pieces of work one at a time and in their order, on a thread of its own: no long work of others makes them
/// wait. The thread begins with the first of them. Main thread only, but for the work itself, which must hold all that
/// it looks at.
class SerialWorker
{
public:
    using Work = std::function<void()>;

    SerialWorker();
    /// Leaves what has not begun, and waits for nothing: work that hangs on a disk may go on beyond the worker's life.
    ~SerialWorker();
    SerialWorker(const SerialWorker&) = delete;
    SerialWorker& operator=(const SerialWorker&) = delete;

    void add(Work work);

    /// Waits until all that was added is done, but not longer than `longest`. False when something is left.
    bool waitUntilIdle(std::chrono::milliseconds longest) const;

private:
    struct Queue;

    /// The thread shares it, and the last of the two ends it.
    std::shared_ptr<Queue> queue_;
    bool hasBegun_ = false;
};

} // namespace kelm
