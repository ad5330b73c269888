#include "platform/text/decimal_integer.h"

#include <limits>

namespace kelm {

std::optional<qint64> decimalInteger(QStringView text)
{
    const bool negative = text.startsWith(u'-');
    if (negative || text.startsWith(u'+')) {
        text = text.sliced(1);
    }
    if (text.isEmpty()) {
        return std::nullopt;
    }
    // The negative side reaches one further, so the value is built there.
    constexpr qint64 lowest = std::numeric_limits<qint64>::min();
    qint64 value = 0;
    for (const QChar unit : text) {
        if (unit < u'0' || unit > u'9') {
            return std::nullopt;
        }
        const qint64 digit = unit.unicode() - u'0';
        if (value < (lowest + digit) / 10) {
            return std::nullopt;
        }
        value = value * 10 - digit;
    }
    if (!negative && value == lowest) {
        return std::nullopt;
    }
    return negative ? value : -value;
}

} // namespace kelm
