// Help texts that are shown as they stand.
#pragma once

#include <QString>

namespace kelm {

/// What to hand to a tool tip so that it shows `text` and nothing else. A tool tip takes what looks like markup for
/// markup, and names of files and branches may look like that. Long lines are wrapped.
QString plainHelp(const QString& text);

} // namespace kelm
