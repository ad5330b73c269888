// Delayed work on the main thread, behind an interface so that tests can move time by hand.
#pragma once

#include <QObject>
#include <QPointer>

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

namespace kelm {

/// Runs work on the main thread after a delay. Main thread only.
class Scheduler
{
public:
    virtual ~Scheduler() = default;

    /// Runs `work` once, `delay` from now, unless `context` is gone by then.
    virtual void after(std::chrono::milliseconds delay, QObject* context, std::function<void()> work) = 0;

    /// The scheduler on the event loop's own timers. What falls due while the main thread waits for a child runs after
    /// that (see `HeldWork`).
    static Scheduler& system();
};

/// A scheduler whose time stands still until `advance` moves it; for tests.
class ManualScheduler final : public Scheduler
{
public:
    void after(std::chrono::milliseconds delay, QObject* context, std::function<void()> work) override;

    /// Moves time on and runs what falls due, in the order of the due times; work that is scheduled meanwhile counts.
    void advance(std::chrono::milliseconds by);

    /// How many pieces of work wait.
    std::size_t pending() const { return entries_.size(); }

private:
    struct Entry
    {
        std::chrono::milliseconds due;
        QPointer<QObject> context;
        std::function<void()> work;
    };

    std::chrono::milliseconds now_{0};
    std::vector<Entry> entries_;
};

/// One piece of delayed work that each call puts off again: a run of calls ends in one run of the work, `delay` after
/// the last of them.
class Debounce
{
public:
    Debounce(Scheduler& scheduler, std::chrono::milliseconds delay, std::function<void()> work);

    /// Cancels what is pending and schedules the work anew.
    void restart();
    void cancel();
    bool isPending() const { return pending_ != nullptr; }

private:
    Scheduler& scheduler_;
    std::chrono::milliseconds delay_;
    std::function<void()> work_;
    /// The context of the pending run: dropping it cancels the run.
    std::unique_ptr<QObject> pending_;
};

} // namespace kelm
