#include "text/boundaries/word_boundary.h"

#include <unicode/uchar.h>
#include <unicode/utf16.h>

namespace kelm {
namespace {

bool isOfWord(UChar32 character)
{
    if (character < 0x80) {
        return (character >= '0' && character <= '9') || ((character | 0x20) >= 'a' && (character | 0x20) <= 'z') ||
               character == '_';
    }
    constexpr UChar32 nonJoiner = 0x200c;
    constexpr UChar32 joiner = 0x200d;
    constexpr uint32_t categories = U_GC_M_MASK | U_GC_ND_MASK | U_GC_PC_MASK;
    return u_isUAlphabetic(character) || (U_GET_GC_MASK(character) & categories) != 0 || character == nonJoiner ||
           character == joiner;
}

} // namespace

bool isInsideWord(QStringView text, qsizetype offset)
{
    if (offset <= 0 || offset >= text.size()) {
        return false;
    }
    const char16_t* units = text.utf16();
    UChar32 behind = 0;
    UChar32 before = 0;
    qsizetype at = offset;
    U16_PREV(units, 0, at, before);
    U16_GET(units, 0, offset, text.size(), behind);
    return isOfWord(before) && isOfWord(behind);
}

} // namespace kelm
