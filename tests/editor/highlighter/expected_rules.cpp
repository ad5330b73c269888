#include "editor/highlighter/expected_rules.h"

namespace kelm::test {

const std::vector<ExpectedFamily>& expectedFamilies()
{
    using Theme = EditorTheme;
    const auto pattern = [](const char16_t* text) { return QString::fromUtf16(text); };
    constexpr auto none = RegularExpression::none;
    constexpr auto everyLine = RegularExpression::anchorsMatchLines;
    static const std::vector<ExpectedFamily> families{
        {"Swift",
         {
             {pattern(uR"(//.*$)"), &Theme::commentColor, everyLine},
             {pattern(uR"(/\*[\s\S]*?\*/)"), &Theme::commentColor, none},
             {pattern(uR"("""[\s\S]*?""")"), &Theme::stringColor, none},
             {pattern(uR"("(?:[^"\\]|\\.)*")"), &Theme::stringColor, none},
             {pattern(uR"(\b\d+\.?\d*\b)"), &Theme::numberColor, none},
             {pattern(uR"(\b(import|class|struct|enum|protocol|extension|func|var|let|if|else|guard|switch|)"
                      uR"(case|default|for|while|repeat|do|try|catch|throw|throws|rethrows|return|break|)"
                      uR"(continue|fallthrough|in|where|is|as|nil|true|false|self|Self|super|init|deinit|get|)"
                      uR"(set|willSet|didSet|subscript|static|override|final|private|fileprivate|internal|public|)"
                      uR"(open|lazy|weak|unowned|mutating|nonmutating|convenience|required|optional|some|any|)"
                      uR"(async|await|@main|@State|@Binding|@Published|@ObservedObject|@StateObject|@Environment|)"
                      uR"(@escaping|@autoclosure|@available|@objc|@discardableResult)\b)"),
              &Theme::keywordColor, none},
             {pattern(uR"(\b(String|Int|Double|Float|Bool|Array|Dictionary|Set|Optional|Any|AnyObject|Void|)"
                      uR"(Never|Result|Error|Codable|Hashable|Equatable|View|Text|Button|VStack|HStack|ZStack|)"
                      uR"(List|ForEach|NavigationView|NSView|NSViewController|NSWindow|URL|Data|Date|UUID)\b)"),
              &Theme::typeColor, none},
             {pattern(uR"(\b([a-zA-Z_][a-zA-Z0-9_]*)\s*(?=\())"), &Theme::functionColor, none},
             {pattern(uR"(@[a-zA-Z_][a-zA-Z0-9_]*)"), &Theme::attributeColor, none},
         }},
        {"Python",
         {
             {pattern(uR"(#.*$)"), &Theme::commentColor, everyLine},
             {pattern(uR"("""[\s\S]*?""")"), &Theme::stringColor, none},
             {pattern(uR"('''[\s\S]*?''')"), &Theme::stringColor, none},
             {pattern(uR"("(?:[^"\\]|\\.)*")"), &Theme::stringColor, none},
             {pattern(uR"('(?:[^'\\]|\\.)*')"), &Theme::stringColor, none},
             {pattern(uR"(\b\d+\.?\d*\b)"), &Theme::numberColor, none},
             {pattern(uR"(\b(and|as|assert|async|await|break|class|continue|def|del|elif|else|except|finally|)"
                      uR"(for|from|global|if|import|in|is|lambda|nonlocal|not|or|pass|raise|return|try|while|)"
                      uR"(with|yield|True|False|None)\b)"),
              &Theme::keywordColor, none},
             {pattern(uR"(\b(print|len|range|str|int|float|list|dict|set|tuple|open|input|type|isinstance|)"
                      uR"(hasattr|getattr|setattr|enumerate|zip|map|filter|sorted|reversed|sum|min|max|abs)\b)"),
              &Theme::functionColor, none},
             {pattern(uR"(@[a-zA-Z_][a-zA-Z0-9_]*)"), &Theme::attributeColor, none},
             {pattern(uR"(\bdef\s+([a-zA-Z_][a-zA-Z0-9_]*))"), &Theme::functionColor, none},
             {pattern(uR"(\bclass\s+([a-zA-Z_][a-zA-Z0-9_]*))"), &Theme::typeColor, none},
         }},
        {"JavaScript",
         {
             {pattern(uR"(//.*$)"), &Theme::commentColor, everyLine},
             {pattern(uR"(/\*[\s\S]*?\*/)"), &Theme::commentColor, none},
             {pattern(uR"(`[^`]*`)"), &Theme::stringColor, none},
             {pattern(uR"("(?:[^"\\]|\\.)*")"), &Theme::stringColor, none},
             {pattern(uR"('(?:[^'\\]|\\.)*')"), &Theme::stringColor, none},
             {pattern(uR"(\b\d+\.?\d*\b)"), &Theme::numberColor, none},
             {pattern(uR"(\b(break|case|catch|class|const|continue|debugger|default|delete|do|else|export|)"
                      uR"(extends|finally|for|function|if|import|in|instanceof|let|new|return|static|super|)"
                      uR"(switch|this|throw|try|typeof|var|void|while|with|yield|async|await|of|true|false|)"
                      uR"(null|undefined|NaN|Infinity)\b)"),
              &Theme::keywordColor, none},
             {pattern(uR"(\b([a-zA-Z_$][a-zA-Z0-9_$]*)\s*(?=\())"), &Theme::functionColor, none},
             {pattern(uR"(=>)"), &Theme::operatorColor, none},
         }},
        {"JSON",
         {
             {pattern(uR"("[^"]*"\s*(?=:))"), &Theme::keywordColor, none},
             {pattern(uR"(:\s*"[^"]*")"), &Theme::stringColor, none},
             {pattern(uR"(:\s*-?\d+\.?\d*)"), &Theme::numberColor, none},
             {pattern(uR"(:\s*(true|false|null)\b)"), &Theme::keywordColor, none},
         }},
        {"XML",
         {
             {pattern(uR"(<!--[\s\S]*?-->)"), &Theme::commentColor, none},
             {pattern(uR"(</?[a-zA-Z][a-zA-Z0-9-]*)"), &Theme::keywordColor, none},
             {pattern(uR"(/?>)"), &Theme::keywordColor, none},
             {pattern(uR"(\b[a-zA-Z-]+(?==))"), &Theme::attributeColor, none},
             {pattern(uR"("[^"]*")"), &Theme::stringColor, none},
             {pattern(uR"('[^']*')"), &Theme::stringColor, none},
         }},
        {"CSS",
         {
             {pattern(uR"(/\*[\s\S]*?\*/)"), &Theme::commentColor, none},
             {pattern(uR"([.#]?[a-zA-Z_-][a-zA-Z0-9_-]*\s*(?=\{))"), &Theme::keywordColor, none},
             {pattern(uR"([a-zA-Z-]+(?=\s*:))"), &Theme::attributeColor, none},
             {pattern(uR"(:\s*[^;{]+)"), &Theme::stringColor, none},
             {pattern(uR"(\d+\.?\d*(px|em|rem|%|vh|vw)?)"), &Theme::numberColor, none},
             {pattern(uR"(#[0-9a-fA-F]{3,8})"), &Theme::numberColor, none},
         }},
        {"Markdown",
         {
             {pattern(uR"(^#{1,6}\s.*$)"), &Theme::keywordColor, everyLine},
             {pattern(uR"(\*\*[^*]+\*\*)"), &Theme::functionColor, none},
             {pattern(uR"(__[^_]+__)"), &Theme::functionColor, none},
             {pattern(uR"(\*[^*]+\*)"), &Theme::typeColor, none},
             {pattern(uR"(_[^_]+_)"), &Theme::typeColor, none},
             {pattern(uR"(`[^`]+`)"), &Theme::stringColor, none},
             {pattern(uR"(```[\s\S]*?```)"), &Theme::stringColor, none},
             {pattern(uR"(\[[^\]]+\]\([^)]+\))"), &Theme::attributeColor, none},
             {pattern(uR"(^\s*[-*+]\s)"), &Theme::operatorColor, everyLine},
             {pattern(uR"(^\s*\d+\.\s)"), &Theme::operatorColor, everyLine},
         }},
        {"Shell",
         {
             {pattern(uR"(#.*$)"), &Theme::commentColor, everyLine},
             {pattern(uR"("(?:[^"\\]|\\.)*")"), &Theme::stringColor, none},
             {pattern(uR"('[^']*')"), &Theme::stringColor, none},
             {pattern(uR"(\$[a-zA-Z_][a-zA-Z0-9_]*)"), &Theme::variableColor, none},
             {pattern(uR"(\$\{[^}]+\})"), &Theme::variableColor, none},
             {pattern(uR"(\b(if|then|else|elif|fi|case|esac|for|while|until|do|done|function|return|exit|)"
                      uR"(break|continue|export|local|readonly|source|alias|unalias|echo|printf|read|cd|pwd|ls|)"
                      uR"(cp|mv|rm|mkdir|rmdir|touch|cat|grep|sed|awk|find|xargs)\b)"),
              &Theme::keywordColor, none},
         }},
        {"Go",
         {
             {pattern(uR"(//.*$)"), &Theme::commentColor, everyLine},
             {pattern(uR"(/\*[\s\S]*?\*/)"), &Theme::commentColor, none},
             {pattern(uR"("(?:[^"\\]|\\.)*")"), &Theme::stringColor, none},
             {pattern(uR"(`[^`]*`)"), &Theme::stringColor, none},
             {pattern(uR"(\b\d+\.?\d*\b)"), &Theme::numberColor, none},
             {pattern(uR"(\b(break|case|chan|const|continue|default|defer|else|fallthrough|for|func|go|goto|if|)"
                      uR"(import|interface|map|package|range|return|select|struct|switch|type|var|true|false|)"
                      uR"(nil|iota)\b)"),
              &Theme::keywordColor, none},
             {pattern(uR"(\b(bool|byte|complex64|complex128|error|float32|float64|int|int8|int16|int32|int64|)"
                      uR"(rune|string|uint|uint8|uint16|uint32|uint64|uintptr)\b)"),
              &Theme::typeColor, none},
             {pattern(uR"(\bfunc\s+([a-zA-Z_][a-zA-Z0-9_]*))"), &Theme::functionColor, none},
         }},
        {"Rust",
         {
             {pattern(uR"(//.*$)"), &Theme::commentColor, everyLine},
             {pattern(uR"(/\*[\s\S]*?\*/)"), &Theme::commentColor, none},
             {pattern(uR"("(?:[^"\\]|\\.)*")"), &Theme::stringColor, none},
             {pattern(uR"(r#"[\s\S]*?"#)"), &Theme::stringColor, none},
             {pattern(uR"(\b\d+\.?\d*\b)"), &Theme::numberColor, none},
             {pattern(uR"(\b(as|async|await|break|const|continue|crate|dyn|else|enum|extern|false|fn|for|if|)"
                      uR"(impl|in|let|loop|match|mod|move|mut|pub|ref|return|self|Self|static|struct|super|)"
                      uR"(trait|true|type|unsafe|use|where|while)\b)"),
              &Theme::keywordColor, none},
             {pattern(uR"(\b(bool|char|f32|f64|i8|i16|i32|i64|i128|isize|str|u8|u16|u32|u64|u128|usize|)"
                      uR"(String|Vec|Option|Result|Box|Rc|Arc)\b)"),
              &Theme::typeColor, none},
             {pattern(uR"([a-zA-Z_][a-zA-Z0-9_]*!)"), &Theme::functionColor, none},
             {pattern(uR"('[a-zA-Z_][a-zA-Z0-9_]*)"), &Theme::attributeColor, none},
         }},
        {"Generic",
         {
             {pattern(uR"("(?:[^"\\]|\\.)*")"), &Theme::stringColor, none},
             {pattern(uR"('(?:[^'\\]|\\.)*')"), &Theme::stringColor, none},
             {pattern(uR"(\b\d+\.?\d*\b)"), &Theme::numberColor, none},
         }},

    };
    return families;
}

const ExpectedFamily& expectedFamily(QLatin1String name)
{
    for (const ExpectedFamily& family : expectedFamilies()) {
        if (QLatin1String(family.name) == name) {
            return family;
        }
    }
    qFatal("no family %s", name.data());
}

} // namespace kelm::test
