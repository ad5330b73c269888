// Colours in the output of child processes.
#pragma once

#include "run/attributed_text.h"

#include <array>
#include <optional>

namespace kelm {

/// Turns output that holds SGR escape sequences (ECMA-48, 8.3.117) into coloured text. Foreground colours only, and
/// nothing is kept between calls: each piece of output begins in the default colour.
///
/// A sequence is ESC "[", one or more decimal numbers separated by ";", and "m". Everything else, other escape
/// sequences and "ESC[m" included, stays in the text. A decimal number is made of digits of any script, as in ICU's
/// `\d`; only ASCII digits have a meaning, and any other number is passed over like an unknown code.
///
/// Any thread.
class ANSIParser
{
public:
    ANSIParser() = delete;

    struct ColorCode
    {
        int code;
        TextColor color;
    };

    /// The codes that set a colour. Code 0 sets the default colour again; all others are passed over.
    static const std::array<ColorCode, 16>& ansiColors();

    /// The colour of plain output, `plainColors::green`.
    static TextColor defaultColor();

    /// The size in points of the monospaced font, of regular weight, in which all of the text is shown.
    static constexpr int fontSize = 13;

    /// The first sequence at or behind an offset.
    static std::optional<Stretch> nextSequence(QStringView text, qsizetype from);

    /// The text without its sequences, and the colours that they set. Linear in the length of `output`, whose string is
    /// shared when it holds no sequence.
    static AttributedText parse(const QString& output);
};

} // namespace kelm
