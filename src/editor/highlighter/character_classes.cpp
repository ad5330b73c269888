#include "editor/highlighter/character_classes.h"

#include <unicode/uchar.h>

namespace kelm {

const CharacterClasses& CharacterClasses::ofUnicode()
{
    static const CharacterClasses classes;
    return classes;
}

CharacterClasses::CharacterClasses()
{
    for (std::size_t unit = 0; unit < units_.size(); ++unit) {
        units_[unit] = ofCodePoint(static_cast<char32_t>(unit));
    }
}

quint8 CharacterClasses::ofCodePoint(char32_t codePoint)
{
    const auto c = static_cast<UChar32>(codePoint);
    const int8_t type = u_charType(c);
    const uint32_t mask = U_MASK(type);
    quint8 classes = 0;
    // ICU's set for \w is [\p{Alphabetic}\p{M}\p{Nd}\p{Pc}\u200c\u200d].
    if (u_isUAlphabetic(c) || (mask & (U_GC_M_MASK | U_GC_ND_MASK | U_GC_PC_MASK)) || c == 0x200c || c == 0x200d) {
        classes |= word;
    }
    if (type == U_DECIMAL_DIGIT_NUMBER) {
        classes |= digit;
    }
    if (u_isUWhiteSpace(c)) {
        classes |= space;
    }
    if (type == U_FORMAT_CHAR || u_hasBinaryProperty(c, UCHAR_GRAPHEME_EXTEND)) {
        classes |= transparent;
    }
    return classes;
}

} // namespace kelm
