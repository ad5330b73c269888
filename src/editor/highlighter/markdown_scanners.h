// Scanners for Markdown. See span_scanners.h for what a scanner is.
#pragma once

#include "editor/highlighter/scanned_text.h"

namespace kelm::scanners {

/// `^#{1,6}\s.*$` at every line.
struct Heading
{
    template <class Text, class Found>
    void scan(Text& text, Found found) const
    {
        const auto search = [&](qsizetype from) { return text.find(from, u'#'); };
        qsizetype start = text.next(text.begin(), search);
        while (start < text.size()) {
            qsizetype next = start + 1;
            if (start == 0 || isLineEnd(text.at(start - 1))) {
                qsizetype space = start + 1;
                while (space - start < 6 && text.at(space) == u'#') {
                    ++space;
                }
                next = space;
                // The white space may be a line end itself: the heading then is the next line.
                const qsizetype title = space + 1;
                if (text.isSpace(space) && !(text.at(space) == u'\r' && text.at(title) == u'\n')) {
                    next = text.lineEnd(title);
                    found(start, next);
                }
            }
            start = text.next(next, search);
        }
    }
};

/// `^\s*X\s` at every line, where `Marker` finds the end of X. The white space before X may hold line ends, so a match
/// may begin on an empty line above.
template <class Marker>
struct ListMarker
{
    template <class Text, class Found>
    void scan(Text& text, Found found) const
    {
        const auto search = [&](qsizetype from) { return text.lineStart(from); };
        qsizetype start = text.next(text.begin(), search);
        while (start < text.size()) {
            const qsizetype marker = text.skipSpace(start);
            const qsizetype space = Marker::end(text, marker);
            // Without a match, each line that begins before the marker comes to the same marker.
            qsizetype next = marker + 1;
            if (space > marker && text.isSpace(space)) {
                next = space + 1;
                found(start, next);
            }
            start = text.next(next, search);
        }
    }
};

/// `[-*+]`.
struct Bullet
{
    template <class Text>
    static qsizetype end(Text& text, qsizetype place)
    {
        const char16_t unit = text.at(place);
        return place + (unit == u'-' || unit == u'*' || unit == u'+' ? 1 : 0);
    }
};

/// `\d+\.`.
struct Ordinal
{
    template <class Text>
    static qsizetype end(Text& text, qsizetype place)
    {
        const qsizetype point = text.skipDigits(place);
        return point > place && text.at(point) == u'.' ? point + 1 : place;
    }
};

/// `\[[^\]]+\]\([^)]+\)`.
struct Link
{
    template <class Text, class Found>
    void scan(Text& text, Found found) const
    {
        const auto search = [&](qsizetype from) { return text.find(from, u'['); };
        qsizetype start = text.next(text.begin(), search);
        while (start < text.size()) {
            const qsizetype close = text.find(start + 1, u']');
            qsizetype next = close + 1;
            if (close > start + 1 && text.at(close + 1) == u'(') {
                const qsizetype target = close + 2;
                const qsizetype end = text.find(target, u')');
                if (end >= text.size()) {
                    return;
                }
                if (end > target) {
                    next = end + 1;
                    found(start, next);
                }
            }
            // Without a match, each bracket that opens before `close` fails there as this one did.
            start = next < text.size() ? text.next(next, search) : text.size();
        }
    }
};

} // namespace kelm::scanners
