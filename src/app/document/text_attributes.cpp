#include "app/document/text_attributes.h"

namespace kelm {

namespace {

struct LineEndingRow
{
    QLatin1String rawValue;
    QLatin1String label;
};

/// In the order of the enumeration.
constexpr LineEndingRow lineEndingRows[] = {
    {QLatin1String("\n"), QLatin1String("LF (Unix)")},
    {QLatin1String("\r\n"), QLatin1String("CRLF (Windows)")},
    {QLatin1String("\r"), QLatin1String("CR (Classic Mac)")},
};

struct FileEncodingRow
{
    QLatin1String rawValue;
    TextEncoding platformEncoding;
};

/// In the order of the enumeration.
constexpr FileEncodingRow fileEncodingRows[] = {
    {QLatin1String("UTF-8"), TextEncoding::utf8},
    {QLatin1String("UTF-16"), TextEncoding::utf16},
    {QLatin1String("ASCII"), TextEncoding::ascii},
};

} // namespace

std::optional<LineEnding> LineEnding::fromRawValue(QStringView rawValue)
{
    for (const LineEnding each : allCases()) {
        if (lineEndingRows[each].rawValue == rawValue) {
            return each;
        }
    }
    return std::nullopt;
}

QString LineEnding::rawValue() const
{
    return lineEndingRows[value_].rawValue;
}

QString LineEnding::label() const
{
    return lineEndingRows[value_].label;
}

FileEncoding FileEncoding::from(TextEncoding encoding)
{
    switch (encoding) {
    case TextEncoding::utf16:
    case TextEncoding::utf16BigEndian:
    case TextEncoding::utf16LittleEndian:
        return utf16;
    case TextEncoding::ascii:
        return ascii;
    case TextEncoding::utf8:
    case TextEncoding::utf32:
    case TextEncoding::isoLatin1:
        break;
    }
    return utf8;
}

std::optional<FileEncoding> FileEncoding::fromRawValue(QStringView rawValue)
{
    for (const FileEncoding each : allCases()) {
        if (fileEncodingRows[each].rawValue == rawValue) {
            return each;
        }
    }
    return std::nullopt;
}

QString FileEncoding::rawValue() const
{
    return fileEncodingRows[value_].rawValue;
}

TextEncoding FileEncoding::platformEncoding() const
{
    return fileEncodingRows[value_].platformEncoding;
}

} // namespace kelm
