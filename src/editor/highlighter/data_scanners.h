// Scanners for JSON, markup and style sheets. See span_scanners.h for what a scanner is.
#pragma once

#include "editor/highlighter/scanned_text.h"

#include <array>

namespace kelm::scanners {

/// `"[^"]*"\s*(?=:)`: a JSON key and the white space behind it.
struct JsonKey
{
    template <class Text, class Found>
    void scan(Text& text, Found found) const
    {
        const auto search = [&](qsizetype from) { return text.find(from, u'"'); };
        qsizetype start = text.next(text.begin(), search);
        while (start < text.size()) {
            const qsizetype close = text.find(start + 1, u'"');
            const qsizetype end = text.skipSpace(close + 1);
            if (text.at(end) == u':') {
                found(start, end);
                start = text.next(end, search);
            } else {
                start = text.next(close, search);
            }
        }
    }
};

/// `:\s*"[^"]*"`.
struct JsonStringValue
{
    template <class Text, class Found>
    void scan(Text& text, Found found) const
    {
        const auto search = [&](qsizetype from) { return text.find(from, u':'); };
        qsizetype start = text.next(text.begin(), search);
        while (start < text.size()) {
            qsizetype end = text.skipSpace(start + 1);
            if (text.at(end) == u'"') {
                end = text.find(end + 1, u'"') + 1;
                if (end > text.size()) {
                    return;
                }
                found(start, end);
            }
            start = text.next(end, search);
        }
    }
};

/// `:\s*-?\d+\.?\d*`.
struct JsonNumberValue
{
    template <class Text, class Found>
    void scan(Text& text, Found found) const
    {
        const auto search = [&](qsizetype from) { return text.find(from, u':'); };
        qsizetype start = text.next(text.begin(), search);
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
            start = text.next(end, search);
        }
    }
};

/// `:\s*(true|false|null)\b`.
struct JsonLiteralValue
{
    template <class Text, class Found>
    void scan(Text& text, Found found) const
    {
        const auto search = [&](qsizetype from) { return text.find(from, u':'); };
        qsizetype start = text.next(text.begin(), search);
        while (start < text.size()) {
            const qsizetype value = text.skipSpace(start + 1);
            const qsizetype end = value + literalLength(text, value);
            if (end > value && text.endsWordAt(end)) {
                found(start, end);
            }
            start = text.next(end, search);
        }
    }

private:
    template <class Text>
    static qsizetype literalLength(Text& text, qsizetype place)
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
    template <class Text, class Found>
    void scan(Text& text, Found found) const
    {
        const auto search = [&](qsizetype from) { return text.find(from, u'<'); };
        qsizetype start = text.next(text.begin(), search);
        while (start < text.size()) {
            qsizetype end = start + (text.at(start + 1) == u'/' ? 2 : 1);
            if (isAsciiLetter(text.at(end))) {
                end = text.skip(end, [](char16_t c) { return isAsciiLetter(c) || isAsciiDigit(c) || (c == u'-'); });
                found(start, end);
            }
            start = text.next(end, search);
        }
    }
};

/// `/?>`.
struct TagEnd
{
    template <class Text, class Found>
    void scan(Text& text, Found found) const
    {
        const auto search = [&](qsizetype from) { return text.find(from, u'>'); };
        for (qsizetype close = text.next(text.begin(), search); close < text.size();
             close = text.next(close + 1, search)) {
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
    static qsizetype lookBack(const ScannedText& text, qsizetype place) { return text.skipBack(place, isHyphenedPart); }

    template <class Text, class Found>
    void scan(Text& text, Found found) const
    {
        const auto search = [&](qsizetype from) { return text.find(from, u'='); };
        for (qsizetype sign = text.next(text.begin(), search); sign < text.size(); sign = text.next(sign + 1, search)) {
            const qsizetype start = text.nextBoundary(text.skipBack(sign, isHyphenedPart), sign);
            if (start < sign) {
                found(start, sign);
            }
        }
    }
};

/// `[.#]?[a-zA-Z_-][a-zA-Z0-9_-]*\s*(?=\{)`: the last part of a selector and the white space behind it.
struct SelectorName
{
    static qsizetype lookBack(const ScannedText& text, qsizetype place)
    {
        const qsizetype start = nameStart(text, text.skipSpaceBack(place));
        return start - (text.at(start - 1) == u'.' || text.at(start - 1) == u'#' ? 1 : 0);
    }

    template <class Text, class Found>
    void scan(Text& text, Found found) const
    {
        const auto search = [&](qsizetype from) { return text.find(from, u'{'); };
        for (qsizetype brace = text.next(text.begin(), search); brace < text.size();
             brace = text.next(brace + 1, search)) {
            const qsizetype end = text.skipSpaceBack(brace);
            qsizetype start = nameStart(text, end);
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

private:
    template <class Text>
    static qsizetype nameStart(Text& text, qsizetype end)
    {
        return text.skipBack(end, [](char16_t c) { return isNamePart(c) || (c == u'-'); });
    }
};

/// `[a-zA-Z-]+(?=\s*:)`.
struct PropertyName
{
    static qsizetype lookBack(const ScannedText& text, qsizetype place)
    {
        return text.skipBack(text.skipSpaceBack(place), isHyphenedPart);
    }

    template <class Text, class Found>
    void scan(Text& text, Found found) const
    {
        const auto search = [&](qsizetype from) { return text.find(from, u':'); };
        for (qsizetype colon = text.next(text.begin(), search); colon < text.size();
             colon = text.next(colon + 1, search)) {
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
    template <class Text, class Found>
    void scan(Text& text, Found found) const
    {
        const auto search = [&](qsizetype from) { return text.find(from, u':'); };
        qsizetype start = text.next(text.begin(), search);
        while (start < text.size()) {
            const qsizetype end = text.find(start + 1, [](char16_t c) { return (c == u';') | (c == u'{'); });
            if (end > start + 1) {
                found(start, end);
            }
            start = text.next(end, search);
        }
    }
};

/// `\d+\.?\d*(px|em|rem|%|vh|vw)?`.
struct Measure
{
    template <class Text, class Found>
    void scan(Text& text, Found found) const
    {
        const auto search = [&](qsizetype from) { return text.findDigit(from); };
        qsizetype start = text.next(text.begin(), search);
        while (start < text.size()) {
            qsizetype end = text.skipDigits(start);
            if (text.at(end) == u'.') {
                end = text.skipDigits(end + 1);
            }
            end += unitLength(text, end);
            found(start, end);
            start = text.next(end, search);
        }
    }

private:
    template <class Text>
    static qsizetype unitLength(Text& text, qsizetype place)
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
    template <class Text, class Found>
    void scan(Text& text, Found found) const
    {
        const auto search = [&](qsizetype from) { return text.find(from, u'#'); };
        qsizetype start = text.next(text.begin(), search);
        while (start < text.size()) {
            qsizetype end = start + 1;
            while (end - start <= 8 && isHexDigit(text.at(end))) {
                ++end;
            }
            if (end - start > 3) {
                found(start, end);
            }
            start = text.next(end, search);
        }
    }

private:
    static bool isHexDigit(char16_t unit) { return isAsciiDigit(unit) || (char16_t((unit | 0x20) - u'a') < 6); }
};

} // namespace kelm::scanners
