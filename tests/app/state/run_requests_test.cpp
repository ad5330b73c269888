#include "app/state/notices.h"
#include "run/code_runner.h"
#include "support/app_state_fixture.h"
#include "support/test_program.h"

#include <QtTest>

namespace run_requests_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

const QByteArray loop = "echo ready; while :; do :; done\n";

struct Fixture : AppStateFixture
{
    Fixture()
    {
        notificationCenter.addObserver(&owner, notifications::codeOutput, [this](const Notification& notification) {
            posted += notification.object.toString();
        });
        notificationCenter.addObserver(&owner, notifications::clearOutput, [this](const Notification&) {
            posted.clear();
            ++clears;
        });
    }
    ~Fixture()
    {
        state.codeRunner().stop();
        (void)QTest::qWaitFor([this] { return !state.codeRunner().isRunning(); }, kelm::test::patience);
    }

    CodeRunner& runner() const { return state.codeRunner(); }
    void openAndRun(const QString& name, const QByteArray& content)
    {
        state.openFile(write(name, content));
        state.runCurrentFile();
    }
    /// Runs an endless loop until it has begun.
    void runLoop()
    {
        openAndRun(u"loop.sh"_s, loop);
        QTRY_VERIFY(posted.contains(u"ready"_s));
    }
    QString notice() const
    {
        const Notice* const shown = state.notices().current();
        return shown != nullptr ? shown->text : QString();
    }

    QObject owner;
    QString posted;
    int clears = 0;
};

} // namespace

class RunRequestsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aRefusedRunSaysWhatIsInTheWay();
    void theSameFileIsRefusedInOtherWords();
    void stopAndRunRunsWhatWasAskedFor();
    void stopAndRunRunsASnippetAsItIsThen();
    void theLastRefusalIsTheOneThatCounts();
    void theOfferGoesWithTheRunInTheWay();
    void anotherRequestTakesThePlaceOfOneThatWaits();
    void aTextThatCannotRunIsToldAtOnce();
    void whyARunDoesNotBeginIsTold_data();
    void whyARunDoesNotBeginIsTold();
};

void RunRequestsTest::aRefusedRunSaysWhatIsInTheWay()
{
    Fixture fixture;
    fixture.runLoop();
    const QString output = fixture.runner().output();
    fixture.openAndRun(u"hello.sh"_s, "echo hello\n");
    QCOMPARE(fixture.notice(), u"loop.sh is still running, so hello.sh was not started."_s);
    QCOMPARE(fixture.state.notices().current()->offers.size(), std::size_t(1));
    QCOMPARE(fixture.state.notices().current()->offers.front().label, u"Stop and run"_s);
    QCOMPARE(fixture.runner().record()->name, u"loop.sh"_s);
    QCOMPARE(fixture.runner().output(), output);
}

void RunRequestsTest::theSameFileIsRefusedInOtherWords()
{
    Fixture fixture;
    fixture.runLoop();
    fixture.state.runCurrentFile();
    QCOMPARE(fixture.notice(), u"loop.sh is still running, so it was not started again."_s);
}

void RunRequestsTest::stopAndRunRunsWhatWasAskedFor()
{
    Fixture fixture;
    fixture.runLoop();
    fixture.openAndRun(u"hello.sh"_s, "echo hello\n");
    // What is in front by then does not matter.
    fixture.openTabs({u"prose"_s});
    fixture.state.setBottomPanelTab(BottomPanelTab::terminal);
    const int clears = fixture.clears;
    fixture.state.notices().accept(0);
    QVERIFY(fixture.notice().isEmpty());
    QTRY_COMPARE(fixture.runner().lastExitCode(), 0);
    QCOMPARE(fixture.runner().record()->name, u"hello.sh"_s);
    QCOMPARE(fixture.clears, clears + 1);
    QCOMPARE(fixture.posted, u"hello\n\n\nProcess exited with code 0\n"_s);
    QCOMPARE(fixture.state.bottomPanelTab(), BottomPanelTab::output);
}

void RunRequestsTest::stopAndRunRunsASnippetAsItIsThen()
{
    Fixture fixture;
    fixture.runLoop();
    fixture.state.openSnippet(u"echo one"_s, Language::shell, std::nullopt);
    const auto document = fixture.state.currentDocument();
    fixture.state.runCurrentFile();
    QCOMPARE(fixture.notice(), u"loop.sh is still running, so Untitled was not started."_s);
    document->setContent(u"echo two"_s);
    fixture.state.notices().accept(0);
    QTRY_COMPARE(fixture.posted, u"two\n\n\nProcess exited with code 0\n"_s);
    QCOMPARE(fixture.runner().record()->name, u"Untitled"_s);
}

void RunRequestsTest::theLastRefusalIsTheOneThatCounts()
{
    Fixture fixture;
    fixture.runLoop();
    fixture.openAndRun(u"a.sh"_s, "echo a\n");
    fixture.openAndRun(u"b.sh"_s, "echo b\n");
    QCOMPARE(fixture.notice(), u"loop.sh is still running, so b.sh was not started."_s);
    fixture.state.notices().accept(0);
    QVERIFY(fixture.notice().isEmpty());
    QTRY_COMPARE(fixture.posted, u"b\n\n\nProcess exited with code 0\n"_s);
}

void RunRequestsTest::theOfferGoesWithTheRunInTheWay()
{
    Fixture fixture;
    fixture.runLoop();
    fixture.openAndRun(u"a.sh"_s, "echo a\n");
    QVERIFY(!fixture.notice().isEmpty());
    fixture.runner().stop();
    QTRY_VERIFY(!fixture.runner().isRunning());
    QVERIFY(fixture.notice().isEmpty());
    QCoreApplication::processEvents();
    QVERIFY(!fixture.runner().isRunning());
}

void RunRequestsTest::anotherRequestTakesThePlaceOfOneThatWaits()
{
    Fixture fixture;
    fixture.runLoop();
    fixture.openAndRun(u"a.sh"_s, "echo a\n");
    fixture.state.notices().accept(0);
    // Not over yet.
    QVERIFY(fixture.runner().isRunning());
    fixture.openAndRun(u"b.sh"_s, "echo b\n");
    QTRY_VERIFY(!fixture.runner().isRunning() && fixture.runner().record()->name == u"b.sh");
    QVERIFY(fixture.notice().isEmpty());
}

void RunRequestsTest::aTextThatCannotRunIsToldAtOnce()
{
    Fixture fixture;
    fixture.runLoop();
    fixture.openTabs({u"prose"_s});
    fixture.state.runCurrentFile();
    QCOMPARE(fixture.posted, u"Error: language 'Plain Text' is not runnable."_s);
    QVERIFY(fixture.notice().isEmpty());
    QVERIFY(fixture.runner().isRunning());
    QVERIFY(fixture.runner().record());
}

void RunRequestsTest::whyARunDoesNotBeginIsTold_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("program");
    QTest::addColumn<QString>("text");
    QTest::newRow("extension") << u"a.sql"_s << QString() << u"a.sql cannot be run: nothing here runs .sql files."_s;
    QTest::newRow("none") << u"Makefile"_s << QString()
                          << u"Makefile cannot be run: its name has no extension that says how."_s;
    QTest::newRow("interpreter")
        << u"a.swift"_s << u"/usr/bin/swift"_s
        << u"a.swift needs swift, which was not found. It usually comes with the package swiftlang."_s;
}

void RunRequestsTest::whyARunDoesNotBeginIsTold()
{
    QFETCH(QString, name);
    QFETCH(QString, program);
    QFETCH(QString, text);
    if (!program.isEmpty() && QFile::exists(program)) {
        QSKIP("The program is installed here.");
    }
    Fixture fixture;
    fixture.openAndRun(name, "");
    QCOMPARE(fixture.notice(), text);
    QVERIFY(fixture.state.notices().current()->offers.empty());
    QCOMPARE(fixture.posted, QString());
}

const kelm::test::Registered<RunRequestsTest> registered(kelm::test::Toolkit::core);

} // namespace run_requests_test

#include "run_requests_test.moc"
