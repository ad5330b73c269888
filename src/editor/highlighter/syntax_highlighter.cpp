#include "editor/highlighter/syntax_highlighter.h"

#include "editor/highlighter/rule_painting.h"

namespace kelm {

void SyntaxHighlighter::highlight(TextStorage* textStorage, Language language) const
{
    if (!textStorage) {
        return;
    }
    const QString& text = textStorage->text();
    const EditingBracket bracket(*textStorage);
    switch (language) {
    case Language::swift:
        return highlightSwift(*textStorage, text);
    case Language::python:
        return highlightPython(*textStorage, text);
    case Language::javascript:
    case Language::typescript:
        return highlightJavaScript(*textStorage, text);
    case Language::json:
        return highlightJSON(*textStorage, text);
    case Language::xml:
    case Language::html:
        return highlightXML(*textStorage, text);
    case Language::css:
        return highlightCSS(*textStorage, text);
    case Language::markdown:
        return highlightMarkdown(*textStorage, text);
    case Language::go:
        return highlightGo(*textStorage, text);
    case Language::rust:
        return highlightRust(*textStorage, text);
    case Language::shell:
        return highlightShell(*textStorage, text);
    case Language::plainText:
    case Language::yaml:
    case Language::c:
    case Language::cpp:
    case Language::java:
    case Language::ruby:
    case Language::php:
    case Language::sql:
        return highlightGeneric(*textStorage, text);
    }
}

void SyntaxHighlighter::highlightSwift(TextStorage& textStorage, const QString& text) const
{
    apply(rules::swift, textStorage, text);
}

void SyntaxHighlighter::highlightPython(TextStorage& textStorage, const QString& text) const
{
    apply(rules::python, textStorage, text);
}

void SyntaxHighlighter::highlightJavaScript(TextStorage& textStorage, const QString& text) const
{
    apply(rules::javaScript, textStorage, text);
}

void SyntaxHighlighter::highlightJSON(TextStorage& textStorage, const QString& text) const
{
    apply(rules::json, textStorage, text);
}

void SyntaxHighlighter::highlightXML(TextStorage& textStorage, const QString& text) const
{
    apply(rules::xml, textStorage, text);
}

void SyntaxHighlighter::highlightCSS(TextStorage& textStorage, const QString& text) const
{
    apply(rules::css, textStorage, text);
}

void SyntaxHighlighter::highlightMarkdown(TextStorage& textStorage, const QString& text) const
{
    apply(rules::markdown, textStorage, text);
}

void SyntaxHighlighter::highlightShell(TextStorage& textStorage, const QString& text) const
{
    apply(rules::shell, textStorage, text);
}

void SyntaxHighlighter::highlightGo(TextStorage& textStorage, const QString& text) const
{
    apply(rules::go, textStorage, text);
}

void SyntaxHighlighter::highlightRust(TextStorage& textStorage, const QString& text) const
{
    apply(rules::rust, textStorage, text);
}

void SyntaxHighlighter::highlightGeneric(TextStorage& textStorage, const QString& text) const
{
    apply(rules::generic, textStorage, text);
}

void SyntaxHighlighter::apply(RuleList list, TextStorage& textStorage, const QString& text) const
{
    textStorage.assignForeground(paintRules(text, theme.textColor.toColor().rgba(), makeRules(list, theme)));
}

} // namespace kelm
