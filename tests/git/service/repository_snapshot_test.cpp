#include "git/service/git_service.h"
#include "git/service/refresh_commands.h"
#include "git/service/repository_snapshot.h"
#include "support/recording_process_runner.h"
#include "support/temporary_repository.h"
#include "support/test_program.h"

#include <QSignalSpy>
#include <QtTest>

namespace repository_snapshot_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

/// A snapshot that is read elsewhere beside one that is refreshed.
class RepositorySnapshotTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { useFixedGitEnvironment(); }

    void itRunsWhatARefreshRuns();
    void itSaysWhatARefreshSays();
    void whatIsTheSameIsItself();
    void onlyWhatIsAnotherIsSignalled();
    void anotherRepositoryIsSignalledWhole();
    void anUnreadableStatusIsNoSnapshot();
    void aStoppedReadingIsNone();
    void aReadingWritesNothing();
    void ageGrowsWithAllThatMakesAReadingOld();
};

namespace {

const std::atomic<bool> goesOn = false;

/// A repository with one of everything.
std::unique_ptr<TemporaryRepository> fullRepository()
{
    auto repository = std::make_unique<TemporaryRepository>();
    repository->write(u"a.txt"_s, "one\n");
    repository->commitAll(u"first"_s);
    repository->git({u"remote"_s, u"add"_s, u"origin"_s, u"/nowhere"_s});
    repository->git({u"update-ref"_s, u"refs/remotes/origin/main"_s, u"HEAD"_s});
    repository->git({u"branch"_s, u"-q"_s, u"-u"_s, u"origin/main"_s});
    repository->commitAll(u"second"_s);
    repository->git({u"tag"_s, u"-a"_s, u"v1"_s, u"-m"_s, u"words"_s});
    repository->write(u"a.txt"_s, "stashed\n");
    repository->git({u"stash"_s, u"-q"_s});
    repository->write(u"a.txt"_s, "changed\n");
    repository->write(u"new"_s, "");
    return repository;
}

} // namespace

void RepositorySnapshotTest::itRunsWhatARefreshRuns()
{
    const TemporaryRepository repository;
    auto runner = std::make_shared<RecordingProcessRunner>();
    GitService service(runner);
    QVERIFY(service.open(repository.url()));
    const QList<ProcessCommand> refreshed = runner->takeCommands();
    QVERIFY(readSnapshot(*runner, repository.path(), {}, goesOn));
    const QList<ProcessCommand> read = runner->takeCommands();
    QCOMPARE(read.size(), refreshed.size());
    for (qsizetype i = 0; i < read.size(); ++i) {
        QCOMPARE(read[i].arguments, refreshed[i].arguments);
        QCOMPARE(read[i].program, refreshed[i].program);
        QCOMPARE(read[i].workingDirectory, refreshed[i].workingDirectory);
        QCOMPARE(read[i].environment->value(u"GIT_OPTIONAL_LOCKS"_s), u"0"_s);
    }
}

void RepositorySnapshotTest::itSaysWhatARefreshSays()
{
    const auto repository = fullRepository();
    GitService refreshed(ProcessRunner::sharedSystem());
    QVERIFY(refreshed.open(repository->url()));
    GitService taken(ProcessRunner::sharedSystem());
    const auto snapshot = readSnapshot(ProcessRunner::system(), repository->path(), {}, goesOn);
    QVERIFY(snapshot);
    taken.take(repository->url(), *snapshot);

    QVERIFY(taken.repoURL() == refreshed.repoURL());
    QCOMPARE(taken.branch(), u"main"_s);
    QCOMPARE(taken.head(), (GitHead{.branch = u"main"_s}));
    QCOMPARE(taken.ahead(), refreshed.ahead());
    QCOMPARE(taken.ahead(), 1);
    QCOMPARE(taken.behind(), 0);
    QCOMPARE(taken.stashes(), refreshed.stashes());
    QCOMPARE(taken.stashes().size(), 1);
    QCOMPARE(taken.status().size(), 2);
    QCOMPARE(taken.status()[0].path, refreshed.status()[0].path);
    QCOMPARE(taken.branches().size(), 2);
    QCOMPARE(taken.branches()[0].upstream, u"origin/main"_s);
    QCOMPARE(taken.remotes().first().url, u"/nowhere"_s);
    QCOMPARE(taken.tags().first().annotation, u"words"_s);
}

void RepositorySnapshotTest::whatIsTheSameIsItself()
{
    const auto repository = fullRepository();
    GitService service(ProcessRunner::sharedSystem());
    QVERIFY(service.open(repository->url()));
    const RepositorySnapshot before = service.snapshot();
    auto now = readSnapshot(ProcessRunner::system(), repository->path(), before, goesOn);
    QVERIFY(isSameList(now->status, before.status) && isSameList(now->branches, before.branches));
    QVERIFY(isSameList(now->remotes, before.remotes) && isSameList(now->stashes, before.stashes));
    QVERIFY(isSameList(now->tags, before.tags));

    repository->git({u"tag"_s, u"-f"_s, u"v1"_s});
    now = readSnapshot(ProcessRunner::system(), repository->path(), before, goesOn);
    QVERIFY(!isSameList(now->tags, before.tags));
    QVERIFY(isSameList(now->status, before.status));
}

void RepositorySnapshotTest::onlyWhatIsAnotherIsSignalled()
{
    const auto repository = fullRepository();
    GitService service(ProcessRunner::sharedSystem());
    QVERIFY(service.open(repository->url()));
    QStringList signalled;
    const auto note = [&](auto signal, const QString& name) {
        connect(&service, signal, this, [&signalled, name] { signalled.append(name); });
    };
    note(&GitService::branchChanged, u"branch"_s);
    note(&GitService::statusChanged, u"status"_s);
    note(&GitService::aheadChanged, u"ahead"_s);
    note(&GitService::behindChanged, u"behind"_s);
    note(&GitService::branchesChanged, u"branches"_s);
    note(&GitService::remotesChanged, u"remotes"_s);
    note(&GitService::stashesChanged, u"stashes"_s);
    note(&GitService::tagsChanged, u"tags"_s);
    note(&GitService::lastErrorChanged, u"lastError"_s);
    const auto takeNow = [&] {
        signalled.clear();
        service.take(repository->url(),
                     *readSnapshot(ProcessRunner::system(), repository->path(), service.snapshot(), goesOn));
        return signalled;
    };
    QCOMPARE(takeNow(), QStringList());
    repository->write(u"another"_s, "");
    QCOMPARE(takeNow(), QStringList{u"status"_s});
    repository->commitAll(u"third"_s);
    QCOMPARE(takeNow(), (QStringList{u"status"_s, u"ahead"_s}));
    repository->git({u"checkout"_s, u"-q"_s, u"--detach"_s});
    QCOMPARE(takeNow(), (QStringList{u"branch"_s, u"ahead"_s, u"branches"_s}));
    // The word that git has for it stays the same.
    repository->commitAll(u"fourth"_s);
    QCOMPARE(takeNow(), QStringList{u"branch"_s});
    QCOMPARE(takeNow(), QStringList());
}

void RepositorySnapshotTest::anotherRepositoryIsSignalledWhole()
{
    const TemporaryRepository one;
    const TemporaryRepository other;
    GitService service(ProcessRunner::sharedSystem());
    QVERIFY(service.open(one.url()));
    QSignalSpy branch(&service, &GitService::branchChanged);
    QSignalSpy status(&service, &GitService::statusChanged);
    const quint64 age = service.age();
    service.take(other.url(), *readSnapshot(ProcessRunner::system(), other.path(), {}, goesOn));
    QVERIFY(service.repoURL() == other.url());
    QCOMPARE(branch.count(), 1);
    QCOMPARE(status.count(), 1);
    QVERIFY(service.age() != age);
}

void RepositorySnapshotTest::anUnreadableStatusIsNoSnapshot()
{
    const auto repository = fullRepository();
    repository->write(u".git/index"_s, "no index");
    QVERIFY(!readSnapshot(ProcessRunner::system(), repository->path(), {}, goesOn));
    QVERIFY(!readSnapshot(ProcessRunner::system(), u"/nowhere/at/all"_s, {}, goesOn));
}

void RepositorySnapshotTest::aStoppedReadingIsNone()
{
    const TemporaryRepository repository;
    RecordingProcessRunner runner;
    std::atomic<bool> stop = false;
    runner.setAnswer([&stop](const ProcessCommand&) {
        stop = true;
        return ended(0);
    });
    QVERIFY(!readSnapshot(runner, repository.path(), {}, stop));
    QCOMPARE(runner.takeArguments(), QList<QStringList>{refreshCommands::branch()});
}

void RepositorySnapshotTest::aReadingWritesNothing()
{
    const auto repository = fullRepository();
    // The index knows nothing of this file's new time, which a status would write into it.
    QFile file(repository->filePath(u"a.txt"_s));
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.setFileTime(QDateTime::fromSecsSinceEpoch(1'000'000'000), QFileDevice::FileModificationTime));
    file.close();
    repository->git({u"add"_s, u"a.txt"_s});
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.setFileTime(QDateTime::fromSecsSinceEpoch(1'000'000'001), QFileDevice::FileModificationTime));
    file.close();
    const QByteArray before = repository->read(u".git/index"_s);
    QVERIFY(readSnapshot(ProcessRunner::system(), repository->path(), {}, goesOn));
    QCOMPARE(repository->read(u".git/index"_s), before);
    repository->git({u"status"_s});
    QVERIFY(repository->read(u".git/index"_s) != before);
}

void RepositorySnapshotTest::ageGrowsWithAllThatMakesAReadingOld()
{
    const TemporaryRepository repository;
    const TemporaryRepository other;
    GitService service(std::make_shared<RecordingProcessRunner>());
    QStringList stuck;
    quint64 before = service.age();
    const auto look = [&](const QString& what) {
        if (service.age() <= before) {
            stuck.append(what);
        }
        before = service.age();
    };
    const auto step = [&](const QString& what, const std::function<void()>& act) {
        act();
        look(what);
    };
    step(u"opened"_s, [&] { service.open(repository.url()); });
    step(u"another taken"_s, [&] { service.take(other.url(), {}); });
    step(u"asked"_s, [&] { service.run({u"status"_s}); });
    step(u"operated"_s, [&] { service.runOp({u"tag"_s, u"v1"_s}); });
    step(u"patched"_s, [&] { service.applyPartialPatch(u"no patch"_s, false); });
    step(u"begun"_s, [&] { service.runAsync({u"fetch"_s}, [](const GitOpResult&) {}); });
    QTRY_VERIFY(!service.isBusy());
    look(u"ended"_s);
    step(u"closed"_s, [&] { service.clearState(); });
    QCOMPARE(stuck, QStringList());
    // What is read of the same repository makes nothing old.
    service.open(repository.url());
    before = service.age();
    service.take(repository.url(), service.snapshot());
    QCOMPARE(service.age(), before);
}

const kelm::test::Registered<RepositorySnapshotTest> registered;

} // namespace repository_snapshot_test

#include "repository_snapshot_test.moc"
