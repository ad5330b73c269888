// Work on another thread whose result comes back to the main thread.
#pragma once

#include <atomic>
#include <functional>
#include <memory>

namespace kelm {

/// One piece of work at a time, done by a worker for an owner on the main thread. What is begun is never waited for:
/// when the task is stopped, begun anew or gone, the work is asked to end and what it found is dropped.
///
/// Main thread only, but for the work itself, which must hold all that it looks at.
class BackgroundTask
{
public:
    using StopFlag = std::atomic<bool>;
    /// What the main thread does with a result.
    using Delivery = std::function<void()>;
    /// Runs on the worker and gives what is to be done with what it found. It looks at the flag now and then, and ends
    /// early once it is set; what it gives then is dropped.
    using Work = std::function<Delivery(const StopFlag& stop)>;

    BackgroundTask() = default;
    ~BackgroundTask() { stop(); }
    BackgroundTask(const BackgroundTask&) = delete;
    BackgroundTask& operator=(const BackgroundTask&) = delete;

    /// Begins a piece of work in the place of one that is still being done.
    void start(Work work);
    void stop();
    /// Whether work has begun that has neither been delivered nor stopped. Not so any more while it is delivered.
    bool isRunning() const { return inHand_ != nullptr; }

private:
    struct InHand;

    std::shared_ptr<InHand> inHand_;
};

} // namespace kelm
