// All pictures small, on one sheet.
#pragma once

#include "screenshots/shots.h"

#include <QDir>

namespace kelm::screenshots {

/// Draws the pictures of `shots` that are in `folder`, each with its name, to "contact_sheet_dark.png" and
/// "contact_sheet_light.png" there. What is not of the light suffix goes to the dark sheet. False when a file could not
/// be written.
bool drawContactSheets(const std::vector<Shot>& shots, const QDir& folder);

} // namespace kelm::screenshots
