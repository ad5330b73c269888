// What ends a line.
#pragma once

#include <QStringView>

namespace kelm {

/// The length of the line terminator at `offset`, 0 where none begins: 2 for the pair of carriage return and line feed,
/// 1 for each of the two alone, U+0085, U+2028 and U+2029.
qsizetype lineTerminatorLength(QStringView text, qsizetype offset);

} // namespace kelm
