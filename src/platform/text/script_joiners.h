// Characters without a look of their own that shape those beside them.
#pragma once

#include <QStringView>

namespace kelm {

/// Whether the UTF-16 unit at a place is a joiner, a non-joiner or the sign of a coloured pictograph that stands where
/// writing uses it: between letters that join, behind the sign that leaves out a vowel, between or behind pictographs.
/// Anywhere else such a character changes nothing that is seen.
bool isScriptJoiner(QStringView text, qsizetype at);

} // namespace kelm
