// Whether the application looks light or dark.
#pragma once

#include <functional>

namespace kelm {

enum class Appearance { light, dark };

/// Sets the appearance of the whole application through what `installAppearance` was given; does nothing before that.
/// Main thread only.
void setApplicationAppearance(Appearance appearance);

/// Says how the application's appearance is set: the widgets' palette is not known here.
void installAppearance(std::function<void(Appearance)> set);

} // namespace kelm
