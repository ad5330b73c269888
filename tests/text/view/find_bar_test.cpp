#include "support/test_program.h"
#include "text/view/find_bar.h"
#include "text/view/text_view.h"

#include <QLabel>
#include <QLineEdit>
#include <QToolButton>
#include <QtTest>

namespace find_bar_test {

using namespace kelm;

namespace {

/// A text view on screen with its bar, and what a person sees and touches of it.
struct Fixture
{
    TextView view;

    explicit Fixture(const QString& text)
    {
        view.resize(900, 400);
        view.storage().setText(text);
        view.setSelectedRange({0, 0});
        view.show();
        QVERIFY(QTest::qWaitForWindowActive(&view));
        view.setFocus();
    }

    FindBar& bar() { return view.findBar(); }
    QLineEdit* field(const char* name)
    {
        for (auto* edit : bar().findChildren<QLineEdit*>()) {
            if (edit->accessibleName() == QLatin1String(name)) {
                return edit;
            }
        }
        return nullptr;
    }
    QToolButton* button(const char* help)
    {
        for (auto* found : bar().findChildren<QToolButton*>()) {
            if (found->accessibleName() == QLatin1String(help)) {
                return found;
            }
        }
        return nullptr;
    }
    QString status() { return bar().findChild<QLabel*>()->toolTip(); }
    void open(const QString& wanted, bool withReplace = false)
    {
        withReplace ? view.showReplaceBar() : view.showFindBar();
        field("Find")->clear();
        // Keys are for ASCII; anything else comes from an input method, or is pasted.
        const bool isAscii =
            std::all_of(wanted.begin(), wanted.end(), [](QChar unit) { return unit.unicode() < 0x80; });
        isAscii ? QTest::keyClicks(field("Find"), wanted) : field("Find")->insert(wanted);
    }
    std::vector<TextRange> highlighted()
    {
        std::vector<TextRange> ranges;
        for (const TextHighlight& highlight : view.highlights()) {
            ranges.push_back(highlight.range);
        }
        return ranges;
    }
};

} // namespace

class FindBarTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void openingKeepsTheCaretAndTakesTheKeyboard();
    void typingShowsAllMatchesAndTheCurrentOne();
    void enterStepsAndShiftEnterStepsBack();
    void escapeGoesBackToTheText();
    void theSelectionIsTheTextLookedFor();
    void optionsNarrowTheSearch();
    void aPatternThatDoesNotCompileSaysSo();
    void aPatternThatWouldRunForEverIsStopped();
    void replaceGoesOnToTheNextMatch();
    void replaceAllIsOneStepOfUndo();
    void templatesPutGroupsIn();
    void matchesFollowEdits();
    void nothingFoundSaysSo();
    void findNextWorksWithoutTheBar();
    void withoutTheBarNothingGoesOnSearching();
    void withoutTheBarAStepThatTakesLongIsTheLastThing_data();
    void withoutTheBarAStepThatTakesLongIsTheLastThing();
    void noCommandLeavesASearchRunning();
    void allOfALongTextAreReplacedInOneStep();
    void whatIsComposedMeanwhileDropsTheReplacementOfAll();
    void theFirstLineComesOutFromUnderTheBar();
    void aReadOnlyTextIsNotReplaced();
    void onlyMatchesOnScreenAreMarked();
    void tabGoesRoundTheBar_data();
    void tabGoesRoundTheBar();
    void keysOfTheBarsButtonsAreNotTyped();
    void escapeInTheTextClosesTheBar();
    void nothingOverlapsAtAnyWidth_data();
    void nothingOverlapsAtAnyWidth();
    void theStatusGivesWayBeforeTheFields();
    void theTextGoesDownWithTheBarAndComesBack();
    void theCaretsLineStaysInSight_data();
    void theCaretsLineStaysInSight();
};

void FindBarTest::openingKeepsTheCaretAndTakesTheKeyboard()
{
    Fixture fixture(QStringLiteral("one two one"));
    fixture.view.setSelectedRange({5, 0});
    fixture.view.showFindBar();
    QVERIFY(fixture.bar().isVisible());
    QVERIFY(fixture.field("Find")->hasFocus());
    QCOMPARE(fixture.view.selectedRange(), (TextRange{5, 0}));
    QVERIFY(!fixture.field("Replace")->isVisible());
}

void FindBarTest::typingShowsAllMatchesAndTheCurrentOne()
{
    Fixture fixture(QStringLiteral("one two one\none"));
    fixture.view.setSelectedRange({4, 0});
    fixture.open(QStringLiteral("one"));
    QCOMPARE(fixture.highlighted(), (std::vector<TextRange>{{0, 3}, {8, 3}, {12, 3}}));
    QCOMPARE(fixture.view.highlights()[1].color, fixture.view.colors().currentMatch);
    QCOMPARE(fixture.view.highlights()[0].color, fixture.view.colors().match);
    QCOMPARE(fixture.status(), QStringLiteral("2 of 3"));
    QCOMPARE(fixture.view.selectedRange(), (TextRange{4, 0}));
    QCOMPARE(fixture.bar().engine().results().size(), 3);
    QCOMPARE(fixture.bar().engine().results()[2].line, 2);
    QCOMPARE(fixture.bar().engine().results()[2].lineText, QStringLiteral("one"));
    QCOMPARE(fixture.bar().engine().currentMatchIndex(), 1);
}

void FindBarTest::enterStepsAndShiftEnterStepsBack()
{
    Fixture fixture(QStringLiteral("a b a b a"));
    fixture.open(QStringLiteral("a"));
    QTest::keyClick(fixture.field("Find"), Qt::Key_Return);
    QCOMPARE(fixture.view.selectedRange(), (TextRange{0, 1}));
    QTest::keyClick(fixture.field("Find"), Qt::Key_Return);
    QCOMPARE(fixture.view.selectedRange(), (TextRange{4, 1}));
    QCOMPARE(fixture.status(), QStringLiteral("2 of 3"));
    QTest::keyClick(fixture.field("Find"), Qt::Key_Return, Qt::ShiftModifier);
    QCOMPARE(fixture.view.selectedRange(), (TextRange{0, 1}));
    QTest::keyClick(fixture.field("Find"), Qt::Key_Return, Qt::ShiftModifier);
    QCOMPARE(fixture.view.selectedRange(), (TextRange{8, 1}));
    QTest::keyClick(fixture.field("Find"), Qt::Key_Return);
    QCOMPARE(fixture.view.selectedRange(), (TextRange{0, 1}));
    QVERIFY(fixture.field("Find")->hasFocus());
}

void FindBarTest::escapeGoesBackToTheText()
{
    Fixture fixture(QStringLiteral("a b a"));
    fixture.open(QStringLiteral("a"));
    QTest::keyClick(fixture.field("Find"), Qt::Key_Escape);
    QVERIFY(!fixture.bar().isVisible());
    QVERIFY(fixture.view.hasFocus());
    QVERIFY(fixture.view.highlights().empty());
    QCOMPARE(fixture.view.visibleRect().y(), 0.0);
}

void FindBarTest::theSelectionIsTheTextLookedFor()
{
    Fixture fixture(QStringLiteral("foo bar foo\nbar"));
    fixture.view.setSelectedRange({4, 3});
    fixture.view.showFindBar();
    QCOMPARE(fixture.field("Find")->text(), QStringLiteral("bar"));
    QCOMPARE(fixture.status(), QStringLiteral("1 of 2"));
    QTest::keyClick(fixture.field("Find"), Qt::Key_Return);
    QCOMPARE(fixture.view.selectedRange(), (TextRange{12, 3}));
    // A selection over a line end is not what is looked for.
    fixture.view.setSelectedRange({8, 6});
    fixture.view.useSelectionForFind();
    QCOMPARE(fixture.field("Find")->text(), QStringLiteral("bar"));
}

void FindBarTest::optionsNarrowTheSearch()
{
    Fixture fixture(QStringLiteral("Cat cat category 한글 한글말"));
    fixture.open(QStringLiteral("cat"));
    QCOMPARE(fixture.highlighted().size(), std::size_t(3));
    QTest::mouseClick(fixture.button("Match case"), Qt::LeftButton);
    QCOMPARE(fixture.highlighted(), (std::vector<TextRange>{{4, 3}, {8, 3}}));
    QTest::mouseClick(fixture.button("Whole words"), Qt::LeftButton);
    QCOMPARE(fixture.highlighted(), (std::vector<TextRange>{{4, 3}}));
    fixture.open(QStringLiteral("한글"));
    QCOMPARE(fixture.highlighted(), (std::vector<TextRange>{{17, 2}}));
    QTest::mouseClick(fixture.button("Whole words"), Qt::LeftButton);
    QTest::mouseClick(fixture.button("Regular expression"), Qt::LeftButton);
    fixture.open(QStringLiteral("[Cc]at\\b"));
    QCOMPARE(fixture.highlighted(), (std::vector<TextRange>{{0, 3}, {4, 3}}));
}

void FindBarTest::aPatternThatDoesNotCompileSaysSo()
{
    Fixture fixture(QStringLiteral("a(b"));
    QTest::mouseClick((fixture.view.showFindBar(), fixture.button("Regular expression")), Qt::LeftButton);
    fixture.open(QStringLiteral("a("));
    QVERIFY(!fixture.status().isEmpty());
    QVERIFY(!fixture.status().contains(QStringLiteral("of")));
    QVERIFY(fixture.highlighted().empty());
    QTest::keyClick(fixture.field("Find"), Qt::Key_Return);
    QCOMPARE(fixture.view.selectedRange(), (TextRange{0, 0}));
}

void FindBarTest::aPatternThatWouldRunForEverIsStopped()
{
    Fixture fixture(QString(40000, u'a') + u'!');
    QTest::mouseClick((fixture.view.showFindBar(), fixture.button("Regular expression")), Qt::LeftButton);
    fixture.field("Find")->setText(QStringLiteral("(a|a)*(a|a)*(a|a)*b"));
    QTRY_COMPARE(fixture.status(), QStringLiteral("Stopped: this pattern takes too long here"));
}

void FindBarTest::replaceGoesOnToTheNextMatch()
{
    Fixture fixture(QStringLiteral("a b a b a"));
    fixture.open(QStringLiteral("a"), true);
    QTest::keyClicks(fixture.field("Replace"), QStringLiteral("aa"));
    QTest::mouseClick(fixture.button("Replace this match"), Qt::LeftButton);
    QCOMPARE(fixture.view.text(), QStringLiteral("aa b a b a"));
    QCOMPARE(fixture.view.selectedRange(), (TextRange{5, 1}));
    QTest::keyClick(fixture.field("Replace"), Qt::Key_Return);
    QCOMPARE(fixture.view.text(), QStringLiteral("aa b aa b a"));
    QCOMPARE(fixture.view.selectedRange(), (TextRange{10, 1}));
}

void FindBarTest::replaceAllIsOneStepOfUndo()
{
    Fixture fixture(QStringLiteral("a b a\r\nb a"));
    fixture.open(QStringLiteral("a"), true);
    QTest::keyClicks(fixture.field("Replace"), QStringLiteral("xyz"));
    QTest::mouseClick(fixture.button("Replace all matches"), Qt::LeftButton);
    QCOMPARE(fixture.view.text(), QStringLiteral("xyz b xyz\r\nb xyz"));
    fixture.view.undo();
    QCOMPARE(fixture.view.text(), QStringLiteral("a b a\r\nb a"));
    QVERIFY(!fixture.view.editor().canUndo());
}

void FindBarTest::templatesPutGroupsIn()
{
    Fixture fixture(QStringLiteral("key=value; other=thing"));
    QTest::mouseClick((fixture.view.showFindBar(), fixture.button("Regular expression")), Qt::LeftButton);
    fixture.open(QStringLiteral("(\\w+)=(\\w+)"), true);
    QTest::keyClicks(fixture.field("Replace"), QStringLiteral("$2:$1"));
    QTest::mouseClick(fixture.button("Replace all matches"), Qt::LeftButton);
    QCOMPARE(fixture.view.text(), QStringLiteral("value:key; thing:other"));
}

void FindBarTest::matchesFollowEdits()
{
    Fixture fixture(QStringLiteral("cat cat"));
    fixture.open(QStringLiteral("cat"));
    fixture.view.storage().replace({0, 0}, u"a cat and ");
    QCOMPARE(fixture.highlighted(), (std::vector<TextRange>{{2, 3}, {10, 3}, {14, 3}}));
    fixture.view.storage().setText(QStringLiteral("none"));
    QVERIFY(fixture.highlighted().empty());
    QCOMPARE(fixture.status(), QStringLiteral("No results"));
}

void FindBarTest::nothingFoundSaysSo()
{
    Fixture fixture(QStringLiteral("abc"));
    fixture.open(QStringLiteral("x"));
    QCOMPARE(fixture.status(), QStringLiteral("No results"));
    fixture.field("Find")->clear();
    QCOMPARE(fixture.status(), QString());
}

void FindBarTest::findNextWorksWithoutTheBar()
{
    Fixture fixture(QStringLiteral("a b a"));
    fixture.view.findNext();
    QCOMPARE(fixture.view.selectedRange(), (TextRange{0, 0}));
    fixture.view.setSelectedRange({0, 1});
    fixture.view.useSelectionForFind();
    fixture.view.findNext();
    QCOMPARE(fixture.view.selectedRange(), (TextRange{4, 1}));
    QVERIFY(!fixture.bar().isVisible());
    fixture.view.findPrevious();
    QCOMPARE(fixture.view.selectedRange(), (TextRange{0, 1}));
}

void FindBarTest::withoutTheBarNothingGoesOnSearching()
{
    Fixture fixture(QStringLiteral("a b a"));
    fixture.view.setSelectedRange({0, 1});
    fixture.view.useSelectionForFind();
    fixture.view.findNext();
    QCOMPARE(fixture.view.selectedRange(), (TextRange{4, 1}));
    QVERIFY(fixture.bar().engine().results().isEmpty());
    fixture.view.storage().replace({0, 0}, u"a a a ");
    QCoreApplication::processEvents();
    QVERIFY(fixture.bar().engine().results().isEmpty());
    // The same the other way round, and after a bar that was closed.
    fixture.view.findPrevious();
    fixture.view.storage().replace({0, 0}, u"a ");
    QCoreApplication::processEvents();
    QVERIFY(fixture.bar().engine().results().isEmpty());
    fixture.open(QStringLiteral("b"));
    fixture.bar().close();
    fixture.view.findNext();
    QVERIFY(fixture.bar().engine().results().isEmpty());
}

void FindBarTest::withoutTheBarAStepThatTakesLongIsTheLastThing_data()
{
    QTest::addColumn<bool>("isPattern");
    QTest::addColumn<bool>("isEdited");
    QTest::newRow("text") << false << false;
    QTest::newRow("pattern") << true << false;
    QTest::newRow("text, and an edit comes between") << false << true;
    QTest::newRow("pattern, and an edit comes between") << true << true;
}

void FindBarTest::withoutTheBarAStepThatTakesLongIsTheLastThing()
{
    QFETCH(bool, isPattern);
    QFETCH(bool, isEdited);
    const QString lines = QStringLiteral("one two\n").repeated(100'000);
    Fixture fixture(QStringLiteral("zebra ") + lines + QStringLiteral("zebra"));
    fixture.view.setSelectedRange({0, 5});
    fixture.view.useSelectionForFind();
    fixture.button("Regular expression")->setChecked(isPattern);
    fixture.view.findNext();
    QVERIFY(!fixture.bar().isVisible());
    QVERIFY(fixture.bar().isSearching());
    QCOMPARE(fixture.view.selectedRange(), (TextRange{0, 5}));
    if (isEdited) {
        fixture.view.storage().replace({20, 0}, u"x");
        QVERIFY(!fixture.bar().isSearching());
        QCOMPARE(fixture.view.selectedRange(), (TextRange{0, 5}));
        return;
    }
    QTRY_COMPARE(fixture.view.selectedRange(), (TextRange{6 + lines.size(), 5}));
    QVERIFY(!fixture.bar().isSearching());
    QVERIFY(fixture.bar().engine().results().isEmpty());
}

void FindBarTest::noCommandLeavesASearchRunning()
{
    Fixture fixture(QStringLiteral("a b a"));
    fixture.view.setSelectedRange({0, 1});
    fixture.view.useSelectionForFind();
    QVERIFY(!fixture.bar().isSearching());
    fixture.view.findNext();
    QVERIFY(!fixture.bar().isSearching());
    fixture.view.findPrevious();
    QVERIFY(!fixture.bar().isSearching());
    fixture.button("Match case")->click();
    fixture.field("Find")->setText(QStringLiteral("b"));
    QVERIFY(!fixture.bar().isSearching());
    fixture.open(QStringLiteral("a"), true);
    QVERIFY(fixture.bar().isSearching());
    // A view that is not seen for a while keeps its bar, and what the bar looks for.
    fixture.view.hide();
    fixture.view.findNext();
    QVERIFY(fixture.bar().isSearching());
    fixture.view.show();
    fixture.bar().close();
    for (const char* help : {"Replace this match", "Replace all matches", "Next match", "Whole words"}) {
        fixture.button(help)->click();
        QVERIFY2(!fixture.bar().isSearching(), help);
    }
}

void FindBarTest::allOfALongTextAreReplacedInOneStep()
{
    const QString text = QStringLiteral("one two\n").repeated(200'000);
    Fixture fixture(text);
    fixture.open(QStringLiteral("two"), true);
    QTest::keyClicks(fixture.field("Replace"), QStringLiteral("three"));
    QTest::mouseClick(fixture.button("Replace all matches"), Qt::LeftButton);
    const QString expected = QString(text).replace(QStringLiteral("two"), QStringLiteral("three"));
    QTRY_COMPARE(fixture.view.storage().length(), expected.size());
    QVERIFY(fixture.view.storage().tree() == expected);
    fixture.view.undo();
    QVERIFY(fixture.view.storage().tree() == text);
    QVERIFY(!fixture.view.editor().canUndo());
}

void FindBarTest::whatIsComposedMeanwhileDropsTheReplacementOfAll()
{
    const QString text = QStringLiteral("one two\n").repeated(200'000);
    Fixture fixture(text);
    fixture.open(QStringLiteral("two"), true);
    QTest::keyClicks(fixture.field("Replace"), QStringLiteral("three"));
    QTest::mouseClick(fixture.button("Replace all matches"), Qt::LeftButton);
    fixture.view.setFocus();
    fixture.view.setSelectedRange({80, 0});
    QInputMethodEvent composing(QStringLiteral("한"), {});
    QCoreApplication::sendEvent(&fixture.view, &composing);
    QTRY_VERIFY(!fixture.view.isComposing());
    QVERIFY(fixture.view.storage().tree() == QString(text).insert(80, u'한'));
}

void FindBarTest::theFirstLineComesOutFromUnderTheBar()
{
    Fixture fixture(QString(QStringLiteral("match\n")).repeated(200));
    fixture.open(QStringLiteral("match"));
    QTest::keyClick(fixture.field("Find"), Qt::Key_Return);
    const QRectF caret = fixture.view.caretRect({0, false});
    QVERIFY(caret.top() >= fixture.bar().height());
    fixture.bar().close();
    QCOMPARE(fixture.view.visibleRect().y(), 0.0);
}

void FindBarTest::aReadOnlyTextIsNotReplaced()
{
    Fixture fixture(QStringLiteral("a b"));
    fixture.view.setReadOnly(true);
    fixture.open(QStringLiteral("a"), true);
    QVERIFY(!fixture.field("Replace")->isVisible());
    QTest::keyClick(fixture.field("Find"), Qt::Key_Return);
    QCOMPARE(fixture.view.selectedRange(), (TextRange{0, 1}));
    QCOMPARE(fixture.view.text(), QStringLiteral("a b"));
}

void FindBarTest::onlyMatchesOnScreenAreMarked()
{
    Fixture fixture(QString(QStringLiteral("match\n")).repeated(300000));
    fixture.open(QStringLiteral("match"));
    QTRY_COMPARE(fixture.status(), QStringLiteral("1 of 300000"));
    QVERIFY(fixture.highlighted().size() < 100);
    fixture.view.scrollToY(100000 * 17.0);
    QVERIFY(fixture.highlighted().size() > 10);
    QVERIFY(fixture.highlighted().size() < 100);
    QVERIFY(fixture.highlighted().front().location > 100000);
}

void FindBarTest::tabGoesRoundTheBar_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<bool>("withReplace");
    QTest::addColumn<int>("stops");
    QTest::newRow("forward, find") << Qt::Key_Tab << false << 7;
    QTest::newRow("backward, find") << Qt::Key_Backtab << false << 7;
    QTest::newRow("forward, replace") << Qt::Key_Tab << true << 10;
    QTest::newRow("backward, replace") << Qt::Key_Backtab << true << 10;
}

void FindBarTest::tabGoesRoundTheBar()
{
    QFETCH(Qt::Key, key);
    QFETCH(bool, withReplace);
    QFETCH(int, stops);
    Fixture fixture(QStringLiteral("one two"));
    fixture.open(QStringLiteral("one"), withReplace);
    QSet<QWidget*> seen;
    while (!seen.contains(QApplication::focusWidget())) {
        QVERIFY(fixture.bar().isAncestorOf(QApplication::focusWidget()));
        seen.insert(QApplication::focusWidget());
        QTest::keyClick(QApplication::focusWidget(), key);
    }
    QCOMPARE(seen.size(), stops);
    QVERIFY(fixture.field("Find")->hasFocus());
    QCOMPARE(fixture.view.text(), QStringLiteral("one two"));
}

void FindBarTest::keysOfTheBarsButtonsAreNotTyped()
{
    Fixture fixture(QStringLiteral("one two"));
    fixture.open(QStringLiteral("one"));
    QToolButton* const button = fixture.button("Whole words");
    button->setFocus();
    QTest::keyClicks(button, QStringLiteral("x"));
    QTest::keyClick(button, Qt::Key_Delete);
    QTest::keyClick(button, Qt::Key_Return);
    QCOMPARE(fixture.view.text(), QStringLiteral("one two"));
    QVERIFY(button->hasFocus());
}

void FindBarTest::escapeInTheTextClosesTheBar()
{
    Fixture fixture(QStringLiteral("one two\nthree"));
    fixture.open(QStringLiteral("one"));
    fixture.view.setFocus();
    fixture.view.editor().setSelections(SelectionSet({Selection::caret({0, false}), Selection::caret({8, false})}));
    QTest::keyClick(&fixture.view, Qt::Key_Escape);
    QVERIFY(fixture.bar().isVisible());
    QTest::keyClick(&fixture.view, Qt::Key_Escape);
    QVERIFY(!fixture.bar().isVisible());
    QVERIFY(fixture.view.hasFocus());
}

void FindBarTest::nothingOverlapsAtAnyWidth_data()
{
    QTest::addColumn<int>("width");
    for (const int width : {210, 300, 400, 420, 480, 560, 640, 720, 900, 1600}) {
        QTest::addRow("%d points", width) << width;
    }
}

void FindBarTest::nothingOverlapsAtAnyWidth()
{
    QFETCH(int, width);
    Fixture fixture(QStringLiteral("one two one"));
    fixture.open(QStringLiteral("one"), true);
    fixture.view.resize(width + fixture.view.width() - fixture.view.viewport()->width(), 400);
    QTRY_COMPARE(fixture.bar().height(), fixture.bar().sizeHint().height());
    QCOMPARE(fixture.bar().width(), width);
    QList<QWidget*> parts;
    for (auto* part : fixture.bar().findChildren<QWidget*>()) {
        const bool isPart =
            qobject_cast<QLineEdit*>(part) != nullptr || qobject_cast<QLabel*>(part) != nullptr ||
            (qobject_cast<QToolButton*>(part) != nullptr && qobject_cast<QLineEdit*>(part->parentWidget()) == nullptr);
        if (isPart && part->isVisible()) {
            parts.append(part);
        }
    }
    QCOMPARE(parts.size(), 11);
    const auto place = [&](QWidget* part) { return QRect(part->mapTo(&fixture.bar(), QPoint()), part->size()); };
    for (qsizetype i = 0; i < parts.size(); ++i) {
        QVERIFY2(fixture.bar().rect().contains(place(parts[i])), qPrintable(parts[i]->accessibleName()));
        if (qobject_cast<QToolButton*>(parts[i]) != nullptr) {
            QVERIFY(parts[i]->width() >= parts[i]->sizeHint().width());
        }
        for (qsizetype j = i + 1; j < parts.size(); ++j) {
            QVERIFY2(!place(parts[i]).intersects(place(parts[j])),
                     qPrintable(parts[i]->accessibleName() + u'/' + parts[j]->accessibleName()));
        }
    }
    // The count of what was found is told in full where windows have their common sizes, and the field has room for a
    // word.
    QVERIFY(width < 400 || fixture.bar().findChild<QLabel*>()->text() == QStringLiteral("1 of 2"));
    QVERIFY(fixture.field("Find")->width() >= 110);
    QCOMPARE(fixture.field("Replace")->width(), fixture.field("Find")->width());
}

void FindBarTest::theStatusGivesWayBeforeTheFields()
{
    Fixture fixture(QStringLiteral("one"));
    fixture.open(QStringLiteral("one"));
    auto* status = fixture.bar().findChild<QLabel*>();
    const auto widthsAt = [&](int width) {
        fixture.view.resize(width, 400);
        QCoreApplication::processEvents();
        return std::pair(fixture.field("Find")->width(), status->width());
    };
    QCOMPARE(widthsAt(1000), std::pair(260, 180));
    const auto [field, narrowed] = widthsAt(600);
    QCOMPARE(field, 260);
    QVERIFY(narrowed < 180);
    const auto [narrowField, least] = widthsAt(430);
    QVERIFY(narrowField < 260);
    QVERIFY(least < narrowed);
}

void FindBarTest::theTextGoesDownWithTheBarAndComesBack()
{
    Fixture fixture(QString(QStringLiteral("line\n")).repeated(200));
    const qreal before = fixture.view.caretRect({0, false}).top();
    fixture.view.showFindBar();
    QCOMPARE(fixture.view.caretRect({0, false}).top(), before + fixture.bar().height());
    // A second row pushes it further.
    fixture.view.showReplaceBar();
    QCOMPARE(fixture.view.caretRect({0, false}).top(), before + fixture.bar().height());
    fixture.bar().close();
    QCOMPARE(fixture.view.caretRect({0, false}).top(), before);
}

void FindBarTest::theCaretsLineStaysInSight_data()
{
    QTest::addColumn<qreal>("scrolledTo");
    QTest::addColumn<qreal>("place");
    QTest::newRow("first row of the page") << 0.0 << 0.0;
    QTest::newRow("first row on screen") << 500.0 << 0.0;
    QTest::newRow("last row on screen") << 500.0 << 0.95;
    QTest::newRow("end of the text") << 1e9 << 0.95;
}

void FindBarTest::theCaretsLineStaysInSight()
{
    QFETCH(qreal, scrolledTo);
    QFETCH(qreal, place);
    Fixture fixture(QString(QStringLiteral("line\n")).repeated(200));
    fixture.view.scrollToY(scrolledTo);
    const std::vector<TextRow> rows = fixture.view.visibleRows();
    const auto index = static_cast<std::size_t>(place * static_cast<qreal>(rows.size() - 2)) + 1;
    fixture.view.setSelectedRange({rows[index].range.location, 0});
    fixture.view.showReplaceBar();
    const QRectF caret = fixture.view.caretRect({rows[index].range.location, false});
    QVERIFY(caret.top() >= fixture.bar().height());
    QVERIFY(caret.bottom() <= fixture.view.viewport()->height());
}

const kelm::test::Registered<FindBarTest> registered(kelm::test::Toolkit::widgets);

} // namespace find_bar_test

#include "find_bar_test.moc"
