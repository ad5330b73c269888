#include "support/test_program.h"
#include "workbench/view/controls.h"
#include "workbench/view/editor_area.h"
#include "workbench/view/window_fixture.h"

#include <QInputMethodEvent>

namespace editor_area_test {

using namespace kelm;
using namespace kelm::test;

namespace {

const QString foldable = QStringLiteral("func f() {\n  one\n  two\n}\nlast\n");

std::shared_ptr<Document> makeDocument(const QString& text)
{
    return std::make_shared<Document>(text, std::nullopt, Language::swift, std::nullopt);
}

/// A window with two documents, the first of which is seen.
struct Fixture : WindowFixture
{
    EditorArea& area = window.editorArea();

    explicit Fixture(const QString& text = foldable)
    {
        state.setDocuments({makeDocument(text), makeDocument(QStringLiteral("second"))});
        show(0);
    }

    void show(qsizetype index)
    {
        state.setCurrentDocumentIndex(index);
        turnQueue();
    }

    QString content(qsizetype index) const { return state.documents()[index]->content(); }
};

} // namespace

class EditorAreaTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anEditorIsMadeWhenItsDocumentIsFirstSeen();
    void theShownEditorHasTheKeyboard();
    void foldsSurviveAChangeOfTab();
    void aChangeOfTabPutsACompositionIn();
    void closingTheTabOfACompositionLeavesTheOthersAlone();
    void whatHappensToADocumentOutOfSightIsShownLater();
    void themeAndMinimapReachEditorsOutOfSight();
    void lineNumbersAreAlwaysShown();
    void withoutADocumentTheWelcomeIsSeen();
    void theWelcomeTakesTheKeyboardFromTheLastText();
    void anIndexOutOfRangeShowsTheWelcome();
    void theWelcomeLeadsToADocument();
    void documentsThatAreReplacedTakeTheirEditorsAlong();
};

void EditorAreaTest::anEditorIsMadeWhenItsDocumentIsFirstSeen()
{
    Fixture fixture;
    QCOMPARE(fixture.area.findChildren<EditorContainerView*>().size(), 1);
    fixture.show(1);
    QCOMPARE(fixture.area.findChildren<EditorContainerView*>().size(), 2);
    fixture.show(0);
    QCOMPARE(fixture.area.findChildren<EditorContainerView*>().size(), 2);
}

void EditorAreaTest::theShownEditorHasTheKeyboard()
{
    Fixture fixture;
    for (const qsizetype index : {1, 0, 1}) {
        fixture.show(index);
        QVERIFY(fixture.text().hasFocus());
        QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("x"));
    }
    QCOMPARE(fixture.content(0).count(u'x'), 1);
    QCOMPARE(fixture.content(1), QStringLiteral("xxsecond"));
}

void EditorAreaTest::foldsSurviveAChangeOfTab()
{
    Fixture fixture;
    CodeFoldingManager& folding = fixture.area.currentEditor()->codeFoldingManager();
    folding.fold(folding.foldableRegions().front());
    const QString folded = fixture.text().text();
    QVERIFY(folded.contains(CodeFoldingManager::foldPlaceholder));
    fixture.show(1);
    fixture.show(0);
    QCOMPARE(fixture.text().text(), folded);
    QCOMPARE(fixture.content(0), foldable);
    QVERIFY(!fixture.state.documents()[0]->isModified());
    // An edit brings the body back first, so that it is saved with the rest.
    QTest::keyClicks(&fixture.text(), QStringLiteral("x"));
    QCOMPARE(fixture.content(0), u'x' + foldable);
}

void EditorAreaTest::aChangeOfTabPutsACompositionIn()
{
    Fixture fixture;
    QInputMethodEvent composing(QStringLiteral("한"), {});
    QCoreApplication::sendEvent(&fixture.text(), &composing);
    QCOMPARE(fixture.content(0), foldable);
    fixture.show(1);
    QCOMPARE(fixture.content(0), QStringLiteral("한") + foldable);
    QCOMPARE(fixture.content(1), QStringLiteral("second"));
    fixture.show(0);
    fixture.text().undo();
    QCOMPARE(fixture.content(0), foldable);
}

void EditorAreaTest::closingTheTabOfACompositionLeavesTheOthersAlone()
{
    Fixture fixture;
    QInputMethodEvent composing(QStringLiteral("한"), {});
    QCoreApplication::sendEvent(&fixture.text(), &composing);
    fixture.state.closeTab(0);
    fixture.turnQueue();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(fixture.content(0), QStringLiteral("second"));
    QVERIFY(!fixture.state.currentDocument()->isModified());
    QVERIFY(fixture.text().hasFocus());
}

void EditorAreaTest::whatHappensToADocumentOutOfSightIsShownLater()
{
    Fixture fixture;
    fixture.show(1);
    fixture.state.documents()[0]->setContent(QStringLiteral("changed elsewhere"));
    fixture.show(0);
    QCOMPARE(fixture.text().text(), QStringLiteral("changed elsewhere"));
}

void EditorAreaTest::themeAndMinimapReachEditorsOutOfSight()
{
    Fixture fixture;
    EditorContainerView* first = fixture.area.currentEditor();
    fixture.show(1);
    fixture.themes.setCurrentTheme(EditorTheme::githubLight());
    fixture.state.setShowMinimap(false);
    fixture.turnQueue();
    for (EditorContainerView* editor : {first, fixture.area.currentEditor()}) {
        QVERIFY(!editor->showMinimap());
        QCOMPARE(editor->theme().name, EditorTheme::githubLight().name);
    }
}

void EditorAreaTest::lineNumbersAreAlwaysShown()
{
    Fixture fixture;
    QVERIFY(fixture.area.currentEditor()->showLineNumbers());
    // It is a setting by name alone.
    fixture.defaults.setBoolean(QStringLiteral("showLineNumbers"), false);
    fixture.defaults.setBoolean(QStringLiteral("showMinimap"), false);
    fixture.show(1);
    QVERIFY(fixture.area.currentEditor()->showLineNumbers());
    QVERIFY(fixture.area.currentEditor()->showMinimap());
}

void EditorAreaTest::withoutADocumentTheWelcomeIsSeen()
{
    WindowFixture fixture;
    QVERIFY(fixture.window.editorArea().currentEditor() == nullptr);
    QVERIFY(visibleButton(fixture.window.editorArea(), QStringLiteral("New File")) != nullptr);
    fixture.state.createNewTab();
    QVERIFY(visibleButton(fixture.window.editorArea(), QStringLiteral("New File")) == nullptr);
    fixture.state.closeTab(0);
    QVERIFY(visibleButton(fixture.window.editorArea(), QStringLiteral("New File")) != nullptr);
}

void EditorAreaTest::theWelcomeTakesTheKeyboardFromTheLastText()
{
    Fixture fixture;
    QVERIFY(fixture.area.isAncestorOf(fixture.window.focusWidget()));
    fixture.state.closeTab(1);
    fixture.state.closeTab(0);
    fixture.turnQueue();
    // No button of the toolbar gets it, with a ring around it.
    QVERIFY(fixture.area.isAncestorOf(fixture.window.focusWidget()));
    QVERIFY(qobject_cast<QAbstractButton*>(fixture.window.focusWidget()) == nullptr);
    QTest::keyClick(fixture.window.focusWidget(), Qt::Key_Tab);
    QCOMPARE(fixture.window.focusWidget(), visibleButton(fixture.area, QStringLiteral("New File")));
}

void EditorAreaTest::anIndexOutOfRangeShowsTheWelcome()
{
    Fixture fixture;
    fixture.show(7);
    QVERIFY(fixture.window.editorArea().currentEditor() == nullptr);
    QVERIFY(visibleButton(fixture.window.editorArea(), QStringLiteral("Open File")) != nullptr);
    fixture.show(1);
    QCOMPARE(fixture.text().text(), QStringLiteral("second"));
}

void EditorAreaTest::theWelcomeLeadsToADocument()
{
    WindowFixture fixture;
    fixture.panels.openAnswer = {{fixture.write(QStringLiteral("a.txt"), "a"), false}};
    clickOn(fixture.window.editorArea(), QStringLiteral("Open File"));
    QCOMPARE(fixture.panels.openPanelsShown, 1);
    QCOMPARE(fixture.text().text(), QStringLiteral("a"));
    fixture.state.closeTab(0);
    clickOn(fixture.window.editorArea(), QStringLiteral("New File"));
    QCOMPARE(fixture.text().text(), QString());
}

void EditorAreaTest::documentsThatAreReplacedTakeTheirEditorsAlong()
{
    Fixture fixture;
    fixture.show(1);
    const QPointer<EditorContainerView> old = fixture.area.currentEditor();
    fixture.state.setDocuments({makeDocument(QStringLiteral("third"))});
    fixture.show(0);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(old.isNull());
    QCOMPARE(fixture.area.findChildren<EditorContainerView*>().size(), 1);
    QCOMPARE(fixture.text().text(), QStringLiteral("third"));
}

const kelm::test::Registered<EditorAreaTest> registered(kelm::test::Toolkit::widgets);

} // namespace editor_area_test

#include "editor_area_test.moc"
