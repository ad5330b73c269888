// The panels, overlays, sheets and windows among the pictures.
#pragma once

#include "screenshots/shots.h"

namespace kelm::screenshots {

std::vector<Shot> panelShots();

} // namespace kelm::screenshots
