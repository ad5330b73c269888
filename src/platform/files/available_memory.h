// How much memory there is to be had.
#pragma once

#include <QtGlobal>

#include <optional>

namespace kelm {

/// The bytes that can be taken without other programs being put aside, as the system estimates it; absent where it does
/// not tell. From any thread.
std::optional<qint64> availableMemory();

} // namespace kelm
