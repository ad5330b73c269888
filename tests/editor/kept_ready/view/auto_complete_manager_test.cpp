#include "editor/kept_ready/view/auto_complete_manager.h"
#include "editor/kept_ready/view/auto_complete_view.h"
#include "editor/kept_ready/view/completion_row.h"
#include "platform/desktop/named_colors.h"
#include "platform/style/view/style.h"
#include "support/shown_text_view.h"
#include "support/test_program.h"

#include <QApplication>
#include <QGraphicsDropShadowEffect>
#include <QKeyEvent>

namespace auto_complete_manager_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

QKeyEvent pressOf(int key)
{
    return {QEvent::KeyPress, key, Qt::NoModifier};
}

/// A view with its manager.
struct Fixture
{
    ShownTextView view;
    AutoCompleteManager manager{&view};

    explicit Fixture(const QString& marked = {}) : view(marked) {}

    bool press(int key) { return manager.handleKeyEvent(pressOf(key)); }
    AutoCompleteView& list() { return *manager.completionWindow()->findChild<AutoCompleteView*>(); }
};

} // namespace

class AutoCompleteManagerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theWordInFrontOfTheCaretIsTaken_data();
    void theWordInFrontOfTheCaretIsTaken();
    void anEmptyWordClosesTheList();
    void aWordThatNothingFitsClosesTheList();
    void keysMoveWithinTheList();
    void keysAreTakenOnlyWhileTheListIsShown();
    void aChosenWordReplacesTheBegunOne_data();
    void aChosenWordReplacesTheBegunOne();
    void theCaretGoesBehindWhatIsPutIn();
    void whatIsPutInIsOneUndoStep();
    void whatIsPutInComesIntoSight();
    void theRangeCountsCharacters();
    void anIndexOutsideTheListChoosesNothing();
    void theWindowStandsBelowTheWord();
    void theWindowTakesNoFocusAndIsKept();
    void theListIsAsHighAsItsRows();
    void theSelectedRowIsShown();
    void theListCastsAShadow();
    void theGroundFollowsTheAppearance();
    void aClickChoosesARow();
    void observersHearOfEveryChange();
    void aViewThatIsGoneStopsEverything();
};

void AutoCompleteManagerTest::theWordInFrontOfTheCaretIsTaken_data()
{
    QTest::addColumn<QString>("marked");
    QTest::addColumn<QString>("word");
    QTest::addColumn<TextRange>("range");
    QTest::newRow("at the start of the text") << u"fo|"_s << u"fo"_s << TextRange{0, 2};
    QTest::newRow("behind a blank") << u"a fo|"_s << u"fo"_s << TextRange{2, 2};
    QTest::newRow("within a word") << u"fo|rest"_s << u"fo"_s << TextRange{0, 2};
    QTest::newRow("at signs and underscores belong to it") << u"x.@a_1|"_s << u"@a_1"_s << TextRange{2, 4};
    QTest::newRow("letters of all scripts") << u"(가나|"_s << u"가나"_s << TextRange{1, 2};
    QTest::newRow("an emoji does not belong to it") << u"\U0001F600fo|"_s << u"fo"_s << TextRange{2, 2};
    QTest::newRow("nothing") << u"fo |"_s << QString() << TextRange{3, 0};
    QTest::newRow("the start of a selection counts") << u"fo[rest]"_s << u"fo"_s << TextRange{0, 2};
}

void AutoCompleteManagerTest::theWordInFrontOfTheCaretIsTaken()
{
    QFETCH(QString, marked);
    Fixture fixture(marked);
    fixture.manager.triggerCompletion(Language::python);
    QTEST(fixture.manager.currentWord(), "word");
    QTEST(fixture.manager.wordRange(), "range");
}

void AutoCompleteManagerTest::anEmptyWordClosesTheList()
{
    Fixture fixture(u"fo|"_s);
    fixture.manager.triggerCompletion(Language::python);
    QVERIFY(fixture.manager.isVisible());
    QVERIFY(fixture.manager.completionWindow()->isVisible());
    QCOMPARE(fixture.manager.suggestions().size(), 2);
    fixture.view.set(u"fo |"_s);
    fixture.manager.triggerCompletion(Language::python);
    QVERIFY(!fixture.manager.isVisible());
    QVERIFY(!fixture.manager.completionWindow()->isVisible());
}

void AutoCompleteManagerTest::aWordThatNothingFitsClosesTheList()
{
    Fixture fixture(u"fo|"_s);
    fixture.manager.triggerCompletion(Language::python);
    fixture.view.set(u"foq|"_s);
    fixture.manager.triggerCompletion(Language::python);
    QVERIFY(!fixture.manager.isVisible());
    QVERIFY(fixture.manager.suggestions().isEmpty());
    QVERIFY(!fixture.manager.completionWindow()->isVisible());
}

void AutoCompleteManagerTest::keysMoveWithinTheList()
{
    Fixture fixture(u"fo|"_s);
    fixture.manager.triggerCompletion(Language::python);
    QVERIFY(fixture.press(Qt::Key_Up));
    QCOMPARE(fixture.manager.selectedIndex(), 0);
    QVERIFY(fixture.press(Qt::Key_Down));
    QCOMPARE(fixture.manager.selectedIndex(), 1);
    QVERIFY(fixture.press(Qt::Key_Down));
    QCOMPARE(fixture.manager.selectedIndex(), 1);
    QVERIFY(fixture.press(Qt::Key_Up));
    QCOMPARE(fixture.manager.selectedIndex(), 0);
    QVERIFY(!fixture.press(Qt::Key_Left));
    QVERIFY(!fixture.press(Qt::Key_X));
    // A new word begins at the top again.
    fixture.press(Qt::Key_Down);
    fixture.manager.triggerCompletion(Language::python);
    QCOMPARE(fixture.manager.selectedIndex(), 0);
    QVERIFY(fixture.press(Qt::Key_Escape));
    QVERIFY(!fixture.manager.isVisible());
    QVERIFY(!fixture.manager.completionWindow()->isVisible());
    QCOMPARE(fixture.view.marked(), u"fo|"_s);
}

void AutoCompleteManagerTest::keysAreTakenOnlyWhileTheListIsShown()
{
    Fixture fixture(u"fo|"_s);
    for (const int key : {Qt::Key_Return, Qt::Key_Tab, Qt::Key_Escape, Qt::Key_Down, Qt::Key_Up}) {
        QVERIFY(!fixture.press(key));
    }
    QCOMPARE(fixture.view.text(), u"fo"_s);
}

void AutoCompleteManagerTest::aChosenWordReplacesTheBegunOne_data()
{
    QTest::addColumn<QString>("marked");
    QTest::addColumn<int>("downs");
    QTest::addColumn<int>("key");
    QTest::addColumn<QString>("after");
    const int enter = Qt::Key_Return;
    const int tab = Qt::Key_Tab;
    QTest::newRow("a keyword, by Return") << u"x fo| y"_s << 0 << enter << u"x for| y"_s;
    QTest::newRow("a keyword, by Tab") << u"x fo| y"_s << 0 << tab << u"x for| y"_s;
    QTest::newRow("a snippet") << u"fo|"_s << 1 << enter << u"for item in collection {\n    \n}|"_s;
    QTest::newRow("the print snippet") << u"pri|"_s << 1 << enter << u"print(\"\")|"_s;
    QTest::newRow("with a selection behind the word") << u"fo[rest]"_s << 0 << enter << u"for|rest"_s;
    QTest::newRow("the case as typed gives way") << u"FO|"_s << 0 << enter << u"for|"_s;
}

void AutoCompleteManagerTest::aChosenWordReplacesTheBegunOne()
{
    QFETCH(QString, marked);
    QFETCH(int, downs);
    QFETCH(int, key);
    Fixture fixture(marked);
    fixture.manager.triggerCompletion(Language::python);
    for (int step = 0; step < downs; ++step) {
        fixture.press(Qt::Key_Down);
    }
    QVERIFY(fixture.press(key));
    QTEST(fixture.view.marked(), "after");
    QVERIFY(!fixture.manager.isVisible());
    QVERIFY(!fixture.manager.completionWindow()->isVisible());
}

void AutoCompleteManagerTest::theCaretGoesBehindWhatIsPutIn()
{
    Fixture fixture(u"fo|"_s);
    fixture.manager.triggerCompletion(Language::python);
    // A digit leaves the list as it is.
    QTest::keyClicks(&fixture.view, u"1"_s);
    QVERIFY(fixture.press(Qt::Key_Return));
    QCOMPARE(fixture.view.marked(), u"for|1"_s);
}

void AutoCompleteManagerTest::whatIsPutInIsOneUndoStep()
{
    Fixture fixture(u"fo|"_s);
    fixture.manager.triggerCompletion(Language::python);
    fixture.press(Qt::Key_Return);
    QCOMPARE(fixture.view.text(), u"for"_s);
    fixture.view.undo();
    QCOMPARE(fixture.view.marked(), u"fo|"_s);
}

void AutoCompleteManagerTest::whatIsPutInComesIntoSight()
{
    Fixture fixture(u"fo|"_s + u"\nline"_s.repeated(100));
    fixture.manager.triggerCompletion(Language::python);
    fixture.view.scrollToY(600);
    QCOMPARE(fixture.view.visibleRect().y(), 600.0);
    QVERIFY(fixture.press(Qt::Key_Return));
    QVERIFY(fixture.view.visibleRect().y() < 10);
}

void AutoCompleteManagerTest::theRangeCountsCharacters()
{
    // "e" with an accent of its own is one character of two units.
    Fixture fixture(u"e\u0301|"_s);
    fixture.manager.triggerCompletion(Language::python);
    QCOMPARE(fixture.manager.wordRange(), (TextRange{0, 1}));
}

void AutoCompleteManagerTest::anIndexOutsideTheListChoosesNothing()
{
    Fixture fixture(u"fo|"_s);
    fixture.manager.triggerCompletion(Language::python);
    for (const qsizetype index : {qsizetype(2), qsizetype(-1)}) {
        fixture.manager.setSelectedIndex(index);
        fixture.manager.confirmSelection();
        QVERIFY(fixture.manager.isVisible());
        QCOMPARE(fixture.view.text(), u"fo"_s);
    }
}

void AutoCompleteManagerTest::theWindowStandsBelowTheWord()
{
    Fixture fixture(u"abc fo|"_s);
    fixture.manager.triggerCompletion(Language::python);
    const QRectF word = fixture.view.caretRect({4, false});
    const QPoint below = fixture.view.viewport()->mapToGlobal(word.bottomLeft().toPoint());
    QCOMPARE(fixture.manager.completionWindow()->pos(), below);
    QCOMPARE(fixture.manager.completionWindow()->size(), QSize(300, 200));
    fixture.manager.showCompletionWindow({50, 400});
    QCOMPARE(fixture.manager.completionWindow()->geometry(), QRect(50, 200, 300, 200));
}

void AutoCompleteManagerTest::theWindowTakesNoFocusAndIsKept()
{
    Fixture fixture(u"fo|"_s);
    QCOMPARE(fixture.manager.completionWindow(), nullptr);
    fixture.manager.triggerCompletion(Language::python);
    QWidget* const window = fixture.manager.completionWindow();
    QVERIFY(window->windowFlags().testFlag(Qt::FramelessWindowHint));
    QVERIFY(window->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    QVERIFY(window->windowFlags().testFlag(Qt::WindowDoesNotAcceptFocus));
    QVERIFY(window->testAttribute(Qt::WA_TranslucentBackground));
    QVERIFY(window->testAttribute(Qt::WA_ShowWithoutActivating));
    QVERIFY(fixture.view.hasFocus());
    fixture.press(Qt::Key_Escape);
    fixture.manager.triggerCompletion(Language::python);
    QCOMPARE(fixture.manager.completionWindow(), window);
}

void AutoCompleteManagerTest::theListIsAsHighAsItsRows()
{
    Fixture fixture(u"fo|"_s);
    fixture.manager.triggerCompletion(Language::python);
    QCOMPARE(fixture.list().size(), QSize(300, 2 * 28));
    QCOMPARE(fixture.list().rows().size(), 2);
    QCOMPARE(fixture.list().rows()[1]->item().text, u"for"_s);
    fixture.view.set(u"f|"_s);
    fixture.manager.triggerCompletion(Language::javascript);
    QCOMPARE(fixture.list().rows().size(), 9);
    QCOMPARE(fixture.list().size(), QSize(300, 200));
}

void AutoCompleteManagerTest::theSelectedRowIsShown()
{
    Fixture fixture(u"f|"_s);
    fixture.manager.triggerCompletion(Language::javascript);
    for (int step = 0; step < 8; ++step) {
        fixture.press(Qt::Key_Down);
    }
    CompletionRow& last = *fixture.list().rows().last();
    QVERIFY(last.isSelected());
    QVERIFY(!fixture.list().rows().first()->isSelected());
    const QRect place(last.mapTo(fixture.list().viewport(), QPoint(0, 0)), last.size());
    QVERIFY(fixture.list().viewport()->rect().contains(place));
}

void AutoCompleteManagerTest::theListCastsAShadow()
{
    Fixture fixture(u"fo|"_s);
    fixture.manager.triggerCompletion(Language::python);
    const auto* shadow = qobject_cast<QGraphicsDropShadowEffect*>(fixture.list().graphicsEffect());
    QVERIFY(shadow != nullptr);
    QCOMPARE(shadow->color(), QColor::fromRgbF(0, 0, 0, 0.33F));
    QCOMPARE(shadow->blurRadius(), 10.0);
    QCOMPARE(shadow->offset(), QPointF(0, 0));
}

void AutoCompleteManagerTest::theGroundFollowsTheAppearance()
{
    Fixture fixture(u"fo|"_s);
    fixture.manager.triggerCompletion(Language::python);
    // Without the shadow, at the right end of the row that is not selected: nothing is drawn there.
    const auto ground = [&] { return fixture.list().viewport()->grab().toImage().pixelColor(298, 28 + 14); };
    for (const Appearance appearance : {Appearance::light, Appearance::dark}) {
        QApplication::setPalette(style::palette(appearance));
        QTRY_COMPARE(ground(), systemColor(SystemColor::controlBackground, appearance));
    }
}

void AutoCompleteManagerTest::aClickChoosesARow()
{
    Fixture fixture(u"fo|"_s);
    fixture.manager.triggerCompletion(Language::python);
    QTest::mouseClick(fixture.list().rows()[1], Qt::LeftButton);
    QCOMPARE(fixture.manager.selectedIndex(), 1);
    QCOMPARE(fixture.view.text(), u"for item in collection {\n    \n}"_s);
    QVERIFY(!fixture.manager.isVisible());
}

void AutoCompleteManagerTest::observersHearOfEveryChange()
{
    Fixture fixture(u"fo|"_s);
    const QSignalSpy visible(&fixture.manager, &AutoCompleteManager::isVisibleChanged);
    const QSignalSpy suggestions(&fixture.manager, &AutoCompleteManager::suggestionsChanged);
    const QSignalSpy selected(&fixture.manager, &AutoCompleteManager::selectedIndexChanged);
    fixture.manager.triggerCompletion(Language::python);
    fixture.press(Qt::Key_Down);
    fixture.press(Qt::Key_Escape);
    QCOMPARE(visible.size(), 2);
    QCOMPARE(suggestions.size(), 1);
    QCOMPARE(selected.size(), 1);
}

void AutoCompleteManagerTest::aViewThatIsGoneStopsEverything()
{
    auto view = std::make_unique<ShownTextView>(u"fo|"_s);
    AutoCompleteManager manager(view.get());
    manager.triggerCompletion(Language::python);
    view.reset();
    manager.triggerCompletion(Language::swift);
    QCOMPARE(manager.currentWord(), u"fo"_s);
    manager.confirmSelection();
    manager.showCompletion();
}

const kelm::test::Registered<AutoCompleteManagerTest> registered(kelm::test::Toolkit::widgets);

} // namespace auto_complete_manager_test

#include "auto_complete_manager_test.moc"
