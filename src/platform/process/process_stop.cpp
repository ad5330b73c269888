#include "platform/process/process_stop.h"

#include "platform/events/quiet_thread.h"

#include <cerrno>
#include <csignal>
#include <thread>

namespace kelm {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds lookInterval{10};

bool isGone(pid_t group)
{
    return ::kill(-group, 0) != 0 && errno == ESRCH;
}

/// Waits for the group to go, and ends what does not.
void killAfterGrace(pid_t group, Clock::time_point end)
{
    // A number is not given anew while a group has it.
    while (!isGone(group)) {
        if (Clock::now() >= end) {
            ::kill(-group, SIGKILL);
            return;
        }
        std::this_thread::sleep_for(lookInterval);
    }
}

void endGroup(qint64 number)
{
    const auto group = static_cast<pid_t>(number);
    ::kill(-group, SIGTERM);
    // One that was stopped takes the signal when it goes on.
    ::kill(-group, SIGCONT);
    auto thread = startQuietThread([group, end = Clock::now() + ProcessStop::grace] { killAfterGrace(group, end); });
    if (thread) {
        thread->detach();
    } else {
        ::kill(-group, SIGKILL);
    }
}

} // namespace

void ProcessStop::stop()
{
    const std::lock_guard lock(mutex_);
    if (!isAsked_ && group_ > 0) {
        endGroup(group_);
    }
    isAsked_ = true;
}

bool ProcessStop::isAsked() const
{
    const std::lock_guard lock(mutex_);
    return isAsked_;
}

void ProcessStop::noteStart(qint64 group)
{
    const std::lock_guard lock(mutex_);
    group_ = group;
    // Nought would be this program's own group.
    if (isAsked_ && group_ > 0) {
        endGroup(group_);
    }
}

void ProcessStop::noteEnd()
{
    const std::lock_guard lock(mutex_);
    group_ = 0;
}

} // namespace kelm
