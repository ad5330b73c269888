// Colours that letters are read in.
#pragma once

#include "platform/style/view/tint.h"

namespace kelm::style {

/// What stands behind white letters where it is blue: the accent colour itself is too pale for them.
inline constexpr QColor accentGround(0, 108, 232);

/// The colour of letters and symbols in a tint. The named hues are made for areas, and as strokes they are too pale on
/// light grounds and some too dark on dark ones: each has a shade for strokes, at the opacity of the tint. Other
/// colours are their own.
QColor ink(const Tint& tint, Appearance appearance);

/// The same in the appearance that a widget's palette shows.
QColor ink(const Tint& tint, const QWidget& widget);

} // namespace kelm::style
