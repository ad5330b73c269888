#include "support/test_program.h"
#include "text/boundaries/text_boundaries.h"
#include "workbench/status/text_counts.h"

#include <QtTest>

namespace text_counts_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class TextCountsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void counts_data();
    void counts();
    void aLongTextIsCountedInStretchesAndCanBeStopped();
    void charactersAreThoseAPersonSees_data();
    void charactersAreThoseAPersonSees();
};

void TextCountsTest::counts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qsizetype>("lines");
    QTest::addColumn<qsizetype>("words");
    QTest::newRow("an empty text has one line") << QString() << qsizetype(1) << qsizetype(0);
    QTest::newRow("one line") << u"one two"_s << qsizetype(1) << qsizetype(2);
    QTest::newRow("a final newline opens a line") << u"a\n"_s << qsizetype(2) << qsizetype(1);
    QTest::newRow("CR LF counts as two separators") << u"a\r\nb"_s << qsizetype(3) << qsizetype(2);
    QTest::newRow("all newlines") << u"a\u000bb\u000cc\u0085d\u2028e\u2029f"_s << qsizetype(6) << qsizetype(6);
    QTest::newRow("neighbours of newlines are none")
        << u"a\u0009b\u000eb\u2027c\u202ad\u0084e\u0086"_s << qsizetype(1) << qsizetype(2);
    QTest::newRow("wide blanks part words") << u"가\u3000나\u00a0다"_s << qsizetype(1) << qsizetype(3);
    QTest::newRow("blanks alone") << u" \t \n "_s << qsizetype(2) << qsizetype(0);
}

void TextCountsTest::counts()
{
    QFETCH(QString, text);
    QFETCH(qsizetype, lines);
    QFETCH(qsizetype, words);
    QCOMPARE(newlineSeparatedCount(TextTree(text)), lines);
    QCOMPARE(countText(TextTree(text), false)->words, words);
}

void TextCountsTest::aLongTextIsCountedInStretchesAndCanBeStopped()
{
    // A pair, a family and a syllable of three letters stand across every place where a stretch could end.
    const QString unit = u"word \r\n👩‍👩‍👧\u1112\u1161\u11ab한글 "_s;
    const TextTree text(unit.repeated(60'000));
    const std::optional<TextCounts> counts = countText(text, false);
    QVERIFY(counts);
    QCOMPARE(counts->characters, 60'000 * graphemeCount(unit));
    QCOMPARE(counts->words, 60'000 * 2);
    QVERIFY(!countText(text, true));
}

void TextCountsTest::charactersAreThoseAPersonSees_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qsizetype>("characters");
    QTest::newRow("nothing") << QString() << qsizetype(0);
    QTest::newRow("CR LF") << u"a\r\nb"_s << qsizetype(3);
    QTest::newRow("Hindi") << u"क्षत्रिय"_s << qsizetype(3);
    QTest::newRow("Thai") << u"กำลัง"_s << qsizetype(3);
    QTest::newRow("Khmer") << u"ខ្មែរ"_s << qsizetype(3);
    QTest::newRow("a flag behind a pictograph") << u"😀🇰🇷"_s << qsizetype(2);
    QTest::newRow("many flags") << u"🇰🇷"_s.repeated(70'000) << qsizetype(70'000);
    QTest::newRow("a character longer than a stretch")
        << u"xe"_s + u"\u0301"_s.repeated(600'000) + u"y"_s << qsizetype(3);
}

void TextCountsTest::charactersAreThoseAPersonSees()
{
    QFETCH(QString, text);
    QFETCH(qsizetype, characters);
    QCOMPARE(countText(TextTree(text), false)->characters, characters);
}

const kelm::test::Registered<TextCountsTest> registered;

} // namespace text_counts_test

#include "text_counts_test.moc"
