// Reads a hexadecimal number from the start of a text.
#pragma once

#include <QStringView>

#include <optional>

namespace kelm {

/// The number that `text` begins with: leading white space and newlines are skipped, then one "0x" or "0X" if it is
/// there; ASCII hexadecimal digits are taken up to the first other character. A number beyond 64 bits gives the
/// greatest one. Absent when there is no digit.
std::optional<quint64> scanHexadecimal(QStringView text);

} // namespace kelm
