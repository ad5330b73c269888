// Scanners for JSON, markup and style sheets. See span_scanners.h for what a scanner is.
#pragma once

#include "editor/highlighter/scanned_text.h"

#include <array>

namespace kelm::scanners {

/// `"[^"]*"\s*(?=:)`: a JSON key and the white space behind it.
struct JsonKey
{
    template <class Found>
    void scan(const ScannedText& text, Found found) const
    {
        qsizetype start = text.find(0, u'"');
        while (start < text.size()) {
            const qsizetype close = text.find(start + 1, u'"');
            if (close >= text.size()) {
                return;
            }
            const qsizetype end = text.skipSpace(close + 1);
            if (text.at(end) == u':') {
                found(start, end);
                start = text.find(end, u'"');
            } else {
                start = close;
            }
        }
    }
};

/// `:\s*"[^"]*"`.
struct JsonStringValue
{
    template <class Found>
    void scan(const ScannedText& text, Found found) const
    {
        qsizetype start = text.find(0, u':');
        while (start < text.size()) {
            qsizetype end = text.skipSpace(start + 1);
            if (text.at(end) == u'"') {
                end = text.find(end + 1, u'"') + 1;
                if (end > text.size()) {
                    return;
                }
                found(start, end);
            }
            start = text.find(end, u':');
        }
    }
};

/// `:\s*-?\d+\.?\d*`.
struct JsonNumberValue
{
    template <class Found>
    void scan(const ScannedText& text, Found found) const
    {
        qsizetype start = text.find(0, u':');
        while (start < text.size()) {
            qsizetype end = text.skipSpace(start + 1);
            const qsizetype digits = end + (text.at(end) == u'-' ? 1 : 0);
            if (text.digitAt(digits) > 0) {
                end = text.skipDigits(digits);
                if (text.at(end) == u'.') {
                    end = text.skipDigits(end + 1);
                }
                found(start, end);
            }
            start = text.find(end, u':');
        }
    }
};

/// `:\s*(true|false|null)\b`.
struct JsonLiteralValue
{
    template <class Found>
    void scan(const ScannedText& text, Found found) const
    {
        qsizetype start = text.find(0, u':');
        while (start < text.size()) {
            const qsizetype value = text.skipSpace(start + 1);
            const qsizetype end = value + literalLength(text, value);
            if (end > value && text.endsWordAt(end)) {
                found(start, end);
            }
            start = text.find(end, u':');
        }
    }

private:
    static qsizetype literalLength(const ScannedText& text, qsizetype place)
    {
        for (const QStringView literal : {QStringView(u"true"), QStringView(u"false"), QStringView(u"null")}) {
            if (text.startsWith(place, literal)) {
                return literal.size();
            }
        }
        return 0;
    }
};

/// `</?[a-zA-Z][a-zA-Z0-9-]*`.
struct TagName
{
    template <class Found>
    void scan(const ScannedText& text, Found found) const
    {
        qsizetype start = text.find(0, u'<');
        while (start < text.size()) {
            qsizetype end = start + (text.at(start + 1) == u'/' ? 2 : 1);
            if (isAsciiLetter(text.at(end))) {
                end = text.skip(end, [](char16_t c) { return isAsciiLetter(c) || isAsciiDigit(c) || (c == u'-'); });
                found(start, end);
            }
            start = text.find(end, u'<');
        }
    }
};

/// `/?>`.
struct TagEnd
{
    template <class Found>
    void scan(const ScannedText& text, Found found) const
    {
        for (qsizetype close = text.find(0, u'>'); close < text.size(); close = text.find(close + 1, u'>')) {
            found(text.at(close - 1) == u'/' ? close - 1 : close, close + 1);
        }
    }
};

/// `[a-zA-Z-]`.
constexpr bool isHyphenedPart(char16_t unit)
{
    return isAsciiLetter(unit) || (unit == u'-');
}

/// `\b[a-zA-Z-]+(?==)`.
struct AttributeName
{
    template <class Found>
    void scan(const ScannedText& text, Found found) const
    {
        const WordBoundaries& boundaries = text.words();
        for (qsizetype sign = text.find(0, u'='); sign < text.size(); sign = text.find(sign + 1, u'=')) {
            const qsizetype start = boundaries.next(text.skipBack(sign, isHyphenedPart));
            if (start < sign) {
                found(start, sign);
            }
        }
    }
};

/// `[.#]?[a-zA-Z_-][a-zA-Z0-9_-]*\s*(?=\{)`: the last part of a selector and the white space behind it.
struct SelectorName
{
    template <class Found>
    void scan(const ScannedText& text, Found found) const
    {
        for (qsizetype brace = text.find(0, u'{'); brace < text.size(); brace = text.find(brace + 1, u'{')) {
            const qsizetype end = text.skipSpaceBack(brace);
            qsizetype start = text.skipBack(end, [](char16_t c) { return isNamePart(c) || (c == u'-'); });
            const qsizetype parts = start;
            start = text.skip(start, isAsciiDigit);
            if (start == end) {
                continue;
            }
            if (start == parts && (text.at(start - 1) == u'.' || text.at(start - 1) == u'#')) {
                --start;
            }
            found(start, brace);
        }
    }
};

/// `[a-zA-Z-]+(?=\s*:)`.
struct PropertyName
{
    template <class Found>
    void scan(const ScannedText& text, Found found) const
    {
        for (qsizetype colon = text.find(0, u':'); colon < text.size(); colon = text.find(colon + 1, u':')) {
            const qsizetype end = text.skipSpaceBack(colon);
            const qsizetype start = text.skipBack(end, isHyphenedPart);
            if (start < end) {
                found(start, end);
            }
        }
    }
};

/// `:\s*[^;{]+`.
struct PropertyValue
{
    template <class Found>
    void scan(const ScannedText& text, Found found) const
    {
        qsizetype start = text.find(0, u':');
        while (start < text.size()) {
            const qsizetype end = text.find(start + 1, [](char16_t c) { return (c == u';') | (c == u'{'); });
            if (end > start + 1) {
                found(start, end);
            }
            start = text.find(end, u':');
        }
    }
};

/// `\d+\.?\d*(px|em|rem|%|vh|vw)?`.
struct Measure
{
    template <class Found>
    void scan(const ScannedText& text, Found found) const
    {
        qsizetype start = text.findDigit(0);
        while (start < text.size()) {
            qsizetype end = text.skipDigits(start);
            if (text.at(end) == u'.') {
                end = text.skipDigits(end + 1);
            }
            end += unitLength(text, end);
            found(start, end);
            start = text.findDigit(end);
        }
    }

private:
    static qsizetype unitLength(const ScannedText& text, qsizetype place)
    {
        const char16_t next = text.at(place + 1);
        switch (text.at(place)) {
        case u'%':
            return 1;
        case u'p':
            return next == u'x' ? 2 : 0;
        case u'e':
            return next == u'm' ? 2 : 0;
        case u'v':
            return next == u'h' || next == u'w' ? 2 : 0;
        case u'r':
            return next == u'e' && text.at(place + 2) == u'm' ? 3 : 0;
        default:
            return 0;
        }
    }
};

/// `#[0-9a-fA-F]{3,8}`.
struct HexColor
{
    template <class Found>
    void scan(const ScannedText& text, Found found) const
    {
        qsizetype start = text.find(0, u'#');
        while (start < text.size()) {
            qsizetype end = start + 1;
            while (end - start <= 8 && isHexDigit(text.at(end))) {
                ++end;
            }
            if (end - start > 3) {
                found(start, end);
            }
            start = text.find(end, u'#');
        }
    }

private:
    static bool isHexDigit(char16_t unit) { return isAsciiDigit(unit) || (char16_t((unit | 0x20) - u'a') < 6); }
};

} // namespace kelm::scanners
