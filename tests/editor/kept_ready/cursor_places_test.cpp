#include "editor/kept_ready/cursor_places.h"
#include "support/test_program.h"

#include <QtTest>

namespace cursor_places_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

using Offsets = std::vector<qsizetype>;
using Ranges = std::vector<TextRange>;

class CursorPlacesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void above_data();
    void above();
    void below_data();
    void below();
    void occurrencesDoNotOverlap();
    void lineEndsStandBeforeTerminators();
    void selectionsGrowByUnits();
};

void CursorPlacesTest::above_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qsizetype>("position");
    QTest::addColumn<qsizetype>("place");
    QTest::newRow("the same column") << u"abcd\nefgh"_s << qsizetype(7) << qsizetype(2);
    QTest::newRow("the first line") << u"abcd\nefgh"_s << qsizetype(3) << qsizetype(-1);
    QTest::newRow("a shorter line ends before its line end") << u"ab\nefgh"_s << qsizetype(7) << qsizetype(2);
    QTest::newRow("an empty line") << u"\nefgh"_s << qsizetype(4) << qsizetype(0);
    QTest::newRow("the last unit of CRLF") << u"a\r\nefgh"_s << qsizetype(7) << qsizetype(2);
    QTest::newRow("the end of the text") << u"ab\n"_s << qsizetype(3) << qsizetype(0);
}

void CursorPlacesTest::above()
{
    QFETCH(QString, text);
    QFETCH(qsizetype, position);
    TextStorage storage;
    storage.setText(text);
    QTEST(placeAbove(storage, position).value_or(-1), "place");
}

void CursorPlacesTest::below_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qsizetype>("position");
    QTest::addColumn<qsizetype>("place");
    QTest::newRow("the same column") << u"abcd\nefgh"_s << qsizetype(2) << qsizetype(7);
    QTest::newRow("the last line") << u"abcd\nefgh"_s << qsizetype(6) << qsizetype(-1);
    QTest::newRow("before an empty last line") << u"abcd\n"_s << qsizetype(2) << qsizetype(-1);
    QTest::newRow("a shorter last line ends before its last letter") << u"abcd\nef"_s << qsizetype(4) << qsizetype(6);
    QTest::newRow("a shorter line ends before its line end") << u"abcd\nef\ng"_s << qsizetype(4) << qsizetype(7);
    QTest::newRow("the empty text") << QString() << qsizetype(0) << qsizetype(-1);
}

void CursorPlacesTest::below()
{
    QFETCH(QString, text);
    QFETCH(qsizetype, position);
    TextStorage storage;
    storage.setText(text);
    QTEST(placeBelow(storage, position).value_or(-1), "place");
}

void CursorPlacesTest::occurrencesDoNotOverlap()
{
    QCOMPARE(occurrences(u"aaaa", u"aa"), (Ranges{{0, 2}, {2, 2}}));
    QCOMPARE(occurrences(u"aaa", u"aa"), (Ranges{{0, 2}}));
    QCOMPARE(occurrences(u"Ab ab aB", u"ab"), (Ranges{{3, 2}}));
    QCOMPARE(occurrences(u"abc", u"x"), Ranges());
    QCOMPARE(occurrences(u"abc", u""), Ranges());
    QCOMPARE(occurrences(u"a.c abc", u"a.c"), (Ranges{{0, 3}}));
    // Half of a character is none of them.
    QCOMPARE(occurrences(u"e e\u0301 e", u"e"), (Ranges{{0, 1}, {5, 1}}));
    QCOMPARE(occurrences(u"\r\n\n\n", u"\n"), (Ranges{{2, 1}, {3, 1}}));
    QCOMPARE(occurrences(u"\U0001F469\u200d\U0001F469 \U0001F469", u"\U0001F469"), (Ranges{{6, 2}}));
}

void CursorPlacesTest::lineEndsStandBeforeTerminators()
{
    TextStorage storage;
    storage.setText(u"one\r\ntwo\n\nlast"_s);
    QCOMPARE(lineEnds(storage, {0, storage.length()}), (Offsets{3, 8, 9, 14}));
    QCOMPARE(lineEnds(storage, {6, 0}), (Offsets{8}));
    QCOMPARE(lineEnds(storage, {2, 4}), (Offsets{3, 8}));
    storage.setText(QString());
    QCOMPARE(lineEnds(storage, {0, 0}), (Offsets{0}));
    storage.setText(u"a\n"_s);
    QCOMPARE(lineEnds(storage, {2, 0}), (Offsets{2}));
}

void CursorPlacesTest::selectionsGrowByUnits()
{
    TextStorage storage;
    storage.setText(u"one two\r\nthree\n"_s);
    const Ranges steps{{1, 0}, {0, 3}, {0, 7}, {0, 9}, {0, 15}, {0, 15}};
    for (std::size_t step = 0; step + 1 < steps.size(); ++step) {
        QCOMPARE(expanded(storage, steps[step]), steps[step + 1]);
    }
    QCOMPARE(expanded(storage, {5, 6}), (TextRange{0, 14}));
    storage.setText(QString());
    QCOMPARE(expanded(storage, {0, 0}), (TextRange{0, 0}));
}

const kelm::test::Registered<CursorPlacesTest> registered;

} // namespace cursor_places_test

#include "cursor_places_test.moc"
