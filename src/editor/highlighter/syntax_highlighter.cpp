#include "editor/highlighter/syntax_highlighter.h"

#include "editor/highlighter/rule_painting.h"

namespace kelm {

void SyntaxHighlighter::highlight(TextStorage* textStorage, Language language) const
{
    if (!textStorage) {
        return;
    }
    const QString text = textStorage->text();
    const EditingBracket bracket(*textStorage);
    textStorage->assignForeground(
        paintRules(text, theme.textColor.toColor().rgba(), makeRules(rules::of(language), theme)));
}

} // namespace kelm
