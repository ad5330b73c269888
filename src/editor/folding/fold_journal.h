// What folding has replaced in a text, so that all of it can be put back.
#pragma once

#include "text/storage/text_range.h"
#include "text/storage/text_tree.h"

#include <optional>
#include <vector>

namespace kelm {

/// The replacements that folding and unfolding made in a text, in their order.
///
/// A fold is known by the line it starts at, and that number alone does not lead back to it: folds above change the
/// numbers of the lines below, one fold can lie in the body of another, and a text may hold the placeholder's words by
/// itself. So each replacement is kept with its place, and taking back the last one first, down to the first, gives the
/// text as it was, whatever the folds were and in whatever order they were undone.
///
/// An unfolding that takes back a fold exactly removes it from the journal; another one, which put a body in a wrong
/// place, is a replacement itself. Other edits of the text move the replacements along; one that swallows what a
/// replacement has put there takes the replacement with it, and one that takes a part of it leaves the rest standing
/// for the whole.
class FoldJournal
{
public:
    struct Replacement
    {
        /// Where it stands in the text as it was right after it.
        qsizetype location = 0;
        /// What was put there.
        qsizetype length = 0;
        /// What stood there.
        TextTree original;
        /// The line that an open fold is known by, else 0.
        qsizetype startLine = 0;

        qsizetype end() const { return location + length; }
        /// How much longer the text before it is.
        qsizetype growth() const { return original.length() - length; }
    };

    bool isEmpty() const { return replacements_.empty(); }
    void clear() { replacements_.clear(); }

    /// A fold, known by `startLine`, has replaced `body` at `placeholder.location` by the placeholder.
    void folded(qsizetype startLine, TextRange placeholder, const TextTree& body);

    /// The fold known by `startLine` was undone by putting its body, `bodyLength` long, in the place of `placeholder`,
    /// which held `replaced`.
    void unfolded(qsizetype startLine, TextRange placeholder, const TextTree& replaced, qsizetype bodyLength);

    /// A fold that still stands.
    struct OpenFold
    {
        /// What it is known by.
        qsizetype startLine = 0;
        /// Where its placeholder, or what is left of it, stands in the text now.
        TextRange placeholder;
        TextTree body;
    };
    /// The folds whose placeholders are seen, not lying in the body of another one.
    std::vector<OpenFold> openFolds();
    /// The fold known by `startLine`, one of those, was undone by putting its body in the place of its placeholder.
    void takenBack(qsizetype startLine);

    /// The text was edited by somebody else.
    void textEdited(const TextEdit& edit);

    /// Where a range of the text as it is stood before all this was replaced. One that takes a part of what was put in
    /// takes all of what stood there; a place within goes to its end.
    TextRange wholeRange(TextRange range) const;
    /// Where a range of the text before all this is seen: by what was put in, where a part of it was replaced.
    TextRange shownRange(TextRange whole) const;

    /// A text in which all this was replaced, as it was before.
    TextTree takenBackIn(TextTree text) const;

    /// Takes the last replacement out; it is up to the caller to take it back in the text.
    std::optional<Replacement> takeLast();

private:
    using Iterator = std::vector<Replacement>::iterator;

    /// Where what a replacement has put there stands in the text now, if it was not replaced in turn.
    std::optional<qsizetype> currentLocation(Iterator replacement) const;
    /// Removes a replacement that was taken back while later ones stand.
    void removeTakenBack(Iterator replacement);

    std::vector<Replacement> replacements_;
};

} // namespace kelm
