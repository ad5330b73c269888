#include "learning/view/learning_mode_side_panel.h"
#include "platform/style/view/style.h"
#include "run/code_runner.h"
#include "support/test_program.h"
#include "workbench/view/lesson_place.h"
#include "workbench/view/window_fixture.h"

#include <QLabel>

#include <algorithm>

namespace lesson_place_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Fixture : WindowFixture
{
    LearningModeSidePanel* panel() { return window.findChild<LearningModeSidePanel*>(); }
    void openLesson(const QString& slug, const QString& code = u"true\n"_s)
    {
        state.openSnippet(code, Language::shell, LessonInfo{.slug = slug});
    }
    void run()
    {
        state.runCurrentFile();
        QTRY_VERIFY(!state.codeRunner().isRunning());
    }
};

const QString failing = u"echo 'HTTP 401' >&2\n"_s;

} // namespace

class LessonPlaceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void onePanelServesAllLessons();
    void thePanelComesAndGoesWithTheTab();
    void aNewLessonIsNotToldOfAnothersRun();
    void anOpenLessonIsToldOfEveryRunSince();
    void theTitleIsThereWithTheTab();
};

void LessonPlaceTest::onePanelServesAllLessons()
{
    Fixture fixture;
    QVERIFY(fixture.panel() == nullptr);
    fixture.openLesson(u"one"_s);
    const LearningModeSidePanel* const first = fixture.panel();
    QVERIFY(first != nullptr);
    fixture.openLesson(u"two"_s);
    fixture.state.createNewTab();
    fixture.state.setCurrentDocumentIndex(0);
    QCOMPARE(fixture.window.findChildren<LearningModeSidePanel*>(), {const_cast<LearningModeSidePanel*>(first)});
}

void LessonPlaceTest::thePanelComesAndGoesWithTheTab()
{
    Fixture fixture;
    fixture.openLesson(u"one"_s);
    QVERIFY(fixture.panel()->isVisible());
    fixture.state.createNewTab();
    QVERIFY(!fixture.panel()->isVisible());
    fixture.state.setCurrentDocumentIndex(0);
    QVERIFY(fixture.panel()->isVisible());
    fixture.state.closeTab(0);
    QVERIFY(!fixture.panel()->isVisible());
}

void LessonPlaceTest::aNewLessonIsNotToldOfAnothersRun()
{
    Fixture fixture;
    fixture.state.openSnippet(failing, Language::shell, std::nullopt);
    fixture.run();
    fixture.openLesson(u"first"_s, failing);
    QVERIFY(!fixture.panel()->diagnosis());
    fixture.run();
    QTRY_VERIFY(fixture.panel()->diagnosis().has_value());
    fixture.openLesson(u"second"_s);
    QVERIFY(!fixture.panel()->diagnosis());
    fixture.state.setCurrentDocumentIndex(1);
    QVERIFY(fixture.panel()->diagnosis().has_value());
}

void LessonPlaceTest::anOpenLessonIsToldOfEveryRunSince()
{
    Fixture fixture;
    fixture.openLesson(u"first"_s);
    fixture.openLesson(u"second"_s, failing);
    fixture.run();
    QTRY_VERIFY(fixture.panel()->diagnosis().has_value());
    fixture.state.setCurrentDocumentIndex(0);
    QVERIFY(fixture.panel()->diagnosis().has_value());
}

void LessonPlaceTest::theTitleIsThereWithTheTab()
{
    Fixture fixture;
    fixture.openLesson(u"the-slug"_s);
    const auto labels = fixture.panel()->findChildren<QLabel*>();
    QVERIFY(std::any_of(labels.begin(), labels.end(),
                        [](const QLabel* label) { return label->isVisible() && label->text() == u"the-slug"; }));
}

const kelm::test::Registered<LessonPlaceTest> registered(kelm::test::Toolkit::widgets);

} // namespace lesson_place_test

#include "lesson_place_test.moc"
