#include "platform/process/application_exit.h"

#include "platform/events/worker_pool.h"
#include "platform/files/user_defaults.h"
#include "platform/process/log.h"
#include "platform/process/ways_to_end.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace kelm {

void outliveReaders()
{
    std::signal(SIGPIPE, SIG_IGN);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // The lowest number that is free is the one that is given.
        if (::fcntl(stream, F_GETFD) < 0 && ::open("/dev/null", stream == STDIN_FILENO ? O_RDONLY : O_WRONLY) < 0) {
            return;
        }
    }
}

int leaveWithoutWaiting(int status, UserDefaults& preferences)
{
    preferences.synchronize();
    endBySignal();
    // A pool's number of active threads leaves out those that only wait for a child.
    if (commonWorkers().waitForDone(std::chrono::milliseconds(0)) &&
        backgroundWorkers().waitForDone(std::chrono::milliseconds(0))) {
        return status;
    }
    Log::finishSystem();
    std::fflush(nullptr);
    std::_Exit(status);
}

} // namespace kelm
