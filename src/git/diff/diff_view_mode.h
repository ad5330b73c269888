// The two forms in which a diff is shown.
#pragma once

#include <QString>

#include <array>

namespace kelm {

enum class DiffViewMode { unified, sideBySide };

/// In the order of the picker.
inline constexpr std::array allDiffViewModes{DiffViewMode::unified, DiffViewMode::sideBySide};

inline QString rawValue(DiffViewMode mode)
{
    return mode == DiffViewMode::unified ? QStringLiteral("unified") : QStringLiteral("sideBySide");
}

/// The picker's words.
inline QString label(DiffViewMode mode)
{
    return mode == DiffViewMode::unified ? QStringLiteral("Unified") : QStringLiteral("Side-by-side");
}

} // namespace kelm
