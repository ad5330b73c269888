// Going through a shown diff line by line.
#include "git/diff/diff_selection.h"
#include "support/diff_text.h"
#include "support/test_program.h"

#include <QtTest>

#include <algorithm>

namespace diff_selection_lines_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

namespace {

using Side = SideBySideHunkLines::Side;
/// The file, the hunk and the entry of a place, and the unit in it.
using Place = QList<qsizetype>;

DiffTextPlace placeOf(const Place& place)
{
    return {place[0], place[1], place[2], place[3]};
}

DiffLayout layoutOf(DiffViewMode mode, const QList<Place>& collapsed = {})
{
    QString text =
        diffOf(u"a.txt"_s, {{u" one"_s, u"-two"_s, u"+TWO"_s, u"+three"_s}, {u"-four"_s}, {}, {u" five"_s}}) +
        diffOf(u"image"_s, {}) + diffOf(u"b.txt"_s, {{u"+six"_s}, {u" seven"_s}});
    text.chop(1);
    DiffLayout layout(DiffParser::parse(text), mode, {}, 80);
    for (const Place& hunk : collapsed) {
        layout.setCollapsed(hunk[0], hunk[1], true);
    }
    return layout;
}

QString textAt(const DiffLayout& layout, const DiffTextPlace& place, Side side)
{
    return place.hunk < 0 ? shownPath(layout.files()[place.file])
                          : lineOn(side, layout, place.file, place.hunk, place.entry)->text.toString();
}

} // namespace

class DiffSelectionLinesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linesFollowEachOther_data();
    void linesFollowEachOther();
    void whereThereIsNothingThereIsNoLine();
    void selectionGrowsByLines_data();
    void selectionGrowsByLines();
    void placeWithoutTextHoldsNothingUp();
    void lineWithoutTextIsNoEnd();
};

void DiffSelectionLinesTest::linesFollowEachOther_data()
{
    QTest::addColumn<DiffViewMode>("mode");
    QTest::addColumn<Side>("side");
    QTest::addColumn<QList<Place>>("collapsed");
    QTest::addColumn<QString>("lines");
    const auto unified = DiffViewMode::unified;
    const auto sides = DiffViewMode::sideBySide;

    QTest::newRow("unified") << unified << Side::newSide << QList<Place>{}
                             << u"a.txt one two TWO three four five image b.txt six seven"_s;
    QTest::newRow("the old side") << sides << Side::oldSide << QList<Place>{}
                                  << u"a.txt one two four five image b.txt seven"_s;
    QTest::newRow("the new side") << sides << Side::newSide << QList<Place>{}
                                  << u"a.txt one TWO three five image b.txt six seven"_s;
    QTest::newRow("the first hunk is collapsed")
        << unified << Side::newSide << QList<Place>{{0, 0}} << u"a.txt four five image b.txt six seven"_s;
    QTest::newRow("one within") << unified << Side::newSide << QList<Place>{{0, 1}}
                                << u"a.txt one two TWO three five image b.txt six seven"_s;
    QTest::newRow("the last ones of both files") << unified << Side::newSide << QList<Place>{{0, 3}, {2, 1}}
                                                 << u"a.txt one two TWO three four image b.txt six"_s;
    QTest::newRow("all of a file") << unified << Side::newSide << QList<Place>{{2, 0}, {2, 1}}
                                   << u"a.txt one two TWO three four five image b.txt"_s;
    QTest::newRow("all") << sides << Side::oldSide << QList<Place>{{0, 0}, {0, 1}, {0, 2}, {0, 3}, {2, 0}, {2, 1}}
                         << u"a.txt image b.txt"_s;
}

void DiffSelectionLinesTest::linesFollowEachOther()
{
    QFETCH(DiffViewMode, mode);
    QFETCH(Side, side);
    QFETCH(QList<Place>, collapsed);
    QFETCH(QString, lines);
    const DiffLayout layout = layoutOf(mode, collapsed);
    const auto walk = [&](std::optional<DiffTextPlace> place, bool isBelow) {
        QStringList seen;
        QList<DiffTextPlace> places;
        while (place && seen.size() < 100) {
            seen.append(textAt(layout, *place, side));
            places.append(*place);
            place->unit = 1;
            place = neighbouringLine(layout, *place, side, isBelow);
        }
        return std::pair(seen, places);
    };
    const auto [down, placesDown] = walk(DiffTextPlace{}, true);
    QCOMPARE(down.join(u' '), lines);
    // Each line is entered at its first unit.
    QVERIFY(std::all_of(placesDown.begin(), placesDown.end(), [](const auto& place) { return place.unit == 0; }));
    auto [up, placesUp] = walk(placesDown.back(), false);
    std::reverse(placesUp.begin(), placesUp.end());
    QCOMPARE(placesUp, placesDown);
}

void DiffSelectionLinesTest::whereThereIsNothingThereIsNoLine()
{
    const DiffLayout layout = layoutOf(DiffViewMode::unified);
    QCOMPARE(neighbouringLine(layout, {0, -1, 0, 0}, Side::newSide, false), std::nullopt);
    QCOMPARE(neighbouringLine(layout, {2, 1, 0, 0}, Side::newSide, true), std::nullopt);
}

void DiffSelectionLinesTest::selectionGrowsByLines_data()
{
    QTest::addColumn<Place>("anchor");
    QTest::addColumn<Place>("caret");
    QTest::addColumn<QString>("steps");
    QTest::addColumn<QString>("text");
    const Place inTwo{0, 0, 1, 1};

    QTest::newRow("the line itself first, down") << inTwo << inTwo << u"v"_s << u"two"_s;
    QTest::newRow("the line itself first, up") << inTwo << inTwo << u"^"_s << u"two"_s;
    QTest::newRow("from a line's start, up") << Place{0, 0, 1, 0} << Place{0, 0, 1, 0} << u"^"_s << u"two"_s;
    QTest::newRow("two down") << inTwo << inTwo << u"vv"_s << u"two\nTWO"_s;
    QTest::newRow("two up") << inTwo << inTwo << u"^^"_s << u"one\ntwo"_s;
    QTest::newRow("down and back") << inTwo << inTwo << u"vv^"_s << u"two"_s;
    QTest::newRow("down, back and up") << inTwo << inTwo << u"vv^^"_s << u"one\ntwo"_s;
    QTest::newRow("up, back and down") << inTwo << inTwo << u"^^vv"_s << u"two\nTWO"_s;
    QTest::newRow("a piece of a line becomes two lines") << inTwo << Place{0, 0, 1, 2} << u"v"_s << u"two\nTWO"_s;
    QTest::newRow("a piece selected backwards, up") << Place{0, 0, 1, 2} << inTwo << u"^"_s << u"one\ntwo"_s;
    QTest::newRow("up to the path") << Place{0, 0, 0, 1} << Place{0, 0, 0, 1} << u"^^"_s << u"a.txt\none"_s;
    QTest::newRow("a path alone") << Place{1, -1, 0, 2} << Place{1, -1, 0, 2} << u"v"_s << u"image"_s;
    QTest::newRow("over a file's path") << Place{0, 3, 0, 1} << Place{0, 3, 0, 1} << u"vvvv"_s
                                        << u"five\nimage\nb.txt\nsix"_s;
    QTest::newRow("beyond the last line") << Place{2, 1, 0, 0} << Place{2, 1, 0, 2} << u"v"_s << u"seven"_s;
    QTest::newRow("beyond the first") << Place{0, -1, 0, 3} << Place{0, -1, 0, 1} << u"^^"_s << u"a.txt"_s;
    const QString everything = u"a.txt\none\ntwo\nTWO\nthree\nfour\nfive\nimage\nb.txt\nsix\nseven"_s;
    QTest::newRow("everything, down") << Place{0, -1, 0, 0} << Place{3, -1, 0, 0} << u"v"_s << everything;
    QTest::newRow("everything, down and up") << Place{0, -1, 0, 0} << Place{3, -1, 0, 0} << u"v^"_s << everything;
    QTest::newRow("below the last file, down") << Place{3, -1, 0, 0} << Place{3, -1, 0, 0} << u"v"_s << QString();
    QTest::newRow("below the last file, up") << Place{3, -1, 0, 0} << Place{3, -1, 0, 0} << u"v^"_s << u"seven"_s;
    QTest::newRow("at the last line, then back") << Place{2, 0, 0, 0} << Place{2, 0, 0, 0} << u"vvvv^"_s << u"six"_s;
}

void DiffSelectionLinesTest::selectionGrowsByLines()
{
    QFETCH(Place, anchor);
    QFETCH(Place, caret);
    QFETCH(QString, steps);
    const DiffLayout layout = layoutOf(DiffViewMode::unified);
    DiffSelection selection{placeOf(anchor), placeOf(caret), Side::newSide};
    for (const QChar step : steps) {
        selection = extendedByLine(layout, selection, step == u'v');
    }
    QTEST(selectedText(layout, selection), "text");
}

void DiffSelectionLinesTest::placeWithoutTextHoldsNothingUp()
{
    for (const DiffViewMode mode : allDiffViewModes) {
        // A hunk of its header alone, and then one that is collapsed.
        for (const Place& hunk : {Place{0, 2, 0, 0}, Place{0, 1, 0, 0}}) {
            const DiffLayout layout = layoutOf(mode, QList<Place>{{0, 1}});
            const DiffSelection start{placeOf(hunk), placeOf(hunk), Side::newSide};
            QCOMPARE(selectedText(layout, extendedByLine(layout, start, true)), u"five"_s);
            QCOMPARE(selectedText(layout, extendedByLine(layout, start, false)), u"three"_s);
        }
    }
}

void DiffSelectionLinesTest::lineWithoutTextIsNoEnd()
{
    QString text = diffOf(u"a.txt"_s, {{u" one"_s, u" "_s, u" two"_s}});
    text.chop(1);
    const DiffLayout layout(DiffParser::parse(text), DiffViewMode::unified, {}, 80);
    const DiffSelection start{{0, 0, 1, 0}, {0, 0, 1, 0}, Side::newSide};
    QCOMPARE(selectedText(layout, extendedByLine(layout, start, true)), u"\ntwo"_s);
    QCOMPARE(selectedText(layout, extendedByLine(layout, start, false)), u"one\n"_s);
}

const kelm::test::Registered<DiffSelectionLinesTest> registered;

} // namespace diff_selection_lines_test

#include "diff_selection_lines_test.moc"
