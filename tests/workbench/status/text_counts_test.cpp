#include "app/document/document.h"
#include "support/test_program.h"
#include "workbench/status/text_counts.h"

#include <QSignalSpy>
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
    void aTextOfOrdinarySizeIsCountedWithTheChange();
    void aLargeTextIsCountedOnceItRests();
    void aTextOfAMillionUnitsIsCountedBeforeItIsShown();
    void aChangeInTheMiddleOfACountBeginsAnew();
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
    QCOMPARE(newlineSeparatedCount(text), lines);
    QCOMPARE(wordCount(text), words);
}

void TextCountsTest::aTextOfOrdinarySizeIsCountedWithTheChange()
{
    Document document(u"a\nb"_s, std::nullopt, std::nullopt, std::nullopt);
    LineCounter counter(document);
    QCOMPARE(counter.count(), 2);
    const QSignalSpy changes(&counter, &LineCounter::countChanged);
    document.setContent(u"a\nb\nc"_s);
    QCOMPARE(counter.count(), 3);
    document.setContent(u"x\ny\nz"_s);
    QCOMPARE(changes.count(), 1);
}

void TextCountsTest::aLargeTextIsCountedOnceItRests()
{
    const QString large = u"0123456789abcde\n"_s.repeated(400'000);
    Document document(large, std::nullopt, std::nullopt, std::nullopt);
    LineCounter counter(document);
    QTRY_COMPARE(counter.count(), 400'001);
    document.setContent(large + u"\n\n"_s);
    QCOMPARE(counter.count(), 400'001);
    QTRY_COMPARE(counter.count(), 400'003);
    document.setContent(u"small"_s);
    QCOMPARE(counter.count(), 1);
}

void TextCountsTest::aTextOfAMillionUnitsIsCountedBeforeItIsShown()
{
    Document document(u"0123456789abcde\n"_s.repeated(65'536), std::nullopt, std::nullopt, std::nullopt);
    const LineCounter counter(document);
    QCOMPARE(counter.count(), 65'537);
}

void TextCountsTest::aChangeInTheMiddleOfACountBeginsAnew()
{
    const QString large = u"0123456789abcde\n"_s.repeated(400'000);
    Document document(large, std::nullopt, std::nullopt, std::nullopt);
    LineCounter counter(document);
    QSignalSpy changes(&counter, &LineCounter::countChanged);
    QCoreApplication::processEvents();
    document.setContent(large + large);
    QTRY_COMPARE(changes.count(), 1);
    QCOMPARE(counter.count(), 800'001);
}

const kelm::test::Registered<TextCountsTest> registered;

} // namespace text_counts_test

#include "text_counts_test.moc"
