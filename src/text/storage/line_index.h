// Where the lines of a text begin.
#pragma once

#include "text/storage/shifted_offsets.h"
#include "text/storage/text_range.h"

#include <QStringView>

namespace kelm {

/// The starts of all lines of a text, kept right through edits without a second look at the whole text.
///
/// A line ends behind a line feed, a carriage return, the pair of both, U+0085, U+2028 or U+2029; the last line ends at
/// the end of the text and may be empty. Lines count from 0, and a text has always at least one.
class LineIndex
{
public:
    LineIndex();

    qsizetype lineCount() const { return starts_.size(); }
    /// The offset of the first unit of a line.
    qsizetype start(qsizetype line) const { return starts_.at(line); }
    /// The offset behind a line's terminator: the next line's start or the text's length.
    qsizetype end(qsizetype line) const { return line + 1 < lineCount() ? starts_.at(line + 1) : length_; }
    /// The line that holds `offset`; an offset at or past the end lies in the last line.
    qsizetype lineAt(qsizetype offset) const;
    /// How many lines end in something else than a line feed or the pair of carriage return and line feed.
    qsizetype oddTerminators() const { return oddTerminators_; }

    void rebuild(QStringView text);

    /// Takes over a replacement that `text`, as it now is, already holds: `range` of the old text became `newLength`
    /// units. `oddRemoved` says how many of the replaced and adjoining line ends were odd (`countOdd` over `affected`).
    TextEdit replace(QStringView text, TextRange range, qsizetype newLength, qsizetype oddRemoved);

    /// The range of the text that has to be looked at for a replacement of `range`: one unit more on each side, since a
    /// carriage return and a line feed that meet or part are two lines or one.
    static TextRange affected(TextRange range, qsizetype textLength);
    /// The number of odd line ends whose last unit lies in `range`.
    static qsizetype countOdd(QStringView text, TextRange range);

private:
    ShiftedOffsets starts_;
    qsizetype length_ = 0;
    qsizetype oddTerminators_ = 0;
};

/// The length of the line terminator at `offset`, 0 where none begins.
qsizetype lineTerminatorLength(QStringView text, qsizetype offset);

} // namespace kelm
