// Reading a number that must be a number from end to end.
#pragma once

#include <QStringView>

#include <optional>

namespace kelm {

/// The value of an optional sign and ASCII digits; absent for anything else, for the empty text and for what does not
/// fit a signed 64-bit word.
std::optional<qint64> decimalInteger(QStringView text);

} // namespace kelm
