#include "platform/files/native_path.h"
#include "platform/process/environment.h"
#include "platform/process/process.h"
#include "support/process_roles.h"
#include "support/test_program.h"

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QtTest>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace process_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

class ProcessTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void resultHoldsWhatTheChildWroteAndItsStatus_data();
    void resultHoldsWhatTheChildWroteAndItsStatus();
    void aFloodOnBothOutputsDoesNotBlock();
    void launchFailureIsAText_data();
    void launchFailureIsAText();
    void childRunsInTheGivenFolder();
    void namesThatAreNotUtf8Arrive();
    void environmentIsInheritedUnchanged();
    void givenEnvironmentReplacesTheApplications();
    void bytesThatAreNoTextPassThroughTheEnvironment();
    void bytesOfAVariableAloneArrive();
    void ofTwoVariablesOfOneNameTheFirstIsSeen();
    void argumentsArriveAsGiven_data();
    void argumentsArriveAsGiven();
    void standardInputTextReachesTheChild_data();
    void standardInputTextReachesTheChild();
    void standardInputIsForwardedWhenNoneIsGiven();
    void childThatDoesNotTakeItsInputIsAnInputError();
    void childThatRefusesItsInputIsNotWaitedFor();
    void childThatLeavesASmallInputUnreadEndsAsUsual();
    void endBySignalIsReported();
    void endsAreToldThoughWhoeverStartedUsIgnoredThem();
    void processThatHoldsThePipesIsNotWaitedFor();
    void brokenPipesHaveTheirDefaultMeaningInTheChild();
    void aGroupCanBeToldToEndWhateverWasIgnored();
    void ownGroupIsMadeOnlyOnDemand();
    void noDescriptorIsLeftOpenOrInherited();
    void aLackOfDescriptorsIsALaunchFailure();
    void manyThreadsRunChildrenAtOnce();
};

void ProcessTest::resultHoldsWhatTheChildWroteAndItsStatus_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("error");
    QTest::addColumn<int>("status");
    QTest::newRow("silent success") << u""_s << u""_s << 0;
    QTest::newRow("output") << u"out"_s << u""_s << 0;
    QTest::newRow("both") << u"out\n"_s << u"err\n"_s << 0;
    QTest::newRow("failure with error") << u""_s << u"fatal: no\n"_s << 128;
    QTest::newRow("failure with output only") << u"nothing to commit"_s << u""_s << 1;
    QTest::newRow("silent failure") << u""_s << u""_s << 255;
}

void ProcessTest::resultHoldsWhatTheChildWroteAndItsStatus()
{
    QFETCH(QString, output);
    QFETCH(QString, error);
    QFETCH(int, status);
    const ProcessResult result =
        ProcessRunner::system().run(roleCommand({u"say"_s, output, error, QString::number(status)}));
    QVERIFY(!result.launchError);
    QVERIFY(!result.inputError);
    QCOMPARE(result.exit.status, status);
    QVERIFY(!result.exit.bySignal);
    QCOMPARE(result.exit.isSuccess(), status == 0);
    QCOMPARE(result.standardOutput, output.toUtf8());
    QCOMPARE(result.standardError, error.toUtf8());
}

void ProcessTest::aFloodOnBothOutputsDoesNotBlock()
{
    const ProcessResult result = ProcessRunner::system().run(roleCommand({u"flood"_s, u"100"_s, u"100"_s}));
    QVERIFY(result.exit.isSuccess());
    QCOMPARE(result.standardOutput.size(), 100 * 1024 * 1024);
    QCOMPARE(result.standardError.size(), 100 * 1024 * 1024);
}

void ProcessTest::launchFailureIsAText_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QStringList>("named");
    QTest::newRow("no such program") << u"/nowhere/git"_s << u""_s
                                     << QStringList{u"/nowhere/git"_s, qt_error_string(ENOENT)};
    QTest::newRow("not executable") << u"/etc/passwd"_s << u""_s
                                    << QStringList{u"/etc/passwd"_s, qt_error_string(EACCES)};
    QTest::newRow("a folder") << u"/etc"_s << u""_s << QStringList{u"/etc"_s, qt_error_string(EACCES)};
    QTest::newRow("no such working folder") << QCoreApplication::applicationFilePath() << u"/nowhere/at all"_s
                                            << QStringList{u"/nowhere/at all"_s, qt_error_string(ENOENT)};
    QTest::newRow("working folder is a file") << QCoreApplication::applicationFilePath() << u"/etc/passwd"_s
                                              << QStringList{u"/etc/passwd"_s, qt_error_string(ENOTDIR)};
    QTest::newRow("null in the folder") << QCoreApplication::applicationFilePath() << QString(QChar(0))
                                        << QStringList{qt_error_string(EINVAL)};
}

void ProcessTest::launchFailureIsAText()
{
    QFETCH(QString, program);
    QFETCH(QString, folder);
    QFETCH(QStringList, named);
    const ProcessResult result = ProcessRunner::system().run({.program = program, .workingDirectory = folder});
    QVERIFY(result.launchError.has_value());
    for (const QString& part : named) {
        QVERIFY2(result.launchError->contains(part), qPrintable(*result.launchError));
    }
}

void ProcessTest::childRunsInTheGivenFolder()
{
    const QTemporaryDir folder(QDir::tempPath() + u"/a b'\"한글-XXXXXX"_s);
    ProcessCommand command = roleCommand({u"folder"_s});
    command.workingDirectory = folder.path();
    QCOMPARE(QString::fromUtf8(ProcessRunner::system().run(command).standardOutput),
             QFileInfo(folder.path()).canonicalFilePath());
    command.workingDirectory.clear();
    QCOMPARE(QString::fromUtf8(ProcessRunner::system().run(command).standardOutput),
             QFileInfo(QDir::currentPath()).canonicalFilePath());
}

void ProcessTest::namesThatAreNotUtf8Arrive()
{
    const QTemporaryDir outer;
    const QByteArray folder = QFile::encodeName(QFileInfo(outer.path()).canonicalFilePath()) + "/caf\xe9";
    QCOMPARE(::mkdir(folder.constData(), 0700), 0);
    const QByteArray program = folder + "/\xff";
    QCOMPARE(::symlink("/bin/sh", program.constData()), 0);
    ProcessCommand command{
        .program = pathOfNative(program),
        .arguments = {u"-c"_s, u"printf '%s|%s|' \"$1\" \"$GIVEN\"; pwd -P"_s, u"sh"_s, pathOfNative("a\xe9 b")},
        .workingDirectory = pathOfNative(folder)};
    const ProcessResult result = ProcessRunner::system().run(command);
    QVERIFY2(!result.launchError, qPrintable(result.launchError.value_or(QString())));
    QCOMPARE(result.standardOutput, "a\xe9 b||" + folder + '\n');
    command.environment = {{u"GIVEN"_s, u"값"_s}};
    QCOMPARE(ProcessRunner::system().run(command).standardOutput, "a\xe9 b|값|" + folder + '\n');
    command.environment = {{u"GIVEN"_s, pathOfNative("\xe9\xff")}};
    QCOMPARE(ProcessRunner::system().run(command).standardOutput, "a\xe9 b|\xe9\xff|" + folder + '\n');
    // What the application has keeps its bytes.
    qputenv("GIVEN", "caf\xe9");
    const auto restore = qScopeGuard([] { qunsetenv("GIVEN"); });
    command.environment = applicationEnvironment();
    QCOMPARE(ProcessRunner::system().run(command).standardOutput, "a\xe9 b|caf\xe9|" + folder + '\n');
    QCOMPARE(::unlink(program.constData()), 0);
    QVERIFY(ProcessRunner::system().run(command).launchError.has_value());
    QCOMPARE(::rmdir(folder.constData()), 0);
    QVERIFY(ProcessRunner::system().run(command).launchError.has_value());
}

void ProcessTest::environmentIsInheritedUnchanged()
{
    qputenv("KELM_PROCESS_TEST", "a=b 한");
    QCOMPARE(ProcessRunner::system().run(roleCommand({u"environment"_s, u"KELM_PROCESS_TEST"_s})).standardOutput,
             QByteArray("a=b 한"));
    qunsetenv("KELM_PROCESS_TEST");
    QCOMPARE(ProcessRunner::system().run(roleCommand({u"environment"_s, u"KELM_PROCESS_TEST"_s})).standardOutput,
             QByteArray("(unset)"));
    QCOMPARE(ProcessRunner::system().run(roleCommand({u"environment"_s, u"PATH"_s})).standardOutput, qgetenv("PATH"));
}

void ProcessTest::givenEnvironmentReplacesTheApplications()
{
    ProcessCommand command = roleCommand({u"environment"_s, u"KELM_ONLY"_s});
    command.environment = QMap<QString, QString>{{u"KELM_ONLY"_s, u"b c"_s}};
    QCOMPARE(ProcessRunner::system().run(command).standardOutput, QByteArray("b c"));
    command.arguments.back() = u"PATH"_s;
    QCOMPARE(ProcessRunner::system().run(command).standardOutput, QByteArray("(unset)"));
}

void ProcessTest::bytesThatAreNoTextPassThroughTheEnvironment()
{
    qputenv("KELM_PROCESS_TEST", "caf\xe9");
    ProcessCommand command = roleCommand({u"environment"_s, u"KELM_PROCESS_TEST"_s});
    command.environment = applicationEnvironment();
    QCOMPARE(ProcessRunner::system().run(command).standardOutput, QByteArray("caf\xe9"));
    command.environment->insert(u"KELM_PROCESS_TEST"_s, u"caf\u00e9"_s);
    QCOMPARE(ProcessRunner::system().run(command).standardOutput, QByteArray("caf\xc3\xa9"));
    qunsetenv("KELM_PROCESS_TEST");
}

void ProcessTest::bytesOfAVariableAloneArrive()
{
    ProcessCommand command{.program = u"/bin/sh"_s, .arguments = {u"-c"_s, u"printf %s \"$GIVEN\""_s}};
    command.environment = {{u"GIVEN"_s, pathOfNative("caf\xe9")}};
    QCOMPARE(ProcessRunner::system().run(command).standardOutput, QByteArray("caf\xe9"));
}

void ProcessTest::ofTwoVariablesOfOneNameTheFirstIsSeen()
{
    std::array<char*, 3> entries{const_cast<char*>("KELM_TWICE=first"), const_cast<char*>("KELM_TWICE=last"), nullptr};
    char** const before = std::exchange(environ, entries.data());
    const auto restore = qScopeGuard([before] { environ = before; });
    QCOMPARE(applicationEnvironment(), (QMap<QString, QString>{{u"KELM_TWICE"_s, u"first"_s}}));
    ProcessCommand command = roleCommand({u"environment"_s, u"KELM_TWICE"_s});
    command.environment = applicationEnvironment();
    QCOMPARE(ProcessRunner::system().run(command).standardOutput, QByteArray("first"));
}

void ProcessTest::argumentsArriveAsGiven_data()
{
    QTest::addColumn<QString>("argument");
    QTest::newRow("empty") << u""_s;
    QTest::newRow("blanks and quotes") << u" a \"b\" 'c' $HOME `x` * \\ "_s;
    QTest::newRow("newline and tab") << u"a\nb\tc"_s;
    QTest::newRow("Korean") << u"또는"_s;
    QTest::newRow("leading dash") << u"--help"_s;
    QTest::newRow("long") << QString(100000, u'x');
}

void ProcessTest::argumentsArriveAsGiven()
{
    QFETCH(QString, argument);
    QCOMPARE(ProcessRunner::system().run(roleCommand({u"say"_s, argument, u""_s, u"0"_s})).standardOutput,
             argument.toUtf8());
}

void ProcessTest::standardInputTextReachesTheChild_data()
{
    QTest::addColumn<QByteArray>("input");
    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("short") << QByteArray("abc\n");
    QTest::newRow("with null") << QByteArray("a\0b", 3);
    // Far more than a pipe holds in either direction: the child writes back while it is written to.
    QTest::newRow("20 MiB") << QByteArray(20 * 1024 * 1024, 'y');
}

void ProcessTest::standardInputTextReachesTheChild()
{
    QFETCH(QByteArray, input);
    ProcessCommand command = roleCommand({u"copy"_s});
    command.standardInput = input;
    const ProcessResult result = ProcessRunner::system().run(command);
    QVERIFY(!result.inputError);
    QVERIFY(result.exit.isSuccess());
    QVERIFY(result.standardOutput == input);
}

void ProcessTest::standardInputIsForwardedWhenNoneIsGiven()
{
    QTemporaryFile file;
    QVERIFY(file.open());
    file.write("typed by the user");
    file.flush();
    const int saved = ::dup(STDIN_FILENO);
    const int given = ::open(QFile::encodeName(file.fileName()).constData(), O_RDONLY);
    ::dup2(given, STDIN_FILENO);
    const ProcessResult result = ProcessRunner::system().run(roleCommand({u"copy"_s}));
    ::dup2(saved, STDIN_FILENO);
    ::close(given);
    ::close(saved);
    QCOMPARE(result.standardOutput, QByteArray("typed by the user"));
}

void ProcessTest::childThatDoesNotTakeItsInputIsAnInputError()
{
    ProcessCommand command = roleCommand({u"ignore-input"_s, u"3"_s});
    command.standardInput = QByteArray(1024 * 1024, 'x');
    const ProcessResult result = ProcessRunner::system().run(command);
    QCOMPARE(result.inputError, qt_error_string(EPIPE));
    // The next child collects the one that was not waited for.
    QVERIFY(ProcessRunner::system().run(roleCommand({u"say"_s, u""_s, u""_s, u"0"_s})).exit.isSuccess());
}

void ProcessTest::childThatRefusesItsInputIsNotWaitedFor()
{
    ProcessCommand command = roleCommand({u"close-input"_s});
    command.standardInput = QByteArray(10'000'000, 'x');
    QElapsedTimer timer;
    timer.start();
    QVERIFY(ProcessRunner::system().run(command).inputError);
    // The child stays for half a minute.
    QVERIFY(timer.elapsed() < 25000);
}

void ProcessTest::childThatLeavesASmallInputUnreadEndsAsUsual()
{
    ProcessCommand command = roleCommand({u"leave-behind"_s});
    command.standardInput = QByteArray("fits into the pipe");
    const ProcessResult result = ProcessRunner::system().run(command);
    QVERIFY(!result.inputError);
    QCOMPARE(result.standardOutput, QByteArray("left"));
}

void ProcessTest::endBySignalIsReported()
{
    const ProcessResult result = ProcessRunner::system().run(roleCommand({u"signal"_s, QString::number(SIGTERM)}));
    QCOMPARE(result.exit, (ProcessExit{SIGTERM, true}));
    QVERIFY(!result.exit.isSuccess());
}

void ProcessTest::endsAreToldThoughWhoeverStartedUsIgnoredThem()
{
    const auto before = ::signal(SIGCHLD, SIG_IGN);
    const auto restore = qScopeGuard([before] { ::signal(SIGCHLD, before); });
    const ProcessResult failure = ProcessRunner::system().run(roleCommand({u"say"_s, u""_s, u""_s, u"3"_s}));
    QCOMPARE(failure.exit, (ProcessExit{3, false}));
    const ProcessResult signal = ProcessRunner::system().run(roleCommand({u"signal"_s, QString::number(SIGTERM)}));
    QCOMPARE(signal.exit, (ProcessExit{SIGTERM, true}));
}

void ProcessTest::processThatHoldsThePipesIsNotWaitedFor()
{
    QElapsedTimer timer;
    timer.start();
    const ProcessResult result = ProcessRunner::system().run(roleCommand({u"leave-behind"_s}));
    QVERIFY(result.exit.isSuccess());
    QCOMPARE(result.standardOutput, QByteArray("left"));
    // The process that is left behind stays for half a minute.
    QVERIFY(timer.elapsed() < 25000);
}

void ProcessTest::brokenPipesHaveTheirDefaultMeaningInTheChild()
{
    const auto before = ::signal(SIGPIPE, SIG_IGN);
    const auto restore = qScopeGuard([before] { ::signal(SIGPIPE, before); });
    QCOMPARE(ProcessRunner::system().run(roleCommand({u"broken-pipes"_s})).standardOutput, QByteArray("default"));
}

void ProcessTest::aGroupCanBeToldToEndWhateverWasIgnored()
{
    ProcessCommand command = roleCommand({u"ends"_s});
    for (const auto meaning : {SIG_IGN, SIG_DFL, +[](int) {}}) {
        std::vector<std::pair<int, void (*)(int)>> before;
        for (const int number : {SIGHUP, SIGINT, SIGTERM}) {
            before.emplace_back(number, ::signal(number, meaning));
        }
        const auto restore = qScopeGuard([&before] {
            for (const auto& [number, handler] : before) {
                ::signal(number, handler);
            }
        });
        command.ownGroup = true;
        QCOMPARE(ProcessRunner::system().run(command).standardOutput, QByteArray("default default default "));
        // One that shares the application's group shares what it is deaf to.
        command.ownGroup = false;
        QCOMPARE(ProcessRunner::system().run(command).standardOutput,
                 QByteArray(meaning == SIG_IGN ? "ignored " : "default ").repeated(3));
    }
}

void ProcessTest::ownGroupIsMadeOnlyOnDemand()
{
    ProcessCommand command = roleCommand({u"group"_s});
    QCOMPARE(ProcessRunner::system().run(command).standardOutput, QByteArray("shared"));
    command.ownGroup = true;
    QCOMPARE(ProcessRunner::system().run(command).standardOutput, QByteArray("own"));
}

void ProcessTest::noDescriptorIsLeftOpenOrInherited()
{
    const auto openDescriptors = [] {
        return QDir(u"/proc/self/fd"_s).entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System).size();
    };
    ProcessRunner::system().run(roleCommand({u"say"_s, u""_s, u""_s, u"0"_s}));
    const auto before = openDescriptors();
    for (int turn = 0; turn < 20; ++turn) {
        ProcessRunner::system().run(roleCommand({u"say"_s, u"a"_s, u"b"_s, u"1"_s}));
        ProcessRunner::system().run({.program = u"/nowhere"_s});
    }
    QCOMPARE(openDescriptors(), before);
}

void ProcessTest::aLackOfDescriptorsIsALaunchFailure()
{
    int highest = 0;
    for (const QString& name : QDir(u"/proc/self/fd"_s).entryList(QDir::AllEntries | QDir::System)) {
        highest = std::max(highest, name.toInt());
    }
    rlimit before = {};
    ::getrlimit(RLIMIT_NOFILE, &before);
    const auto restore = qScopeGuard([before] { ::setrlimit(RLIMIT_NOFILE, &before); });
    int failures = 0;
    int successes = 0;
    const int most = highest + 12;
    for (int limit = 3; limit <= most; ++limit) {
        const rlimit few = {static_cast<rlim_t>(limit), before.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &few);
        const ProcessResult result = ProcessRunner::system().run(roleCommand({u"say"_s, u"a"_s, u""_s, u"7"_s}));
        failures += result.launchError ? 1 : 0;
        successes += !result.launchError && result.exit.status == 7 && result.standardOutput == "a" ? 1 : 0;
    }
    QVERIFY(failures > 0);
    QVERIFY(successes > 0);
    QCOMPARE(failures + successes, most - 2);
}

void ProcessTest::manyThreadsRunChildrenAtOnce()
{
    QThreadPool pool;
    pool.setMaxThreadCount(8);
    std::atomic<int> right = 0;
    for (int number = 0; number < 64; ++number) {
        pool.start([number, &right] {
            const QString text = QString::number(number);
            const ProcessResult result = ProcessRunner::system().run(roleCommand({u"say"_s, text, text, text}));
            right += result.standardOutput == text.toUtf8() && result.standardError == text.toUtf8() &&
                     result.exit.status == number;
        });
    }
    QVERIFY(pool.waitForDone(60000));
    QCOMPARE(right.load(), 64);
}

const kelm::test::Registered<ProcessTest> registered;

} // namespace process_test

#include "process_test.moc"
