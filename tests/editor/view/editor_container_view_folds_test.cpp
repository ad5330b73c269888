#include "support/random_text.h"
#include "support/shown_document.h"
#include "support/shown_text_view.h"
#include "support/test_program.h"
#include "text/view/find_bar.h"

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QDrag>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QtTest>

namespace editor_container_view_folds_test {

using namespace kelm;

namespace {

const QString functions = QStringLiteral(
    "func f() {\n  one\n  two {\n    deep one\n    more\n  }\n}\nlast one\nfunc g() {\n  one\n  two\n}\n");

struct Fixture : test::ShownDocument
{
    explicit Fixture(const QString& text) : ShownDocument(text, Language::swift, {900, 400}) { text_().setFocus(); }

    TextView& text_() { return textView(); }
    void toggle(qsizetype line) { view->lineNumberView().onFoldToggle(line); }
    QString shown() { return view->text(); }
    bool isFolded() { return view->codeFoldingManager().isTextFolded(); }
    void select(const QString& shownText) { text_().setSelectedRange({shown().indexOf(shownText), shownText.size()}); }

    QLineEdit& field(const char* name)
    {
        for (auto* edit : text_().findBar().findChildren<QLineEdit*>()) {
            if (edit->accessibleName() == QLatin1String(name)) {
                return *edit;
            }
        }
        qFatal("no field '%s'", name);
    }
    void press(const char* help)
    {
        for (auto* found : text_().findBar().findChildren<QAbstractButton*>()) {
            if (found->accessibleName() == QLatin1String(help)) {
                found->click();
                return;
            }
        }
        qFatal("no button '%s'", help);
    }
    QString status() { return text_().findBar().findChild<QLabel*>()->toolTip(); }
};

QString clipboard()
{
    return QGuiApplication::clipboard()->text();
}

/// Where the stretches of a folded text stand in the whole one. Every line of the whole text is another.
class Places
{
public:
    Places(const QString& shown, const QString& whole)
    {
        const QString& placeholder = CodeFoldingManager::foldPlaceholder;
        qsizetype at = 0;
        qsizetype from = 0;
        for (const QString& part : shown.split(placeholder)) {
            const qsizetype found =
                part.isEmpty() && at + part.size() == shown.size() ? whole.size() : whole.indexOf(part, from);
            if (at > 0) {
                hidden_.push_back({{at - placeholder.size(), placeholder.size()}, TextRange::between(from, found)});
            }
            from = found + part.size();
            at += part.size() + placeholder.size();
        }
    }

    qsizetype start(qsizetype offset) const { return mapped(offset, false); }
    qsizetype end(qsizetype offset) const { return mapped(offset, true); }
    TextRange range(TextRange shown) const
    {
        return shown.isEmpty() ? TextRange{end(shown.location), 0}
                               : TextRange::between(start(shown.location), end(shown.end()));
    }

private:
    qsizetype mapped(qsizetype offset, bool toEnd) const
    {
        qsizetype shift = 0;
        for (const auto& [placeholder, body] : hidden_) {
            if (offset <= placeholder.location) {
                break;
            }
            if (offset < placeholder.end()) {
                return toEnd ? body.end() : body.location;
            }
            shift = body.end() - placeholder.end();
        }
        return offset + shift;
    }

    std::vector<std::pair<TextRange, TextRange>> hidden_;
};

} // namespace

class EditorContainerViewFoldsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aPlaceInAFoldIsShown();
    void theFirstPlaceThatAFoldHidesIsShown();
    void aPlaceBehindAFoldLeavesItFolded();
    void theSameTextStoredElsewhereLeavesTheFold();
    void anotherTextStoredElsewhereHoldsTheCaretOfAFoldedText();
    void aFoldOfThreeCharactersTellsTheCaretsLine();
    void aKeyThatChangesNothingLeavesRegionsOfWhatIsShown_data();
    void aKeyThatChangesNothingLeavesRegionsOfWhatIsShown();
    void aCopyOfAFoldIsTheText();
    void aFoldThatIsCutComesBackWhole();
    void aPlaceholderThatIsPartlySelectedCountsWhole();
    void aFoldWithinAFoldIsCopiedWhole();
    void aDraggedFoldIsTheText();
    void keysCopyAndCutAFoldWhole();
    void theMouseDragsAFoldWhole();
    void findCountsWhatIsFolded();
    void theNextMatchUnfoldsWhatHidesIt();
    void aMatchWithoutTheBarUnfoldsWhatHidesIt();
    void whatIsTypedInTheFieldUnfoldsTheMatchThatItComesTo();
    void foldsThatHideNoMatchStayFolded();
    void replacingAllReplacesWhatWasCounted();
    void aFoldMeanwhileLeavesTheReplacementOfAllInItsPlace();
    void whatIsComposedOpensFoldsAtItsFirstKey();
    void replacingOneReplacesTheMatchThatWasCurrent();
    void foldingWhileTheBarIsOpenLosesNoMatch();
    void matchesAreMarkedWhereTheyAreShown();
    void operationsMeanTheWholeText();
};

void EditorContainerViewFoldsTest::aPlaceInAFoldIsShown()
{
    Fixture fixture(functions);
    fixture.toggle(1);
    QVERIFY(fixture.isFolded());
    fixture.view->showPlace({4, 5});
    QVERIFY(!fixture.isFolded());
    QCOMPARE(fixture.text_().selectedRange(), (TextRange{functions.indexOf(QStringLiteral("deep one")), 0}));
}

void EditorContainerViewFoldsTest::theFirstPlaceThatAFoldHidesIsShown()
{
    Fixture fixture(functions);
    fixture.toggle(1);
    // The end of the line that stays is no part of the fold.
    fixture.view->showPlace({1, 11});
    QVERIFY(fixture.isFolded());
    fixture.view->showPlace({2, 1});
    QVERIFY(!fixture.isFolded());
    QCOMPARE(fixture.text_().selectedRange(), (TextRange{functions.indexOf(QStringLiteral("  one")), 0}));
}

void EditorContainerViewFoldsTest::theSameTextStoredElsewhereLeavesTheFold()
{
    Fixture fixture(functions);
    fixture.toggle(1);
    fixture.select(QStringLiteral("last"));
    const TextRange selected = fixture.text_().selectedRange();
    const QString shown = fixture.shown();
    // As a command does whose result is what it was given.
    fixture.document->setContent(fixture.document->content());
    QCoreApplication::processEvents();
    QVERIFY(fixture.isFolded());
    QCOMPARE(fixture.shown(), shown);
    QCOMPARE(fixture.text_().selectedRange(), selected);
    QCOMPARE(fixture.document->content(), functions);
}

void EditorContainerViewFoldsTest::anotherTextStoredElsewhereHoldsTheCaretOfAFoldedText()
{
    Fixture fixture(functions);
    fixture.toggle(1);
    fixture.text_().setSelectedRange({fixture.shown().indexOf(QStringLiteral("last")), 0});
    QString changed = functions;
    changed.replace(QStringLiteral("more"), QStringLiteral("MORE"));
    fixture.document->setContent(changed);
    QCoreApplication::processEvents();
    QCOMPARE(fixture.shown(), changed);
    QCOMPARE(fixture.text_().selectedRange(), (TextRange{changed.indexOf(QStringLiteral("last")), 0}));
}

void EditorContainerViewFoldsTest::aFoldOfThreeCharactersTellsTheCaretsLine()
{
    // The placeholder is as long as what it hides, so that the caret's offset stays.
    Fixture fixture(QStringLiteral("{\n x\n}\nend\n"));
    fixture.text_().setSelectedRange({7, 0});
    QCoreApplication::processEvents();
    QCOMPARE(fixture.document->cursorPosition(), (CursorPosition{4, 1, 0}));
    fixture.toggle(1);
    QCoreApplication::processEvents();
    QVERIFY(fixture.isFolded());
    QCOMPARE(fixture.text_().selectedRange(), (TextRange{7, 0}));
    QCOMPARE(fixture.document->cursorPosition(), (CursorPosition{3, 1, 0}));
    fixture.toggle(1);
    QCoreApplication::processEvents();
    QCOMPARE(fixture.document->cursorPosition(), (CursorPosition{4, 1, 0}));
}

void EditorContainerViewFoldsTest::aKeyThatChangesNothingLeavesRegionsOfWhatIsShown_data()
{
    QTest::addColumn<QKeySequence>("key");
    QTest::newRow("Backspace at the start") << QKeySequence(Qt::Key_Backspace);
    QTest::newRow("nothing to undo") << QKeySequence(QKeySequence::Undo);
    QTest::newRow("nothing to redo") << QKeySequence(QKeySequence::Redo);
}

void EditorContainerViewFoldsTest::aKeyThatChangesNothingLeavesRegionsOfWhatIsShown()
{
    QFETCH(QKeySequence, key);
    Fixture fixture(QStringLiteral("a {\n  1\n  2\n}\nb {\n  1\n}\n"));
    const auto regions = fixture.folds().foldableRegions();
    QCOMPARE(regions.size(), std::size_t(2));
    fixture.toggle(1);
    fixture.text_().setSelectedRange({0, 0});
    QTest::keySequence(&fixture.text_(), key);
    fixture.time.advance(std::chrono::seconds(1));
    if (!fixture.isFolded()) {
        QCOMPARE(fixture.folds().foldableRegions(), regions);
    }
    QVERIFY(fixture.folds().markAt(1));
    fixture.toggle(1);
    QCOMPARE(fixture.document->content(), QStringLiteral("a {\n  1\n  2\n}\nb {\n  1\n}\n"));
    QVERIFY(!fixture.document->isModified());
}

void EditorContainerViewFoldsTest::aPlaceBehindAFoldLeavesItFolded()
{
    Fixture fixture(functions);
    fixture.toggle(1);
    fixture.view->showPlace({8, 6});
    QVERIFY(fixture.isFolded());
    QCOMPARE(fixture.text_().selectedRange(), (TextRange{fixture.shown().indexOf(QStringLiteral("last one")) + 5, 0}));
}

void EditorContainerViewFoldsTest::aCopyOfAFoldIsTheText()
{
    Fixture fixture(functions);
    fixture.toggle(1);
    QVERIFY(fixture.shown() != functions);
    fixture.text_().selectAll();
    fixture.text_().copy();
    QCOMPARE(clipboard(), functions);
    QVERIFY(fixture.isFolded());
    QVERIFY(!fixture.document->isModified());
}

void EditorContainerViewFoldsTest::aFoldThatIsCutComesBackWhole()
{
    Fixture fixture(functions);
    fixture.toggle(1);
    const QString folded = QStringLiteral("func f() {\n … }\n");
    fixture.select(folded);
    fixture.text_().cut();
    const qsizetype rest = functions.indexOf(QStringLiteral("last"));
    QCOMPARE(fixture.document->content(), functions.mid(rest));
    QCOMPARE(clipboard(), functions.left(rest));
    fixture.text_().paste();
    QCOMPARE(fixture.document->content(), functions);
}

void EditorContainerViewFoldsTest::aPlaceholderThatIsPartlySelectedCountsWhole()
{
    for (const TextRange partly : {TextRange{5, 7}, TextRange{12, 3}, TextRange{12, 1}, TextRange{11, 3}}) {
        Fixture fixture(functions);
        fixture.toggle(1);
        QCOMPARE(fixture.shown().mid(11, 3), CodeFoldingManager::foldPlaceholder);
        const TextRange whole = Places(fixture.shown(), functions).range(partly);
        fixture.text_().setSelectedRange(partly);
        fixture.text_().cut();
        QCOMPARE(clipboard(), functions.mid(whole.location, whole.length));
        QCOMPARE(fixture.document->content(), QString(functions).remove(whole.location, whole.length));
        fixture.text_().undo();
        QCOMPARE(fixture.document->content(), functions);
    }
}

void EditorContainerViewFoldsTest::aFoldWithinAFoldIsCopiedWhole()
{
    Fixture fixture(functions);
    fixture.toggle(3);
    fixture.time.advance(std::chrono::milliseconds(150));
    fixture.toggle(1);
    QVERIFY(!fixture.shown().contains(QStringLiteral("two {")));
    fixture.select(QStringLiteral("{\n … }"));
    fixture.text_().copy();
    const qsizetype brace = functions.indexOf(u'{');
    QCOMPARE(clipboard(), functions.mid(brace, functions.indexOf(QStringLiteral("\nlast")) - brace));
}

void EditorContainerViewFoldsTest::aDraggedFoldIsTheText()
{
    Fixture fixture(functions);
    fixture.toggle(1);
    fixture.select(QStringLiteral("func f() {\n … }\n"));
    // What a drag hands to another program.
    const QString dragged = fixture.text_().editor().selectedTexts().join(u'\n');
    const qsizetype rest = functions.indexOf(QStringLiteral("last"));
    QCOMPARE(dragged, functions.left(rest));
    QVERIFY(fixture.text_().editor().moveSelectedTextTo(fixture.shown().size()));
    QCOMPARE(fixture.document->content(), functions.mid(rest) + functions.left(rest));
}

void EditorContainerViewFoldsTest::keysCopyAndCutAFoldWhole()
{
    Fixture fixture(functions);
    const qsizetype rest = functions.indexOf(QStringLiteral("last"));
    const auto press = [&](Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::ControlModifier) {
        QTest::keyClick(&fixture.text_(), key, modifiers);
    };
    fixture.toggle(1);
    // The rows of the function, by what is shown of them.
    press(Qt::Key_Home);
    press(Qt::Key_Down, Qt::ShiftModifier);
    press(Qt::Key_Down, Qt::ShiftModifier);
    press(Qt::Key_C);
    QCOMPARE(clipboard(), functions.left(rest));
    QVERIFY(fixture.isFolded());
    QVERIFY(!fixture.document->isModified());
    QGuiApplication::clipboard()->clear();
    press(Qt::Key_X);
    QCOMPARE(clipboard(), functions.left(rest));
    QCOMPARE(fixture.document->content(), functions.mid(rest));
    press(Qt::Key_End);
    press(Qt::Key_V);
    QCOMPARE(fixture.document->content(), functions.mid(rest) + functions.left(rest));
    press(Qt::Key_Z);
    press(Qt::Key_Z);
    QCOMPARE(fixture.document->content(), functions);
}

void EditorContainerViewFoldsTest::theMouseDragsAFoldWhole()
{
    Fixture fixture(functions);
    test::ShownTextView other;
    fixture.toggle(1);
    const qsizetype rest = functions.indexOf(QStringLiteral("last"));
    fixture.select(QStringLiteral("func f() {\n … }\n"));
    QWidget* const page = fixture.text_().viewport();
    const QPoint begin = fixture.text_().caretRect({3}).center().toPoint();
    QTest::mousePress(page, Qt::LeftButton, {}, begin);
    QTest::mouseMove(page, begin + QPoint(0, QApplication::startDragDistance()));
    // It is not taken anywhere here, and stays until events are waited for.
    const auto* drag = fixture.text_().findChild<QDrag*>();
    QVERIFY(drag != nullptr);
    QCOMPARE(drag->mimeData()->text(), functions.left(rest));
    QVERIFY(fixture.isFolded());
    QVERIFY(!fixture.document->isModified());
    // Where another text takes it, it is the text that was under the fold.
    QVERIFY(other.dropFromOutside(*drag->mimeData(), other.pointAt(0)));
    QCOMPARE(other.text(), functions.left(rest));
}

void EditorContainerViewFoldsTest::findCountsWhatIsFolded()
{
    Fixture fixture(functions);
    fixture.toggle(1);
    fixture.text_().setSelectedRange({fixture.shown().indexOf(QStringLiteral("last")), 0});
    fixture.text_().showFindBar();
    fixture.field("Find").setText(QStringLiteral("one"));
    QCOMPARE(fixture.status(), QStringLiteral("3 of 4"));
    QVERIFY(fixture.isFolded());
    QCOMPARE(fixture.text_().findBar().engine().results().at(1).line, 4);
}

void EditorContainerViewFoldsTest::theNextMatchUnfoldsWhatHidesIt()
{
    Fixture fixture(functions);
    fixture.toggle(1);
    fixture.text_().setSelectedRange({fixture.shown().indexOf(QStringLiteral("last")), 0});
    fixture.text_().showFindBar();
    fixture.field("Find").setText(QStringLiteral("one"));
    fixture.text_().findPrevious();
    QCOMPARE(fixture.status(), QStringLiteral("2 of 4"));
    QCOMPARE(fixture.shown(), functions);
    QCOMPARE(fixture.text_().selectedRange(), (TextRange{functions.indexOf(QStringLiteral("one\n    more")), 3}));
}

void EditorContainerViewFoldsTest::aMatchWithoutTheBarUnfoldsWhatHidesIt()
{
    Fixture fixture(functions);
    fixture.select(QStringLiteral("one"));
    fixture.text_().useSelectionForFind();
    fixture.toggle(9);
    QVERIFY(fixture.isFolded());
    fixture.select(QStringLiteral("last one"));
    fixture.text_().findNext();
    QVERIFY(!fixture.isFolded());
    QCOMPARE(fixture.text_().selectedRange(), (TextRange{functions.lastIndexOf(QStringLiteral("one")), 3}));
    QVERIFY(!fixture.text_().findBar().isSearching());
}

void EditorContainerViewFoldsTest::whatIsTypedInTheFieldUnfoldsTheMatchThatItComesTo()
{
    Fixture fixture(functions);
    fixture.toggle(3);
    fixture.time.advance(std::chrono::milliseconds(150));
    fixture.toggle(1);
    fixture.text_().setSelectedRange({0, 0});
    fixture.text_().showFindBar();
    fixture.field("Find").setText(QStringLiteral("deep"));
    QCOMPARE(fixture.status(), QStringLiteral("1 of 1"));
    QCOMPARE(fixture.shown(), functions);
}

void EditorContainerViewFoldsTest::foldsThatHideNoMatchStayFolded()
{
    Fixture fixture(functions);
    fixture.toggle(9);
    fixture.time.advance(std::chrono::milliseconds(150));
    fixture.toggle(1);
    const QString shown = fixture.shown();
    fixture.text_().setSelectedRange({0, 0});
    fixture.text_().showFindBar();
    fixture.field("Find").setText(QStringLiteral("last"));
    fixture.text_().findNext();
    QCOMPARE(fixture.shown(), shown);
    QCOMPARE(fixture.text_().selectedRange(), (TextRange{shown.indexOf(QStringLiteral("last")), 4}));
    fixture.field("Find").setText(QStringLiteral("deep"));
    QVERIFY(fixture.shown().contains(QStringLiteral("deep")));
    QVERIFY(fixture.isFolded());
}

void EditorContainerViewFoldsTest::replacingAllReplacesWhatWasCounted()
{
    Fixture fixture(functions);
    fixture.toggle(9);
    fixture.text_().setSelectedRange({0, 0});
    fixture.text_().showReplaceBar();
    fixture.field("Find").setText(QStringLiteral("one"));
    fixture.field("Replace").setText(QStringLiteral("three"));
    QCOMPARE(fixture.status(), QStringLiteral("1 of 4"));
    fixture.press("Replace all matches");
    QCOMPARE(fixture.document->content(), QString(functions).replace(QStringLiteral("one"), QStringLiteral("three")));
    fixture.text_().undo();
    QCOMPARE(fixture.document->content(), functions);
}

void EditorContainerViewFoldsTest::aFoldMeanwhileLeavesTheReplacementOfAllInItsPlace()
{
    // Too long to be replaced at once.
    const QString text = QStringLiteral("f {\n\taaaaaaa\n\tbbbbbbb\n}\n") + QStringLiteral("x\n").repeated(600'000) +
                         QStringLiteral("tail of the te\n");
    Fixture fixture(text);
    QTRY_VERIFY(fixture.folds().isSettled());
    fixture.text_().showReplaceBar();
    fixture.field("Find").setText(QStringLiteral("x"));
    fixture.field("Replace").setText(QStringLiteral("yy"));
    fixture.press("Replace all matches");
    QCOMPARE(fixture.view->wholeText().length(), text.size());
    fixture.toggle(1);
    QVERIFY(fixture.isFolded());
    const QString expected = QString(text).replace(u'x', QStringLiteral("yy"));
    QTRY_COMPARE(fixture.view->wholeText().length(), expected.size());
    QVERIFY(fixture.view->wholeText() == expected);
}

void EditorContainerViewFoldsTest::whatIsComposedOpensFoldsAtItsFirstKey()
{
    Fixture fixture(functions);
    fixture.toggle(1);
    fixture.text_().setSelectedRange({fixture.shown().indexOf(QStringLiteral("last")), 0});
    QInputMethodEvent composing(QStringLiteral("한"), {});
    QCoreApplication::sendEvent(&fixture.text_(), &composing);
    QVERIFY(!fixture.isFolded());
    QVERIFY(fixture.text_().isComposing());
    // Before the regions are found in the text that is shown now.
    const qsizetype line = functions.left(functions.indexOf(QStringLiteral("func g"))).count(u'\n') + 1;
    fixture.toggle(line);
    QVERIFY(!fixture.text_().isComposing());
    const QString typed = QString(functions).insert(functions.indexOf(QStringLiteral("last")), QStringLiteral("한"));
    QCOMPARE(fixture.document->content(), typed);
    QVERIFY(fixture.isFolded());
    QCOMPARE(fixture.shown(),
             QString(typed).replace(QStringLiteral("g() {\n  one\n  two\n"), QStringLiteral("g() {\n \u2026 ")));
}

void EditorContainerViewFoldsTest::replacingOneReplacesTheMatchThatWasCurrent()
{
    Fixture fixture(functions);
    fixture.toggle(1);
    fixture.text_().setSelectedRange({fixture.shown().indexOf(QStringLiteral("last")), 0});
    fixture.text_().showReplaceBar();
    fixture.field("Find").setText(QStringLiteral("one"));
    fixture.field("Replace").setText(QStringLiteral("three"));
    QCOMPARE(fixture.status(), QStringLiteral("3 of 4"));
    fixture.press("Replace this match");
    QCOMPARE(fixture.document->content(),
             QString(functions).replace(QStringLiteral("last one"), QStringLiteral("last three")));
}

void EditorContainerViewFoldsTest::foldingWhileTheBarIsOpenLosesNoMatch()
{
    Fixture fixture(functions);
    fixture.text_().setSelectedRange({functions.indexOf(QStringLiteral("last")), 0});
    fixture.text_().showFindBar();
    fixture.field("Find").setText(QStringLiteral("one"));
    QCOMPARE(fixture.status(), QStringLiteral("3 of 4"));
    fixture.toggle(1);
    QCOMPARE(fixture.status(), QStringLiteral("3 of 4"));
    QVERIFY(fixture.isFolded());
    fixture.toggle(1);
    QCOMPARE(fixture.status(), QStringLiteral("3 of 4"));
    // Another text, put there round the folds, is searched anew.
    fixture.toggle(1);
    fixture.document->setContent(QStringLiteral("one\none\n"));
    fixture.binding->updateView();
    QVERIFY(fixture.status().endsWith(QStringLiteral("2")));
}

void EditorContainerViewFoldsTest::matchesAreMarkedWhereTheyAreShown()
{
    Fixture fixture(functions);
    fixture.toggle(1);
    fixture.text_().setSelectedRange({0, 0});
    fixture.text_().showFindBar();
    fixture.field("Find").setText(QStringLiteral("func"));
    const auto& marks = fixture.text_().highlights();
    QCOMPARE(marks.size(), std::size_t(2));
    QCOMPARE(marks[0].range, (TextRange{0, 4}));
    QCOMPARE(marks[1].range, (TextRange{fixture.shown().indexOf(QStringLiteral("func g")), 4}));
}

void EditorContainerViewFoldsTest::operationsMeanTheWholeText()
{
    test::RandomText random;
    for (int round = 0; round < 6; ++round) {
        QString original;
        for (int line = 0; line < 40; ++line) {
            original += QStringList{QStringLiteral("a {"), QStringLiteral("}"), QStringLiteral("  body 한"),
                                    QStringLiteral("x")}[random.below(4)] +
                        QStringLiteral(" %1\n").arg(line);
        }
        Fixture fixture(original);
        TextEditor& editor = fixture.text_().editor();
        QStringList states{original};
        qsizetype at = 0;
        int unique = 0;
        const auto edited = [&](const QString& whole) {
            states.resize(at + 1);
            states.append(whole);
            ++at;
        };
        for (int step = 0; step < 60; ++step) {
            for (qsizetype folds = random.below(3); folds > 0; --folds) {
                fixture.toggle(1 + random.below(40));
                if (random.below(2) == 0) {
                    fixture.time.advance(std::chrono::milliseconds(150));
                }
            }
            const QString whole = states[at];
            const QString shown = fixture.shown();
            const Places places(shown, whole);
            fixture.text_().setSelectedRange(random.range(shown.size()));
            const TextRange selected = fixture.text_().selectedRange();
            const TextRange range = places.range(selected);
            const QString text = whole.mid(range.location, range.length);
            switch (random.below(8)) {
            case 0:
                if (!selected.isEmpty()) {
                    fixture.text_().copy();
                    QCOMPARE(clipboard(), text);
                }
                break;
            case 1:
                if (!selected.isEmpty()) {
                    fixture.text_().cut();
                    QCOMPARE(clipboard(), text);
                    edited(QString(whole).remove(range.location, range.length));
                }
                break;
            case 2: {
                const QString pasted = QStringLiteral("p%1\n").arg(unique++);
                QGuiApplication::clipboard()->setText(pasted);
                fixture.text_().paste();
                edited(QString(whole).replace(range.location, range.length, pasted));
                break;
            }
            case 3: {
                const qsizetype target = random.below(shown.size() + 1);
                const qsizetype to = places.end(target);
                const bool moves = !range.isEmpty() && (to < range.location || to > range.end());
                if (!range.isEmpty()) {
                    QCOMPARE(editor.moveSelectedTextTo(target), moves);
                }
                if (moves) {
                    QString moved = whole;
                    moved.insert(to, text);
                    moved.remove(range.location + (to < range.location ? range.length : 0), range.length);
                    if (moved != whole) {
                        edited(moved);
                    }
                }
                break;
            }
            case 4: {
                const QString dropped = QStringLiteral("d%1").arg(unique++);
                const qsizetype target = random.below(shown.size() + 1);
                editor.applyAndSelect({{{target, 0}, dropped}});
                edited(QString(whole).insert(places.end(target), dropped));
                QCOMPARE(editor.selectedTexts(), QStringList{dropped});
                break;
            }
            case 5:
                at -= editor.canUndo() ? 1 : 0;
                fixture.text_().undo();
                break;
            case 6:
                at += editor.canRedo() ? 1 : 0;
                fixture.text_().redo();
                break;
            default: {
                fixture.text_().showReplaceBar();
                fixture.field("Find").setText(QString::number(random.below(10)));
                const QString wanted = fixture.field("Find").text();
                fixture.field("Replace").setText(QStringLiteral("r%1").arg(unique++));
                const qsizetype count = whole.count(wanted);
                const QString total = count == 0 ? QStringLiteral("No results") : QStringLiteral("of %1").arg(count);
                QVERIFY2(fixture.status().endsWith(total), qPrintable(fixture.status()));
                fixture.press("Replace all matches");
                if (count > 0) {
                    edited(QString(whole).replace(wanted, fixture.field("Replace").text()));
                }
                fixture.text_().findBar().close();
                break;
            }
            }
            QCOMPARE(fixture.document->content(), states[at]);
        }
    }
}

const kelm::test::Registered<EditorContainerViewFoldsTest> registered(kelm::test::Toolkit::widgets);

} // namespace editor_container_view_folds_test

#include "editor_container_view_folds_test.moc"
