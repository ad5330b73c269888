// The colours of a terminal's text.
#pragma once

#include "run/attributed_text.h"
#include "text/storage/color_runs.h"

#include <vector>

namespace kelm {

/// The colours of the text's runs in an appearance, side by side from its start to its end, with `ColorRuns::unshown`
/// for what is not drawn.
std::vector<ColorRun> terminalColors(const AttributedText& text, Appearance appearance);

} // namespace kelm
