#include "support/random_text.h"
#include "support/test_program.h"
#include "text/storage/line_index.h"

#include <QtTest>

namespace line_index_test {

using namespace kelm;

namespace {

QList<qsizetype> startsOf(const LineIndex& index)
{
    QList<qsizetype> starts;
    for (qsizetype line = 0; line < index.lineCount(); ++line) {
        starts.append(index.start(line));
    }
    return starts;
}

TextEdit edit(LineIndex& index, QString& text, TextRange range, const QString& replacement)
{
    const qsizetype odd = LineIndex::countOdd(text, LineIndex::affected(range, text.size()));
    text.replace(range.location, range.length, replacement);
    return index.replace(text, range, replacement.size(), odd);
}

} // namespace

class LineIndexTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linesBeginBehindEachTerminator_data();
    void linesBeginBehindEachTerminator();
    void anOffsetBelongsToTheLineThatHoldsIt();
    void terminatorsAreMeasured();
    void editsTellWhichLinesChanged_data();
    void editsTellWhichLinesChanged();
    void randomEditsAgreeWithARebuiltIndex();
};

void LineIndexTest::linesBeginBehindEachTerminator_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QList<qsizetype>>("starts");
    QTest::addColumn<qsizetype>("odd");
    using Starts = QList<qsizetype>;
    QTest::newRow("empty") << QString() << Starts{0} << qsizetype(0);
    QTest::newRow("one line without an end") << QStringLiteral("ab") << Starts{0} << qsizetype(0);
    QTest::newRow("line feed at the end") << QStringLiteral("ab\n") << Starts{0, 3} << qsizetype(0);
    QTest::newRow("pair") << QStringLiteral("a\r\nb") << Starts{0, 3} << qsizetype(0);
    QTest::newRow("lone carriage return") << QStringLiteral("a\rb") << Starts{0, 2} << qsizetype(1);
    QTest::newRow("carriage return last") << QStringLiteral("a\r") << Starts{0, 2} << qsizetype(1);
    QTest::newRow("two carriage returns and a line feed")
        << QStringLiteral("\r\r\n") << Starts{0, 1, 3} << qsizetype(1);
    QTest::newRow("next line") << QStringLiteral("a\u0085b") << Starts{0, 2} << qsizetype(1);
    QTest::newRow("separators") << QStringLiteral("a\u2028b\u2029") << Starts{0, 2, 4} << qsizetype(2);
    QTest::newRow("no terminators: form feed, NUL") << QStringLiteral("a\fb\v") + QChar(0) << Starts{0} << qsizetype(0);
}

void LineIndexTest::linesBeginBehindEachTerminator()
{
    QFETCH(QString, text);
    LineIndex index;
    index.rebuild(text);
    QTEST(startsOf(index), "starts");
    QTEST(index.oddTerminators(), "odd");
    QCOMPARE(index.end(index.lineCount() - 1), text.size());
}

void LineIndexTest::anOffsetBelongsToTheLineThatHoldsIt()
{
    LineIndex index;
    index.rebuild(u"ab\r\nc\n");
    QCOMPARE(index.lineAt(-1), 0);
    QCOMPARE(index.lineAt(3), 0);
    QCOMPARE(index.lineAt(4), 1);
    QCOMPARE(index.lineAt(6), 2);
    QCOMPARE(index.lineAt(100), 2);
}

void LineIndexTest::terminatorsAreMeasured()
{
    const QString text = QStringLiteral("a\r\n\r\u2028");
    QCOMPARE(lineTerminatorLength(text, 0), 0);
    QCOMPARE(lineTerminatorLength(text, 1), 2);
    QCOMPARE(lineTerminatorLength(text, 2), 1);
    QCOMPARE(lineTerminatorLength(text, 3), 1);
    QCOMPARE(lineTerminatorLength(text, 4), 1);
    QCOMPARE(lineTerminatorLength(text, 5), 0);
}

void LineIndexTest::editsTellWhichLinesChanged_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("location");
    QTest::addColumn<int>("length");
    QTest::addColumn<QString>("replacement");
    QTest::addColumn<qsizetype>("firstLine");
    QTest::addColumn<qsizetype>("removed");
    QTest::addColumn<qsizetype>("added");
    const QString three = QStringLiteral("one\ntwo\nthree");
    QTest::newRow("a letter") << three << 5 << 0 << QStringLiteral("x") << qsizetype(1) << qsizetype(1) << qsizetype(1);
    QTest::newRow("a line break") << three << 5 << 0 << QStringLiteral("\n") << qsizetype(1) << qsizetype(1)
                                  << qsizetype(2);
    QTest::newRow("two lines joined") << three << 7 << 1 << QString() << qsizetype(1) << qsizetype(2) << qsizetype(1);
    QTest::newRow("a pair completed") << QStringLiteral("a\rb") << 2 << 0 << QStringLiteral("\n") << qsizetype(0)
                                      << qsizetype(2) << qsizetype(2);
}

void LineIndexTest::editsTellWhichLinesChanged()
{
    QFETCH(QString, text);
    QFETCH(int, location);
    QFETCH(int, length);
    QFETCH(QString, replacement);
    LineIndex index;
    index.rebuild(text);
    const TextEdit done = edit(index, text, {location, length}, replacement);
    QTEST(done.firstLine, "firstLine");
    QTEST(done.linesRemoved, "removed");
    QTEST(done.linesAdded, "added");
}

void LineIndexTest::randomEditsAgreeWithARebuiltIndex()
{
    test::RandomText random;
    QString text = random.text(40);
    LineIndex index;
    index.rebuild(text);
    for (int round = 0; round < 4000; ++round) {
        const TextRange range = random.range(text.size());
        const qsizetype before = index.lineCount();
        const TextEdit done = edit(index, text, range, random.text(text.size() > 200 ? 2 : 8));
        LineIndex rebuilt;
        rebuilt.rebuild(text);
        QCOMPARE(startsOf(index), startsOf(rebuilt));
        QCOMPARE(index.oddTerminators(), rebuilt.oddTerminators());
        QCOMPARE(index.end(index.lineCount() - 1), text.size());
        QCOMPARE(index.lineCount() - before, done.linesAdded - done.linesRemoved);
    }
}

const kelm::test::Registered<LineIndexTest> registered;

} // namespace line_index_test

#include "line_index_test.moc"
