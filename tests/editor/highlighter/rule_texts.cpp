#include "editor/highlighter/rule_texts.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace kelm::test {

const std::vector<NamedRules>& allRuleLists()
{
    static const std::vector<NamedRules> lists{
        {"Swift", rules::swift}, {"Python", rules::python}, {"JavaScript", rules::javaScript}, {"JSON", rules::json},
        {"XML", rules::xml},     {"CSS", rules::css},       {"Markdown", rules::markdown},     {"Shell", rules::shell},
        {"Go", rules::go},       {"Rust", rules::rust},     {"Generic", rules::generic}};
    return lists;
}

QString rulePiece(RandomText& random)
{
    static const QStringList pieces = [] {
        QStringList all;
        for (const char16_t* piece : {u"\"",         u"'",
                                      u"`",          u"\"\"\"",
                                      u"'''",        u"```",
                                      u"\\",         u"\\\"",
                                      u"/*",         u"*/",
                                      u"//",         u"/",
                                      u"#",          u"# ",
                                      u"<!--",       u"-->",
                                      u"<a",         u"</b",
                                      u">",          u"/>",
                                      u"a=",         u"r#\"",
                                      u"\"#",        u"(",
                                      u" (",         u"\n(",
                                      u")",          u"[a](b)",
                                      u"[",          u"](",
                                      u"{",          u" {",
                                      u"}",          u"${",
                                      u"$a",         u"$",
                                      u":",          u": ",
                                      u":\"",        u": -1.5",
                                      u":true",      u": null",
                                      u";",          u"1",
                                      u"12.5",       u"3.",
                                      u"10px",       u"2em",
                                      u"#fff",       u"#12345678",
                                      u".",          u"-",
                                      u"- ",         u"\n- ",
                                      u"* ",         u"\n1. ",
                                      u"**",         u"*",
                                      u"__",         u"_",
                                      u"a",          u"name",
                                      u"def ",       u"class A",
                                      u"func f",     u"if",
                                      u"return",     u"in",
                                      u"print",      u"let",
                                      u"@main",      u"x@main",
                                      u"@a",         u"@",
                                      u"vec!",       u"!",
                                      u"=>",         u"=",
                                      u" ",          u"    ",
                                      u"\t",         u"\n",
                                      u"\n",         u"\r",
                                      u"\r\n",       u"\u0085",
                                      u"\u2028",     u"\u0301",
                                      u"\u200d",     u"\u00ad",
                                      u"\ufeff",     u"\u0903",
                                      u"한글",       u"\u1112\u1161\u11ab",
                                      u"é",          u"\u0663",
                                      u"\u00a0",     u"\U0001d7ce",
                                      u"\U0001d4b3", u"\U000e0101",
                                      u"😀",          u"\xd83d",
                                      u"\xde00",     u"\xdb40",
                                      u"\xdd01",     u"\xd835"}) {
            all += QString::fromUtf16(piece);
        }
        all += QString(QChar(0));
        // Longer than the margin that safe places allow for.
        for (const char16_t* unit : {u" ", u" ", u"\n", u"\u0301", u"\u0301", u"\u200d", u"a", u"7", u"-"}) {
            all += QString::fromUtf16(unit).repeated(20);
        }
        return all;
    }();
    return pieces[random.below(pieces.size())];
}

QString ruleText(RandomText& random, qsizetype count)
{
    QStringList own;
    for (qsizetype i = 3 + random.below(8); i > 0; --i) {
        own += rulePiece(random);
    }
    QString text;
    for (; count > 0; --count) {
        // Now and then the same piece again and again.
        const qsizetype times = random.below(40) == 0 ? random.below(60) : 1;
        text += own[random.below(own.size())].repeated(times);
    }
    return text;
}

QString longSource(const QString& folder, qsizetype length)
{
    QString text;
    for (const QFileInfo& entry : QDir(folder).entryInfoList(QDir::Files, QDir::Name)) {
        QFile file(entry.filePath());
        if (file.open(QIODevice::ReadOnly)) {
            text += QString::fromUtf8(file.readAll());
        }
    }
    return text.isEmpty() ? text : text.repeated(length / text.size() + 1).left(length);
}

} // namespace kelm::test
