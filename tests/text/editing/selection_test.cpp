#include "support/test_program.h"
#include "text/editing/selection.h"

#include <QtTest>

namespace selection_test {

using namespace kelm;

namespace {

Selection over(qsizetype from, qsizetype to)
{
    return {from, {to, false}, {}};
}

} // namespace

class SelectionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void thereIsAlwaysOneSelection();
    void whatMeetsIsJoined_data();
    void whatMeetsIsJoined();
    void theLastMadeIsThePrimaryOne();
    void aJoinedSelectionKeepsItsDirection();
    void selectionsAreCarriedOverEdits();
};

void SelectionTest::thereIsAlwaysOneSelection()
{
    const SelectionSet set;
    QVERIFY(set.isSingle());
    QVERIFY(!set.hasText());
    QCOMPARE(set.primary().range(), (TextRange{0, 0}));
}

void SelectionTest::whatMeetsIsJoined_data()
{
    QTest::addColumn<std::vector<Selection>>("given");
    QTest::addColumn<std::vector<Selection>>("expected");
    using List = std::vector<Selection>;
    QTest::newRow("apart, put in order") << List{over(8, 9), over(1, 3)} << List{over(1, 3), over(8, 9)};
    QTest::newRow("overlapping") << List{over(1, 5), over(3, 8)} << List{over(1, 8)};
    QTest::newRow("touching texts stay two") << List{over(1, 3), over(3, 5)} << List{over(1, 3), over(3, 5)};
    QTest::newRow("caret at a selection's end") << List{over(1, 3), over(3, 3)} << List{over(1, 3)};
    QTest::newRow("two carets at one place") << List{over(2, 2), over(2, 2)} << List{over(2, 2)};
    QTest::newRow("one inside another") << List{over(0, 9), over(3, 4)} << List{over(0, 9)};
}

void SelectionTest::whatMeetsIsJoined()
{
    QFETCH(std::vector<Selection>, given);
    QFETCH(std::vector<Selection>, expected);
    QCOMPARE(SelectionSet(given).all(), expected);
}

void SelectionTest::theLastMadeIsThePrimaryOne()
{
    SelectionSet set(over(10, 12));
    set.add(over(2, 3));
    QCOMPARE(set.primary(), over(2, 3));
    set.add(over(2, 5));
    QCOMPARE(set.all().size(), std::size_t(2));
    QCOMPARE(set.primary().range(), (TextRange{2, 3}));
    set.keepPrimary();
    QCOMPARE(set.all().size(), std::size_t(1));
}

void SelectionTest::aJoinedSelectionKeepsItsDirection()
{
    SelectionSet set(over(6, 9));
    set.add(over(8, 2));
    QCOMPARE(set.primary().anchor, 9);
    QCOMPARE(set.primary().head.offset, 2);
}

void SelectionTest::selectionsAreCarriedOverEdits()
{
    SelectionSet set(std::vector<Selection>{over(1, 2), over(5, 8)});
    TextEdit edit;
    edit.range = {3, 4};
    edit.newLength = 1;
    set.moveThrough(edit);
    QCOMPARE(set.all(), (std::vector<Selection>{over(1, 2), over(4, 5)}));
}

const kelm::test::Registered<SelectionTest> registered;

} // namespace selection_test

#include "selection_test.moc"
