#include "editor/kept_ready/view/selection_manager.h"
#include "support/shown_text_view.h"
#include "support/test_program.h"

namespace selection_manager_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

class SelectionManagerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void allOccurrences_data();
    void allOccurrences();
    void typingReplacesAllOccurrences();
    void units_data();
    void units();
    void selectionsGrow();
    void aViewThatIsGoneStopsEverything();
};

void SelectionManagerTest::allOccurrences_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    QTest::newRow("side by side") << u"[aa]aa"_s << u"[aa][aa]"_s;
    QTest::newRow("letter case counts") << u"x [ab] AB ab"_s << u"x [ab] AB [ab]"_s;
    QTest::newRow("what stands before is found") << u"ab [ab]"_s << u"[ab] [ab]"_s;
    QTest::newRow("the selection is the only one") << u"[abc] ab"_s << u"[abc] ab"_s;
    QTest::newRow("no selection") << u"a|b ab"_s << u"a|b ab"_s;
    QTest::newRow("the whole text") << u"[ab]"_s << u"[ab]"_s;
}

void SelectionManagerTest::allOccurrences()
{
    QFETCH(QString, before);
    ShownTextView view(before);
    SelectionManager(&view).selectAllOccurrences();
    QTEST(view.marked(), "after");
}

void SelectionManagerTest::typingReplacesAllOccurrences()
{
    ShownTextView view(u"[cat] dog cat"_s);
    SelectionManager(&view).selectAllOccurrences();
    QTest::keyClicks(&view, u"ox"_s);
    QCOMPARE(view.marked(), u"ox| dog ox|"_s);
    view.undo();
    QCOMPARE(view.text(), u"cat dog cat"_s);
}

void SelectionManagerTest::units_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("word");
    QTest::addColumn<QString>("line");
    QTest::newRow("a caret") << u"one t|wo\nx"_s << u"one [two]\nx"_s << u"[one two\n]x"_s;
    QTest::newRow("a selection over two lines") << u"a o[ne\nt]wo\nx"_s << u"a [one]\ntwo\nx"_s << u"[a one\ntwo\n]x"_s;
    QTest::newRow("the last line") << u"a\nb|c"_s << u"a\n[bc]"_s << u"a\n[bc]"_s;
    QTest::newRow("the empty text") << u"|"_s << u"|"_s << u"|"_s;
}

void SelectionManagerTest::units()
{
    QFETCH(QString, before);
    ShownTextView view(before);
    SelectionManager(&view).selectWord();
    QTEST(view.marked(), "word");
    view.set(before);
    SelectionManager(&view).selectLine();
    QTEST(view.marked(), "line");
}

void SelectionManagerTest::selectionsGrow()
{
    ShownTextView view(u"one t|wo\nx"_s);
    SelectionManager manager(&view);
    for (const QString& next : {u"one [two]\nx"_s, u"[one two]\nx"_s, u"[one two\n]x"_s, u"[one two\nx]"_s}) {
        manager.expandSelection();
        QCOMPARE(view.marked(), next);
    }
    manager.expandSelection();
    QCOMPARE(view.marked(), u"[one two\nx]"_s);
}

void SelectionManagerTest::aViewThatIsGoneStopsEverything()
{
    auto view = std::make_unique<ShownTextView>(u"[a]a"_s);
    SelectionManager manager(view.get());
    view.reset();
    manager.selectAllOccurrences();
    manager.selectWord();
    manager.selectLine();
    manager.expandSelection();
    QVERIFY(manager.textView().isNull());
}

const kelm::test::Registered<SelectionManagerTest> registered(kelm::test::Toolkit::widgets);

} // namespace selection_manager_test

#include "selection_manager_test.moc"
