#include "run/code_runner.h"
#include "run/view/output_page.h"
#include "run/view/output_view.h"
#include "run/view/spoken_output.h"
#include "support/accessible_events.h"
#include "support/accessible_tree.h"
#include "support/app_state_fixture.h"
#include "support/test_program.h"
#include "text/view/text_view.h"

#include <QtTest>

namespace spoken_output_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

/// The output page, with a screen reader that listens to it.
struct Fixture
{
    AppStateFixture app;
    ThemeManager themes{{app.userDefaults, app.log, app.folder.path(), [](Appearance) {}}};
    OutputPage page{app.state.codeRunner(), app.notificationCenter, themes};
    AccessibleListener listener;

    explicit Fixture(bool isShown = true)
    {
        if (isShown) {
            page.show();
            QVERIFY(QTest::qWaitForWindowExposed(&page));
        }
        listener.take(QAccessible::Alert);
    }
    ~Fixture()
    {
        runner().stop();
        (void)QTest::qWaitFor([this] { return !runner().isRunning(); }, kelm::test::patience);
    }

    CodeRunner& runner() const { return app.state.codeRunner(); }
    SpokenOutput& spoken() { return *page.findChild<SpokenOutput*>(); }
    void post(const QString& text) { app.notificationCenter.post(notifications::codeOutput, text); }
    QStringList said() { return listener.take(QAccessible::Alert, &spoken()); }
};

} // namespace

class SpokenOutputTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void outputIsSaidOnceItIsQuiet();
    void ofMuchTheEndIsSaid();
    void nothingIsSaidOfAPageThatIsNotShown();
    void nothingIsKeptWhileNobodyListens();
    void thePageIsBusyWhileSomethingRuns();
};

void SpokenOutputTest::outputIsSaidOnceItIsQuiet()
{
    Fixture f;
    f.post(u"one\n"_s);
    f.post(u"two\n"_s);
    QVERIFY(f.said().isEmpty());
    QStringList said;
    QTRY_VERIFY(!(said += f.said()).isEmpty());
    QCOMPARE(said, QStringList{u"one\ntwo"_s});
    said.clear();
    f.post(u"three\n"_s);
    QTRY_VERIFY(!(said += f.said()).isEmpty());
    QCOMPARE(said, QStringList{u"three"_s});
}

void SpokenOutputTest::ofMuchTheEndIsSaid()
{
    Fixture f;
    for (int line = 0; line < 1000; ++line) {
        f.post(u"line %1\n"_s.arg(line));
        QVERIFY(f.spoken().waiting().size() <= SpokenOutput::mostUnits);
    }
    f.post(u"x"_s.repeated(1000000) + u" the end\n"_s);
    QVERIFY(f.spoken().waiting().size() <= SpokenOutput::mostUnits);
    QStringList said;
    QTRY_VERIFY(!(said += f.said()).isEmpty());
    QCOMPARE(said.size(), 1);
    QVERIFY(said.first().startsWith(u"… x"));
    QVERIFY(said.first().endsWith(u"x the end"));
}

void SpokenOutputTest::nothingIsSaidOfAPageThatIsNotShown()
{
    Fixture f(false);
    f.post(u"one\n"_s);
    QTRY_VERIFY(f.spoken().waiting().isEmpty());
    QVERIFY(f.said().isEmpty());
}

void SpokenOutputTest::nothingIsKeptWhileNobodyListens()
{
    Fixture f;
    screenReader::tellInstead({});
    f.post(u"one\n"_s);
    QVERIFY(f.spoken().waiting().isEmpty());
}

void SpokenOutputTest::thePageIsBusyWhileSomethingRuns()
{
    Fixture f;
    const auto state = [&] { return accessible(f.page.output().textView())->state(); };
    QVERIFY(!state().busy && state().readOnly);
    f.app.state.openFile(f.app.write(u"loop.sh"_s, "while :; do :; done\n"));
    f.app.state.runCurrentFile();
    QTRY_VERIFY(state().busy);
    f.runner().stop();
    QTRY_VERIFY(!state().busy);
}

const test::Registered<SpokenOutputTest> registered(test::Toolkit::widgets);

} // namespace spoken_output_test

#include "spoken_output_test.moc"
