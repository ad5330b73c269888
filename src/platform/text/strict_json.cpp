#include "platform/text/strict_json.h"

#include <cstring>
#include <string_view>

namespace kelm {

namespace {

bool isDigit(char byte)
{
    return byte >= '0' && byte <= '9';
}

/// The code unit of the four hexadecimal digits at `at`; -1 when they are not there.
int escapedUnit(std::string_view text, std::size_t at)
{
    if (at + 4 > text.size()) {
        return -1;
    }
    bool isNumber = false;
    const int unit = QByteArray::fromRawData(text.data() + at, 4).toInt(&isNumber, 16);
    return isNumber ? unit : -1;
}

/// Checks the escape whose backslash stands at `at`, and a surrogate pair of two as one. Returns the offset behind it,
/// or `npos` when it is none.
std::size_t skipEscape(std::string_view text, std::size_t at)
{
    if (at + 1 >= text.size() || std::strchr("\"\\/bfnrtu", text[at + 1]) == nullptr || text[at + 1] == '\0') {
        return std::string_view::npos;
    }
    if (text[at + 1] != 'u') {
        return at + 2;
    }
    const int unit = escapedUnit(text, at + 2);
    if (unit < 0xd800 || unit > 0xdfff) {
        return unit < 0 ? std::string_view::npos : at + 6;
    }
    const bool isPair =
        unit < 0xdc00 && text.substr(at + 6, 2) == "\\u" && (escapedUnit(text, at + 8) & ~0x3ff) == 0xdc00;
    return isPair ? at + 12 : std::string_view::npos;
}

/// Whether a decimal point has a digit on both sides.
bool isBetweenDigits(std::string_view text, std::size_t point)
{
    return point > 0 && isDigit(text[point - 1]) && point + 1 < text.size() && isDigit(text[point + 1]);
}

/// Whether the places at which the toolkit's parser is lenient are as the grammar wants them, in a text that this
/// parser takes.
bool isStrict(std::string_view text)
{
    bool inString = false;
    for (std::size_t at = 0; at < text.size();) {
        const char byte = text[at];
        if (byte == '"') {
            inString = !inString;
        } else if (inString && byte == '\\') {
            at = skipEscape(text, at);
            if (at == std::string_view::npos) {
                return false;
            }
            continue;
        }
        const bool isControl = inString && static_cast<unsigned char>(byte) < 0x20;
        if (isControl || (!inString && byte == '.' && !isBetweenDigits(text, at))) {
            return false;
        }
        ++at;
    }
    return true;
}

} // namespace

std::optional<QJsonDocument> parseStrictJson(const QByteArray& text)
{
    QJsonParseError error;
    QJsonDocument document = QJsonDocument::fromJson(text, &error);
    if (error.error != QJsonParseError::NoError || !isStrict({text.constData(), std::size_t(text.size())})) {
        return std::nullopt;
    }
    return document;
}

} // namespace kelm
