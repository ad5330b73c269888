#include "editor/kept_ready/completion_tables.h"

#include <array>

namespace kelm {

namespace {

using Word = QLatin1String;

// clang-format off
constexpr std::array swiftKeywords{
    Word("import"), Word("class"), Word("struct"), Word("enum"), Word("protocol"), Word("extension"), Word("func"),
    Word("var"), Word("let"), Word("if"), Word("else"), Word("guard"), Word("switch"), Word("case"), Word("default"),
    Word("for"), Word("while"), Word("repeat"), Word("return"), Word("throw"), Word("try"), Word("catch"), Word("do"),
    Word("break"), Word("continue"), Word("fallthrough"), Word("public"), Word("private"), Word("internal"),
    Word("fileprivate"), Word("open"), Word("static"), Word("override"), Word("final"), Word("lazy"), Word("weak"),
    Word("unowned"), Word("self"), Word("super"), Word("nil"), Word("true"), Word("false"), Word("@State"),
    Word("@Binding"), Word("@Published"), Word("@ObservedObject"), Word("@StateObject"), Word("@Environment"),
};

constexpr std::array pythonKeywords{
    Word("import"), Word("from"), Word("class"), Word("def"), Word("if"), Word("elif"), Word("else"), Word("for"),
    Word("while"), Word("try"), Word("except"), Word("finally"), Word("with"), Word("as"), Word("return"),
    Word("yield"), Word("raise"), Word("break"), Word("continue"), Word("pass"), Word("lambda"), Word("and"),
    Word("or"), Word("not"), Word("in"), Word("is"), Word("True"), Word("False"), Word("None"), Word("global"),
    Word("nonlocal"), Word("assert"), Word("async"), Word("await"), Word("print"), Word("len"), Word("range"),
    Word("str"), Word("int"), Word("float"), Word("list"), Word("dict"), Word("set"), Word("tuple"),
};

constexpr std::array javascriptKeywords{
    Word("import"), Word("export"), Word("from"), Word("const"), Word("let"), Word("var"), Word("function"),
    Word("class"), Word("if"), Word("else"), Word("switch"), Word("case"), Word("default"), Word("for"),
    Word("while"), Word("do"), Word("return"), Word("throw"), Word("try"), Word("catch"), Word("finally"),
    Word("break"), Word("continue"), Word("new"), Word("this"), Word("super"), Word("extends"), Word("static"),
    Word("async"), Word("await"), Word("true"), Word("false"), Word("null"), Word("undefined"), Word("typeof"),
    Word("instanceof"), Word("console.log"), Word("document"), Word("window"), Word("fetch"), Word("Promise"),
};

constexpr std::array goKeywords{
    Word("package"), Word("import"), Word("func"), Word("var"), Word("const"), Word("type"), Word("struct"),
    Word("interface"), Word("if"), Word("else"), Word("switch"), Word("case"), Word("default"), Word("for"),
    Word("range"), Word("break"), Word("continue"), Word("return"), Word("defer"), Word("go"), Word("select"),
    Word("chan"), Word("map"), Word("make"), Word("new"), Word("append"), Word("true"), Word("false"), Word("nil"),
    Word("iota"), Word("fmt.Println"), Word("fmt.Printf"),
};

constexpr std::array rustKeywords{
    Word("use"), Word("mod"), Word("pub"), Word("fn"), Word("let"), Word("mut"), Word("const"), Word("static"),
    Word("struct"), Word("enum"), Word("trait"), Word("impl"), Word("if"), Word("else"), Word("match"), Word("loop"),
    Word("while"), Word("for"), Word("in"), Word("return"), Word("break"), Word("continue"), Word("move"),
    Word("ref"), Word("self"), Word("Self"), Word("super"), Word("true"), Word("false"), Word("Some"), Word("None"),
    Word("Ok"), Word("Err"), Word("Box"), Word("Vec"), Word("String"), Word("println!"), Word("format!"),
    Word("vec!"), Word("panic!"),
};

constexpr std::array snippets{
    Snippet{Word("func"), Word("func ${1:name}(${2:params}) ${3:-> ReturnType} {\n    ${0}\n}")},
    Snippet{Word("if"), Word("if ${1:condition} {\n    ${0}\n}")},
    Snippet{Word("guard"), Word("guard ${1:condition} else {\n    ${0:return}\n}")},
    Snippet{Word("for"), Word("for ${1:item} in ${2:collection} {\n    ${0}\n}")},
    Snippet{Word("while"), Word("while ${1:condition} {\n    ${0}\n}")},
    Snippet{Word("switch"), Word("switch ${1:value} {\ncase ${2:pattern}:\n    ${0}\ndefault:\n    break\n}")},
    Snippet{Word("class"), Word("class ${1:Name} {\n    ${0}\n}")},
    Snippet{Word("struct"), Word("struct ${1:Name} {\n    ${0}\n}")},
    Snippet{Word("enum"), Word("enum ${1:Name} {\n    case ${0}\n}")},
    Snippet{Word("init"), Word("init(${1:params}) {\n    ${0}\n}")},
    Snippet{Word("closure"), Word("{ ${1:params} in\n    ${0}\n}")},
    Snippet{Word("try"), Word("do {\n    try ${1:expression}\n} catch {\n    ${0}\n}")},
    Snippet{Word("print"), Word("print(\"${0}\")")},
    Snippet{Word("mark"), Word("// MARK: - ${0}")},
    Snippet{Word("todo"), Word("// TODO: ${0}")},
    Snippet{Word("fixme"), Word("// FIXME: ${0}")},
};
// clang-format on

} // namespace

std::span<const QLatin1String> completionKeywords(Language language)
{
    switch (language) {
    case Language::swift:
        return swiftKeywords;
    case Language::python:
        return pythonKeywords;
    case Language::javascript:
        return javascriptKeywords;
    case Language::go:
        return goKeywords;
    case Language::rust:
        return rustKeywords;
    default:
        return {};
    }
}

std::span<const Snippet> completionSnippets()
{
    return snippets;
}

} // namespace kelm
