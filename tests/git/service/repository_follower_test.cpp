#include "git/service/repository_follower.h"
#include "support/recording_process_runner.h"
#include "support/temporary_repository.h"
#include "support/test_program.h"

#include <QSignalSpy>
#include <QtTest>

namespace repository_follower_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

namespace {

/// Runs git, and counts.
class CountingRunner final : public ProcessRunner
{
public:
    ProcessResult run(const ProcessCommand& command) override
    {
        ++count;
        return ProcessRunner::system().run(command);
    }

    std::atomic<int> count = 0;
};

/// A repository with a commit that somebody shows.
struct Followed
{
    explicit Followed(bool opens = true)
    {
        repository.write(u"a.txt"_s, "one\n");
        repository.commitAll(u"first"_s);
        if (opens) {
            open();
        }
        follower.setIsShownBy(viewer, true);
    }

    void open()
    {
        QVERIFY(git.open(repository.url()));
        QCoreApplication::processEvents();
        settle();
        runner->count = 0;
    }
    /// Waits for the end of what is being read, and of what waits for that.
    void settle()
    {
        do {
            scheduler.advance(RepositoryFollower::readDelay);
            QCoreApplication::processEvents();
        } while (!follower.isSettled());
    }
    QStringList changedPaths() const
    {
        QStringList paths;
        for (const GitFileStatus& file : git.status()) {
            paths.append(file.path);
        }
        return paths;
    }

    TemporaryRepository repository;
    std::shared_ptr<CountingRunner> runner = std::make_shared<CountingRunner>();
    ManualScheduler scheduler;
    GitService git{runner};
    RepositoryFollower follower{git, scheduler};
    QObject viewer;
};

/// Has time pass until something holds.
#define UNTIL(f, holds)                                                                                                \
    QTRY_VERIFY2_WITH_TIMEOUT(((f).scheduler.advance(RepositoryFollower::readDelay), (holds)), #holds, 20000)

} // namespace

/// Real repositories that others change.
class RepositoryFollowerTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { useFixedGitEnvironment(); }

    void whatOthersDoIsSeen_data();
    void whatOthersDoIsSeen();
    void whatIsToldIsRead();
    void nothingIsReadWithoutAChange();
    void readingIsNoChange();
    void manyChangesAreReadOnce();
    void aBusyRepositoryIsReadAllTheSame();
    void nobodyLooksNobodyReads();
    void aViewerThatIsGoneLooksNoMore();
    void nothingIsReadWhileACommandRuns();
    void whatACommandMadeOldIsReadAgain();
    void whatIsReadTooOldIsReadAgain();
    void aReadingThatIsBrokenOffIsDoneAgain();
    void aFailureSaysNothing();
    void aProjectIsOpened();
    void aProjectWithoutARepositoryClosesIt();
    void aProjectThatBecomesARepositoryIsOpened();
    void aProjectThatWasLeftIsNotOpened();
    void aProjectThatIsOpenedElsewhereIsNotReadAgain();
    void anotherRepositoryIsWatchedFromThenOn();
    void aRepositoryThatIsClosedIsLeftAtOnce();
};

void RepositoryFollowerTest::whatOthersDoIsSeen_data()
{
    using Words = QList<QStringList>;
    QTest::addColumn<Words>("commands");
    QTest::addColumn<QString>("seen");
    QTest::newRow("add") << Words{{u"add"_s, u"-A"_s}} << u"staged added"_s;
    QTest::newRow("commit") << Words{{u"add"_s, u"-A"_s}, {u"commit"_s, u"-qm"_s, u"x"_s}} << u"clean"_s;
    QTest::newRow("checkout") << Words{{u"checkout"_s, u"-qb"_s, u"side"_s}} << u"on side"_s;
    QTest::newRow("detach") << Words{{u"checkout"_s, u"-q"_s, u"--detach"_s}} << u"on HEAD"_s;
    QTest::newRow("branch") << Words{{u"branch"_s, u"side"_s}} << u"2 branches"_s;
    QTest::newRow("branch in a folder") << Words{{u"branch"_s, u"a/b/c"_s}} << u"2 branches"_s;
    QTest::newRow("packed") << Words{{u"branch"_s, u"side"_s}, {u"pack-refs"_s, u"--all"_s}} << u"2 branches"_s;
    QTest::newRow("tag") << Words{{u"tag"_s, u"v1"_s}} << u"1 tags"_s;
    QTest::newRow("stash") << Words{{u"stash"_s, u"-qu"_s}} << u"1 stashes"_s;
    QTest::newRow("remote") << Words{{u"remote"_s, u"add"_s, u"origin"_s, u"/nowhere"_s}} << u"1 remotes"_s;
}

void RepositoryFollowerTest::whatOthersDoIsSeen()
{
    using Words = QList<QStringList>;
    QFETCH(Words, commands);
    QFETCH(QString, seen);
    Followed f;
    f.repository.write(u"new"_s, "");
    for (const QStringList& command : commands) {
        f.repository.git(command);
    }
    const auto now = [&f] {
        const auto& status = f.git.status();
        return QStringList{status.isEmpty() ? u"clean"_s : QString(),
                           !status.isEmpty() && status.first().staged == GitFileChange::added ? u"staged added"_s
                                                                                              : QString(),
                           u"on "_s + f.git.branch(),
                           u"%1 branches"_s.arg(f.git.branches().size()),
                           u"%1 tags"_s.arg(f.git.tags().size()),
                           u"%1 stashes"_s.arg(f.git.stashes().size()),
                           u"%1 remotes"_s.arg(f.git.remotes().size())};
    };
    UNTIL(f, now().contains(seen));
}

void RepositoryFollowerTest::whatIsToldIsRead()
{
    Followed f;
    f.repository.write(u"a.txt"_s, "saved\n");
    f.follower.noteChange();
    QCOMPARE(f.runner->count, 0);
    UNTIL(f, f.changedPaths() == QStringList{u"a.txt"_s});
}

void RepositoryFollowerTest::nothingIsReadWithoutAChange()
{
    Followed f;
    f.settle();
    f.scheduler.advance(std::chrono::hours(1));
    QVERIFY(f.follower.isSettled());
    QCOMPARE(f.runner->count, 0);
}

void RepositoryFollowerTest::readingIsNoChange()
{
    Followed f;
    f.repository.write(u"a.txt"_s, "two\n");
    f.follower.noteChange();
    f.settle();
    QCOMPARE(f.changedPaths(), QStringList{u"a.txt"_s});
    const int once = f.runner->count;
    f.settle();
    QCOMPARE(f.runner->count, once);
}

void RepositoryFollowerTest::manyChangesAreReadOnce()
{
    Followed f;
    for (int i = 0; i < 100; ++i) {
        f.follower.noteChange();
    }
    f.settle();
    QCOMPARE(f.runner->count, 8);
}

void RepositoryFollowerTest::aBusyRepositoryIsReadAllTheSame()
{
    Followed f;
    f.follower.noteChange();
    f.scheduler.advance(RepositoryFollower::readDelay / 2);
    // What comes meanwhile does not put it off.
    f.follower.noteChange();
    f.scheduler.advance(RepositoryFollower::readDelay / 2);
    QTRY_COMPARE(f.runner->count, 8);
}

void RepositoryFollowerTest::nobodyLooksNobodyReads()
{
    Followed f;
    f.follower.setIsShownBy(f.viewer, false);
    f.repository.write(u"a.txt"_s, "two\n");
    f.follower.noteChange();
    f.settle();
    QCOMPARE(f.runner->count, 0);
    // Who looks again sees what has changed meanwhile.
    f.follower.setIsShownBy(f.viewer, true);
    UNTIL(f, f.changedPaths() == QStringList{u"a.txt"_s});
}

void RepositoryFollowerTest::aViewerThatIsGoneLooksNoMore()
{
    Followed f;
    f.follower.setIsShownBy(f.viewer, false);
    {
        QObject other;
        f.follower.setIsShownBy(other, true);
    }
    f.follower.noteChange();
    f.settle();
    QCOMPARE(f.runner->count, 0);
}

void RepositoryFollowerTest::nothingIsReadWhileACommandRuns()
{
    Followed f;
    f.repository.write(u"a.txt"_s, "two\n");
    f.git.fetch(std::nullopt, false);
    QVERIFY(f.git.isBusy());
    f.follower.noteChange();
    f.scheduler.advance(RepositoryFollower::readDelay);
    QVERIFY(f.follower.isSettled());
    QTRY_VERIFY_WITH_TIMEOUT(!f.git.isBusy(), 20000);
    UNTIL(f, f.changedPaths() == QStringList{u"a.txt"_s});
}

void RepositoryFollowerTest::whatACommandMadeOldIsReadAgain()
{
    Followed f;
    f.repository.write(u"a.txt"_s, "two\n");
    f.follower.noteChange();
    f.scheduler.advance(RepositoryFollower::readDelay);
    QVERIFY(!f.follower.isSettled());
    // While that is read, what it reads is staged.
    f.git.stageAll();
    QCOMPARE(f.git.status().first().staged, GitFileChange::modified);
    QStringList seen;
    connect(&f.git, &GitService::statusChanged, this,
            [&] { seen.append(f.git.status().first().staged ? u"staged"_s : u"not staged"_s); });
    f.settle();
    QVERIFY(!seen.contains(u"not staged"_s));
    QCOMPARE(f.git.status().first().staged, GitFileChange::modified);
}

void RepositoryFollowerTest::whatIsReadTooOldIsReadAgain()
{
    Followed f;
    f.repository.write(u"a.txt"_s, "two\n");
    f.follower.noteChange();
    f.scheduler.advance(RepositoryFollower::readDelay);
    QVERIFY(!f.follower.isSettled());
    // While that is read, a command runs that reads nothing afterwards.
    f.git.run({u"tag"_s, u"v1"_s});
    UNTIL(f, f.changedPaths() == QStringList{u"a.txt"_s});
    QCOMPARE(f.git.tags().size(), 1);
}

void RepositoryFollowerTest::aReadingThatIsBrokenOffIsDoneAgain()
{
    Followed f;
    f.repository.write(u"a.txt"_s, "two\n");
    f.follower.noteChange();
    f.scheduler.advance(RepositoryFollower::readDelay);
    QVERIFY(!f.follower.isSettled());
    // While that is read, the project is closed, and the repository is not.
    f.follower.openProject(std::nullopt);
    UNTIL(f, f.changedPaths() == QStringList{u"a.txt"_s});
}

void RepositoryFollowerTest::aFailureSaysNothing()
{
    Followed f;
    f.repository.write(u"b.txt"_s, "");
    f.follower.noteChange();
    UNTIL(f, f.changedPaths() == QStringList{u"b.txt"_s});
    f.git.setLastError(std::nullopt);
    f.repository.write(u".git/index"_s, "no index");
    f.settle();
    f.settle();
    QCOMPARE(f.changedPaths(), QStringList{u"b.txt"_s});
    QVERIFY(!f.git.lastError());
    QVERIFY(!f.git.lastFailure());
}

void RepositoryFollowerTest::aProjectIsOpened()
{
    Followed f(false);
    f.repository.write(u"deep/er/new"_s, "");
    f.follower.openProject(QUrl::fromLocalFile(f.repository.filePath(u"deep/er"_s)));
    QVERIFY(!f.git.repoURL());
    UNTIL(f, f.git.repoURL() == f.repository.url());
    QCOMPARE(f.git.branch(), u"main"_s);
    QCOMPARE(f.changedPaths(), QStringList{u"deep/"_s});
    // And followed.
    f.repository.git({u"add"_s, u"-A"_s});
    UNTIL(f, f.changedPaths() == QStringList{u"deep/er/new"_s});
}

void RepositoryFollowerTest::aProjectWithoutARepositoryClosesIt()
{
    Followed f;
    const QTemporaryDir folder;
    f.follower.openProject(QUrl::fromLocalFile(folder.path()));
    UNTIL(f, !f.git.repoURL());
    QCOMPARE(f.git.branch(), QString());
}

void RepositoryFollowerTest::aProjectThatBecomesARepositoryIsOpened()
{
    Followed f(false);
    const QTemporaryDir folder;
    f.follower.openProject(QUrl::fromLocalFile(folder.path()));
    f.settle();
    QVERIFY(!f.git.repoURL());
    f.repository.git({u"init"_s, u"-q"_s, folder.path()});
    f.follower.noteChange();
    UNTIL(f, f.git.repoURL() == QUrl::fromLocalFile(folder.path()));
}

void RepositoryFollowerTest::aProjectThatWasLeftIsNotOpened()
{
    TemporaryRepository other;
    for (const auto& next : {std::optional(other.url()), std::optional<QUrl>()}) {
        Followed f(false);
        QList<std::optional<QUrl>> opened;
        connect(&f.git, &GitService::branchChanged, this, [&] { opened.append(f.git.repoURL()); });
        f.follower.openProject(f.repository.url());
        QCoreApplication::sendPostedEvents();
        QVERIFY(!f.follower.isSettled());
        // While that is read.
        f.follower.openProject(next);
        f.settle();
        QCOMPARE(f.git.repoURL(), next);
        QVERIFY(!opened.contains(std::optional(f.repository.url())));
    }
}

void RepositoryFollowerTest::aProjectThatIsOpenedElsewhereIsNotReadAgain()
{
    Followed f(false);
    f.follower.openProject(f.repository.url());
    QVERIFY(f.git.open(f.repository.url()));
    const int once = f.runner->count;
    f.settle();
    QCOMPARE(f.runner->count, once);
}

void RepositoryFollowerTest::anotherRepositoryIsWatchedFromThenOn()
{
    Followed f;
    const TemporaryRepository other;
    QVERIFY(f.git.open(other.url()));
    QCoreApplication::processEvents();
    f.settle();
    other.write(u"x"_s, "");
    other.git({u"add"_s, u"-A"_s});
    UNTIL(f, f.changedPaths() == QStringList{u"x"_s});
    // What happens in the first is nobody's business any more.
    f.settle();
    f.runner->count = 0;
    f.repository.git({u"tag"_s, u"v1"_s});
    f.settle();
    QCOMPARE(f.runner->count, 0);
}

void RepositoryFollowerTest::aRepositoryThatIsClosedIsLeftAtOnce()
{
    Followed f;
    const TemporaryRepository other;
    QVERIFY(f.git.open(other.url()));
    // Where its files are is still being looked for.
    QVERIFY(!f.follower.isSettled());
    f.git.clearState();
    QVERIFY(f.follower.isSettled());
}

const kelm::test::Registered<RepositoryFollowerTest> registered;

} // namespace repository_follower_test

#include "repository_follower_test.moc"
