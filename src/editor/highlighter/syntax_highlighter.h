// Colours the text of an editor.
#pragma once

#include "app/language/language.h"
#include "editor/highlighter/rule_lists.h"
#include "editor/themes/editor_theme.h"
#include "text/storage/text_storage.h"

#include <QString>

#include <utility>

namespace kelm {

/// Colours a whole text by the rules of its language's family. There is no tokeniser and no state between runs: each
/// run gives every unit the theme's text colour and then applies the rules in their order, where a later one paints
/// over an earlier one. Nothing but the foreground is touched.
///
/// A run is linear in the text, whatever stands in it. Main thread only.
class SyntaxHighlighter
{
public:
    explicit SyntaxHighlighter(EditorTheme initialTheme) : theme(std::move(initialTheme)) {}

    /// What the next run takes its colours from.
    EditorTheme theme;

    /// Colours the text of `textStorage` anew, in one bracket of edits; without a storage it does nothing. A rule whose
    /// pattern does not compile is left out without a word.
    void highlight(TextStorage* textStorage, Language language) const;
};

} // namespace kelm
