#include "app/kept_ready/split_editor_manager.h"
#include "support/test_program.h"

#include <QtTest>

namespace split_editor_manager_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

using Pane = std::shared_ptr<EditorPane>;

Pane paneWith(const QString& content)
{
    return std::make_shared<EditorPane>(
        std::make_shared<Document>(content, QUrl(u"file:///a.py"_s), Language(Language::swift), LessonInfo()));
}

struct Fixture
{
    Pane first = paneWith(u"one"_s);
    Pane second = paneWith(u"two"_s);
    SplitEditorManager manager;

    Fixture()
    {
        manager.setEditors({first, second});
        manager.setActiveEditor(first);
    }
};

} // namespace

class SplitEditorManagerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void itStartsEmpty();
    void theNewPaneStandsRightAfterItsSource();
    void theNewPaneHasABufferOfItsOwn();
    void theSourceIsTheArgumentElseTheActiveElseTheFirst();
    void aSourceOutsideTheListIsAppendedTo();
    void withoutAnyPaneNothingIsSplit();
    void splittingTwicePutsTheNewestFirst();
    void theLastPaneStays();
    void aPaneOutsideTheListIsNotClosed();
    void theFirstTakesTheActiveOnesPlace();
    void anotherPaneLeavesTheActiveOne();
    void oneRemainingPaneIsSingle();
    void gridIsSetByNothing();
    void observersHearOfEveryChange();
};

void SplitEditorManagerTest::itStartsEmpty()
{
    const SplitEditorManager manager;
    QVERIFY(manager.editors().isEmpty());
    QVERIFY(manager.activeEditor() == nullptr);
    QVERIFY(manager.layout() == SplitLayout::single);
}

void SplitEditorManagerTest::theNewPaneStandsRightAfterItsSource()
{
    Fixture fixture;
    fixture.manager.splitHorizontally(fixture.first);
    QCOMPARE(fixture.manager.editors().size(), 3);
    const Pane made = fixture.manager.editors()[1];
    QVERIFY(made != fixture.first && made != fixture.second);
    QCOMPARE(fixture.manager.activeEditor(), made);
    QVERIFY(fixture.manager.layout() == SplitLayout::horizontal);
    QVERIFY(made->id() != fixture.first->id());
    fixture.manager.splitVertically(fixture.second);
    QVERIFY(fixture.manager.layout() == SplitLayout::vertical);
    QCOMPARE(fixture.manager.editors().last(), fixture.manager.activeEditor());
}

void SplitEditorManagerTest::theNewPaneHasABufferOfItsOwn()
{
    Fixture fixture;
    fixture.manager.splitHorizontally();
    Document& made = *fixture.manager.activeEditor()->document();
    QCOMPARE(made.content(), u"one"_s);
    QCOMPARE(made.fileURL(), QUrl(u"file:///a.py"_s));
    QVERIFY(!made.explicitLanguage());
    QVERIFY(!made.lessonInfo());
    QVERIFY(made.language() == Language::python);
    made.setContent(u"changed"_s);
    QCOMPARE(fixture.first->document()->content(), u"one"_s);
}

void SplitEditorManagerTest::theSourceIsTheArgumentElseTheActiveElseTheFirst()
{
    Fixture fixture;
    fixture.manager.splitHorizontally(fixture.second);
    QCOMPARE(fixture.manager.activeEditor()->document()->content(), u"two"_s);
    fixture.manager.setActiveEditor(fixture.first);
    fixture.manager.splitHorizontally();
    QCOMPARE(fixture.manager.activeEditor()->document()->content(), u"one"_s);
    fixture.manager.setActiveEditor(nullptr);
    fixture.manager.setEditors({fixture.second, fixture.first});
    fixture.manager.splitVertically();
    QCOMPARE(fixture.manager.activeEditor()->document()->content(), u"two"_s);
}

void SplitEditorManagerTest::aSourceOutsideTheListIsAppendedTo()
{
    Fixture fixture;
    fixture.manager.splitHorizontally(paneWith(u"else"_s));
    QCOMPARE(fixture.manager.editors().size(), 3);
    QCOMPARE(fixture.manager.editors().last()->document()->content(), u"else"_s);
}

void SplitEditorManagerTest::withoutAnyPaneNothingIsSplit()
{
    SplitEditorManager manager;
    manager.splitHorizontally();
    manager.splitVertically();
    QVERIFY(manager.editors().isEmpty());
    QVERIFY(manager.layout() == SplitLayout::single);
}

void SplitEditorManagerTest::splittingTwicePutsTheNewestFirst()
{
    Fixture fixture;
    fixture.manager.splitHorizontally(fixture.first);
    const Pane older = fixture.manager.activeEditor();
    fixture.manager.splitHorizontally(fixture.first);
    QCOMPARE(fixture.manager.editors()[1], fixture.manager.activeEditor());
    QCOMPARE(fixture.manager.editors()[2], older);
}

void SplitEditorManagerTest::theLastPaneStays()
{
    Fixture fixture;
    fixture.manager.setEditors({fixture.first});
    fixture.manager.setLayout(SplitLayout::vertical);
    fixture.manager.closePane(fixture.first);
    QCOMPARE(fixture.manager.editors().size(), 1);
    QVERIFY(fixture.manager.layout() == SplitLayout::vertical);
}

void SplitEditorManagerTest::aPaneOutsideTheListIsNotClosed()
{
    Fixture fixture;
    fixture.manager.closePane(paneWith(u"one"_s));
    fixture.manager.closePane(nullptr);
    QCOMPARE(fixture.manager.editors().size(), 2);
}

void SplitEditorManagerTest::theFirstTakesTheActiveOnesPlace()
{
    Fixture fixture;
    fixture.manager.splitHorizontally(fixture.second);
    fixture.manager.closePane(fixture.manager.activeEditor());
    QCOMPARE(fixture.manager.editors(), (QList<Pane>{fixture.first, fixture.second}));
    QCOMPARE(fixture.manager.activeEditor(), fixture.first);
    QVERIFY(fixture.manager.layout() == SplitLayout::horizontal);
}

void SplitEditorManagerTest::anotherPaneLeavesTheActiveOne()
{
    Fixture fixture;
    fixture.manager.closePane(fixture.second);
    QCOMPARE(fixture.manager.editors(), QList<Pane>{fixture.first});
    QCOMPARE(fixture.manager.activeEditor(), fixture.first);
}

void SplitEditorManagerTest::oneRemainingPaneIsSingle()
{
    Fixture fixture;
    fixture.manager.setLayout(SplitLayout::horizontal);
    fixture.manager.closePane(fixture.second);
    QVERIFY(fixture.manager.layout() == SplitLayout::single);
}

void SplitEditorManagerTest::gridIsSetByNothing()
{
    Fixture fixture;
    for (int step = 0; step < 4; ++step) {
        fixture.manager.splitHorizontally();
        fixture.manager.splitVertically();
    }
    QVERIFY(fixture.manager.layout() == SplitLayout::vertical);
}

void SplitEditorManagerTest::observersHearOfEveryChange()
{
    Fixture fixture;
    const QSignalSpy editors(&fixture.manager, &SplitEditorManager::editorsChanged);
    const QSignalSpy active(&fixture.manager, &SplitEditorManager::activeEditorChanged);
    const QSignalSpy layout(&fixture.manager, &SplitEditorManager::layoutChanged);
    const QSignalSpy document(fixture.first.get(), &EditorPane::documentChanged);
    fixture.manager.splitHorizontally();
    fixture.first->setDocument(fixture.second->document());
    fixture.first->setDocument(fixture.second->document());
    QCOMPARE(editors.size(), 1);
    QCOMPARE(active.size(), 1);
    QCOMPARE(layout.size(), 1);
    QCOMPARE(document.size(), 1);
}

const kelm::test::Registered<SplitEditorManagerTest> registered;

} // namespace split_editor_manager_test

#include "split_editor_manager_test.moc"
