#include "search/localized_needle.h"

#include "platform/text/canonical_text.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace kelm {

namespace {

/// A longer text is looked for unit by unit, linear whatever the two hold: a search that begins anew at each place is
/// quicker only where it ends soon.
constexpr qsizetype longestSimple = 32;

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

bool isAscii(QByteArrayView bytes)
{
    signed char all = 0;
    for (const char byte : bytes) {
        all = static_cast<signed char>(all | static_cast<signed char>(byte));
    }
    return all >= 0;
}

/// Whether UTF-8 bytes hold one of the few characters beyond ASCII that fold to ASCII: the long s, "ŉ", the Kelvin
/// sign, "ß", a few letters with marks from U+1E80 on, among them the capital sharp s, the Latin ligatures, and two
/// signs of Greek, the question mark and the grave accent.
bool holdsWhatFoldsToAscii(QByteArrayView bytes)
{
    constexpr std::array<QByteArrayView, 8> forms{"\xc5\xbf", "\xc5\x89", "\xe2\x84\xaa", "\xc3\x9f",
                                                  "\xe1\xba", "\xef\xac", "\xcd\xbe",     "\xe1\xbf\xaf"};
    return std::any_of(forms.begin(), forms.end(), [bytes](QByteArrayView form) { return bytes.contains(form); });
}

bool isMark(QChar character)
{
    return character.isMark();
}

/// Whether a text may be cut before a place and each part folded by itself: no mark stands there, which is ordered
/// among its neighbours, nor the second half of a pair.
bool mayBeCutAt(QStringView text, qsizetype at)
{
    const QChar next = text[at];
    if (!next.isSurrogate()) {
        return !next.isMark();
    }
    const bool isPair = next.isHighSurrogate() && at + 1 < text.size() && text[at + 1].isLowSurrogate();
    return isPair && !QChar::isMark(QChar::surrogateToUcs4(next, text[at + 1]));
}

/// The next place from `at` on before which the text may be cut; its end where there is none.
qsizetype cutFrom(QStringView text, qsizetype at)
{
    while (at < text.size() && !mayBeCutAt(text, at)) {
        ++at;
    }
    return at;
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

LocalizedNeedle::LocalizedNeedle(const QString& text) : folded_(decomposedWithoutCase(text))
{
    fallbacks_.resize(std::size_t(folded_.size()));
    for (qsizetype at = 1, length = 0; at < folded_.size(); ++at) {
        while (length > 0 && folded_[at] != folded_[length]) {
            length = fallbacks_[std::size_t(length - 1)];
        }
        length += folded_[at] == folded_[length] ? 1 : 0;
        fallbacks_[std::size_t(at)] = length;
    }
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
    return isInFolded(decomposedWithoutCase(text));
}

bool LocalizedNeedle::isIn(QStringView text, const std::function<bool()>& isCancelled, qsizetype stretch) const
{
    // Each unit of a folded text comes from two at most: a pair can fold to one, and nothing folds to nothing.
    const qsizetype overlap = 2 * folded_.size() + 2;
    const qsizetype step = std::max(stretch, 2 * overlap);
    for (qsizetype start = 0; start < text.size() && !isCancelled();) {
        const qsizetype end = cutFrom(text, std::min(text.size(), start + step + overlap));
        if (isIn(text.sliced(start, end - start))) {
            return true;
        }
        if (end == text.size()) {
            return false;
        }
        // Backwards as far as a whole match may reach, to where the text may be cut.
        qsizetype next = end - overlap;
        while (next > start && !mayBeCutAt(text, next)) {
            --next;
        }
        if (next == start) {
            return isIn(text.sliced(start));
        }
        start = next;
    }
    return false;
}

/// Whether what is looked for ends somewhere in the text, where `accept` takes the place at which it begins.
template <typename Fold, typename Accept>
bool LocalizedNeedle::isAnywhere(QStringView text, Fold fold, Accept accept) const
{
    qsizetype matched = 0;
    for (qsizetype at = 0; at < text.size(); ++at) {
        const QChar unit = fold(text[at]);
        while (matched > 0 && unit != folded_[matched]) {
            matched = fallbacks_[std::size_t(matched - 1)];
        }
        matched += unit == folded_[matched] ? 1 : 0;
        if (matched == folded_.size()) {
            if (accept(at + 1 - matched)) {
                return true;
            }
            matched = fallbacks_[std::size_t(matched - 1)];
        }
    }
    return false;
}

bool LocalizedNeedle::isInAscii(QStringView text) const
{
    if (folded_.size() <= longestSimple) {
        return text.contains(folded_, Qt::CaseInsensitive);
    }
    const auto lower = [](QChar unit) { return unit >= u'A' && unit <= u'Z' ? QChar(unit.unicode() + 32) : unit; };
    return isAnywhere(text, lower, [](qsizetype) { return true; });
}

bool LocalizedNeedle::isInFolded(const QString& folded) const
{
    const auto isWhole = [&](qsizetype at) {
        const qsizetype end = at + folded_.size();
        const bool cutsAtEnd = end < folded.size() && isMark(folded[end]);
        const bool cutsAtStart = at > 0 && isMark(folded[at]);
        return !cutsAtEnd && !cutsAtStart;
    };
    if (folded_.size() <= longestSimple) {
        for (qsizetype at = folded.indexOf(folded_); at >= 0; at = folded.indexOf(folded_, at + 1)) {
            if (isWhole(at)) {
                return true;
            }
        }
        return false;
    }
    return isAnywhere(
        folded, [](QChar unit) { return unit; }, isWhole);
}

bool LocalizedNeedle::mayBeIn(QByteArrayView bytes) const
{
    if (ascii_.isEmpty()) {
        return true;
    }
    if (!isAscii(bytes) && holdsWhatFoldsToAscii(bytes)) {
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
