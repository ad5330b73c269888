// Menus, dialogs, notices and the sizes of the window among the pictures.
#pragma once

#include "screenshots/shots.h"

namespace kelm::screenshots {

std::vector<Shot> deskShots();

} // namespace kelm::screenshots
