// Which words completion offers for a begun one, and what a chosen one puts in.
#pragma once

#include "app/language/language.h"
#include "editor/kept_ready/completion_item.h"

#include <QList>
#include <QString>

namespace kelm {

/// The longest list that is offered.
inline constexpr qsizetype mostCompletions = 15;

/// The keywords of the language and the snippets that begin with `word` in any letter case, best first; with equal
/// scores a keyword comes before a snippet. At most `mostCompletions`.
QList<CompletionItem> getSuggestions(const QString& word, Language language);

/// How well `text` fits a begun word: 100 where it begins with `prefix` exactly, 50 where it does so in another letter
/// case, and up to 20 more the closer the numbers of characters are.
int relevanceScore(const QString& text, const QString& prefix);

/// A snippet's body with each placeholder replaced by its default text, and nothing for the caret's place.
QString expandedSnippet(QString body);

} // namespace kelm
