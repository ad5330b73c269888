#include "git/service/ahead_behind_parser.h"

#include "platform/text/decimal_integer.h"

#include <QList>

namespace kelm {

std::optional<AheadBehind> parseAheadBehind(QStringView output)
{
    const QStringView trimmed = output.trimmed();
    if (trimmed.isEmpty()) {
        return AheadBehind{};
    }
    const QList<QStringView> pieces = trimmed.split(u'\t', Qt::SkipEmptyParts);
    if (pieces.size() != 2) {
        return std::nullopt;
    }
    return AheadBehind{decimalInteger(pieces[0]).value_or(0), decimalInteger(pieces[1]).value_or(0)};
}

} // namespace kelm
