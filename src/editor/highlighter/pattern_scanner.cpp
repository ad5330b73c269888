#include "editor/highlighter/pattern_scanner.h"

#include <algorithm>
#include <array>

namespace kelm {

namespace {

using namespace scanners;

struct KnownPattern
{
    QStringView pattern;
    RegularExpression::Option options;
    PatternScanner scanner;
};

const auto& knownPatterns()
{
    constexpr auto none = RegularExpression::none;
    constexpr auto everyLine = RegularExpression::anchorsMatchLines;
    static const std::array known{
        // Comments and strings.
        KnownPattern{uR"(//.*$)", everyLine, ToLineEnd{u"//"}},
        KnownPattern{uR"(#.*$)", everyLine, ToLineEnd{u"#"}},
        KnownPattern{uR"(/\*[\s\S]*?\*/)", none, Enclosed{u"/*", 0, u"*/", 1}},
        KnownPattern{uR"(<!--[\s\S]*?-->)", none, Enclosed{u"<!--", 1, u"-->", 2}},
        KnownPattern{uR"("""[\s\S]*?""")", none, Enclosed{uR"(""")", 0, uR"(""")", 0}},
        KnownPattern{uR"('''[\s\S]*?''')", none, Enclosed{u"'''", 0, u"'''", 0}},
        KnownPattern{uR"(```[\s\S]*?```)", none, Enclosed{u"```", 0, u"```", 0}},
        KnownPattern{uR"(r#"[\s\S]*?"#)", none, Enclosed{uR"(r#")", 1, uR"("#)", 1}},
        KnownPattern{uR"__("(?:[^"\\]|\\.)*")__", none, EscapedString{u'"'}},
        KnownPattern{uR"('(?:[^'\\]|\\.)*')", none, EscapedString{u'\''}},
        KnownPattern{uR"("[^"]*")", none, MarkedSpan{u'"', 1, 0}},
        KnownPattern{uR"('[^']*')", none, MarkedSpan{u'\'', 1, 0}},
        KnownPattern{uR"(`[^`]*`)", none, MarkedSpan{u'`', 1, 0}},
        KnownPattern{uR"(`[^`]+`)", none, MarkedSpan{u'`', 1, 1}},
        // Numbers, names and signs.
        KnownPattern{uR"(\b\d+\.?\d*\b)", none, Number{}},
        KnownPattern{uR"(\b([a-zA-Z_][a-zA-Z0-9_]*)\s*(?=\())", none, CalledName{false}},
        KnownPattern{uR"(\b([a-zA-Z_$][a-zA-Z0-9_$]*)\s*(?=\())", none, CalledName{true}},
        KnownPattern{uR"(\bdef\s+([a-zA-Z_][a-zA-Z0-9_]*))", none, IntroducedName{u"def"}},
        KnownPattern{uR"(\bclass\s+([a-zA-Z_][a-zA-Z0-9_]*))", none, IntroducedName{u"class"}},
        KnownPattern{uR"(\bfunc\s+([a-zA-Z_][a-zA-Z0-9_]*))", none, IntroducedName{u"func"}},
        KnownPattern{uR"(@[a-zA-Z_][a-zA-Z0-9_]*)", none, SignedName{u'@'}},
        KnownPattern{uR"('[a-zA-Z_][a-zA-Z0-9_]*)", none, SignedName{u'\''}},
        KnownPattern{uR"(\$[a-zA-Z_][a-zA-Z0-9_]*)", none, SignedName{u'$'}},
        KnownPattern{uR"(\$\{[^}]+\})", none, BracedVariable{}},
        KnownPattern{uR"([a-zA-Z_][a-zA-Z0-9_]*!)", none, MacroName{}},
        KnownPattern{uR"(=>)", none, Literal{u"=>"}},
        // JSON.
        KnownPattern{uR"("[^"]*"\s*(?=:))", none, JsonKey{}},
        KnownPattern{uR"(:\s*"[^"]*")", none, JsonStringValue{}},
        KnownPattern{uR"(:\s*-?\d+\.?\d*)", none, JsonNumberValue{}},
        KnownPattern{uR"(:\s*(true|false|null)\b)", none, JsonLiteralValue{}},
        // Markup.
        KnownPattern{uR"(</?[a-zA-Z][a-zA-Z0-9-]*)", none, TagName{}},
        KnownPattern{uR"(/?>)", none, TagEnd{}},
        KnownPattern{uR"(\b[a-zA-Z-]+(?==))", none, AttributeName{}},
        // Style sheets.
        KnownPattern{uR"([.#]?[a-zA-Z_-][a-zA-Z0-9_-]*\s*(?=\{))", none, SelectorName{}},
        KnownPattern{uR"([a-zA-Z-]+(?=\s*:))", none, PropertyName{}},
        KnownPattern{uR"(:\s*[^;{]+)", none, PropertyValue{}},
        KnownPattern{uR"(\d+\.?\d*(px|em|rem|%|vh|vw)?)", none, Measure{}},
        KnownPattern{uR"(#[0-9a-fA-F]{3,8})", none, HexColor{}},
        // Markdown.
        KnownPattern{uR"(^#{1,6}\s.*$)", everyLine, Heading{}},
        KnownPattern{uR"(\*\*[^*]+\*\*)", none, MarkedSpan{u'*', 2, 1}},
        KnownPattern{uR"(__[^_]+__)", none, MarkedSpan{u'_', 2, 1}},
        KnownPattern{uR"(\*[^*]+\*)", none, MarkedSpan{u'*', 1, 1}},
        KnownPattern{uR"(_[^_]+_)", none, MarkedSpan{u'_', 1, 1}},
        KnownPattern{uR"(\[[^\]]+\]\([^)]+\))", none, Link{}},
        KnownPattern{uR"(^\s*[-*+]\s)", everyLine, ListMarker<Bullet>{}},
        KnownPattern{uR"(^\s*\d+\.\s)", everyLine, ListMarker<Ordinal>{}},
    };
    return known;
}

/// The words of `\b(one|two|@three)\b`, if the pattern is one and the table of words can take them.
std::optional<WordList> wordListOf(QStringView pattern)
{
    const QStringView opener = uR"(\b()";
    const QStringView closer = uR"()\b)";
    if (!pattern.startsWith(opener) || !pattern.endsWith(closer) || pattern.size() < opener.size() + closer.size()) {
        return {};
    }
    WordList list;
    std::size_t count = 0;
    for (const QStringView entry : pattern.sliced(opener.size()).chopped(closer.size()).tokenize(u'|')) {
        const bool hasSign = entry.startsWith(u'@');
        const QStringView word = entry.sliced(hasSign ? 1 : 0);
        const bool isPlain = !word.isEmpty() && word.size() <= WordTable::longestWord &&
                             std::all_of(word.begin(), word.end(), [](QChar c) { return isNamePart(c.unicode()); });
        if (!isPlain || ++count > WordTable::mostWords) {
            return {};
        }
        (hasSign ? list.signedWords : list.words).insert(word);
    }
    return list;
}

} // namespace

std::optional<PatternScanner> scannerFor(QStringView pattern, RegularExpression::Options options)
{
    const auto& known = knownPatterns();
    const auto same = [&](const KnownPattern& entry) { return entry.options == options && entry.pattern == pattern; };
    if (const auto entry = std::find_if(known.begin(), known.end(), same); entry != known.end()) {
        return entry->scanner;
    }
    if (options == RegularExpression::none) {
        if (std::optional<WordList> words = wordListOf(pattern)) {
            return PatternScanner(std::move(*words));
        }
    }
    return {};
}

} // namespace kelm
