#include "editor/transforms/json_scanner.h"

namespace kelm {

namespace {

bool isDigit(char16_t unit)
{
    return unit >= u'0' && unit <= u'9';
}

/// The value of a hexadecimal digit, or -1.
int hexValue(char16_t unit)
{
    if (isDigit(unit)) {
        return unit - u'0';
    }
    const char16_t lower = unit | 0x20;
    return lower >= u'a' && lower <= u'f' ? lower - u'a' + 10 : -1;
}

char16_t peek(QStringView text, qsizetype at)
{
    return at < text.size() ? text.utf16()[at] : u'\0';
}

bool take(QStringView text, qsizetype& at, char16_t unit)
{
    if (at < text.size() && text.utf16()[at] == unit) {
        ++at;
        return true;
    }
    return false;
}

bool readDigits(QStringView text, qsizetype& at)
{
    const qsizetype start = at;
    while (at < text.size() && isDigit(text.utf16()[at])) {
        ++at;
    }
    return at > start;
}

bool readHex(QStringView text, qsizetype& at, char16_t& unit)
{
    for (int i = 0; i < 4; ++i, ++at) {
        const int value = hexValue(peek(text, at));
        if (value < 0) {
            return false;
        }
        unit = char16_t(unit << 4 | value);
    }
    return true;
}

/// Reads what follows a backslash. An escaped surrogate is half of an escaped pair.
bool readEscape(QStringView text, qsizetype& at)
{
    if (at == text.size()) {
        return false;
    }
    const char16_t letter = text.utf16()[at++];
    if (letter != u'u') {
        return QStringView(u"\"\\/bfnrt").contains(QChar(letter));
    }
    char16_t unit = 0;
    if (!readHex(text, at, unit)) {
        return false;
    }
    if (!QChar::isSurrogate(unit)) {
        return true;
    }
    char16_t low = 0;
    return QChar::isHighSurrogate(unit) && take(text, at, u'\\') && take(text, at, u'u') && readHex(text, at, low) &&
           QChar::isLowSurrogate(low);
}

} // namespace

bool readJsonString(QStringView text, qsizetype& at)
{
    if (!take(text, at, u'"')) {
        return false;
    }
    while (at < text.size()) {
        const char16_t unit = text.utf16()[at++];
        if (unit == u'"') {
            return true;
        }
        if (unit < u' ') {
            return false;
        }
        if (unit == u'\\') {
            if (!readEscape(text, at)) {
                return false;
            }
        } else if (QChar::isSurrogate(unit)) {
            if (!QChar::isHighSurrogate(unit) || !QChar::isLowSurrogate(peek(text, at))) {
                return false;
            }
            ++at;
        }
    }
    return false;
}

bool readJsonNumber(QStringView text, qsizetype& at)
{
    take(text, at, u'-');
    if (!take(text, at, u'0') && !readDigits(text, at)) {
        return false;
    }
    if (take(text, at, u'.') && !readDigits(text, at)) {
        return false;
    }
    if (take(text, at, u'e') || take(text, at, u'E')) {
        if (!take(text, at, u'+')) {
            take(text, at, u'-');
        }
        return readDigits(text, at);
    }
    return true;
}

bool readJsonWord(QStringView text, qsizetype& at, QStringView word)
{
    if (!text.sliced(at).startsWith(word)) {
        return false;
    }
    at += word.size();
    return true;
}

qsizetype skipJsonBlanks(QStringView text, qsizetype at)
{
    const char16_t* units = text.utf16();
    while (at < text.size() && (units[at] == u' ' || units[at] == u'\n' || units[at] == u'\r' || units[at] == u'\t')) {
        ++at;
    }
    return at;
}

qsizetype endOfJsonString(QStringView text, qsizetype at)
{
    const char16_t* units = text.utf16();
    for (++at; units[at] != u'"'; ++at) {
        if (units[at] == u'\\') {
            ++at;
        }
    }
    return at + 1;
}

char16_t decodeJsonEscape(QStringView text, qsizetype& at)
{
    const char16_t letter = text.utf16()[at + 1];
    at += 2;
    switch (letter) {
    case u'b':
        return u'\b';
    case u'f':
        return u'\f';
    case u'n':
        return u'\n';
    case u'r':
        return u'\r';
    case u't':
        return u'\t';
    case u'u': {
        char16_t unit = 0;
        for (int i = 0; i < 4; ++i) {
            unit = char16_t(unit << 4 | hexValue(text.utf16()[at++]));
        }
        return unit;
    }
    default:
        return letter;
    }
}

} // namespace kelm
