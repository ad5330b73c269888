#include "run/code_runner.h"
#include "support/fake_interpreters.h"
#include "support/forwarded_input.h"
#include "support/process_roles.h"
#include "support/roles.h"
#include "support/test_program.h"
#include "support/unprivileged.h"

#include <QDir>
#include <QEventLoop>
#include <QPointer>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <csignal>
#include <memory>

namespace code_runner_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

namespace {

/// A runner with interpreters of the test's own, and what was heard of it.
struct Fixture
{
    explicit Fixture(const QStringList& names = {u"python3"_s})
        : interpreters(names),
          runner(std::make_unique<CodeRunner>(
              notifications,
              ExecutableSearch({interpreters.folder()}, interpreters.path(u"no-which"_s), ProcessRunner::system())))
    {
        notifications.addObserver(&owner, notifications::codeOutput, [this](const Notification& notification) {
            posts.append(notification.object.toString());
            arePostsTexts = arePostsTexts && notification.object.metaType() == QMetaType::fromType<QString>();
        });
    }

    /// Writes a file in the folder of this fixture.
    QUrl file(const QString& name, const QByteArray& content)
    {
        QFile target(folder.filePath(name));
        if (!target.open(QIODevice::WriteOnly) || target.write(content) != content.size()) {
            qFatal("cannot write a file of the test");
        }
        return QUrl::fromLocalFile(target.fileName());
    }

    /// Runs the file and waits for its end; what the completion was given.
    std::optional<bool> runToEnd(const QUrl& url, int timeoutMs = 20000)
    {
        // A loop as the program's own: the waiting functions of the test library sleep between events.
        const auto result = std::make_shared<std::optional<bool>>();
        QEventLoop loop;
        QTimer::singleShot(timeoutMs, &loop, &QEventLoop::quit);
        runner->run(url, [result, loop = QPointer<QEventLoop>(&loop)](bool success) {
            *result = success;
            if (loop) {
                loop->quit();
            }
        });
        if (!*result) {
            loop.exec();
        }
        return *result;
    }

    QString postedText() const { return posts.join(QString()); }

    QTemporaryDir folder;
    FakeInterpreters interpreters;
    NotificationCenter notifications;
    std::unique_ptr<CodeRunner> runner;
    QObject owner;
    QStringList posts;
    bool arePostsTexts = true;
};

const QString endedWell = u"\n\nProcess exited with code 0\n"_s;

/// Puts another folder in the place of the one for temporary files.
class TemporaryFolder
{
public:
    explicit TemporaryFolder(const QString& path)
        : before_(qgetenv("TMPDIR")), wasSet_(qEnvironmentVariableIsSet("TMPDIR"))
    {
        qputenv("TMPDIR", QFile::encodeName(path));
    }
    ~TemporaryFolder() { wasSet_ ? qputenv("TMPDIR", before_) : qunsetenv("TMPDIR"); }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

private:
    QByteArray before_;
    bool wasSet_;
};

} // namespace

class CodeRunnerTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void newRunnerIsIdle();
    void outputHoldsHeaderOutputAndExitLine();
    void lastStepsComeInTheirOrder();
    void fieldsAreResetAtTheStart();
    void errorsAreMarkedOncePerChunk();
    void exitStatusIsTold_data();
    void exitStatusIsTold();
    void unknownExtensionIsRefused_data();
    void unknownExtensionIsRefused();
    void refusalKeepsTheLastRunsFields();
    void rustWithoutCompilerIsUnsupported();
    void rustGetsPlainArguments();
    void extensionIsReadInLowerCase();
    void secondRequestIsRefused();
    void programThatCannotBeStartedIsTold();
    void fallbackThatDoesNotExistIsTold();
    void folderWithoutPermissionIsTold();
    void fileNamesReachTheInterpreterAsTheyAre_data();
    void fileNamesReachTheInterpreterAsTheyAre();
    void childWorksInTheFolderOfTheFile();
    void environmentAndInputAreTheApplications();
    void multiByteCharactersArriveWhole();
    void chunkThatIsNotUtf8IsLeftOut();
    void runThatPrintsNothing();
    void runThatPrints200MB();
    void processLeftBehindDoesNotHoldBackTheEnd();
    void nextRunMayStartInTheCompletion();
    void completionIsCalledThoughTheRunnerIsGone();
    void processIsKeptUntilTheNextRun();

    void codeRunsFromATemporaryFile();
    void temporaryFileIsRemoved_data();
    void temporaryFileIsRemoved();
    void temporaryFileIsPrivate();
    void failureToWriteTheTemporaryFileIsTold();
    void codeIsWrittenUnitForUnit();
    void codeInALanguageWithoutRunner();

    void scriptNeedsNoExecuteBit();
    void realInterpreters_data();
    void realInterpreters();
    void pythonIsUnbuffered();
    void quittingDuringARunIsSwift();
};

void CodeRunnerTest::newRunnerIsIdle()
{
    NotificationCenter notifications;
    const CodeRunner runner(notifications, ExecutableSearch(ProcessRunner::system()));
    QCOMPARE(runner.isRunning(), false);
    QCOMPARE(runner.output(), QString());
    QCOMPARE(runner.stderrBuffer(), QString());
    QCOMPARE(runner.lastExitCode(), std::nullopt);
    QVERIFY(runner.process() == nullptr);
}

void CodeRunnerTest::outputHoldsHeaderOutputAndExitLine()
{
    Fixture fixture;
    const QUrl file = fixture.file(u"a.py"_s, "say\nhello\n\n0");
    QCOMPARE(fixture.runToEnd(file), true);
    QCOMPARE(fixture.runner->output(), u"Running a.py...\nhello"_s + endedWell);
    QCOMPARE(fixture.posts, (QStringList{u"hello"_s, endedWell}));
    QVERIFY(fixture.arePostsTexts);
    QCOMPARE(fixture.runner->stderrBuffer(), QString());
}

void CodeRunnerTest::lastStepsComeInTheirOrder()
{
    Fixture fixture;
    QStringList steps;
    CodeRunner& runner = *fixture.runner;
    fixture.notifications.addObserver(&fixture.owner, notifications::codeOutput, [&](const Notification& notification) {
        const QString text = notification.object.toString();
        // What is posted has been appended before.
        QVERIFY(runner.output().endsWith(text));
        steps.append(u"posted %1, running %2, code %3"_s.arg(text.trimmed())
                         .arg(runner.isRunning())
                         .arg(runner.lastExitCode().value_or(-1)));
    });
    runner.run(fixture.file(u"a.py"_s, "say\nout\n\n3"),
               [&](bool success) { steps.append(u"completed %1, running %2"_s.arg(success).arg(runner.isRunning())); });
    steps.append(u"running %1"_s.arg(runner.isRunning()));
    QTRY_COMPARE(steps.size(), 4);
    QCOMPARE(steps,
             (QStringList{u"running 1"_s, u"posted out, running 1, code -1"_s,
                          u"posted Process exited with code 3, running 0, code 3"_s, u"completed 0, running 0"_s}));
}

void CodeRunnerTest::fieldsAreResetAtTheStart()
{
    Fixture fixture;
    QCOMPARE(fixture.runToEnd(fixture.file(u"a.py"_s, "say\none\nbad\n2")), false);
    QCOMPARE(fixture.runner->stderrBuffer(), u"bad"_s);
    QCOMPARE(fixture.runner->lastExitCode(), 2);

    bool ended = false;
    fixture.runner->run(fixture.file(u"b.py"_s, "say\ntwo\n\n0"), [&](bool) { ended = true; });
    QVERIFY(fixture.runner->isRunning());
    QCOMPARE(fixture.runner->output(), u"Running b.py...\n"_s);
    QCOMPARE(fixture.runner->stderrBuffer(), QString());
    QCOMPARE(fixture.runner->lastExitCode(), std::nullopt);
    QTRY_VERIFY(ended);
    QCOMPARE(fixture.runner->output(), u"Running b.py...\ntwo"_s + endedWell);
}

void CodeRunnerTest::errorsAreMarkedOncePerChunk()
{
    Fixture fixture;
    // "one\ntwo\n" in one chunk, then "three".
    QCOMPARE(fixture.runToEnd(fixture.file(u"a.py"_s, "error-pieces\n6f6e650a74776f0a\n7468726565")), true);
    QCOMPARE(fixture.runner->output(), u"Running a.py...\n[ERROR] one\ntwo\n[ERROR] three"_s + endedWell);
    QCOMPARE(fixture.runner->stderrBuffer(), u"one\ntwo\nthree"_s);
    QCOMPARE(fixture.posts, (QStringList{u"[ERROR] one\ntwo\n"_s, u"[ERROR] three"_s, endedWell}));
}

void CodeRunnerTest::exitStatusIsTold_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<int>("status");
    QTest::newRow("success") << QByteArray("say\n\n\n0") << 0;
    QTest::newRow("3") << QByteArray("say\n\n\n3") << 3;
    QTest::newRow("255") << QByteArray("say\n\n\n255") << 255;
    QTest::newRow("killed") << QByteArray("signal\n9") << SIGKILL;
    QTest::newRow("terminated") << QByteArray("signal\n15") << SIGTERM;
}

void CodeRunnerTest::exitStatusIsTold()
{
    QFETCH(QByteArray, script);
    QFETCH(int, status);
    Fixture fixture;
    QCOMPARE(fixture.runToEnd(fixture.file(u"a.py"_s, script)), status == 0);
    QCOMPARE(fixture.runner->lastExitCode(), status);
    const QString exitLine = u"\n\nProcess exited with code %1\n"_s.arg(status);
    QCOMPARE(fixture.runner->output(), u"Running a.py...\n"_s + exitLine);
    QCOMPARE(fixture.posts, QStringList{exitLine});
}

void CodeRunnerTest::unknownExtensionIsRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("output");
    QTest::newRow("text") << u"a.txt"_s << u"Error: Unsupported file type '.txt'"_s;
    QTest::newRow("capitals are shown small") << u"A.SQL"_s << u"Error: Unsupported file type '.sql'"_s;
    QTest::newRow("none") << u"Makefile"_s << u"Error: Unsupported file type '.'"_s;
    QTest::newRow("hidden file") << u".py"_s << u"Error: Unsupported file type '.'"_s;
}

void CodeRunnerTest::unknownExtensionIsRefused()
{
    QFETCH(QString, name);
    QFETCH(QString, output);
    Fixture fixture;
    QList<bool> results;
    fixture.runner->run(fixture.file(name, "say\nx\n\n0"), [&](bool success) { results.append(success); });
    QCOMPARE(results, QList<bool>{false});
    QCOMPARE(fixture.runner->output(), output);
    QVERIFY(!fixture.runner->isRunning());
    QCoreApplication::processEvents();
    QVERIFY(fixture.posts.isEmpty());
}

void CodeRunnerTest::refusalKeepsTheLastRunsFields()
{
    Fixture fixture;
    (void)fixture.runToEnd(fixture.file(u"a.py"_s, "say\n\nbad\n4"));
    fixture.runner->run(fixture.file(u"a.txt"_s, ""));
    QCOMPARE(fixture.runner->output(), u"Error: Unsupported file type '.txt'"_s);
    QCOMPARE(fixture.runner->stderrBuffer(), u"bad"_s);
    QCOMPARE(fixture.runner->lastExitCode(), 4);
}

void CodeRunnerTest::rustWithoutCompilerIsUnsupported()
{
    Fixture fixture(QStringList{});
    QCOMPARE(fixture.runToEnd(fixture.file(u"a.rs"_s, "fn main() {}")), false);
    QCOMPARE(fixture.runner->output(), u"Error: Unsupported file type '.rs'"_s);
}

void CodeRunnerTest::rustGetsPlainArguments()
{
    Fixture fixture({u"rustc"_s});
    const QUrl file = fixture.file(u"a.rs"_s, "arguments");
    QCOMPARE(fixture.runToEnd(file), true);
    QCOMPARE(fixture.posts.first(),
             u"rustc\n--edition\n2021\n-o\n/tmp/rust_temp\n&&\n/tmp/rust_temp\n"_s + file.toLocalFile() + u'\n');
}

void CodeRunnerTest::extensionIsReadInLowerCase()
{
    Fixture fixture;
    QCOMPARE(fixture.runToEnd(fixture.file(u"A.PY"_s, "say\nhello\n\n0")), true);
    QCOMPARE(fixture.runner->output(), u"Running A.PY...\nhello"_s + endedWell);
}

void CodeRunnerTest::secondRequestIsRefused()
{
    Fixture fixture;
    QTemporaryDir temporary;
    const TemporaryFolder guard(temporary.path());
    bool ended = false;
    fixture.runner->run(fixture.file(u"a.py"_s, "wait"), [&](bool) { ended = true; });
    QTRY_COMPARE(fixture.posts, QStringList{u"ready"_s});
    const QString output = fixture.runner->output();
    const ChildProcess* process = fixture.runner->process();
    QSignalSpy changes(fixture.runner.get(), &CodeRunner::outputChanged);

    QList<bool> results;
    fixture.runner->run(fixture.file(u"b.py"_s, "say\nx\n\n0"), [&](bool success) { results.append(success); });
    QCOMPARE(results, QList<bool>{false});
    fixture.runner->run(fixture.file(u"b.txt"_s, ""), [&](bool success) { results.append(success); });
    QCOMPARE(results, (QList<bool>{false, false}));
    fixture.runner->runCode(u"print(1)"_s, Language::python, [&](bool success) { results.append(success); });
    QCOMPARE(results.size(), 2);
    QVERIFY(QDir(temporary.path()).isEmpty());
    QVERIFY(fixture.runner->isRunning());
    QCOMPARE(fixture.runner->output(), output);
    QCOMPARE(fixture.runner->process(), process);
    QCOMPARE(changes.size(), 0);

    ::kill(static_cast<pid_t>(process->processId()), SIGKILL);
    QTRY_VERIFY(ended);
    QCOMPARE(results.size(), 2);
    QCOMPARE(fixture.runner->lastExitCode(), SIGKILL);
}

void CodeRunnerTest::programThatCannotBeStartedIsTold()
{
    Fixture fixture(QStringList{});
    QFile broken(fixture.interpreters.path(u"python3"_s));
    QVERIFY(broken.open(QIODevice::WriteOnly));
    broken.write("this is no program");
    broken.close();
    QVERIFY(broken.setPermissions(QFile::ReadOwner | QFile::ExeOwner | QFile::ExeUser));

    QList<bool> results;
    fixture.runner->run(fixture.file(u"a.py"_s, ""), [&](bool success) {
        results.append(success);
        QVERIFY(!fixture.runner->isRunning());
    });
    QCOMPARE(results, QList<bool>{false});
    QVERIFY(!fixture.runner->isRunning());
    const QString start = u"Running a.py...\nError: "_s;
    QVERIFY2(fixture.runner->output().startsWith(start), qPrintable(fixture.runner->output()));
    QVERIFY(fixture.runner->output().size() > start.size());
    QVERIFY(!fixture.runner->output().contains(u"exited"_s));
    QCOMPARE(fixture.runner->lastExitCode(), std::nullopt);
    QVERIFY(fixture.posts.isEmpty());

    // The next run is not held back.
    QVERIFY(QFile::remove(broken.fileName()));
    fixture.interpreters.add(u"python3"_s);
    QCOMPARE(fixture.runToEnd(fixture.file(u"a.py"_s, "say\nx\n\n0")), true);
}

void CodeRunnerTest::fallbackThatDoesNotExistIsTold()
{
    if (QFile::exists(u"/usr/local/go/bin/go"_s)) {
        QSKIP("The fallback exists here.");
    }
    Fixture fixture(QStringList{});
    QCOMPARE(fixture.runToEnd(fixture.file(u"a.go"_s, "")), false);
    QVERIFY(fixture.runner->output().startsWith(u"Running a.go...\nError: "_s));
    QVERIFY(fixture.runner->output().contains(u"/usr/local/go/bin/go"_s));
    QVERIFY(fixture.posts.isEmpty());
}

void CodeRunnerTest::folderWithoutPermissionIsTold()
{
    Fixture fixture(QStringList{});
    const QUrl file = fixture.file(u"a.sh"_s, "echo hello");
    QVERIFY(QFile::setPermissions(fixture.folder.path(), QFile::Permissions()));
    std::optional<bool> result;
    {
        const Unprivileged user;
        result = fixture.runToEnd(file);
    }
    QVERIFY(QFile::setPermissions(fixture.folder.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QCOMPARE(result, false);
    QVERIFY2(fixture.runner->output().startsWith(u"Running a.sh...\nError: "_s), qPrintable(fixture.runner->output()));
    QVERIFY(!fixture.runner->isRunning());
}

void CodeRunnerTest::fileNamesReachTheInterpreterAsTheyAre_data()
{
    QTest::addColumn<QString>("name");
    for (const QString& name :
         {u"a b  c.py"_s, u"\"quoted\".py"_s, u"it's.py"_s, u"-c.py"_s, u"$HOME.py"_s, u"`id`.py"_s, u"a%20b.py"_s,
          u"#1?.py"_s, u"한글 😀.py"_s, u"two\nlines.py"_s, u"back\\slash.py"_s}) {
        QTest::newRow(qPrintable(name)) << name;
    }
}

void CodeRunnerTest::fileNamesReachTheInterpreterAsTheyAre()
{
    QFETCH(QString, name);
    Fixture fixture;
    const QUrl file = fixture.file(name, "arguments");
    QCOMPARE(fixture.runToEnd(file), true);
    QCOMPARE(fixture.runner->output(),
             u"Running "_s + name + u"...\npython3\n-u\n"_s + fixture.folder.filePath(name) + u'\n' + endedWell);
}

void CodeRunnerTest::childWorksInTheFolderOfTheFile()
{
    Fixture fixture;
    QCOMPARE(fixture.runToEnd(fixture.file(u"a.py"_s, "folder")), true);
    QCOMPARE(fixture.posts.first(), QFileInfo(fixture.folder.path()).canonicalFilePath());
}

void CodeRunnerTest::environmentAndInputAreTheApplications()
{
    Fixture fixture;
    qputenv("KELM_RUNNER_TEST", "as it is");
    QCOMPARE(fixture.runToEnd(fixture.file(u"a.py"_s, "environment\nKELM_RUNNER_TEST")), true);
    qunsetenv("KELM_RUNNER_TEST");
    QCOMPARE(fixture.posts.first(), u"as it is"_s);

    const ForwardedInput input("typed by the user\n");
    fixture.posts.clear();
    QCOMPARE(fixture.runToEnd(fixture.file(u"b.py"_s, "copy")), true);
    QCOMPARE(fixture.posts.first(), u"typed by the user\n"_s);
}

void CodeRunnerTest::multiByteCharactersArriveWhole()
{
    const QString text = u"é한😀\n"_s;
    QByteArray script = "pieces";
    const QByteArray bytes = text.toUtf8();
    for (qsizetype index = 0; index < bytes.size(); ++index) {
        script += '\n' + bytes.sliced(index, 1).toHex();
    }
    Fixture fixture;
    QCOMPARE(fixture.runToEnd(fixture.file(u"a.py"_s, script)), true);
    QCOMPARE(fixture.posts, (QStringList{u"é"_s, u"한"_s, u"😀"_s, u"\n"_s, endedWell}));
}

void CodeRunnerTest::chunkThatIsNotUtf8IsLeftOut()
{
    Fixture fixture;
    // "a", an invalid chunk with "lost" in it, "b", a character that is never ended, "c".
    QCOMPARE(fixture.runToEnd(fixture.file(u"a.py"_s, "pieces\n61\n6c6f7374ff\n62\ned95\n63")), true);
    QCOMPARE(fixture.runner->output(), u"Running a.py...\nabc"_s + endedWell);
    QCOMPARE(fixture.posts, (QStringList{u"a"_s, u"b"_s, u"c"_s, endedWell}));
}

void CodeRunnerTest::runThatPrintsNothing()
{
    Fixture fixture;
    QCOMPARE(fixture.runToEnd(fixture.file(u"a.py"_s, "say\n\n\n0")), true);
    QCOMPARE(fixture.runner->output(), u"Running a.py...\n"_s + endedWell);
    QCOMPARE(fixture.posts, QStringList{endedWell});
}

void CodeRunnerTest::runThatPrints200MB()
{
    Fixture fixture;
    // The posts are not kept here, so that the text is in memory once.
    fixture.notifications.removeObserver(&fixture.owner);
    qsizetype posted = 0;
    qsizetype longest = 0;
    fixture.notifications.addObserver(&fixture.owner, notifications::codeOutput, [&](const Notification& notification) {
        const qsizetype length = notification.object.toString().size();
        posted += length;
        longest = std::max(longest, length);
    });
    // The event loop goes on meanwhile: a timer of no delay is served between the chunks.
    int turns = 0;
    QTimer timer;
    connect(&timer, &QTimer::timeout, this, [&turns] { ++turns; });
    timer.start(0);
    QCOMPARE(fixture.runToEnd(fixture.file(u"a.py"_s, "flood\n200\n0"), 100000), true);
    constexpr qsizetype size = qsizetype(200) * 1024 * 1024;
    QCOMPARE(posted, size + endedWell.size());
    // The end of it is kept, behind a line that says so.
    const QString output = fixture.runner->output();
    QVERIFY2(output.startsWith(u"[The first 13"_s), qPrintable(output.left(60)));
    QVERIFY(output.endsWith(endedWell));
    QVERIFY(output.size() >= mostKeptUnits && output.size() <= mostKeptUnits + 3 * keptSlackUnits);
    QVERIFY(longest <= 65536);
    QVERIFY2(turns >= 1000, qPrintable(QString::number(turns)));
}

void CodeRunnerTest::processLeftBehindDoesNotHoldBackTheEnd()
{
    Fixture fixture;
    QCOMPARE(fixture.runToEnd(fixture.file(u"a.py"_s, "leave-behind")), true);
    QCOMPARE(fixture.posts, (QStringList{u"left"_s, endedWell}));
}

void CodeRunnerTest::nextRunMayStartInTheCompletion()
{
    Fixture fixture;
    const QUrl file = fixture.file(u"a.py"_s, "say\nx\n\n0");
    int runs = 0;
    const std::function<void(bool)> again = [&](bool) {
        if (++runs < 5) {
            fixture.runner->run(file, again);
        }
    };
    fixture.runner->run(file, again);
    QTRY_COMPARE(runs, 5);
    QCOMPARE(fixture.posts.size(), 10);
}

void CodeRunnerTest::completionIsCalledThoughTheRunnerIsGone()
{
    Fixture fixture;
    QTemporaryDir temporary;
    const TemporaryFolder guard(temporary.path());
    QList<bool> results;
    fixture.runner->runCode(u"wait"_s, Language::python, [&](bool success) { results.append(success); });
    QTRY_COMPARE(fixture.posts, QStringList{u"ready"_s});
    const auto process = static_cast<pid_t>(fixture.runner->process()->processId());
    fixture.runner.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(::kill(process, 0), 0);
    QVERIFY(results.isEmpty());
    ::kill(process, SIGKILL);
    QTRY_COMPARE(results, QList<bool>{false});
    QCOMPARE(fixture.posts, QStringList{u"ready"_s});
    QVERIFY(QDir(temporary.path()).isEmpty());
}

void CodeRunnerTest::processIsKeptUntilTheNextRun()
{
    Fixture fixture;
    (void)fixture.runToEnd(fixture.file(u"a.py"_s, "say\n\n\n0"));
    const QPointer<const ChildProcess> first = fixture.runner->process();
    QVERIFY(first);
    QVERIFY(!first->isRunning());
    QTest::qWait(0);
    QVERIFY(first);
    (void)fixture.runToEnd(fixture.file(u"b.py"_s, "say\n\n\n0"));
    QVERIFY(fixture.runner->process() != first);
    QTRY_VERIFY(!first);
}

void CodeRunnerTest::codeRunsFromATemporaryFile()
{
    Fixture fixture;
    QTemporaryDir temporary;
    const TemporaryFolder guard(temporary.path());
    std::optional<bool> result;
    fixture.runner->runCode(u"arguments"_s, Language::python, [&](bool success) { result = success; });
    QCOMPARE(QDir(temporary.path()).entryList(QDir::Files).size(), 1);
    QTRY_COMPARE(result, true);
    const QRegularExpression expected(
        u"^Running (temp_[0-9A-F]{8}(?:-[0-9A-F]{4}){3}-[0-9A-F]{12}\\.py)\\.\\.\\.\npython3\n-u\n(.*)/\\1\n\n\n"_s);
    const auto match = expected.match(fixture.runner->output());
    QVERIFY2(match.hasMatch(), qPrintable(fixture.runner->output()));
    QCOMPARE(match.captured(2), temporary.path());

    result.reset();
    fixture.runner->runCode(u"folder"_s, Language::python, [&](bool success) { result = success; });
    QTRY_COMPARE(result, true);
    QVERIFY(fixture.runner->output().contains(QFileInfo(temporary.path()).canonicalFilePath()));
}

void CodeRunnerTest::temporaryFileIsRemoved_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<bool>("canStart");
    QTest::newRow("after success") << u"say\n\n\n0"_s << true;
    QTest::newRow("after failure") << u"say\n\n\n1"_s << true;
    QTest::newRow("after a signal") << u"signal\n9"_s << true;
    QTest::newRow("after a failed launch") << u"say\n\n\n0"_s << false;
}

void CodeRunnerTest::temporaryFileIsRemoved()
{
    QFETCH(QString, code);
    QFETCH(bool, canStart);
    Fixture fixture(QStringList{});
    QTemporaryDir temporary;
    const TemporaryFolder guard(temporary.path());
    if (canStart) {
        fixture.interpreters.add(u"python3"_s);
    } else {
        QFile broken(fixture.interpreters.path(u"python3"_s));
        QVERIFY(broken.open(QIODevice::WriteOnly, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }
    std::optional<bool> wasEmpty;
    fixture.runner->runCode(code, Language::python, [&](bool) {
        wasEmpty = QDir(temporary.path()).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    });
    QTRY_VERIFY(wasEmpty.has_value());
    QCOMPARE(wasEmpty, true);
}

void CodeRunnerTest::temporaryFileIsPrivate()
{
    Fixture fixture;
    QTemporaryDir temporary;
    const TemporaryFolder guard(temporary.path());
    bool ended = false;
    fixture.runner->runCode(u"say\n\n\n0"_s, Language::python, [&](bool) { ended = true; });
    const QFileInfoList files = QDir(temporary.path()).entryInfoList(QDir::Files | QDir::Hidden);
    QCOMPARE(files.size(), 1);
    QVERIFY(!(files[0].permissions() &
              (QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther | QFile::ExeOther)));
    QTRY_VERIFY(ended);
}

void CodeRunnerTest::failureToWriteTheTemporaryFileIsTold()
{
    QTemporaryDir temporary;
    const TemporaryFolder guard(temporary.path());
    QVERIFY(QFile::setPermissions(temporary.path(), QFile::ReadOwner | QFile::ExeOwner));
    NotificationCenter notifications;
    CodeRunner runner(notifications, ExecutableSearch({}, u"/no-which"_s, ProcessRunner::system()));
    int posts = 0;
    notifications.addObserver(this, notifications::codeOutput, [&](const Notification&) { ++posts; });
    bool completed = false;
    {
        const Unprivileged user;
        runner.runCode(u"x"_s, Language::python, [&](bool) { completed = true; });
    }
    QVERIFY(QFile::setPermissions(temporary.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QVERIFY2(runner.output().startsWith(u"Error creating temp file: "_s + temporary.path()),
             qPrintable(runner.output()));
    QVERIFY(!runner.isRunning());
    QCoreApplication::processEvents();
    QVERIFY(!completed);
    QCOMPARE(posts, 0);
}

void CodeRunnerTest::codeIsWrittenUnitForUnit()
{
    Fixture fixture;
    QTemporaryDir temporary;
    const TemporaryFolder guard(temporary.path());
    const QString code = u"say\r\n\n한글 😀\u2028\t"_s;
    fixture.runner->runCode(code, Language::python);
    const QFileInfoList files = QDir(temporary.path()).entryInfoList(QDir::Files);
    QCOMPARE(files.size(), 1);
    QFile file(files[0].filePath());
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), code.toUtf8());
    QTRY_VERIFY(!fixture.runner->isRunning());
}

void CodeRunnerTest::codeInALanguageWithoutRunner()
{
    Fixture fixture;
    QTemporaryDir temporary;
    const TemporaryFolder guard(temporary.path());
    QList<bool> results;
    fixture.runner->runCode(u"select 1"_s, Language::sql, [&](bool success) { results.append(success); });
    QCOMPARE(results, QList<bool>{false});
    QCOMPARE(fixture.runner->output(), u"Error: Unsupported file type '.sql'"_s);
    QVERIFY(QDir(temporary.path()).isEmpty());
}

void CodeRunnerTest::scriptNeedsNoExecuteBit()
{
    if (!QFileInfo(u"/bin/bash"_s).isExecutable()) {
        QSKIP("There is no /bin/bash.");
    }
    Fixture fixture(QStringList{});
    const QUrl file = fixture.file(u"-n it's.sh"_s, "echo \"$0\"; exit 5");
    QVERIFY(QFile::setPermissions(file.toLocalFile(), QFile::ReadOwner | QFile::WriteOwner));
    QCOMPARE(fixture.runToEnd(file), false);
    QCOMPARE(fixture.posts, (QStringList{file.toLocalFile() + u'\n', u"\n\nProcess exited with code 5\n"_s}));
}

void CodeRunnerTest::realInterpreters_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("code");
    QTest::newRow("python") << u"python3"_s << u"a.py"_s << QByteArray("print('hello', 6 * 7)");
    QTest::newRow("node") << u"node"_s << u"a.js"_s << QByteArray("console.log('hello', 6 * 7)");
    QTest::newRow("bash") << u"bash"_s << u"a.bash"_s << QByteArray("echo hello $((6 * 7))");
    QTest::newRow("zsh") << u"zsh"_s << u"a.zsh"_s << QByteArray("echo hello $((6 * 7))");
    QTest::newRow("ruby") << u"ruby"_s << u"a.rb"_s << QByteArray("puts ['hello', 6 * 7].join(' ')");
    QTest::newRow("php") << u"php"_s << u"a.php"_s << QByteArray("<?php echo 'hello ', 6 * 7, \"\\n\";");
    QTest::newRow("go") << u"go"_s << u"a.go"_s
                        << QByteArray("package main\nimport \"fmt\"\nfunc main() { fmt.Println(\"hello\", 6*7) }\n");
}

void CodeRunnerTest::realInterpreters()
{
    QFETCH(QString, program);
    QFETCH(QString, name);
    QFETCH(QByteArray, code);
    Fixture fixture(QStringList{});
    fixture.runner = std::make_unique<CodeRunner>(fixture.notifications, ExecutableSearch(ProcessRunner::system()));
    if (!fixture.runner->findExecutable(program)) {
        QSKIP("This interpreter is not installed.");
    }
    QCOMPARE(fixture.runToEnd(fixture.file(name, code), 60000), true);
    QCOMPARE(fixture.runner->output(), u"Running "_s + name + u"...\nhello 42\n"_s + endedWell);
}

void CodeRunnerTest::pythonIsUnbuffered()
{
    Fixture fixture(QStringList{});
    fixture.runner = std::make_unique<CodeRunner>(fixture.notifications, ExecutableSearch(ProcessRunner::system()));
    if (!fixture.runner->findExecutable(u"python3"_s)) {
        QSKIP("There is no python3.");
    }
    const QUrl file = fixture.file(u"a.py"_s, "import os, sys, time\n"
                                              "print('waiting for', os.path.basename(sys.argv[0]))\n"
                                              "while not os.path.exists('go on'): time.sleep(0.01)\n"
                                              "raise ValueError('no')\n");
    std::optional<bool> result;
    fixture.runner->run(file, [&](bool success) { result = success; });
    // The line is there while the program still runs.
    QTRY_COMPARE_WITH_TIMEOUT(fixture.postedText(), u"waiting for a.py\n"_s, 20000);
    QVERIFY(fixture.runner->isRunning());
    (void)fixture.file(u"go on"_s, "");
    QTRY_COMPARE_WITH_TIMEOUT(result, false, 20000);
    QCOMPARE(fixture.runner->lastExitCode(), 1);
    QVERIFY(fixture.runner->stderrBuffer().startsWith(u"Traceback (most recent call last):\n"_s));
    QVERIFY(fixture.runner->stderrBuffer().endsWith(u"ValueError: no\n"_s));
    QVERIFY(!fixture.runner->stderrBuffer().contains(u"[ERROR]"_s));
    QVERIFY(fixture.runner->output().contains(u"[ERROR] Traceback"_s));
}

void CodeRunnerTest::quittingDuringARunIsSwift()
{
    Fixture fixture;
    const QUrl file = fixture.file(u"a.py"_s, "wait");
    QByteArray output;
    QCOMPARE(runRole(u"quit-while-running"_s, {fixture.interpreters.folder(), file.toLocalFile()}, &output), 0);
    // The child is left alone.
    const pid_t child = output.toInt();
    QVERIFY(child > 0);
    QCOMPARE(::kill(child, 0), 0);
    ::kill(child, SIGKILL);
}

/// An application that quits as soon as its run has written something; prints the number of the child.
static int quitWhileRunning(const QStringList& arguments)
{
    static NotificationCenter notifications;
    // As in the program, the runner outlives the application object.
    static CodeRunner runner(notifications, ExecutableSearch({arguments[0]}, u"/no-which"_s, ProcessRunner::system()));
    notifications.addObserver(&runner, notifications::codeOutput, [](const Notification&) {
        writeAll(1, std::to_string(runner.process()->processId()));
        QCoreApplication::quit();
    });
    runner.run(QUrl::fromLocalFile(arguments[1]));
    return QCoreApplication::exec();
}

const kelm::test::Registered<CodeRunnerTest> registered(kelm::test::Toolkit::core,
                                                        {{u"quit-while-running"_s, quitWhileRunning}});

} // namespace code_runner_test

#include "code_runner_test.moc"
