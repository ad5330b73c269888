// Where characters, words and lines begin and end, as a person sees them. All offsets are UTF-16 units.
#pragma once

#include "text/storage/text_range.h"
#include "text/storage/text_tree.h"

#include <QStringView>

namespace kelm {

/// The next boundary between user-perceived characters (extended grapheme clusters) behind `offset`; the text's length
/// at its end. A pair of carriage return and line feed is one character. Looks at a stretch around the offset only,
/// whatever the length of the text.
qsizetype nextGraphemeBoundary(QStringView text, qsizetype offset);
/// The boundary before `offset`; 0 at the top.
qsizetype previousGraphemeBoundary(QStringView text, qsizetype offset);
/// `offset` itself where it is a boundary, else the one before it.
qsizetype graphemeBoundaryAtOrBefore(QStringView text, qsizetype offset);
/// The number of user-perceived characters.
qsizetype graphemeCount(QStringView text);

/// The end of the next word: white space is passed over, then a run of letters, digits, marks and underscores, or a run
/// of other signs.
qsizetype nextWordEnd(QStringView text, qsizetype offset);
/// The start of the word before `offset`, by the same classes.
qsizetype previousWordStart(QStringView text, qsizetype offset);
/// The run of one class around `offset` that a double click selects; it never crosses a line end.
TextRange wordAt(QStringView text, qsizetype offset);

/// The same of a tree. They look at a few hundred units around the offset, and further only where a word or a run of
/// white space goes on further.
qsizetype nextGraphemeBoundary(const TextTree& text, qsizetype offset);
qsizetype previousGraphemeBoundary(const TextTree& text, qsizetype offset);
qsizetype graphemeBoundaryAtOrBefore(const TextTree& text, qsizetype offset);
qsizetype nextWordEnd(const TextTree& text, qsizetype offset);
qsizetype previousWordStart(const TextTree& text, qsizetype offset);
TextRange wordAt(const TextTree& text, qsizetype offset);

} // namespace kelm
