// Scanners for what has a beginning and an end: comments, strings, quoted spans.
//
// A scanner finds the matches of one pattern without a regular expression engine, exactly as ICU finds them: the
// leftmost first, none overlapping another. `scan` calls `found(start, end)` for each in order. Every scan is linear in
// the text, whatever stands in it: a beginning that has no end is not looked after twice.
//
// `scan` asks a ScannedText, or a WatchedText, which is a part of a text and notes what is looked at. It is a row of
// attempts: `next` looks for the place of the next one, and what follows until it is asked again belongs to that
// attempt, with one match at most. Between two attempts a scan keeps nothing in mind but the place from which it looks
// on. A pattern that is read from its end backwards has a `lookBack` as well: how far an attempt that begins at a place
// or behind it may look back, whatever stands there.
#pragma once

#include "editor/highlighter/scanned_text.h"

namespace kelm::scanners {

/// `X.*$` where every line has an end: from an opener to the end of its line.
struct ToLineEnd
{
    QStringView opener;

    template <class Text, class Found>
    void scan(Text& text, Found found) const
    {
        const auto search = [&](qsizetype from) { return text.find(from, opener, 0); };
        qsizetype start = text.next(text.begin(), search);
        while (start < text.size()) {
            const qsizetype end = text.lineEnd(start + opener.size());
            found(start, end);
            start = text.next(end, search);
        }
    }
};

/// `X[\s\S]*?Y`: from an opener to the nearest closer behind it. The anchors are the rarest units of both.
struct Enclosed
{
    QStringView opener;
    qsizetype openerAnchor = 0;
    QStringView closer;
    qsizetype closerAnchor = 0;

    template <class Text, class Found>
    void scan(Text& text, Found found) const
    {
        const auto search = [&](qsizetype from) { return text.find(from, opener, openerAnchor); };
        qsizetype start = text.next(text.begin(), search);
        while (start < text.size()) {
            const qsizetype close = text.find(start + opener.size(), closer, closerAnchor);
            if (close == text.size()) {
                return;
            }
            const qsizetype end = close + closer.size();
            found(start, end);
            start = text.next(end, search);
        }
    }
};

/// `"(?:[^"\\]|\\.)*"`: a string in which a backslash takes the next character along, unless that ends a line.
struct EscapedString
{
    char16_t quote;

    template <class Text, class Found>
    void scan(Text& text, Found found) const
    {
        const auto search = [&](qsizetype from) { return text.find(from, quote); };
        qsizetype start = text.next(text.begin(), search);
        while (start < text.size()) {
            qsizetype i = start + 1;
            for (;;) {
                i = text.find(i, [quote = quote](char16_t c) { return (c == quote) | (c == u'\\'); });
                if (text.at(i) != u'\\' || i + 1 >= text.size() || isLineEnd(text.at(i + 1))) {
                    break;
                }
                i += 2;
            }
            // Without an end here, none of the quotes before `i` begins a string: each stands behind a backslash, and a
            // string from there on would come to the same halt.
            const qsizetype end = i + 1;
            if (end > text.size()) {
                return;
            }
            if (text.at(i) == quote) {
                found(start, end);
            }
            start = text.next(end, search);
        }
    }
};

/// `X[^x]*X` or, with at least one unit inside, `X[^x]+X`, where X is one or two of the same mark x.
struct MarkedSpan
{
    char16_t mark;
    qsizetype marks = 1;
    qsizetype leastInside = 0;

    template <class Text, class Found>
    void scan(Text& text, Found found) const
    {
        const auto search = [&](qsizetype from) { return text.find(from, mark); };
        qsizetype start = text.next(text.begin(), search);
        while (start < text.size()) {
            qsizetype next = start + 1;
            if (marks == 1 || text.at(start + 1) == mark) {
                const qsizetype inside = start + marks;
                const qsizetype close = text.find(inside, mark);
                if (close >= text.size()) {
                    return;
                }
                if (close - inside >= leastInside && (marks == 1 || text.at(close + 1) == mark)) {
                    next = close + marks;
                    found(start, next);
                }
            }
            start = text.next(next, search);
        }
    }
};

/// `\$\{[^}]+\}`.
struct BracedVariable
{
    template <class Text, class Found>
    void scan(Text& text, Found found) const
    {
        const QStringView opener = u"${";
        const auto search = [&](qsizetype from) { return text.find(from, opener, 0); };
        qsizetype start = text.next(text.begin(), search);
        while (start < text.size()) {
            const qsizetype inside = start + opener.size();
            const qsizetype close = text.find(inside, u'}');
            if (close >= text.size()) {
                return;
            }
            if (close > inside) {
                found(start, close + 1);
            }
            start = text.next(close + 1, search);
        }
    }
};

/// `XY`: just these units.
struct Literal
{
    QStringView literal;

    template <class Text, class Found>
    void scan(Text& text, Found found) const
    {
        const auto search = [&](qsizetype from) { return text.find(from, literal, 0); };
        qsizetype start = text.next(text.begin(), search);
        while (start < text.size()) {
            found(start, start + literal.size());
            start = text.next(start + literal.size(), search);
        }
    }
};

} // namespace kelm::scanners
