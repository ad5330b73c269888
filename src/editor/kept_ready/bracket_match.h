// The partner of a bracket.
#pragma once

#include <QStringView>

#include <optional>

namespace kelm {

/// Where the partner of the bracket before the caret at `location` stands; absent where there is no bracket or no
/// partner. Brackets of the same kind are counted; strings and comments are not known. UTF-16 units.
std::optional<qsizetype> partnerOfBracketBefore(QStringView text, qsizetype location);

} // namespace kelm
