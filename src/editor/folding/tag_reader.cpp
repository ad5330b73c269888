#include "editor/folding/tag_reader.h"

#include <unicode/uchar.h>
#include <unicode/utf16.h>

namespace kelm {
namespace {

bool isTagNameStart(char16_t unit)
{
    return (unit | 0x20) >= u'a' && (unit | 0x20) <= u'z';
}

bool isTagNameUnit(char16_t unit)
{
    return isTagNameStart(unit) || (unit >= u'0' && unit <= u'9');
}

/// Whether a word ends between an ASCII letter or digit and the character at `at`, as the pattern's \b sees it: not
/// before a character of a word and not before one that only modifies its neighbour.
bool isWordEnd(QStringView text, qsizetype at)
{
    const char16_t* units = text.utf16();
    if (units[at] < 0x80) {
        return !isTagNameUnit(units[at]) && units[at] != u'_';
    }
    UChar32 character = 0;
    U16_GET(units, 0, at, text.size(), character);
    constexpr uint32_t word = U_GC_M_MASK | U_GC_ND_MASK | U_GC_PC_MASK;
    return !u_hasBinaryProperty(character, UCHAR_GRAPHEME_EXTEND) && u_charType(character) != U_FORMAT_CHAR &&
           !u_isUAlphabetic(character) && (U_GET_GC_MASK(character) & word) == 0;
}

} // namespace

TagReader::TagReader(QStringView text, bool startsInTag) : text_(text), units_(text.utf16())
{
    if (startsInTag) {
        passOpening(0);
    }
}

bool TagReader::next(Tag& tag)
{
    for (; at_ < text_.size(); ++at_) {
        if (units_[at_] == u'\n') {
            ++line_;
        } else if (units_[at_] == u'<' && (readOpening(tag) || readClosing(tag))) {
            tag.line = line_;
            ++at_;
            return true;
        }
    }
    return false;
}

bool TagReader::readOpening(Tag& tag)
{
    if (at_ < openingFrom_) {
        return false;
    }
    const qsizetype end = nameEnd(at_ + 1);
    if (end == at_ + 1 || end == text_.size() || !isWordEnd(text_, end)) {
        return false;
    }
    passOpening(end);
    tag = {text_.sliced(at_ + 1, end - at_ - 1), 0, true};
    return true;
}

void TagReader::passOpening(qsizetype offset)
{
    const qsizetype close = text_.indexOf(u'>', offset);
    openingFrom_ = close < 0 ? text_.size() + 1 : close + 1;
}

bool TagReader::readClosing(Tag& tag)
{
    if (at_ + 1 >= text_.size() || units_[at_ + 1] != u'/') {
        return false;
    }
    const qsizetype end = nameEnd(at_ + 2);
    if (end == at_ + 2 || end == text_.size() || units_[end] != u'>') {
        return false;
    }
    tag = {text_.sliced(at_ + 2, end - at_ - 2), 0, false};
    return true;
}

/// The end of the tag name at `start`; `start` itself if none is there.
qsizetype TagReader::nameEnd(qsizetype start) const
{
    if (start >= text_.size() || !isTagNameStart(units_[start])) {
        return start;
    }
    qsizetype end = start + 1;
    while (end < text_.size() && isTagNameUnit(units_[end])) {
        ++end;
    }
    return end;
}

} // namespace kelm
