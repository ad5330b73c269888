// What regular expressions know of a character.
#pragma once

#include <QtGlobal>

#include <array>

namespace kelm {

/// The character classes of ICU's regular expressions, read from ICU once and kept as one byte a character of the basic
/// plane.
class CharacterClasses
{
public:
    enum Class : quint8 {
        /// `\w`.
        word = 1,
        /// `\d`: a decimal digit of any script.
        digit = 2,
        /// `\s`.
        space = 4,
        /// A combining mark or a format character: `\b` looks through it.
        transparent = 8,
    };

    /// The table, made at the first call. Any thread.
    static const CharacterClasses& ofUnicode();

    /// The classes of a UTF-16 unit that stands for itself; a surrogate has none.
    quint8 ofUnit(char16_t unit) const { return units_[unit]; }
    /// The classes of any code point.
    static quint8 ofCodePoint(char32_t codePoint);

private:
    CharacterClasses();

    std::array<quint8, 0x10000> units_{};
};

/// The units at which a line ends, in the sense of ".", "^" and "$".
constexpr bool isLineEnd(char16_t unit)
{
    return (char16_t(unit - 0x0a) < 4) | (unit == 0x85) | (char16_t(unit - 0x2028) < 2);
}

constexpr bool isAsciiDigit(char16_t unit)
{
    return char16_t(unit - u'0') < 10;
}

constexpr bool isAsciiLetter(char16_t unit)
{
    return char16_t((unit | 0x20) - u'a') < 26;
}

/// `[a-zA-Z_]`.
constexpr bool isNameStart(char16_t unit)
{
    return isAsciiLetter(unit) || (unit == u'_');
}

/// `[a-zA-Z0-9_]`.
constexpr bool isNamePart(char16_t unit)
{
    return isNameStart(unit) || isAsciiDigit(unit);
}

} // namespace kelm
