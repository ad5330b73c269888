#include "git/service/tag_parser.h"
#include "support/test_program.h"

#include <QSet>
#include <QtTest>

namespace tag_parser_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;

class TagParserTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linesOfFivePiecesAreTags_data();
    void linesOfFivePiecesAreTags();
    void identitiesAreFreshInEachParse();
};

void TagParserTest::linesOfFivePiecesAreTags_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<QStringList>("tags");
    const auto row = [](const char* name, const QString& output, const QStringList& tags) {
        QTest::newRow(name) << QString(output).replace(u'#', QChar(0)) << tags;
    };
    row("empty", u""_s, {});
    row("annotated", u"v1#tag#commit1#tag1#First\n"_s, {u"v1|First|commit1"_s});
    row("annotated with an empty subject", u"v1#tag#commit1#tag1#\n"_s, {u"v1||commit1"_s});
    row("lightweight", u"v2#commit##commit2#Subject of the commit\n"_s, {u"v2|(none)|commit2"_s});
    row("tag of a blob", u"b#blob##blob1#"_s, {u"b|(none)|blob1"_s});
    row("no object at all", u"x#tag###s"_s, {u"x|s|(none)"_s});
    row("four pieces are skipped", u"a#tag#b#c\n\nv#commit##d#s"_s, {u"v|(none)|d"_s});
    row("more pieces do no harm", u"v#tag#a#b#s#t"_s, {u"v|s|a"_s});
    row("type must be the word itself", u"v#tags#a#b#s"_s, {u"v|(none)|a"_s});
    row("Korean", u"판/1#tag#a#b#첫 판"_s, {u"판/1|첫 판|a"_s});
}

void TagParserTest::linesOfFivePiecesAreTags()
{
    QFETCH(QString, output);
    QFETCH(QStringList, tags);
    QStringList lines;
    for (const GitTag& tag : parseTags(output)) {
        QVERIFY(!tag.id.isNull());
        lines.append(tag.name + u'|' + tag.annotation.value_or(u"(none)"_s) + u'|' + tag.sha.value_or(u"(none)"_s));
    }
    QCOMPARE(lines, tags);
}

void TagParserTest::identitiesAreFreshInEachParse()
{
    const QString output = QString(u"v1#tag#a#b#s\nv2#commit##d#s\n"_s).replace(u'#', QChar(0));
    QSet<QUuid> ids;
    for (const auto& parse : {parseTags(output), parseTags(output)}) {
        for (const GitTag& each : parse) {
            ids.insert(each.id);
        }
    }
    QCOMPARE(ids.size(), 4);
    QVERIFY(!ids.contains(QUuid()));
}

const kelm::test::Registered<TagParserTest> registered;

} // namespace tag_parser_test

#include "tag_parser_test.moc"
