#include "git/diff/line_cells.h"
#include "platform/text/grapheme_boundaries.h"
#include "support/test_program.h"

#include <QtTest>

#include <random>

namespace line_cells_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;

class LineCellsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cellsAreCounted_data();
    void cellsAreCounted();
    void linesAreCutIntoRows_data();
    void linesAreCutIntoRows();
    void rowsHoldTheWholeLine();
    void controlCharactersAreDrawn();
    void placesGoBothWays();
};

void LineCellsTest::cellsAreCounted_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("cells");

    QTest::newRow("empty") << QString() << 0;
    QTest::newRow("plain") << u"int x;"_s << 6;
    QTest::newRow("Hangul") << u"가나a"_s << 5;
    QTest::newRow("Han and full width") << u"漢Ａ"_s << 4;
    QTest::newRow("emoji") << u"\U0001F600"_s << 2;
    QTest::newRow("combining mark") << u"e\u0301"_s << 1;
    QTest::newRow("zero-width joiner") << u"a\u200db"_s << 2;
    QTest::newRow("tab at the start") << u"\tx"_s << 5;
    QTest::newRow("tab behind two letters") << u"ab\tx"_s << 5;
    QTest::newRow("tab at a stop") << u"abcd\tx"_s << 9;
    QTest::newRow("carriage return") << u"a\r"_s << 2;
    QTest::newRow("lone surrogate") << u"a"_s + QChar(0xd800) << 2;
}

void LineCellsTest::cellsAreCounted()
{
    QFETCH(QString, line);
    QTEST(int(cellCount(line)), "cells");
}

void LineCellsTest::linesAreCutIntoRows_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("columns");
    QTest::addColumn<QStringList>("rows");

    QTest::newRow("empty") << QString() << 4 << QStringList{QString()};
    QTest::newRow("fits") << u"abcd"_s << 4 << QStringList{u"abcd"_s};
    QTest::newRow("one more") << u"abcde"_s << 4 << QStringList{u"abcd"_s, u"e"_s};
    QTest::newRow("exactly two") << u"abcdefgh"_s << 4 << QStringList{u"abcd"_s, u"efgh"_s};
    QTest::newRow("at a blank") << u"ab cdefg"_s << 5 << QStringList{u"ab "_s, u"cdefg"_s};
    QTest::newRow("at the last blank") << u"a b cdef"_s << 6 << QStringList{u"a b "_s, u"cdef"_s};
    QTest::newRow("not at an early blank") << u"a bcdefghi"_s << 6 << QStringList{u"a bcde"_s, u"fghi"_s};
    QTest::newRow("blank over the edge") << u"abcd ef"_s << 4 << QStringList{u"abcd "_s, u"ef"_s};
    QTest::newRow("blanks over the edge") << u"abcd  ef"_s << 4 << QStringList{u"abcd "_s, u" ef"_s};
    QTest::newRow("wide character at the edge") << u"abc가나"_s << 4 << QStringList{u"abc"_s, u"가나"_s};
    QTest::newRow("wide character in a narrow row") << u"가나"_s << 1 << QStringList{u"가"_s, u"나"_s};
    QTest::newRow("mark stays with its letter") << u"abce\u0301x"_s << 4 << QStringList{u"abce\u0301"_s, u"x"_s};
    QTest::newRow("tab at the edge") << u"abc\tx"_s << 4 << QStringList{u"abc\t"_s, u"x"_s};
    QTest::newRow("tab behind a full row") << u"abcd\tx"_s << 4 << QStringList{u"abcd"_s, u"\t"_s, u"x"_s};
    QTest::newRow("a family is one") << u"ab👩‍👩‍👧c"_s << 6
                                     << QStringList{u"ab"_s, u"👩‍👩‍👧"_s, u"c"_s};
    QTest::newRow("a family in a narrow row")
        << u"a👩‍👩‍👧b"_s << 3 << QStringList{u"a"_s, u"👩‍👩‍👧"_s, u"b"_s};
    QTest::newRow("two consonants in one") << u"abcक्षd"_s << 4 << QStringList{u"abc"_s, u"क्षd"_s};
    QTest::newRow("flags") << u"🇰🇷🇺🇸x"_s << 3 << QStringList{u"🇰🇷"_s, u"🇺🇸x"_s};
    QTest::newRow("pair of surrogates") << u"a\U0001F600b"_s << 2 << QStringList{u"a"_s, u"\U0001F600"_s, u"b"_s};
}

void LineCellsTest::linesAreCutIntoRows()
{
    QFETCH(QString, line);
    QFETCH(int, columns);
    QFETCH(QStringList, rows);
    const LineRows cut(line, columns);
    QStringList made;
    for (qsizetype row = 0; row < cut.count(); ++row) {
        made.append(line.sliced(cut.start(row), cut.end(row) - cut.start(row)));
    }
    QCOMPARE(made, rows);
}

void LineCellsTest::rowsHoldTheWholeLine()
{
    std::mt19937 random(7);
    const QString alphabet = u"ab \t가e\u0301\r\U0001F600\u200d"_s;
    for (int round = 0; round < 400; ++round) {
        QString line;
        const auto below = [&](int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(random); };
        for (int length = below(60); length > 0; --length) {
            line += alphabet[below(int(alphabet.size()))];
        }
        const int columns = 1 + below(12);
        const LineRows rows(line, columns);
        QCOMPARE(rows.start(0), 0);
        QCOMPARE(rows.end(rows.count() - 1), line.size());
        for (qsizetype row = 0; row < rows.count(); ++row) {
            const qsizetype start = rows.start(row);
            const qsizetype end = rows.end(row);
            QVERIFY(end > start || line.isEmpty());
            QCOMPARE(graphemeBoundaryAtOrBefore(line, start), start);
            for (qsizetype unit = start; unit < end; ++unit) {
                QCOMPARE(rows.rowOf(unit), row);
            }
            // Only a wide character in a row of one cell, a blank and a tab at the end may stand over.
            const qsizetype cells = cellCount(QStringView(line).sliced(start, end - start));
            QVERIFY(cells <= std::max(columns, 2) + cellsPerTab);
        }
        QCOMPARE(rows.rowOf(line.size()), rows.count() - 1);
    }
}

void LineCellsTest::controlCharactersAreDrawn()
{
    QCOMPARE(drawnText(u"a\tb"_s).text, u"a   b"_s);
    QCOMPARE(drawnText(u"a\x1b[0m\r"_s).text, u"a\u241b[0m "_s);
    QCOMPARE(drawnText(QString(u'a') + QChar(0) + QChar(0x7f)).text, u"a\u2400\u2421"_s);
    QCOMPARE(drawnText(u"a\u2028b\u2029c\u0085"_s).text, u"a b c "_s);
    QCOMPARE(drawnText(u"가\U0001F600"_s).text, u"가\U0001F600"_s);
}

void LineCellsTest::placesGoBothWays()
{
    const DrawnText drawn = drawnText(u"a\tb"_s);
    QCOMPARE(drawn.places, (std::vector<qint32>{0, 1, 4, 5}));
    QCOMPARE(drawn.unitAt(0), 0);
    QCOMPARE(drawn.unitAt(1), 1);
    QCOMPARE(drawn.unitAt(3), 1);
    QCOMPARE(drawn.unitAt(4), 2);
    QCOMPARE(drawn.unitAt(5), 3);
}

const kelm::test::Registered<LineCellsTest> registered;

} // namespace line_cells_test

#include "line_cells_test.moc"
