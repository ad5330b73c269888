#include "platform/events/background_task.h"

#include "platform/events/main_queue.h"
#include "platform/events/worker_pool.h"

#include <utility>

namespace kelm {

/// What the two threads share.
struct BackgroundTask::InHand
{
    StopFlag stop = false;
    Work work;
    Delivery delivery;
};

void BackgroundTask::start(Work work)
{
    stop();
    inHand_ = std::make_shared<InHand>();
    inHand_->work = std::move(work);
    backgroundWorkers().start([this, inHand = inHand_] {
        if (inHand->stop) {
            return;
        }
        inHand->delivery = inHand->work(inHand->stop);
        // The flag is set on the main thread alone: while it is not, the task is there.
        onMainQueue([this, inHand] {
            if (!inHand->stop) {
                inHand_.reset();
                inHand->delivery();
            }
        });
    });
}

void BackgroundTask::stop()
{
    if (const auto inHand = std::exchange(inHand_, nullptr)) {
        inHand->stop = true;
    }
}

} // namespace kelm
