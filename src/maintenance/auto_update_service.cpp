#include "maintenance/auto_update_service.h"

#include "platform/events/main_queue.h"

namespace kelm {

AutoUpdateService::AutoUpdateService(std::unique_ptr<UpdaterController> updaterController)
    : updaterController_(std::move(updaterController))
{
    // An updater may tell of a change from a thread of its own.
    connect(updaterController_.get(), &UpdaterController::canCheckForUpdatesChanged, this, &AutoUpdateService::observe,
            Qt::DirectConnection);
    observe();
}

void AutoUpdateService::observe()
{
    const bool canCheck = updaterController_->canCheckForUpdates();
    onMainQueue(this, [this, canCheck] {
        if (canCheck != canCheckForUpdates_) {
            canCheckForUpdates_ = canCheck;
            Q_EMIT canCheckForUpdatesChanged();
        }
    });
}

AutoUpdateService& AutoUpdateService::shared()
{
    static AutoUpdateService service(UpdaterController::makeForPlatform());
    return service;
}

} // namespace kelm
