#include "git/service/git_service.h"
#include "support/temporary_repository.h"
#include "support/test_program.h"

#include <QSignalSpy>
#include <QtTest>

namespace git_service_failures_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

/// Which failures of real repositories a person is told of, and for how long.
class GitServiceFailuresTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { useFixedGitEnvironment(); }
    void init();

    void statesAreNoFailures_data();
    void statesAreNoFailures();
    void theCommandsWordsOutlastTheRefresh_data();
    void theCommandsWordsOutlastTheRefresh();
    void aRefreshThatCannotReadIsTold();
    void dismissingTakesBoth();
    void theSameAgainIsToldAgain();
    void conflictsTakeTheirWordsWithThem_data();
    void conflictsTakeTheirWordsWithThem();
    void otherWordsOutlastAConflict();
    void discardingANewFileKeepsIt();
    void aRefusedCommitIsKnown();
    void aMadeCommitForgetsTheRefusal();

private:
    std::unique_ptr<TemporaryRepository> repository_;
    std::unique_ptr<GitService> git_;

    void open()
    {
        git_->open(repository_->url());
        takeErrors();
    }
    /// The words of a failure are written from the queue.
    static void takeErrors() { QCoreApplication::processEvents(); }
    QString told()
    {
        takeErrors();
        return git_->lastFailure() ? git_->lastFailure()->sentence() : QString();
    }
};

void GitServiceFailuresTest::init()
{
    repository_ = std::make_unique<TemporaryRepository>();
    repository_->write(u"a.txt"_s, "one\n");
    repository_->commitAll(u"first"_s);
    git_ = std::make_unique<GitService>(ProcessRunner::sharedSystem());
}

void GitServiceFailuresTest::statesAreNoFailures_data()
{
    QTest::addColumn<QString>("state");
    QTest::newRow("no upstream") << u"no upstream"_s;
    QTest::newRow("no commit") << u"no commit"_s;
    QTest::newRow("detached") << u"detached"_s;
    QTest::newRow("upstream gone") << u"upstream gone"_s;
}

void GitServiceFailuresTest::statesAreNoFailures()
{
    QFETCH(QString, state);
    if (state == u"no commit") {
        repository_ = std::make_unique<TemporaryRepository>();
    } else if (state == u"detached") {
        repository_->git({u"checkout"_s, u"-q"_s, u"--detach"_s});
    } else if (state == u"upstream gone") {
        repository_->git({u"branch"_s, u"gone"_s});
        repository_->git({u"branch"_s, u"-q"_s, u"-u"_s, u"gone"_s});
        repository_->git({u"branch"_s, u"-qD"_s, u"gone"_s});
    }
    open();
    git_->log(10);
    takeErrors();
    // The refresh has learned something, and says so to whoever asks it.
    QVERIFY(git_->lastError());
    QVERIFY2(!git_->lastFailure(), qPrintable(told()));
}

void GitServiceFailuresTest::theCommandsWordsOutlastTheRefresh_data()
{
    using Run = std::function<void(GitService&)>;
    QTest::addColumn<Run>("run");
    QTest::addColumn<QString>("told");
    QTest::newRow("commit that cannot be signed") << Run([](GitService& git) { git.commit(u"second"_s); })
                                                  << u"cannot run /nowhere/gpg: No such file or directory"_s;
    QTest::newRow("merge") << Run([](GitService& git) { git.mergeBranch(u"gone"_s); })
                           << u"merge: gone - not something we can merge"_s;
    QTest::newRow("fetch") << Run([](GitService& git) {
        git.fetch(std::nullopt, false);
        QTRY_VERIFY_WITH_TIMEOUT(!git.isBusy(), 20000);
    }) << u"'/nowhere/at/all' does not appear to be a git repository"_s;
    QTest::newRow("pull") << Run([](GitService& git) {
        git.pull(true);
        QTRY_VERIFY_WITH_TIMEOUT(!git.isBusy(), 20000);
    }) << u"cannot pull with rebase: Your index contains uncommitted changes."_s;
}

void GitServiceFailuresTest::theCommandsWordsOutlastTheRefresh()
{
    using Run = std::function<void(GitService&)>;
    QFETCH(Run, run);
    repository_->git({u"config"_s, u"commit.gpgSign"_s, u"true"_s});
    repository_->git({u"config"_s, u"gpg.program"_s, u"/nowhere/gpg"_s});
    repository_->git({u"remote"_s, u"add"_s, u"origin"_s, u"/nowhere/at/all"_s});
    repository_->write(u"a.txt"_s, "two\n");
    repository_->git({u"add"_s, u"-A"_s});
    open();
    run(*git_);
    QTEST(told(), "told");
    // The refresh behind it had the last word, for whoever asks for that.
    QVERIFY(git_->lastError()->contains(u"no upstream configured"_s));
    // Another refresh changes nothing.
    git_->refreshAll();
    QTEST(told(), "told");
}

void GitServiceFailuresTest::aRefreshThatCannotReadIsTold()
{
    open();
    repository_->write(u".git/index"_s, "no index");
    git_->refreshStatus();
    QVERIFY2(told().contains(u"index"_s), qPrintable(told()));
    // What was asked for goes before it.
    git_->checkoutBranch(u"gone"_s);
    const QString words = told();
    QVERIFY(git_->lastFailure()->kind == GitErrorKind::operation);
    git_->refreshStatus();
    QCOMPARE(told(), words);
}

void GitServiceFailuresTest::dismissingTakesBoth()
{
    open();
    git_->checkoutBranch(u"gone"_s);
    QVERIFY(!told().isEmpty());
    QSignalSpy failure(git_.get(), &GitService::lastFailureChanged);
    git_->setLastError(std::nullopt);
    QVERIFY(!git_->lastFailure() && !git_->lastError());
    QCOMPARE(failure.count(), 1);
    git_->setLastError(u"words"_s);
    QCOMPARE(told(), u"words"_s);
    QCOMPARE(git_->lastError(), u"words"_s);
}

void GitServiceFailuresTest::theSameAgainIsToldAgain()
{
    open();
    QSignalSpy failure(git_.get(), &GitService::lastFailureChanged);
    git_->checkoutBranch(u"gone"_s);
    git_->checkoutBranch(u"gone"_s);
    takeErrors();
    QCOMPARE(failure.count(), 2);
}

void GitServiceFailuresTest::conflictsTakeTheirWordsWithThem_data()
{
    using Run = std::function<void(GitService&, const TemporaryRepository&)>;
    QTest::addColumn<Run>("end");
    QTest::newRow("aborted") << Run([](GitService& git, const TemporaryRepository&) { git.abortMerge(); });
    QTest::newRow("resolved") << Run([](GitService& git, const TemporaryRepository& repository) {
        repository.write(u"a.txt"_s, "both\n");
        git.stage({u"a.txt"_s});
    });
    QTest::newRow("ended elsewhere") << Run([](GitService& git, const TemporaryRepository& repository) {
        repository.git({u"merge"_s, u"--abort"_s});
        git.refreshStatus();
    });
}

void GitServiceFailuresTest::conflictsTakeTheirWordsWithThem()
{
    using Run = std::function<void(GitService&, const TemporaryRepository&)>;
    QFETCH(Run, end);
    repository_->makeConflictingBranches();
    open();
    git_->mergeBranch(u"side"_s);
    QCOMPARE(told(), u"Merge conflict in a.txt"_s);
    git_->refreshAll();
    QCOMPARE(told(), u"Merge conflict in a.txt"_s);
    end(*git_, *repository_);
    QCOMPARE(told(), QString());
}

void GitServiceFailuresTest::otherWordsOutlastAConflict()
{
    repository_->makeConflictingBranches();
    open();
    git_->mergeBranch(u"side"_s);
    git_->deleteBranch(u"gone"_s, false);
    const QString words = told();
    git_->abortMerge();
    QCOMPARE(told(), words);
    QVERIFY(words.contains(u"gone"_s));
}

void GitServiceFailuresTest::discardingANewFileKeepsIt()
{
    open();
    repository_->write(u"new file.txt"_s, "mine\n");
    git_->discardChanges({u"new file.txt"_s});
    QCOMPARE(told(), u"git has no version of new file.txt to go back to."_s);
    QCOMPARE(repository_->read(u"new file.txt"_s), QByteArray("mine\n"));
}

void GitServiceFailuresTest::aRefusedCommitIsKnown()
{
    repository_->write(u"a.txt"_s, "two\n");
    open();
    QVERIFY(git_->commit(u"words"_s));
    QVERIFY(git_->commitRefusal());
    QCOMPARE(git_->commitRefusal()->sentence(), u"Nothing is staged: no changes added to commit."_s);
    QVERIFY(!git_->lastFailure());
    // One that fails without a word on its output counts as failed, and is told as such.
    repository_->git({u"config"_s, u"commit.gpgSign"_s, u"true"_s});
    repository_->git({u"config"_s, u"gpg.program"_s, u"/nowhere/gpg"_s});
    repository_->git({u"add"_s, u"-A"_s});
    QVERIFY(!git_->commit(u"words"_s));
    QVERIFY(!git_->commitRefusal());
    QVERIFY(!told().isEmpty());
}

void GitServiceFailuresTest::aMadeCommitForgetsTheRefusal()
{
    open();
    QVERIFY(git_->commit(u"words"_s));
    QVERIFY(git_->commitRefusal());
    QVERIFY(git_->amendCommit(u"other words"_s));
    QVERIFY(!git_->commitRefusal());
}

const kelm::test::Registered<GitServiceFailuresTest> registered;

} // namespace git_service_failures_test

#include "git_service_failures_test.moc"
