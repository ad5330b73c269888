// Where the characters and words of a text begin and end, as a person sees them. All offsets are UTF-16 units.
#pragma once

#include "platform/text/grapheme_boundaries.h"
#include "text/storage/text_range.h"
#include "text/storage/text_tree.h"

#include <QStringView>

namespace kelm {

/// The boundaries between characters of a tree, as those of a view.
qsizetype nextGraphemeBoundary(const TextTree& text, qsizetype offset);
qsizetype previousGraphemeBoundary(const TextTree& text, qsizetype offset);
qsizetype graphemeBoundaryAtOrBefore(const TextTree& text, qsizetype offset);

/// The end of the next word: white space is passed over, then a run of characters that begin with a letter, a digit, a
/// mark or an underscore, or a run of other signs. Within a run of a script that has no blanks between its words (Thai,
/// Khmer, Chinese and others) a word ends where ICU's dictionaries end it; a name in code with its digits and
/// underscores is one word in any script. All places are boundaries between characters; an offset within a character
/// counts as its start.
qsizetype nextWordEnd(QStringView text, qsizetype offset);
/// The start of the word before `offset`, by the same rules; an offset within a character counts as its end.
qsizetype previousWordStart(QStringView text, qsizetype offset);
/// The word, the white space or the run of signs around `offset` that a double click selects; it never crosses a line
/// end. At a line's end it is what stands before it.
TextRange wordAt(QStringView text, qsizetype offset);

/// The same of a tree. They look at some hundred units around the offset, and further only where a word or a run of
/// white space goes on further.
qsizetype nextWordEnd(const TextTree& text, qsizetype offset);
qsizetype previousWordStart(const TextTree& text, qsizetype offset);
TextRange wordAt(const TextTree& text, qsizetype offset);

} // namespace kelm
