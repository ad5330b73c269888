#include "platform/events/quiet_thread.h"

#include <csignal>
#include <system_error>
#include <utility>

namespace kelm {

std::optional<std::thread> startQuietThread(std::function<void()> work)
{
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    // A thread begins with what is blocked where it is started.
    ::pthread_sigmask(SIG_SETMASK, &all, &before);
    std::optional<std::thread> thread;
    try {
        thread.emplace(std::move(work));
    } catch (const std::system_error&) {
        thread.reset();
    }
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return thread;
}

} // namespace kelm
