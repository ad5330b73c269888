#include "search/localized_needle.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace kelm {

namespace {

/// Letters from the most frequent to the rarest in sources and prose; other signs count as rarer than all of them.
constexpr QByteArrayView frequentFirst = " etainosrldcupmhgfbyvwxkjqz";

constexpr char asciiLower(char unit)
{
    return unit >= 'A' && unit <= 'Z' ? static_cast<char>(unit + ('a' - 'A')) : unit;
}

constexpr char asciiUpper(char unit)
{
    return unit >= 'a' && unit <= 'z' ? static_cast<char>(unit - ('a' - 'A')) : unit;
}

bool isAscii(QStringView text)
{
    // Without a branch, so that the compiler can look at several units at once.
    char16_t all = 0;
    for (const QChar character : text) {
        all |= character.unicode();
    }
    return all < 0x80;
}

qsizetype rarestPlace(const QByteArray& text)
{
    const auto rank = [](char unit) {
        const qsizetype place = frequentFirst.indexOf(unit);
        return place < 0 ? frequentFirst.size() : place;
    };
    return std::max_element(text.begin(), text.end(), [&](char a, char b) { return rank(a) < rank(b); }) - text.begin();
}

/// Case folded under canonical equivalence (Unicode, section 3.13, D145).
QString fold(QStringView text)
{
    return text.toString()
        .normalized(QString::NormalizationForm_D)
        .toCaseFolded()
        .normalized(QString::NormalizationForm_D);
}

bool isMark(QChar character)
{
    return character.isMark();
}

bool equalsIgnoringCase(const char* bytes, const QByteArray& lower)
{
    for (qsizetype at = 0; at < lower.size(); ++at) {
        if (asciiLower(bytes[at]) != lower[at]) {
            return false;
        }
    }
    return true;
}

} // namespace

LocalizedNeedle::LocalizedNeedle(const QString& text) : folded_(fold(text))
{
    if (isAscii(text)) {
        ascii_ = text.toLatin1().toLower();
        rarest_ = ascii_.isEmpty() ? 0 : rarestPlace(ascii_);
    }
}

bool LocalizedNeedle::isIn(QStringView text) const
{
    if (folded_.isEmpty()) {
        return false;
    }
    if (isAscii(text)) {
        // A text that is not ASCII may still fold to it, as the Kelvin sign does.
        return isInAscii(text);
    }
    return isInFolded(fold(text));
}

bool LocalizedNeedle::isInAscii(QStringView text) const
{
    return text.contains(folded_, Qt::CaseInsensitive);
}

bool LocalizedNeedle::isInFolded(const QString& folded) const
{
    for (qsizetype at = folded.indexOf(folded_); at >= 0; at = folded.indexOf(folded_, at + 1)) {
        const qsizetype end = at + folded_.size();
        const bool cutsAtEnd = end < folded.size() && isMark(folded[end]);
        const bool cutsAtStart = at > 0 && isMark(folded[at]);
        if (!cutsAtEnd && !cutsAtStart) {
            return true;
        }
    }
    return false;
}

bool LocalizedNeedle::mayBeIn(QByteArrayView bytes) const
{
    if (ascii_.isEmpty()) {
        return true;
    }
    // The two letters beyond ASCII that fold to it: the long s and the Kelvin sign.
    constexpr QByteArrayView longS("\xc5\xbf");
    constexpr QByteArrayView kelvin("\xe2\x84\xaa");
    if ((ascii_.contains('s') && bytes.contains(longS)) || (ascii_.contains('k') && bytes.contains(kelvin))) {
        return true;
    }
    const char* const begin = bytes.data();
    const char* const end = begin + bytes.size();
    const std::array signs{ascii_[rarest_], asciiUpper(ascii_[rarest_])};
    for (const char sign : signs) {
        const char* at = begin + rarest_;
        while (at < end) {
            at = static_cast<const char*>(std::memchr(at, static_cast<unsigned char>(sign), std::size_t(end - at)));
            if (at == nullptr) {
                break;
            }
            const char* const start = at - rarest_;
            if (end - start >= ascii_.size() && equalsIgnoringCase(start, ascii_)) {
                return true;
            }
            ++at;
        }
        if (signs[0] == signs[1]) {
            break;
        }
    }
    return false;
}

} // namespace kelm
