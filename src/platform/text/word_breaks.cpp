#include "platform/text/word_breaks.h"

#include "platform/text/break_iterator.h"
#include "platform/text/grapheme_boundaries.h"

#include <unicode/uchar.h>
#include <unicode/uscript.h>
#include <unicode/utf16.h>

#include <algorithm>

namespace kelm {

namespace {

/// Whether the script of the character that begins at a place has no blanks between its words.
bool isUnspaced(QStringView text, qsizetype at)
{
    UChar32 character = 0;
    U16_GET(text.utf16(), 0, at, text.size(), character);
    if (u_getIntPropertyValue(character, UCHAR_LINE_BREAK) == U_LB_COMPLEX_CONTEXT ||
        u_hasBinaryProperty(character, UCHAR_IDEOGRAPHIC) ||
        u_getIntPropertyValue(character, UCHAR_WORD_BREAK) == U_WB_KATAKANA) {
        return true;
    }
    UErrorCode status = U_ZERO_ERROR;
    return uscript_getScript(character, &status) == USCRIPT_HIRAGANA;
}

/// The first of those scripts in the order of Unicode.
constexpr char16_t firstUnspaced = 0x0e00;

} // namespace

std::vector<qsizetype> wordBreaks(QStringView text)
{
    std::vector<qsizetype> breaks;
    if (std::all_of(text.begin(), text.end(), [](QChar unit) { return unit.unicode() < firstUnspaced; })) {
        return breaks;
    }
    const ViewSource source(text);
    BreakIterator finder(BreakIterator::Kind::words);
    finder.setText(source, 0);
    for (qsizetype at = finder.next(); at > 0 && at < text.size(); at = finder.next()) {
        if (isUnspaced(text, at) && graphemeBoundaryAtOrBefore(text, at) == at &&
            isUnspaced(text, previousGraphemeBoundary(text, at))) {
            breaks.push_back(at);
        }
    }
    return breaks;
}

} // namespace kelm
