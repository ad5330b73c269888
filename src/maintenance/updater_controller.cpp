#include "maintenance/updater_controller.h"

#include "maintenance/application_image.h"
#include "maintenance/image_updater_controller.h"

namespace kelm {

#ifdef KELM_HAS_UPDATE_FRAMEWORK
/// In framework_updater_controller.mm, which is built where the framework was found.
std::unique_ptr<UpdaterController> makeFrameworkUpdaterController();
#endif

std::unique_ptr<UpdaterController> UpdaterController::makeForPlatform()
{
#ifdef KELM_HAS_UPDATE_FRAMEWORK
    return makeFrameworkUpdaterController();
#else
    return std::make_unique<ImageUpdaterController>(ImageUpdaterController::findUpdater(), applicationImage());
#endif
}

} // namespace kelm
