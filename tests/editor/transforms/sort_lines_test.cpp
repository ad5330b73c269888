#include "editor/transforms/text_transformer.h"
#include "platform/text/string_comparison.h"
#include "support/test_program.h"

#include <QRandomGenerator>
#include <QtTest>

namespace sort_lines_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class SortLinesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linesAreSorted_data();
    void linesAreSorted();
    void manyLinesSortAsTheComparisonSays_data();
    void manyLinesSortAsTheComparisonSays();
};

void SortLinesTest::linesAreSorted_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("ascending");
    QTest::addColumn<QString>("descending");
    const auto row = [](const char* name, const QString& text, const QString& ascending, const QString& descending) {
        QTest::newRow(name) << text << ascending << descending;
    };
    row("empty", u""_s, u""_s, u""_s);
    row("one line", u"a"_s, u"a"_s, u"a"_s);
    row("no final newline", u"b\na"_s, u"a\nb"_s, u"b\na"_s);
    row("final newline", u"b\na\n"_s, u"\na\nb"_s, u"b\na\n"_s);
    row("only newlines", u"\n\n"_s, u"\n\n"_s, u"\n\n"_s);
    row("capital first", u"b\nA\na"_s, u"A\na\nb"_s, u"b\nA\na"_s);
    row("small letter first", u"b\na\nA"_s, u"a\nA\nb"_s, u"b\na\nA"_s);
    row("equal lines keep their order", u"a\nB\nA\nb"_s, u"a\nA\nB\nb"_s, u"B\nb\na\nA"_s);
    row("CRLF leaves empty lines", u"b\r\na"_s, u"\na\nb"_s, u"b\na\n"_s);
    row("CRLF at the end", u"b\r\na\r\n"_s, u"\n\n\na\nb"_s, u"b\na\n\n\n"_s);
    row("lone CR", u"b\ra"_s, u"a\nb"_s, u"b\na"_s);
    row("all newline characters", u"g\nf\u000be\u000cd\rc\u0085b\u2028a\u2029z"_s, u"a\nb\nc\nd\ne\nf\ng\nz"_s,
        u"z\ng\nf\ne\nd\nc\nb\na"_s);
    row("other separators are no newlines", u"b\u001cx\na"_s, u"a\nb\u001cx"_s, u"b\u001cx\na"_s);
    row("accents", u"z\n\u00e9\ne\nf"_s, u"e\n\u00e9\nf\nz"_s, u"z\nf\n\u00e9\ne"_s);
    row("canonically equal lines keep their order and form", u"e\u0301\n\u00e9"_s, u"e\u0301\n\u00e9"_s,
        u"e\u0301\n\u00e9"_s);
    row("korean", u"나\n가"_s, u"가\n나"_s, u"나\n가"_s);
    row("blanks count", u"b\n a"_s, u" a\nb"_s, u"b\n a"_s);
    row("numbers as text", u"10\n9"_s, u"10\n9"_s, u"9\n10"_s);
    const QString surrogate(QChar(0xd800));
    row("unpaired surrogate stays", u"b\n"_s + surrogate + u"\na"_s, u"a\nb\n"_s + surrogate, surrogate + u"\nb\na"_s);
}

void SortLinesTest::linesAreSorted()
{
    QFETCH(QString, text);
    QFETCH(QString, ascending);
    QFETCH(QString, descending);
    QCOMPARE(TextTransformer::sortLines(text, true), ascending);
    QCOMPARE(TextTransformer::sortLines(text, false), descending);
}

void SortLinesTest::manyLinesSortAsTheComparisonSays_data()
{
    QTest::addColumn<int>("count");
    QTest::newRow("some") << 3000;
    QTest::newRow("so many that two threads sort them") << 20'001;
}

void SortLinesTest::manyLinesSortAsTheComparisonSays()
{
    QFETCH(int, count);
    const quint32 seed = QRandomGenerator::global()->generate();
    qInfo("seed %u", seed);
    QRandomGenerator random(seed);
    const QString alphabet = u"aAbB zZ_-09éÉ가나\t"_s;
    QStringList lines;
    for (int i = 0; i < count; ++i) {
        QString line;
        for (int length = random.bounded(9); length > 0; --length) {
            line += alphabet[random.bounded(int(alphabet.size()))];
        }
        lines << line;
    }
    const StringComparison& comparison = StringComparison::current();
    for (const bool ascending : {true, false}) {
        QStringList expected = lines;
        std::stable_sort(expected.begin(), expected.end(), [&](const QString& a, const QString& b) {
            const int order = comparison.localizedCaseInsensitiveCompare(a, b);
            return ascending ? order < 0 : order > 0;
        });
        QCOMPARE(TextTransformer::sortLines(lines.join(u'\n'), ascending), expected.join(u'\n'));
    }
}

const kelm::test::Registered<SortLinesTest> registered;

} // namespace sort_lines_test

#include "sort_lines_test.moc"
