// Where characters begin and end, as a person sees them. All offsets are UTF-16 units.
//
// A character is an extended grapheme cluster as ICU's rules of its time have it: what a caret steps over, what one key
// deletes, and what is counted. A pair of carriage return and line feed is one.
#pragma once

#include "platform/text/unit_source.h"

#include <QStringView>

#include <memory>

namespace kelm {

/// The next boundary between characters behind `offset`; the text's length at its end. Any thread.
///
/// Looks at the character, a few beside it and no further, however long the text is. Flags, which pair up from the
/// start of their run, are counted from there. A character of many thousand marks is looked at whole.
qsizetype nextGraphemeBoundary(const UnitSource& text, qsizetype offset);
qsizetype nextGraphemeBoundary(QStringView text, qsizetype offset);
/// The boundary before `offset`; 0 at the top.
qsizetype previousGraphemeBoundary(const UnitSource& text, qsizetype offset);
qsizetype previousGraphemeBoundary(QStringView text, qsizetype offset);
/// `offset` itself where it is a boundary, else the one before it. Offsets outside the text are clamped to it.
qsizetype graphemeBoundaryAtOrBefore(const UnitSource& text, qsizetype offset);
qsizetype graphemeBoundaryAtOrBefore(QStringView text, qsizetype offset);
/// `offset` itself where it is a boundary, else the one behind it.
qsizetype graphemeBoundaryAtOrBehind(QStringView text, qsizetype offset);

/// Where a text is cut that has room for `most` units, 0 or more: at the last boundary that fits, and within its first
/// character, between code points, where that alone is longer.
qsizetype graphemeCut(QStringView text, qsizetype most);

/// The number of characters. Linear.
qsizetype graphemeCount(QStringView text);

/// Goes through a text from one character to the next, quicker than single steps.
class GraphemeWalk
{
public:
    /// The units must outlive it.
    explicit GraphemeWalk(QStringView text);
    ~GraphemeWalk();
    GraphemeWalk(const GraphemeWalk&) = delete;
    GraphemeWalk& operator=(const GraphemeWalk&) = delete;
    GraphemeWalk(GraphemeWalk&&) = delete;
    GraphemeWalk& operator=(GraphemeWalk&&) = delete;

    bool isAtEnd() const { return at_ == text_.size(); }
    /// The boundary that it stands at: 0 at first.
    qsizetype place() const { return at_; }
    /// The next character, which it goes behind; empty at the end.
    QStringView next();

private:
    struct Finder;

    qsizetype nextPlace();

    QStringView text_;
    qsizetype at_ = 0;
    std::unique_ptr<Finder> finder_;
};

} // namespace kelm
