// The fixed values of the colours that views ask for by name.
#pragma once

#include "platform/desktop/appearance.h"

#include <QColor>

namespace kelm {

/// Colours that differ between a dark and a light appearance.
enum class SystemColor {
    red,
    orange,
    yellow,
    green,
    cyan,
    blue,
    purple,
    gray,
    /// For text, in the order of its importance.
    primaryLabel,
    secondaryLabel,
    windowBackground,
    controlBackground,
    /// What marks a selection; blue.
    accent,
};

QColor systemColor(SystemColor color, Appearance appearance);

/// Colours that are the same in every appearance: the pure ones.
namespace plainColors {

inline constexpr QColor black(0, 0, 0);
inline constexpr QColor white(255, 255, 255);
inline constexpr QColor green(0, 255, 0);
inline constexpr QColor cyan(0, 255, 255);
inline constexpr QColor red(255, 0, 0);
inline constexpr QColor yellow(255, 255, 0);
inline constexpr QColor gray(128, 128, 128);

} // namespace plainColors

} // namespace kelm
