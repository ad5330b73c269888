#include "editor/view/kelm_editor_view.h"
#include "support/paints.h"
#include "support/random_text.h"
#include "support/shown_document.h"
#include "support/test_program.h"
#include "text/view/find_bar.h"

#include <QAbstractButton>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QSignalSpy>
#include <QtTest>

#include <memory>

namespace editor_container_view_test {

using namespace kelm;
using namespace std::chrono_literals;

namespace {

const QString foldable = QStringLiteral("func f() {\n  one\n  two\n}\nlast\n");

/// Writes down what it is told, in order.
class RecordingDelegate final : public EditorContainerDelegate
{
public:
    explicit RecordingDelegate(QStringList& told) : told_(told) {}

    void textWillChange() override { told_ << QStringLiteral("will change"); }
    void textDidChange() override { told_ << QStringLiteral("did change"); }
    void textWillEnd() override { told_ << QStringLiteral("will end"); }
    void cursorPositionChanged(qsizetype line, qsizetype column) override
    {
        told_ << QStringLiteral("caret %1:%2").arg(line).arg(column);
    }

private:
    QStringList& told_;
};

/// A document in a container on screen, with time that moves by hand.
struct Fixture : test::ShownDocument
{
    explicit Fixture(const QString& text = {}, Language language = Language::swift)
        : ShownDocument(text, language, {800, 400})
    {
        view->textView().setFocus();
    }

    TextStorage& storage() { return view->textView().storage(); }
    QRgb colorAt(qsizetype offset)
    {
        const std::vector<ColorRun> runs = storage().colorsIn({offset, 1});
        return runs.empty() ? 0 : runs.front().color;
    }
    void type(const QString& text) { QTest::keyClicks(&view->textView(), text); }
    void turnQueue() { QCoreApplication::processEvents(); }

    /// Opens the find bar to replace one text by another.
    void replaceBar(const QString& wanted, const QString& replacement)
    {
        view->textView().showReplaceBar();
        const auto fields = view->textView().findBar().findChildren<QLineEdit*>();
        for (QLineEdit* field : fields) {
            field->setText(field->accessibleName() == u"Find" ? wanted : replacement);
        }
    }
    QAbstractButton& button(const char* help)
    {
        for (auto* found : view->textView().findBar().findChildren<QAbstractButton*>()) {
            if (found->accessibleName() == QLatin1String(help)) {
                return *found;
            }
        }
        qFatal("no button '%s'", help);
    }
    /// Drops a text that another program drags in.
    void drop(qsizetype offset, const QString& text)
    {
        TextView& target = view->textView();
        const QPoint point = target.caretRect({offset, false}).center().toPoint();
        QMimeData data;
        data.setText(text);
        QDragEnterEvent enter(point, Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(target.viewport(), &enter);
        QDropEvent event(point, Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(target.viewport(), &event);
    }
};

QRgb rgba(const CodableColor& color)
{
    return color.toColor().rgba();
}

} // namespace

class EditorContainerViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void contentFollowsEachKeyAndColoursFollowThePause();
    void aRunOfKeysGivesOneHighlightCycle();
    void foldableRegionsFollowThePause();
    void theDocumentHasWhatTheViewHoldsAndKeepsItAfterwards();
    void aKeyRightBehindATextStoredElsewhereFindsThatText();
    void typingMarksTheDocumentModified();
    void contentChangedElsewhereIsShown();
    void contentChangedElsewhereIsAnUndoStep();
    void contentChangedElsewhereComesAfterWhatIsComposed();
    void soItIsWhereTheTextBeganEmpty();
    void triangleFollowsItsFold();
    void whatWasFoldedHasItsColoursWhenItIsBack();
    void keysThatScrollNothingLeaveTheMinimap();
    void scrollingHasGutterAndMinimapPaintedAnew();
    void editsHaveTheGutterPaintedAnew();
    void aThemeHasTheGutterPaintedAnew();
    void aNewSurfaceHasAllValues();
    void aFoldCommitsWhatIsComposed();
    void eachUpdateHasTheMinimapPaintedAnew();
    void aThemeBringsItsColoursAndLeavesTheRegions();
    void aDelegateThatIsGoneIsNotTold();
    void editsThatCancelOutLeaveTheDocument();
    void anUpdateWithoutAChangeColoursNothing();
    void theThemeIsTakenWithoutSelectionAndCurrentLineColours();
    void theLanguageSetterRunsTheCycleAndTellsTheMinimap();
    void scrollToLinePutsTheLineInTheMiddle();
    void theFocusNotificationPutsTheCaretAtTheStart();
    void theFocusNotificationIsForTheVisibleEditorAlone();
    void theCaretReachesTheDocument();
    void hiddenPartsGiveTheirWidthToTheText();
    void foldingLeavesTheDocumentAlone();
    void anEditUnfoldsFirst();
    void aCaretBeforeAFoldStaysBeforeIt();
    void anUndoUnfoldsFirst();
    void replacingAllUnfoldsFirst();
    void replacingOneUnfoldsFirst();
    void aDropGoesToItsPlaceBehindAFold();
    void movedTextGoesToItsPlaceBehindAFold();
    void anInputMethodReplacesBehindAFold();
    void aLanguageChangeKeepsTheFolds();
    void contentChangedElsewhereReplacesAFoldedText();
    void theLessonRegionReachesTheGutter();
    void theMinimapScrollsToALine();
    void foldsNeverReachTheDocument();
    void foldsEditsAndUndoLeaveTheContentThatEditsMade();
    void aClosedDocumentsEditorGoesQuietly();
};

void EditorContainerViewTest::contentFollowsEachKeyAndColoursFollowThePause()
{
    Fixture fixture;
    fixture.type(QStringLiteral("let"));
    QCOMPARE(fixture.document->content(), QStringLiteral("let"));
    QVERIFY(fixture.colorAt(0) != rgba(EditorTheme::monokai().keywordColor));
    fixture.time.advance(149ms);
    QVERIFY(fixture.colorAt(0) != rgba(EditorTheme::monokai().keywordColor));
    fixture.time.advance(1ms);
    QCOMPARE(fixture.colorAt(0), rgba(EditorTheme::monokai().keywordColor));
}

void EditorContainerViewTest::aRunOfKeysGivesOneHighlightCycle()
{
    Fixture fixture;
    QSignalSpy colored(&fixture.storage(), &TextStorage::attributesChanged);
    for (int i = 0; i < 5; ++i) {
        fixture.type(QStringLiteral("1 "));
        fixture.time.advance(100ms);
    }
    QCOMPARE(colored.size(), 0);
    fixture.time.advance(50ms);
    QCOMPARE(colored.size(), 1);
    fixture.time.advance(10s);
    QCOMPARE(colored.size(), 1);
}

void EditorContainerViewTest::foldableRegionsFollowThePause()
{
    Fixture fixture;
    QTest::keyClicks(&fixture.view->textView(), QStringLiteral("{"));
    QTest::keyClick(&fixture.view->textView(), Qt::Key_Return);
    QTest::keyClick(&fixture.view->textView(), Qt::Key_Return);
    QTest::keyClicks(&fixture.view->textView(), QStringLiteral("}"));
    QVERIFY(fixture.view->codeFoldingManager().foldableRegions().empty());
    fixture.time.advance(150ms);
    QCOMPARE(fixture.view->codeFoldingManager().foldableRegions().size(), std::size_t(1));
}

void EditorContainerViewTest::theDocumentHasWhatTheViewHoldsAndKeepsItAfterwards()
{
    Fixture fixture(QString(100000, u'x'));
    fixture.type(QStringLiteral("a"));
    QCOMPARE(fixture.document->content(), fixture.view->text());
    fixture.view.reset();
    QCOMPARE(fixture.document->content(), QStringLiteral("a") + QString(100000, u'x'));
    QVERIFY(fixture.document->isModified());
}

void EditorContainerViewTest::aKeyRightBehindATextStoredElsewhereFindsThatText()
{
    Fixture fixture(QStringLiteral("old"));
    fixture.document->setContent(QStringLiteral("a new text"));
    fixture.type(QStringLiteral("x"));
    QCOMPARE(fixture.document->content(), QStringLiteral("xa new text"));
    QCOMPARE(fixture.view->text(), QStringLiteral("xa new text"));
    fixture.turnQueue();
    QCOMPARE(fixture.view->text(), QStringLiteral("xa new text"));
}

void EditorContainerViewTest::typingMarksTheDocumentModified()
{
    Fixture fixture(QStringLiteral("ab"));
    QVERIFY(!fixture.document->isModified());
    // A letter typed over the same letter is no change.
    fixture.view->textView().setSelectedRange({0, 1});
    fixture.type(QStringLiteral("a"));
    QVERIFY(!fixture.document->isModified());
    fixture.type(QStringLiteral("x"));
    QVERIFY(fixture.document->isModified());
}

void EditorContainerViewTest::contentChangedElsewhereIsShown()
{
    Fixture fixture(QStringLiteral("b\na"));
    fixture.view->textView().setSelectedRange({2, 0});
    fixture.document->setContent(QStringLiteral("a\nb"));
    fixture.turnQueue();
    QCOMPARE(fixture.view->text(), QStringLiteral("a\nb"));
    QCOMPARE(fixture.view->textView().selectedRange(), (TextRange{2, 0}));
}

void EditorContainerViewTest::contentChangedElsewhereIsAnUndoStep()
{
    Fixture fixture(foldable);
    TextView& text = fixture.view->textView();
    QVERIFY(!text.editor().canUndo());
    fixture.type(QStringLiteral("x"));
    fixture.view->codeFoldingManager().detectFoldableRegions(Language::swift);
    fixture.view->codeFoldingManager().fold(fixture.view->codeFoldingManager().foldableRegions().front());
    const QString before = fixture.document->content();
    fixture.document->setContent(before.toUpper());
    fixture.document->setIsModified(false);
    fixture.turnQueue();
    QCOMPARE(text.text(), before.toUpper());
    // The document has its text already: it is not told of it once more.
    QVERIFY(!fixture.document->isModified());
    QCOMPARE(fixture.colorAt(0), rgba(fixture.themes.currentTheme().textColor));
    // It is coloured at once, and not a second time after the pause.
    fixture.storage().setForeground({0, 1}, qRgb(1, 2, 3));
    fixture.time.advance(1s);
    QCOMPARE(fixture.colorAt(0), qRgb(1, 2, 3));
    text.undo();
    QCOMPARE(text.text(), before);
    QCOMPARE(fixture.document->content(), before);
    QVERIFY(fixture.document->isModified());
    text.redo();
    QCOMPARE(fixture.document->content(), before.toUpper());
    text.undo();
    text.undo();
    QCOMPARE(fixture.document->content(), foldable);
    QVERIFY(!text.editor().canUndo());
}

void EditorContainerViewTest::contentChangedElsewhereComesAfterWhatIsComposed()
{
    Fixture fixture(QStringLiteral("one"));
    QInputMethodEvent composing(QStringLiteral("한"), {});
    QCoreApplication::sendEvent(&fixture.view->textView(), &composing);
    fixture.view->setText(QStringLiteral("two"));
    QVERIFY(!fixture.view->textView().isComposing());
    QCOMPARE(fixture.view->text(), QStringLiteral("two"));
    fixture.view->textView().undo();
    QCOMPARE(fixture.view->text(), QStringLiteral("한one"));
    fixture.view->textView().undo();
    QCOMPARE(fixture.view->text(), QStringLiteral("one"));
}

void EditorContainerViewTest::soItIsWhereTheTextBeganEmpty()
{
    Fixture fixture;
    fixture.type(QStringLiteral("a b"));
    fixture.document->setContent(QStringLiteral("A B"));
    fixture.turnQueue();
    QCOMPARE(fixture.view->text(), QStringLiteral("A B"));
    fixture.view->textView().undo();
    QCOMPARE(fixture.document->content(), QStringLiteral("a b"));
}

void EditorContainerViewTest::triangleFollowsItsFold()
{
    Fixture fixture(foldable + foldable);
    const QString whole = fixture.view->text();
    CodeFoldingManager& folding = fixture.view->codeFoldingManager();
    const auto click = [&](qsizetype line) { fixture.view->lineNumberView().onFoldToggle(line); };
    const auto foldedAt = [&](qsizetype line) {
        const auto mark = folding.markAt(line);
        return mark && mark->isFolded;
    };
    click(6);
    QVERIFY(foldedAt(6));
    click(1);
    // The lower fold has moved up with its line, and its triangle with it.
    QVERIFY(foldedAt(1));
    QVERIFY(foldedAt(4));
    QVERIFY(!folding.markAt(6));
    QCOMPARE(fixture.document->content(), whole);
    click(4);
    QVERIFY(folding.markAt(4) && !foldedAt(4));
    QCOMPARE(fixture.view->text(), QStringLiteral("func f() {\n \u2026 }\nlast\n") + foldable);
    click(1);
    QCOMPARE(fixture.view->text(), whole);
    QVERIFY(!folding.isTextFolded());
    QVERIFY(folding.markAt(1) && folding.markAt(6));
}

void EditorContainerViewTest::whatWasFoldedHasItsColoursWhenItIsBack()
{
    Fixture fixture(QStringLiteral("func f() {\n  let a = 1\n  \"two\"\n}\nlast\n"));
    const QRgb keyword = fixture.colorAt(13);
    const QRgb number = fixture.colorAt(21);
    const QRgb string = fixture.colorAt(26);
    QVERIFY(keyword != number && number != string);
    fixture.view->lineNumberView().onFoldToggle(1);
    QVERIFY(fixture.view->codeFoldingManager().isTextFolded());
    fixture.view->lineNumberView().onFoldToggle(1);
    QVERIFY(!fixture.view->codeFoldingManager().isTextFolded());
    QCOMPARE(fixture.colorAt(13), keyword);
    QCOMPARE(fixture.colorAt(21), number);
    QCOMPARE(fixture.colorAt(26), string);
}

void EditorContainerViewTest::keysThatScrollNothingLeaveTheMinimap()
{
    Fixture fixture(QStringLiteral("let a\n").repeated(10));
    fixture.turnQueue();
    test::Paints paints(fixture.view->minimapView());
    for (int key = 0; key < 5; ++key) {
        QTest::keyClick(&fixture.view->textView(), Qt::Key_Right);
    }
    fixture.turnQueue();
    QCOMPARE(paints.count, 0);
    fixture.type(QStringLiteral("x"));
    QTRY_VERIFY(paints.count > 0);
    paints.count = 0;
    fixture.view->textView().undo();
    QTRY_VERIFY(paints.count > 0);
}

void EditorContainerViewTest::scrollingHasGutterAndMinimapPaintedAnew()
{
    Fixture fixture(QStringLiteral("let a\n").repeated(500));
    fixture.turnQueue();
    test::Paints gutter(fixture.view->lineNumberView());
    test::Paints minimap(fixture.view->minimapView());
    fixture.view->textView().scrollToY(170);
    QTRY_VERIFY(gutter.count > 0);
    QTRY_VERIFY(minimap.count > 0);
    QCOMPARE(fixture.view->minimapView().currentVisibleRect, fixture.view->textView().visibleRect());
    QCOMPARE(fixture.view->minimapView().currentVisibleRect.y(), 170.0);
}

void EditorContainerViewTest::editsHaveTheGutterPaintedAnew()
{
    Fixture fixture;
    fixture.type(QStringLiteral("{"));
    QTest::keyClick(&fixture.view->textView(), Qt::Key_Return);
    fixture.turnQueue();
    test::Paints gutter(fixture.view->lineNumberView());
    // Another line has another number.
    QTest::keyClick(&fixture.view->textView(), Qt::Key_Return);
    QTRY_VERIFY(gutter.count > 0);
    fixture.type(QStringLiteral("}"));
    fixture.turnQueue();
    // The pause brings the triangle.
    gutter.count = 0;
    fixture.time.advance(150ms);
    QTRY_VERIFY(gutter.count > 0);
    fixture.turnQueue();
    gutter.count = 0;
    QTest::mouseClick(&fixture.view->lineNumberView(), Qt::LeftButton, {}, {10, 12});
    QVERIFY(fixture.view->codeFoldingManager().isTextFolded());
    QTRY_VERIFY(gutter.count > 0);
}

void EditorContainerViewTest::aThemeHasTheGutterPaintedAnew()
{
    Fixture fixture(QStringLiteral("let a\n").repeated(10));
    fixture.turnQueue();
    test::Paints gutter(fixture.view->lineNumberView());
    fixture.view->setTheme(EditorTheme::dracula());
    QTRY_VERIFY(gutter.count > 0);
    fixture.turnQueue();
    gutter.count = 0;
    // Regions that a worker has found.
    fixture.view->codeFoldingManager().onRegionsFound();
    QTRY_VERIFY(gutter.count > 0);
}

void EditorContainerViewTest::aNewSurfaceHasAllValues()
{
    Fixture fixture;
    LessonInfo lesson;
    lesson.regionStart = 2;
    lesson.regionEnd = 3;
    const auto document = std::make_shared<Document>(foldable, std::nullopt, Language::swift, lesson);
    document->setIsModified(true);
    fixture.themes.setCurrentTheme(EditorTheme::dracula());
    KelmEditorView binding(document, fixture.themes);
    binding.setShowLineNumbers(false);
    binding.setShowMinimap(false);
    // At once, and not with an update.
    const std::unique_ptr<EditorContainerView> view(binding.makeView(fixture.time, fixture.notifications, nullptr));
    QVERIFY(!view->showLineNumbers());
    QVERIFY(!view->showMinimap());
    QVERIFY(view->currentLanguage() == Language::swift);
    QCOMPARE(view->theme(), EditorTheme::dracula());
    QCOMPARE(view->text(), foldable);
    QCOMPARE(view->codeFoldingManager().foldableRegions().size(), std::size_t(1));
    QCOMPARE(view->lessonRegion(), std::optional(LineRegion{2, 3}));
    QVERIFY(!view->textView().editor().canUndo());
    QVERIFY(!view->textView().accessibleName().contains(u'*'));
    lesson.namesRegion = false;
    document->setLessonInfo(lesson);
    binding.updateView();
    QCOMPARE(view->lessonRegion(), std::nullopt);
}

void EditorContainerViewTest::aFoldCommitsWhatIsComposed()
{
    Fixture fixture(foldable);
    fixture.view->textView().setSelectedRange({foldable.size(), 0});
    QInputMethodEvent composing(QStringLiteral("한"), {});
    QCoreApplication::sendEvent(&fixture.view->textView(), &composing);
    fixture.view->lineNumberView().onFoldToggle(1);
    QVERIFY(!fixture.view->textView().isComposing());
    QVERIFY(fixture.view->codeFoldingManager().isTextFolded());
    QCOMPARE(fixture.document->content(), foldable + QStringLiteral("한"));
}

void EditorContainerViewTest::eachUpdateHasTheMinimapPaintedAnew()
{
    Fixture fixture(QStringLiteral("let a\n").repeated(10));
    fixture.turnQueue();
    test::Paints paints(fixture.view->minimapView());
    fixture.binding->updateView();
    QTRY_VERIFY(paints.count > 0);
    paints.count = 0;
    fixture.document->setContent(fixture.document->content());
    QTRY_VERIFY(paints.count > 0);
    paints.count = 0;
    fixture.document->setExplicitLanguage(Language::go);
    QTRY_VERIFY(paints.count > 0);
    paints.count = 0;
    fixture.themes.setCurrentTheme(EditorTheme::dracula());
    QTRY_VERIFY(paints.count > 0);
}

void EditorContainerViewTest::aThemeBringsItsColoursAndLeavesTheRegions()
{
    Fixture fixture;
    fixture.type(QStringLiteral("let {"));
    QTest::keyClick(&fixture.view->textView(), Qt::Key_Return);
    QTest::keyClick(&fixture.view->textView(), Qt::Key_Return);
    fixture.type(QStringLiteral("}"));
    fixture.view->setTheme(EditorTheme::dracula());
    QCOMPARE(fixture.colorAt(0), rgba(EditorTheme::dracula().keywordColor));
    QVERIFY(fixture.view->codeFoldingManager().foldableRegions().empty());
    fixture.time.advance(150ms);
    QCOMPARE(fixture.view->codeFoldingManager().foldableRegions().size(), std::size_t(1));
}

void EditorContainerViewTest::aDelegateThatIsGoneIsNotTold()
{
    ManualScheduler time;
    NotificationCenter notifications;
    QStringList told;
    {
        EditorContainerView view(time, notifications);
        auto delegate = std::make_unique<RecordingDelegate>(told);
        view.setText(QStringLiteral("ab"));
        QVERIFY(told.isEmpty());
        view.setDelegate(delegate.get());
        QTest::keyClicks(&view.textView(), QStringLiteral("x"));
        QVERIFY(told.indexOf(QStringLiteral("will change")) < told.indexOf(QStringLiteral("did change")));
        QVERIFY(told.contains(QStringLiteral("will change")));
        QVERIFY(told.contains(QStringLiteral("caret 1:2")));
        told.clear();
        delegate.reset();
        QTest::keyClicks(&view.textView(), QStringLiteral("y"));
        QCOMPARE(view.text(), QStringLiteral("xyab"));
    }
    QVERIFY(told.isEmpty());
    RecordingDelegate delegate(told);
    {
        EditorContainerView view(time, notifications);
        view.setDelegate(&delegate);
    }
    QCOMPARE(told, (QStringList{QStringLiteral("will end")}));
}

void EditorContainerViewTest::editsThatCancelOutLeaveTheDocument()
{
    Fixture fixture(QStringLiteral("aaa"));
    TextView& text = fixture.view->textView();
    text.setSelectedRange({0, 1});
    text.editor().moveSelectedTextTo(2);
    QCOMPARE(fixture.document->content(), QStringLiteral("aaa"));
    QVERIFY(!fixture.document->isModified());
    QVERIFY(!text.editor().canUndo());
    QCOMPARE(text.selectedRange(), TextRange(1, 1));
    text.editor().moveSelectedTextTo(0);
    text.setSelectedRange({3, 0});
    fixture.type(QStringLiteral("b"));
    text.setSelectedRange({2, 1});
    text.editor().moveSelectedTextTo(4);
    QCOMPARE(fixture.document->content(), QStringLiteral("aaba"));
}

void EditorContainerViewTest::anUpdateWithoutAChangeColoursNothing()
{
    Fixture fixture(QStringLiteral("let a"));
    QSignalSpy edited(&fixture.storage(), &TextStorage::edited);
    QSignalSpy colored(&fixture.storage(), &TextStorage::attributesChanged);
    fixture.binding->updateView();
    fixture.document->setContent(QStringLiteral("let a"));
    fixture.turnQueue();
    QCOMPARE(edited.size(), 0);
    QCOMPARE(colored.size(), 0);
}

void EditorContainerViewTest::theThemeIsTakenWithoutSelectionAndCurrentLineColours()
{
    Fixture fixture(QStringLiteral("let a"));
    const TextViewColors before = fixture.view->textView().colors();
    const EditorTheme& light = EditorTheme::githubLight();
    fixture.themes.setCurrentTheme(light);
    fixture.turnQueue();
    const TextViewColors& colors = fixture.view->textView().colors();
    QCOMPARE(colors.background, light.backgroundColor.toColor());
    QCOMPARE(colors.insertionPoint, light.cursorColor.toColor());
    QCOMPARE(colors.selection, before.selection);
    QCOMPARE(fixture.view->lineNumberView().backgroundColor, light.gutterColor.toColor());
    QCOMPARE(fixture.view->lineNumberView().textColor, light.lineNumberColor.toColor());
    QCOMPARE(fixture.view->minimapView().theme, light);
    QCOMPARE(fixture.view->minimapView().palette().color(QPalette::Window), light.backgroundColor.toColor());
    QCOMPARE(fixture.colorAt(0), rgba(light.keywordColor));
    QCOMPARE(fixture.colorAt(4), rgba(light.textColor));
}

void EditorContainerViewTest::theLanguageSetterRunsTheCycleAndTellsTheMinimap()
{
    Fixture fixture(QStringLiteral("def f():\n  a\n  b\n"), Language::plainText);
    QVERIFY(fixture.view->codeFoldingManager().foldableRegions().empty());
    fixture.document->setExplicitLanguage(Language::python);
    fixture.turnQueue();
    QCOMPARE(fixture.view->currentLanguage(), Language(Language::python));
    QCOMPARE(fixture.view->minimapView().language, Language(Language::python));
    QCOMPARE(fixture.view->codeFoldingManager().foldableRegions().size(), std::size_t(1));
    QCOMPARE(fixture.colorAt(0), rgba(EditorTheme::monokai().functionColor));
}

void EditorContainerViewTest::scrollToLinePutsTheLineInTheMiddle()
{
    Fixture fixture(QString(QStringLiteral("line\n")).repeated(1000));
    fixture.view->scrollToLine(500);
    QCOMPARE(fixture.view->textView().visibleRect().y(), 499 * 17.0 - 200);
    QCOMPARE(fixture.view->minimapView().currentVisibleRect, fixture.view->textView().visibleRect());
    fixture.view->scrollToLine(1);
    QCOMPARE(fixture.view->textView().visibleRect().y(), 0.0);
}

void EditorContainerViewTest::theFocusNotificationPutsTheCaretAtTheStart()
{
    Fixture fixture(QString(QStringLiteral("line\n")).repeated(1000));
    fixture.view->textView().setSelectedRange({4000, 3});
    fixture.view->scrollToLine(800);
    fixture.view->textView().clearFocus();
    fixture.notifications.post(notifications::focusEditor);
    QCOMPARE(fixture.view->textView().selectedRange(), (TextRange{4000, 3}));
    fixture.turnQueue();
    QCOMPARE(fixture.view->textView().selectedRange(), (TextRange{0, 0}));
    QCOMPARE(fixture.view->textView().visibleRect().y(), 0.0);
    QVERIFY(fixture.view->textView().hasFocus());
    fixture.view->textView().clearFocus();
    fixture.view->setFocus();
    QVERIFY(fixture.view->textView().hasFocus());
}

void EditorContainerViewTest::theFocusNotificationIsForTheVisibleEditorAlone()
{
    Fixture fixture(QStringLiteral("text"));
    fixture.view->textView().setSelectedRange({2, 0});
    fixture.view->hide();
    fixture.notifications.post(notifications::focusEditor);
    fixture.turnQueue();
    QCOMPARE(fixture.view->textView().selectedRange(), (TextRange{2, 0}));
}

void EditorContainerViewTest::theCaretReachesTheDocument()
{
    Fixture fixture(QStringLiteral("one\ntwo\nthree\n"));
    fixture.turnQueue();
    fixture.view->textView().setSelectedRange({12, 0});
    // With the main queue's next turn.
    QCOMPARE(fixture.document->cursorPosition(), (CursorPosition{1, 1, 0}));
    fixture.turnQueue();
    QCOMPARE(fixture.document->cursorPosition(), (CursorPosition{3, 5, 0}));
    // Of a selection it is where that begins.
    fixture.view->textView().setSelectedRange({5, 7});
    fixture.turnQueue();
    QCOMPARE(fixture.document->cursorPosition(), (CursorPosition{2, 2, 0}));
}

void EditorContainerViewTest::hiddenPartsGiveTheirWidthToTheText()
{
    Fixture fixture(QStringLiteral("text"));
    QCOMPARE(fixture.view->lineNumberView().geometry(), QRect(0, 0, 55, 400));
    QCOMPARE(fixture.view->textView().geometry(), QRect(55, 0, 800 - 55 - 80, 400));
    QCOMPARE(fixture.view->minimapView().geometry(), QRect(800 - 80, 0, 80, 400));
    fixture.binding->setShowMinimap(false);
    fixture.turnQueue();
    QCOMPARE(fixture.view->textView().geometry(), QRect(55, 0, 800 - 55, 400));
    QVERIFY(!fixture.view->minimapView().isVisible());
    fixture.binding->setShowLineNumbers(false);
    fixture.turnQueue();
    QCOMPARE(fixture.view->textView().geometry(), QRect(0, 0, 800, 400));
    QVERIFY(!fixture.view->lineNumberView().isVisible());
    fixture.binding->setShowLineNumbers(true);
    fixture.binding->setShowMinimap(true);
    fixture.turnQueue();
    fixture.view->resize(500, 300);
    QCOMPARE(fixture.view->lineNumberView().geometry(), QRect(0, 0, 55, 300));
    QCOMPARE(fixture.view->textView().geometry(), QRect(55, 0, 500 - 55 - 80, 300));
    QCOMPARE(fixture.view->minimapView().geometry(), QRect(500 - 80, 0, 80, 300));
}

void EditorContainerViewTest::foldingLeavesTheDocumentAlone()
{
    Fixture fixture(foldable);
    fixture.view->lineNumberView().onFoldToggle(1);
    QCOMPARE(fixture.view->text(), QStringLiteral("func f() {\n … }\nlast\n"));
    fixture.turnQueue();
    QCOMPARE(fixture.document->content(), foldable);
    QVERIFY(!fixture.document->isModified());
    fixture.view->lineNumberView().onFoldToggle(1);
    QCOMPARE(fixture.view->text(), foldable);
}

void EditorContainerViewTest::anEditUnfoldsFirst()
{
    Fixture fixture(foldable);
    fixture.view->lineNumberView().onFoldToggle(1);
    fixture.view->textView().setSelectedRange({fixture.view->text().size() - 1, 0});
    fixture.type(QStringLiteral("!"));
    const QString expected = QStringLiteral("func f() {\n  one\n  two\n}\nlast!\n");
    QCOMPARE(fixture.view->text(), expected);
    QCOMPARE(fixture.document->content(), expected);
    QVERIFY(fixture.document->isModified());
}

void EditorContainerViewTest::aCaretBeforeAFoldStaysBeforeIt()
{
    Fixture fixture(foldable);
    const qsizetype body = foldable.indexOf(QStringLiteral("  one"));
    fixture.view->textView().setSelectedRange({body, 0});
    fixture.view->lineNumberView().onFoldToggle(1);
    QCOMPARE(fixture.view->textView().selectedRange(), (TextRange{body, 0}));
    fixture.type(QStringLiteral("x"));
    QCOMPARE(fixture.document->content(), QStringLiteral("func f() {\nx  one\n  two\n}\nlast\n"));
}

void EditorContainerViewTest::anUndoUnfoldsFirst()
{
    Fixture fixture(foldable);
    fixture.view->textView().setSelectedRange({13, 0});
    fixture.type(QStringLiteral("x"));
    fixture.time.advance(150ms);
    fixture.view->lineNumberView().onFoldToggle(1);
    fixture.view->textView().undo();
    QCOMPARE(fixture.view->text(), foldable);
    QCOMPARE(fixture.document->content(), foldable);
    fixture.view->textView().redo();
    QCOMPARE(fixture.document->content(), QStringLiteral("func f() {\n  xone\n  two\n}\nlast\n"));
}

void EditorContainerViewTest::replacingAllUnfoldsFirst()
{
    Fixture fixture(QStringLiteral("a {\n  one a\n  two\n}\na last\n"));
    fixture.view->lineNumberView().onFoldToggle(1);
    fixture.replaceBar(QStringLiteral("a"), QStringLiteral("new"));
    fixture.button("Replace all matches").click();
    const QString expected = QStringLiteral("new {\n  one new\n  two\n}\nnew lnewst\n");
    QCOMPARE(fixture.document->content(), expected);
    QCOMPARE(fixture.view->text(), expected);
    fixture.view->textView().undo();
    QCOMPARE(fixture.document->content(), QStringLiteral("a {\n  one a\n  two\n}\na last\n"));
}

void EditorContainerViewTest::replacingOneUnfoldsFirst()
{
    Fixture fixture(foldable);
    fixture.view->lineNumberView().onFoldToggle(1);
    fixture.replaceBar(QStringLiteral("last"), QStringLiteral("end"));
    fixture.button("Replace this match").click();
    QCOMPARE(fixture.document->content(), QStringLiteral("func f() {\n  one\n  two\n}\nend\n"));
}

void EditorContainerViewTest::aDropGoesToItsPlaceBehindAFold()
{
    Fixture fixture(foldable);
    fixture.view->lineNumberView().onFoldToggle(1);
    const qsizetype at = fixture.view->text().indexOf(QStringLiteral("last"));
    fixture.drop(at, QStringLiteral("new "));
    QCOMPARE(fixture.document->content(), QStringLiteral("func f() {\n  one\n  two\n}\nnew last\n"));
    QCOMPARE(fixture.view->textView().editor().selectedTexts(), QStringList{QStringLiteral("new ")});
}

void EditorContainerViewTest::movedTextGoesToItsPlaceBehindAFold()
{
    Fixture fixture(foldable);
    fixture.view->lineNumberView().onFoldToggle(1);
    fixture.view->textView().setSelectedRange({0, 5});
    QVERIFY(fixture.view->textView().editor().moveSelectedTextTo(fixture.view->text().size() - 1));
    QCOMPARE(fixture.document->content(), QStringLiteral("f() {\n  one\n  two\n}\nlastfunc \n"));
}

void EditorContainerViewTest::anInputMethodReplacesBehindAFold()
{
    Fixture fixture(foldable);
    fixture.view->lineNumberView().onFoldToggle(1);
    fixture.view->textView().setSelectedRange({fixture.view->text().size() - 1, 0});
    QInputMethodEvent event;
    event.setCommitString(QStringLiteral("한"), -4, 4);
    QCoreApplication::sendEvent(&fixture.view->textView(), &event);
    QCOMPARE(fixture.document->content(), QStringLiteral("func f() {\n  one\n  two\n}\n한\n"));
}

void EditorContainerViewTest::aLanguageChangeKeepsTheFolds()
{
    Fixture fixture(foldable);
    fixture.view->lineNumberView().onFoldToggle(1);
    fixture.document->setExplicitLanguage(Language::go);
    fixture.turnQueue();
    QVERIFY(fixture.view->codeFoldingManager().foldedRegionStartLines().contains(1));
    QVERIFY(fixture.view->codeFoldingManager().foldableRegions().empty());
    QCOMPARE(fixture.view->text(), QStringLiteral("func f() {\n … }\nlast\n"));
}

void EditorContainerViewTest::contentChangedElsewhereReplacesAFoldedText()
{
    Fixture fixture(foldable);
    fixture.view->lineNumberView().onFoldToggle(1);
    fixture.document->setContent(QStringLiteral("new"));
    fixture.turnQueue();
    QCOMPARE(fixture.view->text(), QStringLiteral("new"));
    fixture.type(QStringLiteral("!"));
    QVERIFY(!fixture.document->content().contains(QStringLiteral("one")));
    QCOMPARE(fixture.document->content().size(), 4);
}

void EditorContainerViewTest::theLessonRegionReachesTheGutter()
{
    Fixture fixture(QStringLiteral("a\nb\nc\n"));
    LessonInfo lesson;
    lesson.slug = QStringLiteral("intro");
    lesson.regionStart = 2;
    lesson.regionEnd = 3;
    fixture.document->setLessonInfo(lesson);
    fixture.turnQueue();
    QCOMPARE(fixture.view->lineNumberView().lessonRegion, std::optional(LineRegion{2, 3}));
    QCOMPARE(fixture.view->lessonRegion(), std::optional(LineRegion{2, 3}));
    test::Paints paints(fixture.view->lineNumberView());
    lesson.regionEnd = 2;
    fixture.document->setLessonInfo(lesson);
    QTRY_VERIFY(paints.count > 0);
    QCOMPARE(fixture.view->lessonRegion(), std::optional(LineRegion{2, 2}));
    fixture.document->setLessonInfo(std::nullopt);
    fixture.turnQueue();
    QCOMPARE(fixture.view->lessonRegion(), std::nullopt);
}

void EditorContainerViewTest::theMinimapScrollsToALine()
{
    Fixture fixture(QString(QStringLiteral("line\n")).repeated(1000));
    fixture.view->minimapView().onLineSelected(400);
    QCOMPARE(fixture.view->textView().visibleRect().y(), 399 * 17.0 - 200);
    // 1001 lines in 390 points: what is 196 points below the first is line 504.
    QTest::mouseClick(&fixture.view->minimapView(), Qt::LeftButton, {}, {40, 201});
    QCOMPARE(fixture.view->textView().visibleRect().y(), 503 * 17.0 - 200);
}

void EditorContainerViewTest::foldsNeverReachTheDocument()
{
    test::RandomText random;
    for (int round = 0; round < 20; ++round) {
        QString original;
        for (int line = 0; line < 60; ++line) {
            original += QStringList{QStringLiteral("{"), QStringLiteral("}"), QStringLiteral("  body"),
                                    QStringLiteral("x { y"), QString()}[random.below(5)] +
                        (random.below(4) == 0 ? QStringLiteral("\r\n") : QStringLiteral("\n"));
        }
        Fixture fixture(original);
        for (int step = 0; step < 40; ++step) {
            const auto regions = fixture.view->codeFoldingManager().foldableRegions();
            if (random.below(3) > 0 && !regions.empty()) {
                const auto region = static_cast<std::size_t>(random.below(static_cast<qsizetype>(regions.size())));
                fixture.view->lineNumberView().onFoldToggle(regions[region].startLine);
            } else {
                fixture.view->textView().setSelectedRange({random.below(fixture.view->text().size() + 1), 0});
                fixture.type(QStringLiteral("Z"));
                QCOMPARE(fixture.view->text(), fixture.document->content());
            }
            if (random.below(4) == 0) {
                fixture.time.advance(150ms);
            }
            // Only the typed letters differ: no body is lost, and no placeholder is in the text that a save would
            // write.
            QString content = fixture.document->content();
            content.remove(u'Z');
            QCOMPARE(content, original);
        }
        while (fixture.view->textView().editor().canUndo()) {
            fixture.view->textView().undo();
        }
        fixture.view->codeFoldingManager().unfoldAll();
        QString content = fixture.view->text();
        content.remove(u'Z');
        QCOMPARE(content, original);
    }
}

void EditorContainerViewTest::foldsEditsAndUndoLeaveTheContentThatEditsMade()
{
    test::RandomText random;
    for (int round = 0; round < 15; ++round) {
        QString original;
        for (int line = 0; line < 40; ++line) {
            original += QStringList{QStringLiteral("a {"), QStringLiteral("}"), QStringLiteral("  body"),
                                    QString()}[random.below(4)] +
                        u'\n';
        }
        Fixture fixture(original);
        TextView& text = fixture.view->textView();
        // The contents that one after the other was made by an edit, and what was taken of each for a save.
        QStringList states{original};
        std::vector<TextTree> saved{fixture.document->text()};
        qsizetype at = 0;
        for (int step = 0; step < 60; ++step) {
            switch (random.below(6)) {
            case 0:
            case 1:
            case 2:
                // Any line: most have nothing to fold or unfold.
                fixture.view->lineNumberView().onFoldToggle(1 + random.below(40));
                break;
            case 3: {
                QString whole = states[at];
                const TextRange range{random.below(whole.size() + 1), random.below(4)};
                fixture.view->codeFoldingManager().unfoldAll();
                text.setSelectedRange(range);
                const TextRange selected = text.selectedRange();
                fixture.type(QStringLiteral("Z"));
                // A step of its own, wherever the one before was typed.
                text.editor().endUndoRun();
                whole.replace(selected.location, selected.length, u'Z');
                if (whole == states[at]) {
                    // A letter over the same letter is no edit.
                    break;
                }
                states.resize(at + 1);
                saved.resize(static_cast<std::size_t>(at) + 1);
                states.append(whole);
                saved.push_back(fixture.document->text());
                ++at;
                break;
            }
            case 4:
                at -= text.editor().canUndo() ? 1 : 0;
                text.undo();
                break;
            default:
                at += text.editor().canRedo() ? 1 : 0;
                text.redo();
                break;
            }
            QCOMPARE(fixture.document->content(), states[at]);
        }
        for (qsizetype state = 0; state < states.size(); ++state) {
            QVERIFY(saved[static_cast<std::size_t>(state)] == QStringView(states[state]));
        }
    }
}

void EditorContainerViewTest::aClosedDocumentsEditorGoesQuietly()
{
    Fixture fixture(QStringLiteral("text"));
    fixture.type(QStringLiteral("x"));
    fixture.notifications.post(notifications::focusEditor);
    fixture.view.reset();
    fixture.time.advance(1s);
    fixture.document->setContent(QStringLiteral("other"));
    fixture.turnQueue();
    fixture.binding.reset();
    fixture.notifications.post(notifications::focusEditor);
    QCOMPARE(fixture.document->content(), QStringLiteral("other"));
}

const kelm::test::Registered<EditorContainerViewTest> registered(kelm::test::Toolkit::widgets);

} // namespace editor_container_view_test

#include "editor_container_view_test.moc"
