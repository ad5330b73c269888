#include "editor/themes/theme_manager.h"
#include "platform/view/plain_button.h"
#include "run/code_runner.h"
#include "run/view/output_page.h"
#include "run/view/output_view.h"
#include "run/view/run_header.h"
#include "run/view/stop_run_key.h"
#include "support/app_state_fixture.h"
#include "support/test_program.h"
#include "text/view/text_view.h"

#include <QRegularExpression>
#include <QtTest>

#include <csignal>

namespace run_header_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Fixture
{
    AppStateFixture app;
    ThemeManager themes{{app.userDefaults, app.log, app.folder.path(), [](Appearance) {}}};
    std::unique_ptr<OutputPage> page = makePage();

    std::unique_ptr<OutputPage> makePage()
    {
        auto made = std::make_unique<OutputPage>(app.state.codeRunner(), app.notificationCenter, themes);
        made->resize(600, 200);
        made->show();
        made->activateWindow();
        if (!QTest::qWaitForWindowActive(made.get())) {
            qFatal("the window does not come up");
        }
        return made;
    }
    ~Fixture()
    {
        runner().stop();
        (void)QTest::qWaitFor([this] { return !runner().isRunning(); }, kelm::test::patience);
    }

    CodeRunner& runner() const { return app.state.codeRunner(); }
    RunHeader& header() const { return page->header(); }
    QString pageText() const { return page->output().textView().text(); }
    void run(const QString& name, const QByteArray& content)
    {
        app.state.openFile(app.write(name, content));
        app.state.runCurrentFile();
    }
    void runToEnd(const QString& name, const QByteArray& content)
    {
        run(name, content);
        QTRY_VERIFY(!runner().isRunning());
    }
    bool tells(const QString& pattern) const
    {
        return QRegularExpression(QRegularExpression::anchoredPattern(pattern)).match(header().text()).hasMatch();
    }
};

const QByteArray loop = "while :; do :; done\n";

} // namespace

class RunHeaderTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void thereIsNoneBeforeTheFirstRun();
    void aSilentRunIsTold();
    void theButtonStopsTheRun();
    void theKeyStopsTheRun();
    void theEndIsToldUntilTheNextRun();
    void whatDidNotRunHasNoHeader();
    void aPageMadeLaterTellsTheSame();
    void theTimeGoesOnOnlyWhileItIsSeen();
    void aRunThatMissedItsInputIsSentToTheTerminal();
    void theKeyboardGoesToTheOutput();
};

void RunHeaderTest::thereIsNoneBeforeTheFirstRun()
{
    const Fixture fixture;
    QVERIFY(!fixture.header().isVisible());
    QVERIFY(!fixture.header().isTicking());
}

void RunHeaderTest::aSilentRunIsTold()
{
    Fixture fixture;
    fixture.run(u"quiet.sh"_s, loop);
    QVERIFY(fixture.header().isVisible());
    QVERIFY2(fixture.tells(u"Running quiet\\.sh … \\d+ s"_s), qPrintable(fixture.header().text()));
    QCOMPARE(fixture.header().accessibleName(), u"Running quiet.sh"_s);
    QCOMPARE(fixture.pageText(), u"No output"_s);
    QVERIFY(fixture.header().stopButton().isVisible());
    QVERIFY(fixture.header().stopButton().toolTip().contains(stopRunKey().toString(QKeySequence::NativeText)));
}

void RunHeaderTest::theButtonStopsTheRun()
{
    Fixture fixture;
    fixture.run(u"quiet.sh"_s, loop);
    QTest::mouseClick(&fixture.header().stopButton(), Qt::LeftButton);
    QTRY_VERIFY(!fixture.runner().isRunning());
    QVERIFY2(fixture.tells(u"quiet\\.sh was ended by SIGTERM after \\d+\\.\\d+ s"_s),
             qPrintable(fixture.header().text()));
    QVERIFY(!fixture.header().stopButton().isVisible());
    QCOMPARE(fixture.header().accessibleName(), fixture.header().text());
}

void RunHeaderTest::theKeyStopsTheRun()
{
    Fixture fixture;
    installStopRunKey(fixture.runner(), *fixture.page);
    TextView& text = fixture.page->output().textView();
    text.setFocus();
    QTest::keyClick(&text, Qt::Key_F5, Qt::ShiftModifier);
    fixture.run(u"quiet.sh"_s, loop);
    QTest::keyClick(&text, Qt::Key_F5, Qt::ShiftModifier);
    QTRY_VERIFY(!fixture.runner().isRunning());
    QCOMPARE(fixture.runner().lastExitCode(), SIGTERM);
}

void RunHeaderTest::theEndIsToldUntilTheNextRun()
{
    Fixture fixture;
    fixture.runToEnd(u"a.sh"_s, "exit 3\n");
    QVERIFY2(fixture.tells(u"a\\.sh ended with 3 after \\d+\\.\\d+ s"_s), qPrintable(fixture.header().text()));
    QVERIFY(fixture.header().isVisible());
    QVERIFY(!fixture.header().isTicking());
    fixture.run(u"b.sh"_s, loop);
    QVERIFY2(fixture.tells(u"Running b\\.sh … \\d+ s"_s), qPrintable(fixture.header().text()));
}

void RunHeaderTest::whatDidNotRunHasNoHeader()
{
    Fixture fixture;
    fixture.runToEnd(u"a.sh"_s, "true\n");
    fixture.run(u"a.sql"_s, "");
    QVERIFY(!fixture.header().isVisible());
    QCOMPARE(fixture.pageText(), u"No output"_s);
}

void RunHeaderTest::aPageMadeLaterTellsTheSame()
{
    Fixture fixture;
    fixture.runToEnd(u"a.sh"_s, "true\n");
    const QString text = fixture.header().text();
    fixture.page = fixture.makePage();
    QVERIFY(fixture.header().isVisible());
    QCOMPARE(fixture.header().text(), text);
    fixture.run(u"b.sh"_s, loop);
    fixture.page = fixture.makePage();
    QVERIFY(fixture.header().isTicking());
}

void RunHeaderTest::theTimeGoesOnOnlyWhileItIsSeen()
{
    Fixture fixture;
    fixture.run(u"a.sh"_s, loop);
    QVERIFY(fixture.header().isTicking());
    const QString text = fixture.header().text();
    QTRY_VERIFY(fixture.header().text() != text);
    fixture.page->hide();
    QVERIFY(!fixture.header().isTicking());
    fixture.page->show();
    QVERIFY(fixture.header().isTicking());
    fixture.runner().stop();
    QTRY_VERIFY(!fixture.runner().isRunning());
    QVERIFY(!fixture.header().isTicking());
}

void RunHeaderTest::aRunThatMissedItsInputIsSentToTheTerminal()
{
    Fixture fixture;
    fixture.runToEnd(u"a.sh"_s, "echo 'EOFError: EOF when reading a line' >&2; exit 1\n");
    QCOMPARE(fixture.header().advice(), u"A run reads no input here; use the terminal"_s);
    QVERIFY(fixture.header().accessibleName().endsWith(fixture.header().advice()));
    fixture.runToEnd(u"b.sh"_s, "exit 1\n");
    QCOMPARE(fixture.header().advice(), QString());
}

void RunHeaderTest::theKeyboardGoesToTheOutput()
{
    Fixture fixture;
    fixture.run(u"a.sh"_s, loop);
    fixture.page->setFocus();
    QVERIFY(fixture.page->output().textView().hasFocus());
    QTest::keyClick(&fixture.page->output().textView(), Qt::Key_Tab, Qt::ShiftModifier);
    QVERIFY(fixture.header().stopButton().hasFocus());
    QTest::keyClick(&fixture.header().stopButton(), Qt::Key_Space);
    QTRY_VERIFY(!fixture.runner().isRunning());
}

const kelm::test::Registered<RunHeaderTest> registered(kelm::test::Toolkit::widgets);

} // namespace run_header_test

#include "run_header_test.moc"
