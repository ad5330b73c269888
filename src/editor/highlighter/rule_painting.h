// Applies highlight rules to a text.
#pragma once

#include "editor/highlighter/highlight_rule.h"
#include "text/storage/color_runs.h"

#include <QRgb>
#include <QStringView>

#include <span>
#include <vector>

namespace kelm {

/// The colours of a text that is all of `textColor` first and then painted by each rule in turn, a later one over an
/// earlier one. The runs cover the whole text. A rule whose pattern does not compile is left out. At most 255 rules.
std::vector<ColorRun> paintRules(QStringView text, QRgb textColor, std::span<const HighlightRule> rules);

} // namespace kelm
