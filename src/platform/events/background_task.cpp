#include "platform/events/background_task.h"

#include "platform/events/main_queue.h"

#include <QCoreApplication>
#include <QThread>
#include <QThreadPool>

#include <algorithm>
#include <utility>

namespace kelm {

QThreadPool& backgroundWorkers()
{
    static QThreadPool workers;
    static const bool isSetUp = [] {
        // One that takes long leaves another for the others.
        workers.setMaxThreadCount(std::max(QThread::idealThreadCount(), 2));
        qAddPostRoutine([] { workers.waitForDone(); });
        return true;
    }();
    Q_UNUSED(isSetUp)
    return workers;
}

void BackgroundTask::start(Work work)
{
    stop();
    stop_ = std::make_shared<StopFlag>(false);
    backgroundWorkers().start([this, work = std::move(work), flag = stop_] {
        if (*flag) {
            return;
        }
        Delivery delivery = work(*flag);
        // The flag is set on the main thread alone: while it is not, the task is there.
        onMainQueue([this, delivery = std::move(delivery), flag] {
            if (!*flag) {
                stop_.reset();
                delivery();
            }
        });
    });
}

void BackgroundTask::stop()
{
    if (const auto flag = std::exchange(stop_, nullptr)) {
        *flag = true;
    }
}

} // namespace kelm
