#include "git/service/git_environment.h"
#include "git/service/git_service.h"
#include "platform/events/worker_pool.h"
#include "platform/process/environment.h"
#include "support/recording_process_runner.h"
#include "support/temporary_repository.h"
#include "support/test_program.h"

#include <QSignalSpy>
#include <QThread>
#include <QtTest>

#include <semaphore>

namespace git_service_process_test {

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace kelm;
using namespace kelm::test;

namespace {

const QStringList anyArgs{u"some"_s, u"command"_s};

} // namespace

/// How git is found, built, run and turned into a result.
class GitServiceProcessTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { useFixedGitEnvironment(); }
    void init();
    void cleanup();

    void findGitTakesTheFirstExecutable_data();
    void findGitTakesTheFirstExecutable();
    void processHasArgumentsFolderAndEnvironment();
    void newServiceIsIdle();
    void withoutARepositoryNothingRuns();
    void runGivesTheOutputOrNothing_data();
    void runGivesTheOutputOrNothing();
    void runProcessGivesAResult_data();
    void runProcessGivesAResult();
    void lastErrorIsWrittenLaterAndStays();
    void asyncRunIsBusyUntilItEnds();
    void firstOfTwoAsyncRunsToEndClearsBusy();
    void asyncRunUsesTheRepositoryOfItsCall();
    void serviceThatGoesBeforeTheRunIsReported();
    void serviceThatGoesDuringTheRunIsNotTouched();
    void asyncLaunchFailureLeavesLastErrorAlone();
    void waitingRunsLeaveRoomInTheThreadPool();
    void everyWriteIsSignalled();

private:
    std::shared_ptr<RecordingProcessRunner> runner_;
    std::unique_ptr<GitService> service_;
    std::unique_ptr<TemporaryRepository> repository_;

    /// A service with an open repository and a clean record.
    void openRepository();
    static void runQueue() { QCoreApplication::sendPostedEvents(); }
};

void GitServiceProcessTest::init()
{
    runner_ = std::make_shared<RecordingProcessRunner>();
    service_ = std::make_unique<GitService>(runner_);
}

void GitServiceProcessTest::cleanup()
{
    service_.reset();
    runner_.reset();
    runQueue();
}

void GitServiceProcessTest::openRepository()
{
    if (!repository_) {
        repository_ = std::make_unique<TemporaryRepository>();
    }
    QVERIFY(service_->open(repository_->url()));
    runQueue();
    runner_->takeCommands();
}

void GitServiceProcessTest::findGitTakesTheFirstExecutable_data()
{
    QTest::addColumn<QStringList>("executable");
    QTest::addColumn<QString>("found");
    const QString first = u"/usr/bin/git"_s;
    const QString second = u"/opt/homebrew/bin/git"_s;
    const QString third = u"/usr/local/bin/git"_s;
    QTest::newRow("all") << QStringList{first, second, third} << first;
    QTest::newRow("first and second") << QStringList{first, second} << first;
    QTest::newRow("second and third") << QStringList{third, second} << second;
    QTest::newRow("third") << QStringList{third} << third;
    QTest::newRow("none") << QStringList() << first;
    QTest::newRow("elsewhere") << QStringList{u"/bin/git"_s} << first;
}

void GitServiceProcessTest::findGitTakesTheFirstExecutable()
{
    QFETCH(QStringList, executable);
    QFETCH(QString, found);
    QStringList tested;
    const auto test = [&](const QString& path) {
        tested.append(path);
        return executable.contains(path);
    };
    QCOMPARE(GitService::findGit(test), found);
    const auto tests = tested.size();
    QVERIFY(tests > 0);
    // The answer is not kept.
    QCOMPARE(GitService::findGit(test), found);
    QCOMPARE(tested.size(), 2 * tests);
}

void GitServiceProcessTest::processHasArgumentsFolderAndEnvironment()
{
    const QStringList args{u"log"_s, u"a b"_s, u"'\"$"_s};
    const ProcessCommand process = GitService::makeProcess(args, u"/some/folder"_s);
    QCOMPARE(process, (ProcessCommand{.program = GitService::findGit(),
                                      .arguments = args,
                                      .workingDirectory = u"/some/folder"_s,
                                      .environment = gitEnvironment(args, applicationEnvironment())}));
    QVERIFY(!process.standardInput);
    QVERIFY(!process.ownGroup);
}

void GitServiceProcessTest::newServiceIsIdle()
{
    QVERIFY(!service_->isBusy());
    QVERIFY(!service_->lastError());
    QVERIFY(!service_->repoURL());
    QVERIFY(service_->branch().isEmpty());
    QCOMPARE(service_->ahead(), 0);
    QCOMPARE(service_->behind(), 0);
    QVERIFY(service_->status().isEmpty() && service_->branches().isEmpty() && service_->remotes().isEmpty() &&
            service_->stashes().isEmpty() && service_->tags().isEmpty());
    QVERIFY(runner_->takeCommands().isEmpty());
}

void GitServiceProcessTest::withoutARepositoryNothingRuns()
{
    QCOMPARE(service_->run(anyArgs), std::nullopt);
    QCOMPARE(service_->runOp(anyArgs), GitOpResult::failure(u"no repo open"_s));
    QSignalSpy busy(service_.get(), &GitService::isBusyChanged);
    std::optional<GitOpResult> result;
    service_->runAsync(anyArgs, [&](const GitOpResult& value) { result = value; });
    QCOMPARE(result, std::optional(GitOpResult::failure(u"no repo open"_s)));
    QCOMPARE(service_->applyPartialPatch(u"x"_s, false), GitOpResult::failure(u"no repo open"_s));
    runQueue();
    QCOMPARE(busy.count(), 0);
    QVERIFY(!service_->lastError());
    QVERIFY(runner_->takeCommands().isEmpty());
}

void GitServiceProcessTest::runGivesTheOutputOrNothing_data()
{
    QTest::addColumn<ProcessResult>("answer");
    QTest::addColumn<std::optional<QString>>("text");
    QTest::addColumn<std::optional<QString>>("lastError");
    using Text = std::optional<QString>;
    const auto row = [](const char* name, const ProcessResult& answer, const Text& text, const Text& lastError) {
        QTest::newRow(name) << answer << text << lastError;
    };
    row("success", ended(0, "out\n"), u"out\n"_s, {});
    row("success without output", ended(0), QString(u""_s), {});
    row("success with warnings", ended(0, "out", "warning: x"), u"out"_s, {});
    row("success, not UTF-8", ended(0, "a\xFF"), {}, {});
    row("failure with error", ended(128, "", "fatal: no\n"), {}, u"fatal: no\n"_s);
    row("failure with output only", ended(1, "nothing\n"), u"nothing\n"_s, {});
    row("failure with both", ended(1, "out", "err \n\n"), u"out"_s, u"err \n\n"_s);
    row("failure without a word", ended(128), {}, {});
    row("failure, error not UTF-8", ended(1, "out", "\xFF"), u"out"_s, {});
    row("failure, output not UTF-8", ended(1, "\xFF", "err"), {}, u"err"_s);
    row("killed", {.exit = {15, true}, .standardError = "bye"}, {}, u"bye"_s);
    row("launch failure", {.launchError = u"no git"_s}, {}, u"no git"_s);
}

void GitServiceProcessTest::runGivesTheOutputOrNothing()
{
    QFETCH(ProcessResult, answer);
    QFETCH(std::optional<QString>, text);
    QFETCH(std::optional<QString>, lastError);
    openRepository();
    runner_->setAnswer([answer](const ProcessCommand&) { return answer; });
    QCOMPARE(service_->run(anyArgs), text);
    QCOMPARE(runner_->takeCommands(), (QList{GitService::makeProcess(anyArgs, repository_->path())}));
    QVERIFY(!service_->lastError());
    runQueue();
    QCOMPARE(service_->lastError(), lastError);
}

void GitServiceProcessTest::runProcessGivesAResult_data()
{
    QTest::addColumn<ProcessResult>("answer");
    QTest::addColumn<std::optional<QString>>("message");
    QTest::addColumn<bool>("setsLastError");
    using Text = std::optional<QString>;
    const auto row = [](const char* name, const ProcessResult& answer, const Text& message, bool setsLastError = true) {
        QTest::newRow(name) << answer << message << setsLastError;
    };
    row("success", ended(0, "out", "warning"), {}, false);
    row("failure with error", ended(128, "", "fatal: no\n"), u"fatal: no\n"_s);
    row("failure with both", ended(1, "out", "err\n"), u"err\n"_s);
    row("failure with output only", ended(1, " out\n"), u" out\n"_s);
    row("failure without a word", ended(128), u"git exited 128"_s);
    row("failure, error not UTF-8", ended(1, "out", "\xFF"), u"out"_s);
    row("failure, nothing is UTF-8", ended(3, "\xFF", "\xFF"), u"git exited 3"_s);
    row("killed without a word", {.exit = {9, true}}, u"git exited 9"_s);
    row("launch failure", {.launchError = u"no git"_s}, u"no git"_s, false);
}

void GitServiceProcessTest::runProcessGivesAResult()
{
    QFETCH(ProcessResult, answer);
    QFETCH(std::optional<QString>, message);
    QFETCH(bool, setsLastError);
    openRepository();
    runner_->setAnswer([answer](const ProcessCommand&) { return answer; });
    const GitOpResult expected = message ? GitOpResult::failure(*message) : GitOpResult::success();
    const ProcessCommand process{.program = u"/x"_s, .workingDirectory = u"/elsewhere"_s};
    QCOMPARE(service_->runProcess(process), expected);
    QCOMPARE(runner_->takeCommands(), QList{process});
    QVERIFY(!service_->lastError());
    runQueue();
    QCOMPARE(service_->lastError(), setsLastError ? message : std::nullopt);

    service_->setLastError({});
    QCOMPARE(service_->runOp(anyArgs), expected);
    QCOMPARE(runner_->takeCommands(), (QList{GitService::makeProcess(anyArgs, repository_->path())}));
    runQueue();
    QCOMPARE(service_->lastError(), setsLastError ? message : std::nullopt);

    service_->setLastError({});
    std::optional<GitOpResult> result;
    service_->runAsync(anyArgs, [&](const GitOpResult& value) { result = value; });
    QTRY_COMPARE(result, std::optional(expected));
    QCOMPARE(runner_->takeCommands(), (QList{GitService::makeProcess(anyArgs, repository_->path())}));
    QCOMPARE(service_->lastError(), setsLastError ? message : std::nullopt);
}

void GitServiceProcessTest::lastErrorIsWrittenLaterAndStays()
{
    openRepository();
    runner_->setAnswer([](const ProcessCommand&) { return ended(1, "", "first\n"); });
    service_->runOp(anyArgs);
    QVERIFY(!service_->lastError());
    runQueue();
    QCOMPARE(service_->lastError(), u"first\n"_s);
    // Neither the start nor the end of an operation that works clears it.
    runner_->setAnswer({});
    service_->runOp(anyArgs);
    service_->run(anyArgs);
    runQueue();
    QCOMPARE(service_->lastError(), u"first\n"_s);
    runner_->setAnswer([](const ProcessCommand&) { return ended(1, "", "second"); });
    service_->run(anyArgs);
    runQueue();
    QCOMPARE(service_->lastError(), u"second"_s);
    service_->setLastError({});
    QVERIFY(!service_->lastError());
}

void GitServiceProcessTest::asyncRunIsBusyUntilItEnds()
{
    openRepository();
    QThread* ranOn = nullptr;
    runner_->setAnswer([&](const ProcessCommand&) {
        ranOn = QThread::currentThread();
        return ended(0);
    });
    QSignalSpy busy(service_.get(), &GitService::isBusyChanged);
    bool wasBusyAtTheEnd = true;
    QThread* calledOn = nullptr;
    service_->runAsync(anyArgs, [&](const GitOpResult& result) {
        QVERIFY(result.isSuccess());
        wasBusyAtTheEnd = service_->isBusy();
        calledOn = QThread::currentThread();
    });
    QVERIFY(service_->isBusy());
    QVERIFY(calledOn == nullptr);
    QTRY_VERIFY(calledOn != nullptr);
    QCOMPARE(calledOn, thread());
    QVERIFY(ranOn != thread());
    QVERIFY(!wasBusyAtTheEnd);
    QCOMPARE(busy.count(), 2);
}

void GitServiceProcessTest::firstOfTwoAsyncRunsToEndClearsBusy()
{
    openRepository();
    std::counting_semaphore<> release{0};
    runner_->setAnswer([&](const ProcessCommand& command) {
        if (command.arguments.front() == u"slow") {
            release.acquire();
        }
        return ended(0);
    });
    int done = 0;
    service_->runAsync({u"slow"_s}, [&](const GitOpResult&) { ++done; });
    service_->runAsync({u"quick"_s}, [&](const GitOpResult&) { ++done; });
    QTRY_COMPARE(done, 1);
    QVERIFY(!service_->isBusy());
    release.release();
    QTRY_COMPARE(done, 2);
    QVERIFY(!service_->isBusy());
}

void GitServiceProcessTest::asyncRunUsesTheRepositoryOfItsCall()
{
    openRepository();
    bool done = false;
    service_->runAsync(anyArgs, [&](const GitOpResult&) { done = true; });
    service_->clearState();
    QTRY_VERIFY(done);
    QCOMPARE(runner_->takeCommands().front().workingDirectory, repository_->path());
}

void GitServiceProcessTest::serviceThatGoesBeforeTheRunIsReported()
{
    openRepository();
    // All threads of the pool are taken, so that the run waits for one.
    WorkerPool& pool = commonWorkers();
    std::counting_semaphore<> release{0};
    for (int index = 0; index < pool.maxThreadCount(); ++index) {
        pool.start([&release] { release.acquire(); });
    }
    std::optional<GitOpResult> result;
    service_->runAsync(anyArgs, [&](const GitOpResult& value) { result = value; });
    service_.reset();
    release.release(pool.maxThreadCount());
    QTRY_COMPARE(result, std::optional(GitOpResult::failure(u"service deallocated"_s)));
    QVERIFY(runner_->takeCommands().isEmpty());
}

void GitServiceProcessTest::serviceThatGoesDuringTheRunIsNotTouched()
{
    openRepository();
    std::counting_semaphore<> started{0};
    std::counting_semaphore<> release{0};
    runner_->setAnswer([&](const ProcessCommand&) {
        started.release();
        release.acquire();
        return ended(1, "", "too late");
    });
    std::optional<GitOpResult> result;
    service_->fetch({}, false, [&](const GitOpResult& value) { result = value; });
    started.acquire();
    service_.reset();
    release.release();
    QTRY_COMPARE(result, std::optional(GitOpResult::failure(u"too late"_s)));
    // No refresh ran for a service that has gone.
    QCOMPARE(runner_->takeArguments(), (QList<QStringList>{{u"fetch"_s}}));
}

void GitServiceProcessTest::asyncLaunchFailureLeavesLastErrorAlone()
{
    openRepository();
    runner_->setAnswer([](const ProcessCommand&) { return ProcessResult{.launchError = u"no git"_s}; });
    bool done = false;
    service_->runAsync(anyArgs, [&](const GitOpResult& result) {
        QCOMPARE(result.message(), u"no git"_s);
        done = true;
    });
    QTRY_VERIFY(done);
    QVERIFY(!service_->lastError());
}

void GitServiceProcessTest::waitingRunsLeaveRoomInTheThreadPool()
{
    openRepository();
    WorkerPool& pool = commonWorkers();
    const int waiting = pool.maxThreadCount() + 2;
    std::counting_semaphore<> release{0};
    runner_->setAnswer([&](const ProcessCommand&) {
        release.acquire();
        return ended(0);
    });
    int done = 0;
    for (int index = 0; index < waiting; ++index) {
        service_->runAsync(anyArgs, [&](const GitOpResult&) { ++done; });
    }
    std::counting_semaphore<> other{0};
    pool.start([&other] { other.release(); });
    QVERIFY(other.try_acquire_for(20s));
    release.release(waiting);
    QTRY_COMPARE(done, waiting);
}

void GitServiceProcessTest::everyWriteIsSignalled()
{
    openRepository();
    QSignalSpy error(service_.get(), &GitService::lastErrorChanged);
    service_->setLastError(u"x"_s);
    service_->setLastError(u"x"_s);
    service_->setLastError({});
    QCOMPARE(error.count(), 3);
    const QMetaObject* type = service_->metaObject();
    QStringList observable;
    for (int index = type->propertyOffset(); index < type->propertyCount(); ++index) {
        QVERIFY(type->property(index).hasNotifySignal());
        observable.append(QString::fromLatin1(type->property(index).name()));
    }
    QCOMPARE(observable, (QStringList{u"branch"_s, u"status"_s, u"ahead"_s, u"behind"_s, u"isBusy"_s, u"lastError"_s,
                                      u"branches"_s, u"remotes"_s, u"stashes"_s, u"tags"_s}));
}

const kelm::test::Registered<GitServiceProcessTest> registered;

} // namespace git_service_process_test

#include "git_service_process_test.moc"
