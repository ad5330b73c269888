#include "platform/process/child_groups.h"

#include "platform/process/process_table.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <thread>
#include <unistd.h>

namespace kelm {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds lookInterval{5};
/// How long those that were killed are waited for; one that waits for a dead disk does not go at all.
constexpr std::chrono::milliseconds killTime{200};

struct Groups
{
    std::mutex mutex;
    std::set<qint64> all;
};

/// Never taken down: children may be started and ended while statics go.
Groups& groups()
{
    static auto& known = *std::make_unique<Groups>().release();
    return known;
}

bool isGone(qint64 group)
{
    return ::kill(static_cast<pid_t>(-group), 0) != 0 && errno == ESRCH;
}

/// The processes that this one has started, by all that is known of them.
class Children
{
public:
    Children()
    {
        Groups& known = groups();
        const std::lock_guard lock(known.mutex);
        std::erase_if(known.all, isGone);
        groups_ = known.all;
    }

    /// Looks again. What has lost its parent since the last look is still known.
    void look()
    {
        const ProcessLook processes;
        const auto isSelf = [this](qint64 number) { return number == self_; };
        std::map<qint64, Known> found;
        for (const ProcessEntry& process : processes.all()) {
            const auto before = known_.find(process.id);
            const bool wasKnown = before != known_.end() && before->second.start == process.start;
            if (!process.hasEnded && process.session == session_ && process.id != self_ &&
                (wasKnown || groups_.contains(process.group) || processes.descends(process, isSelf))) {
                // What it does about the signal while it ends is nothing to go by.
                const bool isDetached = wasKnown ? before->second.isDetached : ignoresSignal(process.id, SIGHUP);
                found.emplace(process.id, Known{process.start, isDetached});
            }
        }
        known_ = std::move(found);
    }

    /// Whether all have gone but those that are to go on.
    bool haveGone() const
    {
        return std::all_of(known_.begin(), known_.end(), [](const auto& one) { return one.second.isDetached; });
    }

    void hangUp() const
    {
        signalAll(SIGHUP);
        // One that was stopped takes the signal when it goes on.
        signalAll(SIGCONT);
    }

    void kill() const
    {
        for (const auto& [process, known] : known_) {
            if (!known.isDetached) {
                ::kill(static_cast<pid_t>(process), SIGKILL);
            }
        }
    }

private:
    struct Known
    {
        quint64 start = 0;
        /// Whether it ignored SIGHUP when it was first seen.
        bool isDetached = false;
    };

    void signalAll(int signal) const
    {
        std::set<qint64> told;
        for (const auto& [process, known] : known_) {
            const qint64 group = ::getpgid(static_cast<pid_t>(process));
            if (!groups_.contains(group)) {
                ::kill(static_cast<pid_t>(process), signal);
            } else if (told.insert(group).second) {
                // All at once, so that nobody begins another in between.
                ::kill(static_cast<pid_t>(-group), signal);
            }
        }
    }

    qint64 self_ = ::getpid();
    qint64 session_ = ::getsid(0);
    std::set<qint64> groups_;
    /// By their numbers.
    std::map<qint64, Known> known_;
};

/// False when some are still there at the end of the time.
bool haveGoneWithin(Children& children, std::chrono::milliseconds time, bool kills)
{
    for (const auto end = Clock::now() + time;; std::this_thread::sleep_for(lookInterval)) {
        children.look();
        if (children.haveGone()) {
            return true;
        }
        if (Clock::now() >= end) {
            return false;
        }
        if (kills) {
            children.kill();
        }
    }
}

} // namespace

void noteChildGroup(qint64 group)
{
    Groups& known = groups();
    const std::lock_guard lock(known.mutex);
    // A number is not given anew while a group has it; one whose group has gone could be.
    std::erase_if(known.all, isGone);
    known.all.insert(group);
}

void endChildren(std::chrono::milliseconds grace)
{
    Children children;
    children.look();
    if (children.haveGone()) {
        return;
    }
    children.hangUp();
    if (!haveGoneWithin(children, grace, false)) {
        haveGoneWithin(children, killTime, true);
    }
}

} // namespace kelm
