#include "platform/process/process_tree.h"

#include "platform/events/quiet_thread.h"
#include "platform/process/process_table.h"

#include <algorithm>
#include <csignal>
#include <thread>
#include <unistd.h>
#include <utility>

namespace kelm {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds treeLookInterval{10};
/// How long those that were killed are waited for; one that waits for a dead disk does not go at all.
constexpr std::chrono::milliseconds killTime{200};

/// False when some are still there at the end of the time.
bool isGoneWithin(ProcessTree& tree, std::chrono::milliseconds time, bool kills)
{
    for (const auto end = Clock::now() + time; Clock::now() < end; std::this_thread::sleep_for(treeLookInterval)) {
        tree.look();
        if (tree.isGone()) {
            return true;
        }
        if (kills) {
            tree.signal(SIGKILL);
        }
    }
    return false;
}

/// Ends a child where nothing can be read of processes, with the group that it leads or alone.
void endUnseen(qint64 root, std::chrono::milliseconds grace)
{
    const auto process = static_cast<pid_t>(root);
    const pid_t group = ::getpgid(process);
    if (root <= 1 || group < 0) {
        return;
    }
    const pid_t target = group == process ? -process : process;
    ::kill(target, SIGTERM);
    ::kill(target, SIGCONT);
    for (const auto end = Clock::now() + grace; Clock::now() < end; std::this_thread::sleep_for(treeLookInterval)) {
        if (::kill(target, 0) != 0) {
            return;
        }
    }
    ::kill(target, SIGKILL);
}

} // namespace

ProcessTree::ProcessTree(qint64 root) : root_(root), hasGroup_(::getpgid(static_cast<pid_t>(root)) == root)
{
    look();
}

void ProcessTree::look()
{
    const ProcessLook processes;
    if (!session_) {
        const ProcessEntry* const root = processes.find(root_);
        if (root == nullptr || root->parent != ::getpid()) {
            return;
        }
        session_ = root->session;
        known_.emplace(root_, root->start);
    }
    const auto isKnown = [&](qint64 number) {
        const auto known = known_.find(number);
        const ProcessEntry* const process = processes.find(number);
        return known != known_.end() && process != nullptr && known->second == process->start;
    };
    // The number of a group is not given anew while one of those is there that were known in it.
    const bool isGroupThere = hasGroup_ && std::any_of(known_.begin(), known_.end(), [&](const auto& one) {
                                  return isKnown(one.first) && processes.find(one.first)->group == root_;
                              });
    std::map<qint64, quint64> found;
    for (const ProcessEntry& process : processes.all()) {
        const bool isOfGroup = isGroupThere && process.group == root_;
        if (!process.hasEnded && process.session == session_ && (isOfGroup || processes.descends(process, isKnown))) {
            found.emplace(process.id, process.start);
        }
    }
    known_ = std::move(found);
}

void ProcessTree::signal(int number) const
{
    bool wasGroupTold = false;
    for (const auto& [process, start] : known_) {
        if (!hasGroup_ || ::getpgid(static_cast<pid_t>(process)) != root_) {
            ::kill(static_cast<pid_t>(process), number);
        } else if (!std::exchange(wasGroupTold, true)) {
            // All at once, so that nobody begins another in between.
            ::kill(static_cast<pid_t>(-root_), number);
        }
    }
}

void endTree(qint64 root, std::chrono::milliseconds grace)
{
    auto thread = startQuietThread([root, grace] {
        ProcessTree tree(root);
        if (tree.isGone() && processTable().empty()) {
            endUnseen(root, grace);
            return;
        }
        tree.signal(SIGTERM);
        // One that was stopped takes the signal when it goes on.
        tree.signal(SIGCONT);
        if (!isGoneWithin(tree, grace, false)) {
            isGoneWithin(tree, killTime, true);
        }
    });
    if (thread) {
        thread->detach();
    } else if (root > 0) {
        ::kill(static_cast<pid_t>(root), SIGTERM);
    }
}

} // namespace kelm
