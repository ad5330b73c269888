#include "platform/events/scheduler.h"

#include "platform/events/held_work.h"

#include <QTimer>

#include <algorithm>
#include <utility>

namespace kelm {

namespace {

class SystemScheduler final : public Scheduler
{
public:
    void after(std::chrono::milliseconds delay, QObject* context, std::function<void()> work) override
    {
        auto run = [context, work = std::move(work)]() mutable { HeldWork::runOrKeep(context, std::move(work)); };
        QTimer::singleShot(delay, Qt::PreciseTimer, context, std::move(run));
    }
};

} // namespace

Scheduler& Scheduler::system()
{
    static SystemScheduler scheduler;
    return scheduler;
}

void ManualScheduler::after(std::chrono::milliseconds delay, QObject* context, std::function<void()> work)
{
    entries_.push_back({now_ + delay, context, std::move(work)});
}

void ManualScheduler::advance(std::chrono::milliseconds by)
{
    const auto until = now_ + by;
    for (;;) {
        const auto next = std::min_element(entries_.begin(), entries_.end(),
                                           [](const Entry& a, const Entry& b) { return a.due < b.due; });
        if (next == entries_.end() || next->due > until) {
            break;
        }
        Entry entry = std::move(*next);
        entries_.erase(next);
        now_ = std::max(now_, entry.due);
        if (entry.context) {
            entry.work();
        }
    }
    now_ = until;
}

Debounce::Debounce(Scheduler& scheduler, std::chrono::milliseconds delay, std::function<void()> work)
    : scheduler_(scheduler), delay_(delay), work_(std::move(work))
{}

void Debounce::restart()
{
    pending_ = std::make_unique<QObject>();
    scheduler_.after(delay_, pending_.get(), [this] {
        // The context is let go only after this call: the timer that made it may still look at it.
        const std::unique_ptr<QObject> done = std::move(pending_);
        work_();
    });
}

void Debounce::cancel()
{
    pending_.reset();
}

} // namespace kelm
