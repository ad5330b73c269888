// Waiting for children without a dead window.
#pragma once

#include "platform/events/serial_worker.h"
#include "platform/process/process.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace kelm {

/// Runs children for a main thread that has to wait for them. To its caller `run` blocks as ever: nothing of the
/// program goes on before the child has ended. But the child runs on a thread beside, and after a few milliseconds the
/// main thread begins to paint and to answer the window system. What a person does waits in the system's queue, work of
/// the main queue and of the scheduler waits (see `HeldWork`), and no socket or pipe is read.
///
/// After half a second the wait is told of. From then on keys and pointer come through, to be held by whoever tells of
/// it, so that the child can be stopped. When the program is told to end meanwhile, the child is stopped as well.
///
/// On other threads, and inside a wait, `run` blocks with nothing beside it.
class PatientRunner final : public ProcessRunner
{
public:
    /// How long nothing is told.
    static constexpr std::chrono::milliseconds silentTime{500};

    /// What is told of a wait, on the main thread and from inside `run`. Nothing of it may wait itself.
    struct Signs
    {
        /// A wait has lasted for half a second. `stop` ends the child, and is good until `ended`.
        std::function<void(const ProcessCommand& command, std::function<void()> stop)> began;
        /// It has lasted for so long; each second.
        std::function<void(std::chrono::seconds time)> lasted;
        /// It is over, and what was held is about to go on.
        std::function<void()> ended;
    };

    PatientRunner(std::shared_ptr<ProcessRunner> runner, Signs signs);
    ~PatientRunner() override;

    ProcessResult run(const ProcessCommand& command) override;
    ProcessResult runStoppable(const ProcessCommand& command, ProcessStop& stop) override;
    void compute(const std::function<void()>& work) override;

private:
    using Clock = std::chrono::steady_clock;

    class Job;
    struct Child;
    /// Why the event loop has been left.
    enum class Turn { timeHasCome, workIsDone, programEnds };

    /// Has work done on the worker and waits for it; null for work that is no child.
    void wait(const std::function<void()>& work, const Child* child);
    /// Paints until the work is done, but not beyond `time`.
    static Turn turnUntil(Job& job, Clock::time_point time, bool takesInput);
    /// How long the main thread may wait without an event loop now.
    std::chrono::milliseconds plainTimeLeft();
    /// Waits with an event loop until the work is done.
    void waitAndPaint(Job& job, const Child* child);

    const std::shared_ptr<ProcessRunner> runner_;
    const Signs signs_;
    SerialWorker worker_;
    bool isWaiting_ = false;
    /// When the first of the waits in this turn of the main thread's loop began. The loop shares it.
    const std::shared_ptr<std::optional<Clock::time_point>> plainSince_ =
        std::make_shared<std::optional<Clock::time_point>>();
};

} // namespace kelm
