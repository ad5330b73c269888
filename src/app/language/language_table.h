// The languages: one case and one row each. The order is that of menus.
#pragma once

#include <QtGlobal>

#include <array>
#include <iterator>

namespace kelm {

struct LanguageCases
{
    enum Case : quint8 {
        plainText,
        swift,
        python,
        javascript,
        typescript,
        json,
        xml,
        html,
        css,
        markdown,
        yaml,
        go,
        rust,
        c,
        cpp,
        java,
        shell,
        ruby,
        php,
        sql,
    };
};

/// By what the regions of code that fold are found.
enum class CodeFolding { braces, indents, tags };

struct LanguageRow
{
    LanguageCases::Case language;
    const char* rawValue;
    /// The extension, without a dot, of a temporary or suggested file.
    const char* fileExtension;
    /// The symbol in the status bar.
    const char* iconName;
    /// The extensions of its files and its words in lesson links, which share one table; the rest of the array is null.
    std::array<const char*, 4> words;
    CodeFolding folding;
    /// Whether a text that has no file can be run.
    bool runsWithoutFile;
};

namespace languages {

using enum LanguageCases::Case;
using enum CodeFolding;

inline constexpr const char* codeIcon = "chevron.left.forwardslash.chevron.right";
inline constexpr const char* bracesIcon = "curlybraces";
inline constexpr const char* plainIcon = "doc";

// clang-format off
inline constexpr LanguageRow table[] = {
    {plainText, "Plain Text", "txt", plainIcon, {}, braces, false},
    {swift, "Swift", "swift", "swift", {"swift"}, braces, true},
    {python, "Python", "py", codeIcon, {"py", "pyw", "python"}, indents, true},
    {javascript, "JavaScript", "js", bracesIcon, {"js", "mjs", "cjs", "javascript"}, braces, true},
    {typescript, "TypeScript", "ts", bracesIcon, {"ts", "tsx", "typescript"}, braces, true},
    {json, "JSON", "json", "doc.text", {"json"}, braces, false},
    {xml, "XML", "xml", codeIcon, {"xml", "plist"}, tags, false},
    {html, "HTML", "html", codeIcon, {"html", "htm"}, tags, false},
    {css, "CSS", "css", "paintbrush", {"css", "scss", "sass"}, braces, false},
    {markdown, "Markdown", "md", "doc.richtext", {"md", "markdown"}, braces, false},
    {yaml, "YAML", "yml", plainIcon, {"yml", "yaml"}, braces, false},
    {go, "Go", "go", plainIcon, {"go", "golang"}, braces, true},
    {rust, "Rust", "rs", plainIcon, {"rs", "rust"}, braces, false},
    {c, "C", "c", plainIcon, {"c", "h"}, braces, false},
    {cpp, "C++", "cpp", plainIcon, {"cpp", "cc", "cxx", "hpp"}, braces, false},
    {java, "Java", "java", plainIcon, {"java"}, braces, false},
    {shell, "Shell", "sh", "terminal", {"sh", "bash", "zsh", "shell"}, braces, true},
    {ruby, "Ruby", "rb", plainIcon, {"rb", "ruby"}, braces, true},
    {php, "PHP", "php", plainIcon, {"php"}, braces, true},
    {sql, "SQL", "sql", plainIcon, {"sql"}, braces, false},
};
// clang-format on

static_assert(
    [] {
        for (std::size_t index = 0; index < std::size(table); ++index) {
            if (table[index].language != index) {
                return false;
            }
        }
        return true;
    }(),
    "a row stands at the place of its case");

} // namespace languages

} // namespace kelm
