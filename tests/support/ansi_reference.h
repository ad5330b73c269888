// What the colour parser is to do, said with a regular expression: slower, and plain to see.
#pragma once

#include "run/ansi_parser.h"

#include <QStringList>

#include <unicode/regex.h>

namespace kelm::test {

/// The coloured text of `output` by ICU's own matching of the sequence.
inline AttributedText parseByRegularExpression(const QString& output)
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::UnicodeString text(false, reinterpret_cast<const char16_t*>(output.utf16()),
                                  static_cast<int32_t>(output.size()));
    icu::RegexMatcher matcher(icu::UnicodeString(u"\u001b\\[(\\d+(?:;\\d+)*)m"), text, 0, status);
    matcher.setStackLimit(0, status);
    AttributedText result;
    TextColor color = ANSIParser::defaultColor();
    qsizetype last = 0;
    while (matcher.find(status)) {
        result.append(QStringView(output).sliced(last, matcher.start(status) - last), color);
        last = matcher.end(status);
        const qsizetype codes = matcher.start(1, status);
        for (const QString& piece : output.sliced(codes, matcher.end(1, status) - codes).split(u';')) {
            bool isNumber = false;
            const qlonglong code = piece.toLongLong(&isNumber);
            if (!isNumber) {
                continue;
            }
            if (code == 0) {
                color = ANSIParser::defaultColor();
            }
            for (const ANSIParser::ColorCode& known : ANSIParser::ansiColors()) {
                if (known.code == code) {
                    color = known.color;
                }
            }
        }
    }
    result.append(QStringView(output).sliced(last), color);
    return result;
}

/// Whether the runs cover the text without a gap, none of them empty and no two neighbours of one colour.
inline bool runsCoverText(const AttributedText& text)
{
    qsizetype end = 0;
    for (std::size_t index = 0; index < text.runs.size(); ++index) {
        const AttributedRun& run = text.runs[index];
        if (run.start != end || run.length <= 0 || (index > 0 && run.color == text.runs[index - 1].color)) {
            return false;
        }
        end += run.length;
    }
    return end == text.text.size();
}

} // namespace kelm::test
