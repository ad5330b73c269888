#include "platform/text/canonical_text.h"

#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

#include <array>
#include <numeric>
#include <utility>
#include <vector>

namespace kelm {

namespace {

/// So many marks without a letter between them are put into their order in a way that takes long for more.
constexpr int32_t longestRun = 64;

/// Whether the character at a place decomposes to what begins with a mark that is ordered among its neighbours.
bool isOrdered(const icu::Normalizer2& normalizer, const icu::UnicodeString& text, int32_t at)
{
    return text[at] >= 0x300 && !normalizer.hasBoundaryBefore(text.char32At(at));
}

bool hasLongRun(const icu::Normalizer2& normalizer, const icu::UnicodeString& text)
{
    // A run that is too long covers at least one of these places.
    for (int32_t at = longestRun / 2; at < text.length(); at += longestRun / 2) {
        if (!isOrdered(normalizer, text, at)) {
            continue;
        }
        int32_t start = at;
        while (start > 0 && at - start < longestRun && isOrdered(normalizer, text, start - 1)) {
            --start;
        }
        int32_t end = at + 1;
        while (end < text.length() && end - at < longestRun && isOrdered(normalizer, text, end)) {
            ++end;
        }
        if (end - start > longestRun) {
            return true;
        }
    }
    return false;
}

/// Orders marks that follow each other, of which each has a class from 1 to 255, those of one class as they stood.
void appendOrdered(std::vector<std::pair<UChar32, uint8_t>>& marks, icu::UnicodeString& to)
{
    std::array<std::size_t, 257> starts{};
    for (const auto& [mark, order] : marks) {
        ++starts[order + std::size_t(1)];
    }
    std::partial_sum(starts.begin(), starts.end(), starts.begin());
    std::vector<UChar32> ordered(marks.size());
    for (const auto& [mark, order] : marks) {
        ordered[starts[order]++] = mark;
    }
    for (const UChar32 mark : ordered) {
        to.append(mark);
    }
    marks.clear();
}

/// What the system's library gives, in a time that is linear also in the length of a run of marks: that puts each mark
/// into its place one after the other.
icu::UnicodeString decompositionOfLongRuns(const icu::Normalizer2& normalizer, const icu::UnicodeString& text)
{
    icu::UnicodeString result;
    std::vector<std::pair<UChar32, uint8_t>> marks;
    icu::UnicodeString parts;
    for (int32_t at = 0; at < text.length(); at = text.moveIndex32(at, 1)) {
        const UChar32 character = text.char32At(at);
        if (!normalizer.getDecomposition(character, parts)) {
            parts.setTo(character);
        }
        for (int32_t part = 0; part < parts.length(); part = parts.moveIndex32(part, 1)) {
            const UChar32 single = parts.char32At(part);
            const uint8_t order = normalizer.getCombiningClass(single);
            if (order != 0) {
                marks.emplace_back(single, order);
                continue;
            }
            appendOrdered(marks, result);
            result.append(single);
        }
    }
    appendOrdered(marks, result);
    return result;
}

/// Of a text that the system's library cannot decompose, the text itself.
icu::UnicodeString decomposition(const icu::UnicodeString& text)
{
    // The toolkit's own normalization takes three to four times as long with Korean and with accents.
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* const normalizer = icu::Normalizer2::getNFDInstance(status);
    if (U_SUCCESS(status) && hasLongRun(*normalizer, text)) {
        return decompositionOfLongRuns(*normalizer, text);
    }
    icu::UnicodeString result = U_SUCCESS(status) ? normalizer->normalize(text, status) : text;
    return U_SUCCESS(status) ? result : text;
}

/// Reads the text where it stands.
icu::UnicodeString aliasOf(QStringView text)
{
    return {false, text.utf16(), static_cast<int32_t>(text.size())};
}

QString stringOf(const icu::UnicodeString& text)
{
    return QString(reinterpret_cast<const QChar*>(text.getBuffer()), text.length());
}

} // namespace

bool hasManyMarks(QStringView text)
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* const normalizer = icu::Normalizer2::getNFDInstance(status);
    return U_SUCCESS(status) && hasLongRun(*normalizer, aliasOf(text));
}

QString decomposed(QStringView text)
{
    return stringOf(decomposition(aliasOf(text)));
}

QString decomposedWithoutCase(QStringView text)
{
    return stringOf(decomposition(decomposition(aliasOf(text)).foldCase()));
}

} // namespace kelm
