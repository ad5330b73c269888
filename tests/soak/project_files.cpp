#include "soak/project_files.h"

namespace kelm::soak {

using namespace Qt::Literals::StringLiterals;

namespace {

QByteArray longSource()
{
    QByteArray text;
    for (int function = 0; function < 400; ++function) {
        const QByteArray number = QByteArray::number(function);
        text += "int function" + number + "(int value)\n{\n    if (value > " + number + ") {\n        return value - " +
                number + ";\n    }\n    return value; // \xED\x95\x9C\xEA\xB8\x80\n}\n\n";
    }
    return text;
}

/// So long that workers look after its colours.
QByteArray hugeSource()
{
    QByteArray text;
    for (int function = 0; function < 6000; ++function) {
        const QByteArray number = QByteArray::number(function);
        text += "def function" + number + "(value):\n    # \xED\x95\x9C\n    if value > " + number +
                ":\n        return \"value\", '" + number + "'\n    return value\n\n";
    }
    return text;
}

std::vector<ProjectFile> makeFiles()
{
    return {
        {u"plain.txt"_s, "one\ntwo\nthree two\nfour\n\nlast line without an end"},
        {u"crlf.txt"_s, "first\r\nsecond\r\n\r\nthird line\r\n"},
        {u"mixed.txt"_s, "a\nb\r\nc\rd\xE2\x80\xA8"
                         "e\xC2\x85"
                         "f\n"},
        {u"bom.txt"_s, "\xEF\xBB\xBF"
                       "with a mark\nin front\n"},
        {u"empty.txt"_s, ""},
        {u"korean.md"_s, "# \xEC\xA0\x9C\xEB\xAA\xA9\n\n\xED\x95\x9C\xEA\xB8\x80 **\xEA\xB5\xB5\xEA\xB2\x8C** "
                         "\xF0\x9F\x98\x80 \xF0\x9F\x91\xA9\xE2\x80\x8D\xF0\x9F\x92\xBB\n\n```swift\nlet a = 1\n```\n"},
        {u"data.json"_s, "{\"b\": [1, 2, {\"c\": null}], \"a\": \"\\u00e9\",\n \"n\": 1.50}\n"},
        {u"page.html"_s, "<html>\n<body>\n<p>\none\ntwo\n</p>\n<div>\n  <b>x</b>\n  y\n</div>\n</body>\n</html>\n"},
        {u"tree.xml"_s, "<?xml version=\"1.0\"?><a><b c=\"d\">text</b><e/></a>\n"},
        {u"style.css"_s, "body {\n  color: red;\n  margin: 0;\n}\np { a: b }\n"},
        {u"code.swift"_s,
         "struct A {\n    func f() {\n        one()\n        two()\n        if x {\n            three()\n"
         "            four()\n        }\n    }\n\n    func g() {\n        five()\n        six()\n    }\n"
         "}\n// end\n"},
        {u"nested/deep/other.py"_s, "def f(a):\n    if a:\n        return 1\n    b = 2\n    return b\n\n\ndef g():\n"
                                    "    x = 1\n    y = 2\n    return x + y\n"},
        {linkTarget, "behind a link\n"},
        {u"long.cpp"_s, longSource()},
        {u"huge.py"_s, hugeSource()},
        {u"latin.txt"_s, "caf\xE9\n"},
        {scriptName, "#!/bin/sh\necho \"the script has run\"\nexit 3\n"},
    };
}

} // namespace

const std::vector<ProjectFile>& projectFiles()
{
    static const std::vector<ProjectFile> files = makeFiles();
    return files;
}

} // namespace kelm::soak
