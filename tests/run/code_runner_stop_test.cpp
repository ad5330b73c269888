#include "platform/process/process_table.h"
#include "run/code_runner.h"
#include "support/fake_interpreters.h"
#include "support/test_program.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <memory>

namespace code_runner_stop_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

/// A runner with interpreters of the test's own.
struct Fixture
{
    explicit Fixture(const QStringList& names = {u"python3"_s})
        : interpreters(names),
          runner(notifications,
                 ExecutableSearch({interpreters.folder()}, interpreters.path(u"no-which"_s), ProcessRunner::system()))
    {
        QObject::connect(&runner, &CodeRunner::failed, &runner,
                         [this](const RunFailure& failure) { failures.append(failure); });
    }

    QUrl file(const QString& name, const QByteArray& content)
    {
        QFile target(folder.filePath(name));
        if (!target.open(QIODevice::WriteOnly) || target.write(content) != content.size()) {
            qFatal("cannot write a file of the test");
        }
        return QUrl::fromLocalFile(target.fileName());
    }

    /// Runs a file until it has said `word`.
    void runUntil(const QString& word, const QUrl& url)
    {
        runner.run(url);
        QTRY_VERIFY(runner.output().contains(word));
    }

    QTemporaryDir folder;
    FakeInterpreters interpreters;
    NotificationCenter notifications;
    QList<RunFailure> failures;
    CodeRunner runner;
};

qsizetype processesOfGroup(qint64 group)
{
    const std::vector<ProcessEntry> table = processTable();
    return std::count_if(table.begin(), table.end(),
                         [group](const ProcessEntry& each) { return each.group == group && !each.hasEnded; });
}

} // namespace

class CodeRunnerStopTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aRunIsStopped_data();
    void aRunIsStopped();
    void allThatItStartedGoesToo();
    void nothingToStopIsNothing();
    void theNextRunIsFree();
    void whoListensIsToldOfEachField();
    void whoListensIsToldOfWhatIsNoRun();
    void aChildThatOutlivesTheRunnerIsForgotten();
    void theRecordTellsOfTheRun();
    void theRecordIsThatOfTheOutput();
    void aFailureIsTold_data();
    void aFailureIsTold();
    void aSnippetIsNamed();
    void missedInputIsNoted_data();
    void missedInputIsNoted();
};

void CodeRunnerStopTest::aRunIsStopped_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<int>("signal");
    QTest::newRow("endless loop") << QByteArray("echo ready; while :; do :; done") << SIGTERM;
    QTest::newRow("writes without end") << QByteArray("echo ready; exec yes") << SIGTERM;
    QTest::newRow("ignores it") << QByteArray("trap '' TERM; echo ready; while :; do :; done") << SIGKILL;
    QTest::newRow("stopped") << QByteArray("echo ready; kill -STOP $$") << SIGTERM;
}

void CodeRunnerStopTest::aRunIsStopped()
{
    QFETCH(QByteArray, script);
    QFETCH(int, signal);
    Fixture fixture;
    fixture.runUntil(u"ready"_s, fixture.file(u"loop.sh"_s, script));
    fixture.runner.stop();
    fixture.runner.stop();
    QVERIFY(fixture.runner.isRunning());
    QTRY_VERIFY(!fixture.runner.isRunning());
    QCOMPARE(fixture.runner.lastExitCode(), signal);
    QCOMPARE(fixture.runner.record()->exit, (ProcessExit{signal, true}));
    QVERIFY(fixture.runner.output().endsWith(u"\n\nProcess exited with code %1\n"_s.arg(signal)));
}

void CodeRunnerStopTest::allThatItStartedGoesToo()
{
    Fixture fixture;
    fixture.runUntil(u"ready"_s, fixture.file(u"a.sh"_s, "sleep 60 & (trap '' TERM; sleep 60; sleep 60) &\n"
                                                         "sleep 60 | { echo ready; cat; }\n"));
    const qint64 group = fixture.runner.process()->processId();
    QVERIFY(processesOfGroup(group) >= 4);
    fixture.runner.stop();
    QTRY_COMPARE(processesOfGroup(group), 0);
    QTRY_VERIFY(!fixture.runner.isRunning());
}

void CodeRunnerStopTest::nothingToStopIsNothing()
{
    Fixture fixture;
    fixture.runner.stop();
    fixture.runUntil(u"exited"_s, fixture.file(u"a.py"_s, "say\nx\n\n0"));
    fixture.runner.stop();
    QCOMPARE(fixture.runner.lastExitCode(), 0);
}

void CodeRunnerStopTest::theNextRunIsFree()
{
    Fixture fixture;
    fixture.runUntil(u"ready"_s, fixture.file(u"a.py"_s, "wait-with-child"));
    fixture.runner.stop();
    QTRY_VERIFY(!fixture.runner.isRunning());
    fixture.runUntil(u"hello"_s, fixture.file(u"b.py"_s, "say\nhello\n\n0"));
    QTRY_COMPARE(fixture.runner.lastExitCode(), 0);
}

void CodeRunnerStopTest::whoListensIsToldOfEachField()
{
    Fixture fixture;
    QList<bool> running;
    QStringList outputs;
    QList<int> codes;
    QStringList errors;
    QObject::connect(&fixture.runner, &CodeRunner::isRunningChanged, this,
                     [&] { running.append(fixture.runner.isRunning()); });
    QObject::connect(&fixture.runner, &CodeRunner::outputChanged, this,
                     [&] { outputs.append(fixture.runner.output()); });
    QObject::connect(&fixture.runner, &CodeRunner::lastExitCodeChanged, this,
                     [&] { codes.append(fixture.runner.lastExitCode().value_or(-1)); });
    QObject::connect(&fixture.runner, &CodeRunner::stderrBufferChanged, this,
                     [&] { errors.append(fixture.runner.stderrBuffer()); });
    const QUrl file = fixture.file(u"a.sh"_s, "echo bad >&2; echo good; exit 3");
    for (int run = 0; run < 2; ++run) {
        running.clear();
        outputs.clear();
        codes.clear();
        errors.clear();
        fixture.runner.run(file);
        QTRY_VERIFY(!fixture.runner.isRunning());
        QCOMPARE(running, (QList<bool>{true, false}));
        // It begins with the name, and ends with all that there is.
        QCOMPARE(outputs.first(), u"Running a.sh...\n"_s);
        QCOMPARE(outputs.last(), fixture.runner.output());
        QVERIFY(outputs.size() >= 4);
        QCOMPARE(codes.last(), 3);
        QCOMPARE(errors.last(), u"bad\n"_s);
    }
    QCOMPARE(errors.first(), QString());
}

void CodeRunnerStopTest::whoListensIsToldOfWhatIsNoRun()
{
    Fixture fixture;
    const QSignalSpy outputs(&fixture.runner, &CodeRunner::outputChanged);
    const QSignalSpy running(&fixture.runner, &CodeRunner::isRunningChanged);
    fixture.runner.run(fixture.file(u"a.what"_s, {}));
    QCOMPARE(fixture.runner.output(), u"Error: Unsupported file type '.what'"_s);
    QCOMPARE(outputs.count(), 1);
    QVERIFY(running.isEmpty());
}

void CodeRunnerStopTest::aChildThatOutlivesTheRunnerIsForgotten()
{
    const auto children = [] { return QCoreApplication::instance()->findChildren<ChildProcess*>().size(); };
    QCOMPARE(children(), 0);
    const QTemporaryDir folder;
    const QString sign = folder.filePath(u"go on"_s);
    {
        Fixture fixture;
        fixture.runUntil(u"ready"_s, fixture.file(u"a.sh"_s, "echo ready; until [ -e '" + sign.toUtf8() +
                                                                 "' ]; do sleep 0.01; done"));
        QCOMPARE(children(), 1);
    }
    QCOMPARE(children(), 1);
    QFile file(sign);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QTRY_COMPARE(children(), 0);
}

void CodeRunnerStopTest::theRecordTellsOfTheRun()
{
    Fixture fixture;
    QVERIFY(!fixture.runner.record());
    QSignalSpy changes(&fixture.runner, &CodeRunner::recordChanged);
    const auto before = std::chrono::steady_clock::now();
    fixture.runUntil(u"ready"_s, fixture.file(u"a.py"_s, "wait"));
    QCOMPARE(fixture.runner.record()->name, u"a.py"_s);
    QVERIFY(fixture.runner.record()->began >= before);
    QVERIFY(!fixture.runner.record()->exit);
    QVERIFY(!changes.isEmpty());
    changes.clear();
    ::kill(static_cast<pid_t>(fixture.runner.process()->processId()), SIGKILL);
    QTRY_VERIFY(!fixture.runner.isRunning());
    QCOMPARE(fixture.runner.record()->exit, (ProcessExit{SIGKILL, true}));
    QVERIFY(fixture.runner.record()->lasted <= std::chrono::steady_clock::now() - before);
    QVERIFY(!fixture.runner.record()->missedInput);
    QCOMPARE(changes.size(), 1);
}

void CodeRunnerStopTest::theRecordIsThatOfTheOutput()
{
    Fixture fixture;
    const QUrl file = fixture.file(u"a.py"_s, "say\nx\n\n0");
    for (const bool isRefused : {true, false}) {
        fixture.runUntil(u"exited"_s, file);
        QVERIFY(fixture.runner.record());
        if (isRefused) {
            fixture.runner.run(fixture.file(u"a.txt"_s, ""));
        } else {
            fixture.runner.setOutput(u"something else"_s);
        }
        QVERIFY(!fixture.runner.record());
    }
}

void CodeRunnerStopTest::aFailureIsTold_data()
{
    using Reason = RunFailure::Reason;
    QTest::addColumn<QString>("name");
    QTest::addColumn<RunFailure>("failure");
    QTest::newRow("extension") << u"a.SQL"_s << RunFailure{Reason::unknownExtension, u"a.SQL"_s, u"sql"_s};
    QTest::newRow("none") << u"Makefile"_s << RunFailure{Reason::unknownExtension, u"Makefile"_s, {}};
    QTest::newRow("no compiler") << u"a.rs"_s << RunFailure{Reason::missingProgram, u"a.rs"_s, u"rustc"_s};
    QTest::newRow("no interpreter") << u"a.go"_s << RunFailure{Reason::missingProgram, u"a.go"_s, u"go"_s};
    QTest::newRow("neither of two") << u"a.ts"_s << RunFailure{Reason::missingProgram, u"a.ts"_s, u"npx"_s};
}

void CodeRunnerStopTest::aFailureIsTold()
{
    QFETCH(QString, name);
    QFETCH(RunFailure, failure);
    if (QFile::exists(u"/usr/local/go/bin/go"_s) || QFile::exists(u"/usr/local/bin/npx"_s)) {
        QSKIP("A fallback exists here.");
    }
    Fixture fixture(QStringList{});
    fixture.runner.run(fixture.file(name, ""));
    QCOMPARE(fixture.failures, QList<RunFailure>{failure});
    QVERIFY(!fixture.runner.record());

    // A program that is there and cannot be started is another matter.
    QFile broken(fixture.interpreters.path(u"python3"_s));
    QVERIFY(broken.open(QIODevice::WriteOnly, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    broken.close();
    fixture.runner.run(fixture.file(u"a.py"_s, ""));
    QCOMPARE(fixture.failures.size(), 2);
    QCOMPARE(fixture.failures.back().reason, RunFailure::Reason::notStarted);
    QVERIFY(!fixture.runner.record());
}

void CodeRunnerStopTest::aSnippetIsNamed()
{
    Fixture fixture;
    fixture.runner.runCode(u"wait"_s, Language::python, {}, u"Untitled"_s);
    QCOMPARE(fixture.runner.record()->name, u"Untitled"_s);
    QVERIFY(fixture.runner.output().startsWith(u"Running temp_"_s));
    fixture.runner.stop();
    QTRY_VERIFY(!fixture.runner.isRunning());
    fixture.runner.runCode(u"say\nx\n\n0"_s, Language::python);
    QVERIFY(fixture.runner.record()->name.startsWith(u"temp_"_s));
    QTRY_VERIFY(!fixture.runner.isRunning());
}

void CodeRunnerStopTest::missedInputIsNoted_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<bool>("missed");
    QTest::newRow("end of input") << QByteArray("say\n\nEOFError: EOF when reading a line\n1") << true;
    QTest::newRow("it did not fail") << QByteArray("say\n\nEOFError: EOF when reading a line\n0") << false;
    QTest::newRow("said elsewhere") << QByteArray("say\nEOFError: EOF when reading a line\n\n1") << false;
    QTest::newRow("failed otherwise") << QByteArray("say\n\nValueError: no\n1") << false;
}

void CodeRunnerStopTest::missedInputIsNoted()
{
    QFETCH(QByteArray, script);
    QFETCH(bool, missed);
    Fixture fixture;
    fixture.runUntil(u"exited"_s, fixture.file(u"a.py"_s, script));
    QCOMPARE(fixture.runner.record()->missedInput, missed);
}

const kelm::test::Registered<CodeRunnerStopTest> registered(kelm::test::Toolkit::core);

} // namespace code_runner_stop_test

#include "code_runner_stop_test.moc"
