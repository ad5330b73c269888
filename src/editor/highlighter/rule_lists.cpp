#include "editor/highlighter/rule_lists.h"

#include "editor/highlighter/word_lists.h"

namespace kelm::rules {

namespace {

using Theme = EditorTheme;
constexpr auto everyLine = RegularExpression::anchorsMatchLines;

constexpr RuleEntry swiftRules[] = {
    {uR"(//.*$)", &Theme::commentColor, everyLine},
    {uR"(/\*[\s\S]*?\*/)", &Theme::commentColor},
    {uR"("""[\s\S]*?""")", &Theme::stringColor},
    {uR"("(?:[^"\\]|\\.)*")", &Theme::stringColor},
    {uR"(\b\d+\.?\d*\b)", &Theme::numberColor},
    {words::swiftKeywords, &Theme::keywordColor},
    {words::swiftTypes, &Theme::typeColor},
    {uR"(\b([a-zA-Z_][a-zA-Z0-9_]*)\s*(?=\())", &Theme::functionColor},
    {uR"(@[a-zA-Z_][a-zA-Z0-9_]*)", &Theme::attributeColor},
};

constexpr RuleEntry pythonRules[] = {
    {uR"(#.*$)", &Theme::commentColor, everyLine},
    {uR"("""[\s\S]*?""")", &Theme::stringColor},
    {uR"('''[\s\S]*?''')", &Theme::stringColor},
    {uR"("(?:[^"\\]|\\.)*")", &Theme::stringColor},
    {uR"('(?:[^'\\]|\\.)*')", &Theme::stringColor},
    {uR"(\b\d+\.?\d*\b)", &Theme::numberColor},
    {words::pythonKeywords, &Theme::keywordColor},
    {words::pythonBuiltins, &Theme::functionColor},
    {uR"(@[a-zA-Z_][a-zA-Z0-9_]*)", &Theme::attributeColor},
    {uR"(\bdef\s+([a-zA-Z_][a-zA-Z0-9_]*))", &Theme::functionColor},
    {uR"(\bclass\s+([a-zA-Z_][a-zA-Z0-9_]*))", &Theme::typeColor},
};

constexpr RuleEntry javaScriptRules[] = {
    {uR"(//.*$)", &Theme::commentColor, everyLine},
    {uR"(/\*[\s\S]*?\*/)", &Theme::commentColor},
    {uR"(`[^`]*`)", &Theme::stringColor},
    {uR"("(?:[^"\\]|\\.)*")", &Theme::stringColor},
    {uR"('(?:[^'\\]|\\.)*')", &Theme::stringColor},
    {uR"(\b\d+\.?\d*\b)", &Theme::numberColor},
    {words::javaScriptKeywords, &Theme::keywordColor},
    {uR"(\b([a-zA-Z_$][a-zA-Z0-9_$]*)\s*(?=\())", &Theme::functionColor},
    {uR"(=>)", &Theme::operatorColor},
};

constexpr RuleEntry jsonRules[] = {
    {uR"("[^"]*"\s*(?=:))", &Theme::keywordColor},
    {uR"(:\s*"[^"]*")", &Theme::stringColor},
    {uR"(:\s*-?\d+\.?\d*)", &Theme::numberColor},
    {uR"(:\s*(true|false|null)\b)", &Theme::keywordColor},
};

constexpr RuleEntry xmlRules[] = {
    {uR"(<!--[\s\S]*?-->)", &Theme::commentColor},
    {uR"(</?[a-zA-Z][a-zA-Z0-9-]*)", &Theme::keywordColor},
    {uR"(/?>)", &Theme::keywordColor},
    {uR"(\b[a-zA-Z-]+(?==))", &Theme::attributeColor},
    {uR"("[^"]*")", &Theme::stringColor},
    {uR"('[^']*')", &Theme::stringColor},
};

constexpr RuleEntry cssRules[] = {
    {uR"(/\*[\s\S]*?\*/)", &Theme::commentColor},
    {uR"([.#]?[a-zA-Z_-][a-zA-Z0-9_-]*\s*(?=\{))", &Theme::keywordColor},
    {uR"([a-zA-Z-]+(?=\s*:))", &Theme::attributeColor},
    {uR"(:\s*[^;{]+)", &Theme::stringColor},
    {uR"(\d+\.?\d*(px|em|rem|%|vh|vw)?)", &Theme::numberColor},
    {uR"(#[0-9a-fA-F]{3,8})", &Theme::numberColor},
};

constexpr RuleEntry markdownRules[] = {
    {uR"(^#{1,6}\s.*$)", &Theme::keywordColor, everyLine},
    {uR"(\*\*[^*]+\*\*)", &Theme::functionColor},
    {uR"(__[^_]+__)", &Theme::functionColor},
    {uR"(\*[^*]+\*)", &Theme::typeColor},
    {uR"(_[^_]+_)", &Theme::typeColor},
    {uR"(`[^`]+`)", &Theme::stringColor},
    {uR"(```[\s\S]*?```)", &Theme::stringColor},
    {uR"(\[[^\]]+\]\([^)]+\))", &Theme::attributeColor},
    {uR"(^\s*[-*+]\s)", &Theme::operatorColor, everyLine},
    {uR"(^\s*\d+\.\s)", &Theme::operatorColor, everyLine},
};

constexpr RuleEntry shellRules[] = {
    {uR"(#.*$)", &Theme::commentColor, everyLine}, {uR"("(?:[^"\\]|\\.)*")", &Theme::stringColor},
    {uR"('[^']*')", &Theme::stringColor},          {uR"(\$[a-zA-Z_][a-zA-Z0-9_]*)", &Theme::variableColor},
    {uR"(\$\{[^}]+\})", &Theme::variableColor},    {words::shellKeywords, &Theme::keywordColor},
};

constexpr RuleEntry goRules[] = {
    {uR"(//.*$)", &Theme::commentColor, everyLine},
    {uR"(/\*[\s\S]*?\*/)", &Theme::commentColor},
    {uR"("(?:[^"\\]|\\.)*")", &Theme::stringColor},
    {uR"(`[^`]*`)", &Theme::stringColor},
    {uR"(\b\d+\.?\d*\b)", &Theme::numberColor},
    {words::goKeywords, &Theme::keywordColor},
    {words::goTypes, &Theme::typeColor},
    {uR"(\bfunc\s+([a-zA-Z_][a-zA-Z0-9_]*))", &Theme::functionColor},
};

constexpr RuleEntry rustRules[] = {
    {uR"(//.*$)", &Theme::commentColor, everyLine},
    {uR"(/\*[\s\S]*?\*/)", &Theme::commentColor},
    {uR"("(?:[^"\\]|\\.)*")", &Theme::stringColor},
    {uR"(r#"[\s\S]*?"#)", &Theme::stringColor},
    {uR"(\b\d+\.?\d*\b)", &Theme::numberColor},
    {words::rustKeywords, &Theme::keywordColor},
    {words::rustTypes, &Theme::typeColor},
    {uR"([a-zA-Z_][a-zA-Z0-9_]*!)", &Theme::functionColor},
    {uR"('[a-zA-Z_][a-zA-Z0-9_]*)", &Theme::attributeColor},
};

constexpr RuleEntry genericRules[] = {
    {uR"("(?:[^"\\]|\\.)*")", &Theme::stringColor},
    {uR"('(?:[^'\\]|\\.)*')", &Theme::stringColor},
    {uR"(\b\d+\.?\d*\b)", &Theme::numberColor},
};

} // namespace

constinit const RuleList swift = swiftRules;
constinit const RuleList python = pythonRules;
constinit const RuleList javaScript = javaScriptRules;
constinit const RuleList json = jsonRules;
constinit const RuleList xml = xmlRules;
constinit const RuleList css = cssRules;
constinit const RuleList markdown = markdownRules;
constinit const RuleList shell = shellRules;
constinit const RuleList go = goRules;
constinit const RuleList rust = rustRules;
constinit const RuleList generic = genericRules;

namespace {

struct LanguageRules
{
    Language::Case language;
    RuleList rules;
};

/// All others have the generic rules.
constexpr LanguageRules rulesOfLanguages[] = {
    {Language::swift, swiftRules},
    {Language::python, pythonRules},
    {Language::javascript, javaScriptRules},
    {Language::typescript, javaScriptRules},
    {Language::json, jsonRules},
    {Language::xml, xmlRules},
    {Language::html, xmlRules},
    {Language::css, cssRules},
    {Language::markdown, markdownRules},
    {Language::go, goRules},
    {Language::rust, rustRules},
    {Language::shell, shellRules},
};

} // namespace

RuleList of(Language language)
{
    for (const LanguageRules& row : rulesOfLanguages) {
        if (row.language == language) {
            return row.rules;
        }
    }
    return generic;
}

} // namespace kelm::rules

namespace kelm {

QString RuleEntry::patternText() const
{
    if (words.empty()) {
        return pattern.toString();
    }
    QString text = QStringLiteral("\\b(");
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (i > 0) {
            text += u'|';
        }
        text += words[i];
    }
    text += QStringView(uR"()\b)");
    return text;
}

std::vector<HighlightRule> makeRules(RuleList list, const EditorTheme& theme)
{
    std::vector<HighlightRule> rules;
    rules.reserve(list.size());
    for (const RuleEntry& entry : list) {
        rules.push_back({entry.patternText(), (theme.*entry.color).toColor(), entry.options});
    }
    return rules;
}

} // namespace kelm
