#include "editor/transforms/json_key.h"

#include "platform/text/canonical_text.h"

#include <QString>

#include <algorithm>

namespace kelm {
namespace {

bool isDigit(char32_t unit)
{
    return unit >= U'0' && unit <= U'9';
}

/// An ASCII text, read in lower case.
class LowerAscii
{
public:
    explicit LowerAscii(QStringView text) : text_(text) {}
    size_t size() const { return size_t(text_.size()); }
    char32_t operator[](size_t at) const
    {
        const char32_t unit = text_.utf16()[at];
        return unit >= U'A' && unit <= U'Z' ? unit + 32 : unit;
    }

private:
    QStringView text_;
};

template <typename Text>
size_t endOfDigits(const Text& text, size_t at)
{
    while (at < text.size() && isDigit(text[at])) {
        ++at;
    }
    return at;
}

template <typename Number>
int compareValues(Number a, Number b)
{
    return a < b ? -1 : a > b ? 1 : 0;
}

/// Steps behind the runs of digits at `i` and `j` and compares their values, whatever their length.
template <typename TextA, typename TextB>
int compareNumbers(const TextA& a, size_t& i, const TextB& b, size_t& j)
{
    const size_t endA = endOfDigits(a, i);
    const size_t endB = endOfDigits(b, j);
    while (i < endA && a[i] == U'0') {
        ++i;
    }
    while (j < endB && b[j] == U'0') {
        ++j;
    }
    int order = compareValues(endA - i, endB - j);
    for (; order == 0 && i < endA; ++i, ++j) {
        order = compareValues(char32_t(a[i]), char32_t(b[j]));
    }
    i = endA;
    j = endB;
    return order;
}

/// Walks both texts in step. `compareDigits` compares two runs of digits and steps behind them.
template <typename TextA, typename TextB, typename CompareDigits>
int compareTexts(const TextA& a, const TextB& b, CompareDigits compareDigits)
{
    size_t i = 0;
    size_t j = 0;
    while (i < a.size() && j < b.size()) {
        const char32_t unitA = a[i];
        const char32_t unitB = b[j];
        int order = 0;
        if (isDigit(unitA) && isDigit(unitB)) {
            order = compareDigits(a, i, b, j);
        } else {
            order = compareValues(unitA, unitB);
            ++i;
            ++j;
        }
        if (order != 0) {
            return order;
        }
    }
    return compareValues(a.size() - i, b.size() - j);
}

template <typename TextA, typename TextB>
int compareFolded(const TextA& a, const TextB& b)
{
    return compareTexts(a, b, compareNumbers<TextA, TextB>);
}

/// Tells keys apart that are equal but for case, the form of accents and leading zeros.
int forcedOrder(std::u16string_view a, std::u16string_view b)
{
    return compareTexts(a, b, [](std::u16string_view x, size_t& i, std::u16string_view y, size_t& j) {
        const auto digitsX = x.substr(i, endOfDigits(x, i) - i);
        const auto digitsY = y.substr(j, endOfDigits(y, j) - j);
        i += digitsX.size();
        j += digitsY.size();
        const int order = compareValues(digitsX.size(), digitsY.size());
        return order != 0 ? order : digitsX.compare(digitsY);
    });
}

std::u16string_view units(QStringView text)
{
    return {text.utf16(), size_t(text.size())};
}

} // namespace

JsonKey::JsonKey(QStringView text) : text_(text)
{
    const auto all = units(text);
    if (std::any_of(all.begin(), all.end(), [](char16_t unit) { return unit >= 0x80; })) {
        folded_ = decomposedWithoutCase(text).toStdU32String();
    }
}

int JsonKey::compare(const JsonKey& a, const JsonKey& b)
{
    const LowerAscii asciiA(a.text_);
    const LowerAscii asciiB(b.text_);
    int order = 0;
    if (a.folded_.empty()) {
        order = b.folded_.empty() ? compareFolded(asciiA, asciiB) : compareFolded(asciiA, b.folded_);
    } else {
        order = b.folded_.empty() ? compareFolded(a.folded_, asciiB) : compareFolded(a.folded_, b.folded_);
    }
    return order != 0 ? order : forcedOrder(units(a.text_), units(b.text_));
}

} // namespace kelm
