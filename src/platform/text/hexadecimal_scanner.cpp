#include "platform/text/hexadecimal_scanner.h"

#include "platform/text/character_sets.h"

#include <limits>

namespace kelm {

namespace {

int digitValue(char16_t unit)
{
    if (unit >= u'0' && unit <= u'9') {
        return unit - u'0';
    }
    if (unit >= u'a' && unit <= u'f') {
        return unit - u'a' + 10;
    }
    if (unit >= u'A' && unit <= u'F') {
        return unit - u'A' + 10;
    }
    return -1;
}

} // namespace

std::optional<quint64> scanHexadecimal(QStringView text)
{
    while (!text.isEmpty() && isWhitespaceOrNewline(text.front().unicode())) {
        text = text.sliced(1);
    }
    // The "0" of a prefix without a digit behind it is the number.
    if (text.size() > 2 && text[0] == u'0' && (text[1] == u'x' || text[1] == u'X') &&
        digitValue(text[2].unicode()) >= 0) {
        text = text.sliced(2);
    }
    if (text.isEmpty() || digitValue(text.front().unicode()) < 0) {
        return std::nullopt;
    }
    constexpr quint64 greatest = std::numeric_limits<quint64>::max();
    quint64 value = 0;
    for (const QChar unit : text) {
        const int digit = digitValue(unit.unicode());
        if (digit < 0) {
            break;
        }
        if (value > greatest >> 4) {
            return greatest;
        }
        value = value << 4 | quint64(digit);
    }
    return value;
}

} // namespace kelm
