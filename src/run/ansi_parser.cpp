#include "run/ansi_parser.h"

#include <unicode/uchar.h>

#include <limits>
#include <optional>

namespace kelm {

namespace {

constexpr char16_t escape = 0x1b;

/// 0.5 on the scale of 0 to 255.
constexpr int half = 128;

/// The offset behind the digit at `at`, or `at` when there is none. The digits are those of ICU's `\d`: some take two
/// units.
qsizetype behindDigit(QStringView text, qsizetype at)
{
    if (at >= text.size()) {
        return at;
    }
    const char16_t unit = text[at].unicode();
    if (unit < 0x80) {
        return unit >= u'0' && unit <= u'9' ? at + 1 : at;
    }
    if (QChar::isHighSurrogate(unit) && at + 1 < text.size() && text[at + 1].isLowSurrogate()) {
        return u_isdigit(UChar32(QChar::surrogateToUcs4(text[at], text[at + 1]))) ? at + 2 : at;
    }
    return u_isdigit(unit) ? at + 1 : at;
}

qsizetype behindDigits(QStringView text, qsizetype at)
{
    for (qsizetype next = behindDigit(text, at); next != at; next = behindDigit(text, at)) {
        at = next;
    }
    return at;
}

/// What stands between "ESC[" at `start` and "m", when that is a sequence. There is only one way to match it, so
/// nothing is ever tried twice.
std::optional<QStringView> codesAt(QStringView text, qsizetype start)
{
    qsizetype at = start + 1;
    if (at >= text.size() || text[at] != u'[') {
        return std::nullopt;
    }
    do {
        ++at;
        const qsizetype end = behindDigits(text, at);
        if (end == at) {
            return std::nullopt;
        }
        at = end;
    } while (at < text.size() && text[at] == u';');
    if (at >= text.size() || text[at] != u'm') {
        return std::nullopt;
    }
    return text.sliced(start + 2, at - start - 2);
}

/// The number that ASCII digits stand for within a signed 64-bit word.
std::optional<qint64> decimalNumber(QStringView digits)
{
    qint64 number = 0;
    for (const QChar digit : digits) {
        if (digit < u'0' || digit > u'9') {
            return std::nullopt;
        }
        const qint64 value = digit.unicode() - u'0';
        if (number > (std::numeric_limits<qint64>::max() - value) / 10) {
            return std::nullopt;
        }
        number = number * 10 + value;
    }
    return number;
}

void apply(qint64 code, TextColor& color)
{
    if (code == 0) {
        color = ANSIParser::defaultColor();
        return;
    }
    for (const ANSIParser::ColorCode& known : ANSIParser::ansiColors()) {
        if (known.code == code) {
            color = known.color;
            return;
        }
    }
}

void applyAll(QStringView codes, TextColor& color)
{
    for (const QStringView piece : codes.tokenize(u';')) {
        if (const auto code = decimalNumber(piece)) {
            apply(*code, color);
        }
    }
}

} // namespace

const std::array<ANSIParser::ColorCode, 16>& ANSIParser::ansiColors()
{
    static const std::array<ColorCode, 16> colors{{
        {30, plainColors::black.rgba()},
        {31, SystemColor::red},
        {32, SystemColor::green},
        {33, SystemColor::yellow},
        {34, SystemColor::blue},
        {35, SystemColor::purple},
        {36, SystemColor::cyan},
        {37, plainColors::white.rgba()},
        {90, plainColors::gray.rgba()},
        {91, qRgb(255, half, half)},
        {92, qRgb(half, 255, half)},
        {93, qRgb(255, 255, half)},
        {94, qRgb(half, half, 255)},
        {95, qRgb(255, half, 255)},
        {96, qRgb(half, 255, 255)},
        {97, plainColors::white.rgba()},
    }};
    return colors;
}

TextColor ANSIParser::defaultColor()
{
    return plainColors::green.rgba();
}

std::optional<Stretch> ANSIParser::nextSequence(QStringView text, qsizetype from)
{
    for (qsizetype at = text.indexOf(escape, from); at >= 0; at = text.indexOf(escape, at + 1)) {
        if (const auto codes = codesAt(text, at)) {
            return Stretch{at, codes->size() + 3};
        }
    }
    return std::nullopt;
}

AttributedText ANSIParser::parse(const QString& output)
{
    AttributedText result;
    TextColor color = defaultColor();
    const QStringView text = output;
    qsizetype last = 0;
    while (const auto sequence = nextSequence(text, last)) {
        if (result.text.isNull()) {
            result.text.reserve(text.size());
        }
        result.append(text.sliced(last, sequence->start - last), color);
        applyAll(text.sliced(sequence->start + 2, sequence->length - 3), color);
        last = sequence->start + sequence->length;
    }
    if (last == 0 && !text.isEmpty()) {
        return {output, {{0, text.size(), color}}};
    }
    result.append(text.sliced(last), color);
    return result;
}

} // namespace kelm
