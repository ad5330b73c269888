#include "platform/process/application_exit.h"

#include "platform/events/background_task.h"
#include "platform/files/user_defaults.h"

#include <QThreadPool>

#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace kelm {

void outliveReaders()
{
    std::signal(SIGPIPE, SIG_IGN);
}

int leaveWithoutWaiting(int status, UserDefaults& preferences)
{
    // A pool's number of active threads leaves out those that only wait for a child.
    if (QThreadPool::globalInstance()->waitForDone(0) && backgroundWorkers().waitForDone(0)) {
        return status;
    }
    preferences.synchronize();
    std::fflush(nullptr);
    std::_Exit(status);
}

} // namespace kelm
