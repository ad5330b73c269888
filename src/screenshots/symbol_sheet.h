// All symbols on one sheet.
#pragma once

#include <QDir>

namespace kelm::screenshots {

/// Draws every symbol at the sizes in use and at twice as many pixels, on a dark and on a light ground, to
/// "icons-dark.png" and "icons-light.png". False when a file could not be written.
bool drawSymbolSheets(const QDir& folder);

} // namespace kelm::screenshots
