#include "git/service/git_service.h"
#include "support/temporary_repository.h"
#include "support/test_program.h"

#include <QSet>
#include <QSignalSpy>
#include <QtTest>

namespace git_service_repository_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

namespace {

QString described(const std::optional<GitFileChange>& change)
{
    return change ? rawValue(*change) : u"-"_s;
}

QStringList described(const QList<GitFileStatus>& status)
{
    QStringList lines;
    for (const GitFileStatus& file : status) {
        lines.append(u"%1 %2 %3"_s.arg(described(file.staged), described(file.unstaged), file.path));
    }
    return lines;
}

QStringList described(const QList<GitBranch>& branches)
{
    QStringList lines;
    for (const GitBranch& branch : branches) {
        lines.append((branch.isCurrent ? u"*"_s : QString()) + (branch.isRemote ? u"remote "_s : QString()) +
                     branch.name + (branch.upstream ? u" -> "_s + *branch.upstream : QString()));
    }
    return lines;
}

} // namespace

/// The service on real repositories.
class GitServiceRepositoryTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { useFixedGitEnvironment(); }
    void init();

    void snapshotHoldsEverything();
    void refreshGivesNewIdentities();
    void unbornBranch();
    void detachedHead();
    void workTreeWhoseGitIsAFile();
    void submoduleIsARepositoryOfItsOwn();
    void folderBelowTheWorkTree();
    void oddNames();
    void typeChangesAndIgnoredFiles();
    void mergeConflictsOfAllKinds();
    void mergeIsAborted();
    void renameIsOneEntry();
    void stageUnstageDiscard();
    void stagedRowOfARenameFailsInGitsWords();
    void commitAndAmend();
    void commitOfNothingCountsAsTrue();
    void commitWithoutAUserFails();
    void commitThatAHookRefusesFails();
    void hookThatLeavesAProcessBehindDoesNotBlock();
    void branchesComeAndGo();
    void failedCheckoutRefreshesEverything();
    void stashes();
    void tags();
    void remotesWithTwoURLs();
    void logBlameAndShow();
    void shownCommitHasOneForm_data();
    void shownCommitHasOneForm();
    void userSettings();
    void pushFetchPullWithALocalRemote();
    void remoteThatRefusesAPushIsReported();
    void remoteThatIsGoneIsReported();
    void remoteThatDoesNotAnswerLeavesTheWindowAlive();
    void pushTagGoesToTheRemote();
    void indexLockLeftBehindIsReported();
    void initAndClone();
    void cloneIntoAMissingParentFailsOnLaunch();
    void diffOfManyMegabytesDoesNotBlock();

private:
    std::unique_ptr<TemporaryRepository> repository_;
    std::unique_ptr<GitService> git_;

    void open(const QString& path)
    {
        QVERIFY(git_->open(QUrl::fromLocalFile(path)));
        clearError();
    }
    void open() { open(repository_->path()); }
    void commitFile(const QString& name, const QByteArray& content, const QString& message)
    {
        repository_->write(name, content);
        repository_->commitAll(message);
    }
    QString takeError()
    {
        QCoreApplication::sendPostedEvents();
        const QString text = git_->lastError().value_or(QString());
        git_->setLastError({});
        return text;
    }
    void clearError() { takeError(); }

    template <typename Start>
    GitOpResult waitFor(Start&& start)
    {
        std::optional<GitOpResult> result;
        start([&result](const GitOpResult& value) { result = value; });
        [&] { QTRY_VERIFY_WITH_TIMEOUT(result.has_value(), 30000); }();
        return result.value_or(GitOpResult::failure(u"no completion"_s));
    }
};

void GitServiceRepositoryTest::init()
{
    useFixedGitEnvironment();
    repository_ = std::make_unique<TemporaryRepository>();
    git_ = std::make_unique<GitService>(ProcessRunner::sharedSystem());
}

void GitServiceRepositoryTest::snapshotHoldsEverything()
{
    TemporaryRepository remote({u"init"_s, u"-q"_s, u"--bare"_s});
    commitFile(u"a"_s, "1\n", u"first"_s);
    repository_->git({u"remote"_s, u"add"_s, u"origin"_s, remote.path()});
    repository_->git({u"push"_s, u"-q"_s, u"-u"_s, u"origin"_s, u"main"_s});
    repository_->git({u"remote"_s, u"set-head"_s, u"origin"_s, u"main"_s});
    commitFile(u"a"_s, "2\n", u"second"_s);
    commitFile(u"a"_s, "3\n", u"third"_s);
    repository_->git({u"branch"_s, u"topic"_s});
    repository_->write(u"a"_s, "4\n");
    repository_->git({u"stash"_s, u"push"_s, u"-q"_s, u"-m"_s, u"kept 한"_s});
    repository_->git({u"tag"_s, u"light"_s});
    repository_->git({u"tag"_s, u"-a"_s, u"full"_s, u"-m"_s, u"Subject\n\nBody"_s});
    repository_->write(u"a"_s, "5\n");
    repository_->write(u"new file"_s, "x");
    open();

    QCOMPARE(git_->branch(), u"main"_s);
    QCOMPARE(described(git_->status()), (QStringList{u"- modified a"_s, u"- untracked \"new file\""_s}));
    QCOMPARE(git_->ahead(), 2);
    QCOMPARE(git_->behind(), 0);
    QCOMPARE(described(git_->branches()),
             (QStringList{u"*main -> origin/main"_s, u"topic"_s, u"remote origin/main"_s}));
    QCOMPARE(git_->remotes().size(), 1);
    QCOMPARE(git_->remotes()[0].name, u"origin"_s);
    QCOMPARE(git_->remotes()[0].url, remote.path());
    QCOMPARE(git_->stashes(), (QList<GitStash>{{0, u"stash@{0}"_s, u"On main: kept 한"_s}}));
    const QString head = QString::fromUtf8(repository_->git({u"rev-parse"_s, u"HEAD"_s})).trimmed();
    QCOMPARE(git_->tags().size(), 2);
    QCOMPARE(git_->tags()[0].name, u"full"_s);
    QCOMPARE(git_->tags()[0].annotation, std::optional(u"Subject"_s));
    QCOMPARE(git_->tags()[0].sha, std::optional(head));
    QCOMPARE(git_->tags()[1].name, u"light"_s);
    QCOMPARE(git_->tags()[1].annotation, std::nullopt);
    QCOMPARE(git_->tags()[1].sha, std::optional(head));
    QVERIFY(!git_->upstreamMissingForCurrent());
    QCOMPARE(takeError(), QString());
}

void GitServiceRepositoryTest::refreshGivesNewIdentities()
{
    commitFile(u"a"_s, "1\n", u"first"_s);
    repository_->write(u"a"_s, "2\n");
    open();
    const auto status = git_->status();
    const auto branches = git_->branches();
    git_->refreshAll();
    QCOMPARE(described(git_->status()), described(status));
    QVERIFY(git_->status()[0].id != status[0].id);
    QVERIFY(git_->branches()[0].id != branches[0].id);
}

void GitServiceRepositoryTest::unbornBranch()
{
    repository_->write(u"a"_s, "1\n");
    QVERIFY(git_->open(repository_->url()));
    // git prints the word and fails.
    QCOMPARE(git_->branch(), u"HEAD"_s);
    QVERIFY(git_->branches().isEmpty());
    QCOMPARE(described(git_->status()), QStringList{u"- untracked a"_s});
    QVERIFY(!takeError().isEmpty());
    QVERIFY(git_->log(10).isEmpty());
    QVERIFY(git_->commit(u"nothing staged"_s));
    git_->stageAll();
    QVERIFY(git_->commit(u"first"_s));
    QCOMPARE(git_->branch(), u"main"_s);
    QVERIFY(git_->status().isEmpty());
}

void GitServiceRepositoryTest::detachedHead()
{
    commitFile(u"a"_s, "1\n", u"first"_s);
    repository_->git({u"checkout"_s, u"-q"_s, u"--detach"_s});
    QVERIFY(git_->open(repository_->url()));
    QCOMPARE(git_->branch(), u"HEAD"_s);
    QCOMPARE(described(git_->branches()), QStringList{u"main"_s});
    // A head without a branch has no upstream, and git says so.
    QVERIFY(!takeError().isEmpty());
    QVERIFY(!git_->upstreamMissingForCurrent());
    repository_->git({u"remote"_s, u"add"_s, u"o"_s, u"/nowhere"_s});
    git_->refreshRemotes();
    QVERIFY(git_->upstreamMissingForCurrent());
}

void GitServiceRepositoryTest::workTreeWhoseGitIsAFile()
{
    commitFile(u"a"_s, "1\n", u"first"_s);
    QTemporaryDir parent;
    const QString tree = QFileInfo(parent.path()).canonicalFilePath() + u"/second tree"_s;
    repository_->git({u"worktree"_s, u"add"_s, u"-q"_s, u"-b"_s, u"second"_s, tree});
    QVERIFY(QFileInfo(tree + u"/.git"_s).isFile());
    QDir().mkpath(tree + u"/below"_s);
    open(tree + u"/below"_s);
    QCOMPARE(git_->repoURL()->toLocalFile(), tree);
    QCOMPARE(git_->branch(), u"second"_s);
    QVERIFY(git_->status().isEmpty());
    QVERIFY(git_->createBranch(u"third"_s, true).isSuccess());
    QCOMPARE(git_->branch(), u"third"_s);
}

void GitServiceRepositoryTest::submoduleIsARepositoryOfItsOwn()
{
    TemporaryRepository inner;
    inner.write(u"i"_s, "1\n");
    inner.commitAll(u"inner"_s);
    commitFile(u"a"_s, "1\n", u"first"_s);
    repository_->git({u"submodule"_s, u"add"_s, u"-q"_s, inner.path(), u"sub"_s});
    repository_->commitAll(u"with submodule"_s);
    open();
    QVERIFY(git_->status().isEmpty());
    repository_->write(u"sub/i"_s, "2\n");
    git_->refreshStatus();
    QCOMPARE(described(git_->status()), QStringList{u"- modified sub"_s});
    QVERIFY(QFileInfo(repository_->filePath(u"sub/.git"_s)).isFile());
    open(repository_->filePath(u"sub"_s));
    QCOMPARE(git_->repoURL()->toLocalFile(), repository_->filePath(u"sub"_s));
    QCOMPARE(described(git_->status()), QStringList{u"- modified i"_s});
}

void GitServiceRepositoryTest::folderBelowTheWorkTree()
{
    commitFile(u"a/b/c/f"_s, "1\n", u"first"_s);
    repository_->write(u"a/b/c/f"_s, "2\n");
    open(repository_->filePath(u"a/b/c"_s));
    QCOMPARE(git_->repoURL(), std::optional(repository_->url()));
    QCOMPARE(described(git_->status()), QStringList{u"- modified a/b/c/f"_s});
}

void GitServiceRepositoryTest::oddNames()
{
    const QStringList names{u"-dash"_s,   u"a b"_s,       u"plain"_s, u"한글"_s,
                            u"q\"uote"_s, u"new\nline"_s, u"tab\t"_s, u"back\\slash"_s};
    for (const QString& name : names) {
        repository_->write(name, "1\n");
    }
    open();
    // What git quotes stays quoted.
    QCOMPARE(described(git_->status()),
             (QStringList{u"- untracked -dash"_s, u"- untracked \"a b\""_s, u"- untracked \"back\\\\slash\""_s,
                          u"- untracked \"new\\nline\""_s, u"- untracked plain"_s, u"- untracked \"q\\\"uote\""_s,
                          u"- untracked \"tab\\t\""_s, u"- untracked \"\\355\\225\\234\\352\\270\\200\""_s}));
    git_->stage(names);
    for (const GitFileStatus& file : git_->status()) {
        QCOMPARE(file.staged, std::optional(GitFileChange::added));
        QCOMPARE(file.unstaged, std::nullopt);
    }
    for (const QString& name : names) {
        QVERIFY2(git_->diff(name, true).contains(u"+1"_s), qPrintable(name));
    }
    QCOMPARE(takeError(), QString());
    // A quoted path is not the file's name, and git says so.
    git_->stage({u"\"q\\\"uote\""_s});
    QVERIFY(takeError().contains(u"did not match any files"_s));
    QVERIFY(git_->commit(u"odd"_s));
    QVERIFY(git_->status().isEmpty());
    repository_->git({u"config"_s, u"core.quotePath"_s, u"false"_s});
    repository_->write(u"한글"_s, "2\n");
    git_->refreshStatus();
    // Names come in one form, whatever the settings say.
    QCOMPARE(described(git_->status()), QStringList{u"- modified \"\\355\\225\\234\\352\\270\\200\""_s});
}

void GitServiceRepositoryTest::typeChangesAndIgnoredFiles()
{
    commitFile(u"a"_s, "1\n", u"first"_s);
    repository_->remove(u"a"_s);
    QVERIFY(QFile::link(u"nowhere"_s, repository_->filePath(u"a"_s)));
    repository_->write(u".gitignore"_s, "ignored\n");
    repository_->write(u"ignored"_s, "x");
    open();
    // A change of type has no name of its own and still makes an entry.
    QCOMPARE(described(git_->status()), (QStringList{u"- - a"_s, u"- untracked .gitignore"_s}));
}

void GitServiceRepositoryTest::mergeConflictsOfAllKinds()
{
    commitFile(u"both"_s, "1\n", u"base"_s);
    commitFile(u"theyDelete"_s, "1\n", u"base 2"_s);
    commitFile(u"weDelete"_s, "1\n", u"base 3"_s);
    repository_->git({u"checkout"_s, u"-q"_s, u"-b"_s, u"theirs"_s});
    repository_->write(u"both"_s, "theirs\n");
    repository_->write(u"added"_s, "theirs\n");
    repository_->remove(u"theyDelete"_s);
    repository_->write(u"weDelete"_s, "theirs\n");
    repository_->commitAll(u"theirs"_s);
    repository_->git({u"checkout"_s, u"-q"_s, u"main"_s});
    repository_->write(u"both"_s, "ours\n");
    repository_->write(u"added"_s, "ours\n");
    repository_->write(u"theyDelete"_s, "ours\n");
    repository_->remove(u"weDelete"_s);
    repository_->commitAll(u"ours"_s);
    open();
    const GitOpResult result = git_->mergeBranch(u"theirs"_s);
    QVERIFY(!result.isSuccess());
    // git tells of conflicts on its standard output alone.
    QVERIFY2(result.message().contains(u"CONFLICT"_s), qPrintable(result.message()));
    QCOMPARE(described(git_->status()),
             (QStringList{u"added added added"_s, u"conflicted conflicted both"_s, u"conflicted deleted theyDelete"_s,
                          u"deleted conflicted weDelete"_s}));
    QStringList conflicted;
    for (const GitFileStatus& file : git_->conflictedFiles()) {
        conflicted.append(file.path);
    }
    QCOMPARE(conflicted, (QStringList{u"both"_s, u"theyDelete"_s, u"weDelete"_s}));
    QVERIFY(git_->hasConflicts());
    // The refreshes behind the merge fail where there is no upstream, and the last failure stays.
    QVERIFY(takeError().contains(u"no upstream"_s));

    repository_->write(u"both"_s, "resolved\n");
    git_->markResolved({u"both"_s, u"added"_s});
    repository_->git({u"rm"_s, u"-q"_s, u"theyDelete"_s, u"weDelete"_s});
    git_->refreshStatus();
    QVERIFY(!git_->hasConflicts());
    QVERIFY(git_->commit(u"merged"_s));
    QCOMPARE(git_->log(1)[0].summary, u"merged"_s);
}

void GitServiceRepositoryTest::mergeIsAborted()
{
    commitFile(u"a"_s, "1\n", u"base"_s);
    repository_->git({u"checkout"_s, u"-q"_s, u"-b"_s, u"theirs"_s});
    commitFile(u"a"_s, "theirs\n", u"theirs"_s);
    repository_->git({u"checkout"_s, u"-q"_s, u"main"_s});
    commitFile(u"a"_s, "ours\n", u"ours"_s);
    open();
    QVERIFY(!git_->mergeBranch(u"theirs"_s).isSuccess());
    QVERIFY(git_->hasConflicts());
    QVERIFY(git_->abortMerge().isSuccess());
    QVERIFY(!git_->hasConflicts());
    QVERIFY(git_->status().isEmpty());
    QCOMPARE(repository_->read(u"a"_s), QByteArray("ours\n"));
    QVERIFY(!git_->abortMerge().isSuccess());
}

void GitServiceRepositoryTest::renameIsOneEntry()
{
    commitFile(u"old.txt"_s, "some content\nof lines\n", u"first"_s);
    repository_->git({u"mv"_s, u"old.txt"_s, u"new.txt"_s});
    open();
    QCOMPARE(described(git_->status()), QStringList{u"renamed - old.txt -> new.txt"_s});
}

void GitServiceRepositoryTest::stageUnstageDiscard()
{
    commitFile(u"a"_s, "1\n", u"first"_s);
    repository_->write(u"a"_s, "2\n");
    repository_->write(u"b"_s, "1\n");
    open();
    git_->stage({u"a"_s});
    QCOMPARE(described(git_->status()), (QStringList{u"modified - a"_s, u"- untracked b"_s}));
    repository_->write(u"a"_s, "3\n");
    git_->refreshStatus();
    QCOMPARE(described(git_->status()), (QStringList{u"modified modified a"_s, u"- untracked b"_s}));
    QVERIFY(git_->diff(u"a"_s, false).contains(u"-2\n+3"_s));
    QVERIFY(git_->diff(u"a"_s, true).contains(u"-1\n+2"_s));
    git_->discardChanges({u"a"_s});
    QCOMPARE(repository_->read(u"a"_s), QByteArray("2\n"));
    git_->unstage({u"a"_s});
    QCOMPARE(described(git_->status()), (QStringList{u"- modified a"_s, u"- untracked b"_s}));
    git_->stageAll();
    QCOMPARE(described(git_->status()), (QStringList{u"modified - a"_s, u"added - b"_s}));
    QCOMPARE(takeError(), QString());
    // An untracked file is nothing that git can check out.
    git_->unstage({u"b"_s});
    git_->discardChanges({u"b"_s});
    QVERIFY(takeError().contains(u"did not match"_s));
    QCOMPARE(repository_->read(u"b"_s), QByteArray("1\n"));
}

void GitServiceRepositoryTest::stagedRowOfARenameFailsInGitsWords()
{
    commitFile(u"old.txt"_s, "some content\n", u"first"_s);
    repository_->git({u"mv"_s, u"old.txt"_s, u"new.txt"_s});
    open();
    const QString path = git_->status()[0].path;
    git_->unstage({path});
    git_->discardChanges({path});
    QVERIFY(takeError().contains(u"old.txt -> new.txt"_s));
    QCOMPARE(repository_->read(u"new.txt"_s), QByteArray("some content\n"));
}

void GitServiceRepositoryTest::commitAndAmend()
{
    repository_->write(u"a"_s, "1\n");
    open();
    git_->stageAll();
    QVERIFY(git_->commit(u"제목\n\nbody \"quoted\" $HOME"_s));
    QCOMPARE(git_->log(10).size(), 1);
    const GitCommit first = git_->log(10)[0];
    QCOMPARE(first.id, QString::fromUtf8(repository_->git({u"rev-parse"_s, u"HEAD"_s})).trimmed());
    QCOMPARE(first.author, u"Test Author"_s);
    QCOMPARE(first.date, u"2024-02-03"_s);
    QCOMPARE(first.summary, u"제목"_s);
    QVERIFY(git_->amendCommit(u"other"_s));
    QCOMPARE(git_->log(10)[0].summary, u"other"_s);
    QVERIFY(git_->log(10)[0].id != first.id);
    repository_->write(u"a"_s, "2\n");
    git_->stageAll();
    QVERIFY(git_->amendCommit(u""_s));
    QCOMPARE(git_->log(10)[0].summary, u"other"_s);
    QVERIFY(git_->status().isEmpty());
    QCOMPARE(git_->log(10).size(), 1);
    QVERIFY(git_->log(0).isEmpty());
}

void GitServiceRepositoryTest::commitOfNothingCountsAsTrue()
{
    commitFile(u"a"_s, "1\n", u"first"_s);
    open();
    QVERIFY(git_->commit(u"m"_s));
    QCOMPARE(git_->log(10).size(), 1);
}

void GitServiceRepositoryTest::commitWithoutAUserFails()
{
    useFixedGitEnvironment("");
    repository_->write(u"a"_s, "1\n");
    open();
    git_->stageAll();
    QCOMPARE(git_->userName(), std::nullopt);
    clearError();
    QVERIFY(!git_->commit(u"m"_s));
    QVERIFY(git_->log(10).isEmpty());
    QCOMPARE(described(git_->status()), QStringList{u"added - a"_s});
}

void GitServiceRepositoryTest::commitThatAHookRefusesFails()
{
    commitFile(u"a"_s, "1\n", u"first"_s);
    repository_->write(u".git/hooks/pre-commit"_s, "#!/bin/sh\necho 'hook says no' >&2\nexit 1\n");
    QFile::setPermissions(repository_->filePath(u".git/hooks/pre-commit"_s),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    repository_->write(u"a"_s, "2\n");
    open();
    git_->stageAll();
    QStringList errors;
    connect(git_.get(), &GitService::lastErrorChanged, this,
            [&] { errors.append(git_->lastError().value_or(QString())); });
    QVERIFY(!git_->commit(u"m"_s));
    QCoreApplication::sendPostedEvents();
    QCOMPARE(errors.value(0), u"hook says no\n"_s);
    QCOMPARE(git_->log(10).size(), 1);
    QCOMPARE(described(git_->status()), QStringList{u"modified - a"_s});
    git_->disconnect(this);
}

void GitServiceRepositoryTest::hookThatLeavesAProcessBehindDoesNotBlock()
{
    commitFile(u"a"_s, "1\n", u"first"_s);
    repository_->write(u".git/hooks/post-commit"_s, "#!/bin/sh\nsleep 20 &\n");
    QFile::setPermissions(repository_->filePath(u".git/hooks/post-commit"_s),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    repository_->write(u"a"_s, "2\n");
    open();
    git_->stageAll();
    QElapsedTimer timer;
    timer.start();
    QVERIFY(git_->commit(u"m"_s));
    QVERIFY(timer.elapsed() < 15000);
    QCOMPARE(git_->log(10).size(), 2);
}

void GitServiceRepositoryTest::branchesComeAndGo()
{
    commitFile(u"a"_s, "1\n", u"first"_s);
    open();
    QVERIFY(git_->createBranch(u"topic/한"_s, false).isSuccess());
    QCOMPARE(git_->branch(), u"main"_s);
    QCOMPARE(described(git_->branches()), (QStringList{u"*main"_s, u"topic/한"_s}));
    QVERIFY(git_->checkoutBranch(u"topic/한"_s).isSuccess());
    QCOMPARE(git_->branch(), u"topic/한"_s);
    QVERIFY(git_->createBranch(u"second"_s, true).isSuccess());
    QCOMPARE(git_->branch(), u"second"_s);
    commitFile(u"b"_s, "1\n", u"on second"_s);
    QVERIFY(git_->renameBranch(u"second"_s, u"renamed"_s).isSuccess());
    QCOMPARE(git_->branch(), u"renamed"_s);
    QVERIFY(git_->checkoutBranch(u"main"_s).isSuccess());
    clearError();

    const auto before = described(git_->branches());
    const GitOpResult refused = git_->deleteBranch(u"renamed"_s, false);
    QVERIFY2(refused.message().contains(u"not fully merged"_s), qPrintable(refused.message()));
    QCOMPARE(described(git_->branches()), before);
    QCOMPARE(takeError(), refused.message());
    QVERIFY(git_->mergeBranch(u"topic/한"_s).isSuccess());
    QVERIFY(git_->deleteBranch(u"topic/한"_s, false).isSuccess());
    QVERIFY(git_->deleteBranch(u"renamed"_s, true).isSuccess());
    QCOMPARE(described(git_->branches()), QStringList{u"*main"_s});
    QVERIFY(git_->createBranch(u"bad name"_s, true).message().contains(u"not a valid branch name"_s));
}

void GitServiceRepositoryTest::failedCheckoutRefreshesEverything()
{
    commitFile(u"a"_s, "1\n", u"first"_s);
    open();
    repository_->git({u"tag"_s, u"elsewhere"_s});
    repository_->git({u"branch"_s, u"elsewhere-too"_s});
    const GitOpResult result = git_->checkoutBranch(u"no-such-branch"_s);
    QVERIFY(result.message().contains(u"no-such-branch"_s));
    QCOMPARE(git_->tags().size(), 1);
    QCOMPARE(git_->branches().size(), 2);
}

void GitServiceRepositoryTest::stashes()
{
    commitFile(u"a"_s, "1\n", u"first"_s);
    repository_->write(u"a"_s, "2\n");
    repository_->write(u"untracked"_s, "x");
    open();
    QVERIFY(git_->stashPush(u""_s, false).isSuccess());
    QCOMPARE(described(git_->status()), QStringList{u"- untracked untracked"_s});
    QVERIFY(git_->stashPush(u"with 한"_s, true).isSuccess());
    QVERIFY(git_->status().isEmpty());
    QCOMPARE(git_->stashes().size(), 2);
    QCOMPARE(git_->stashes()[0], (GitStash{0, u"stash@{0}"_s, u"On main: with 한"_s}));
    QVERIFY(git_->stashes()[1].message.startsWith(u"WIP on main: "_s));
    QVERIFY(git_->stashShow(u"stash@{1}"_s).contains(u"-1\n+2"_s));
    QVERIFY(git_->stashApply(u"stash@{1}"_s).isSuccess());
    QCOMPARE(described(git_->status()), QStringList{u"- modified a"_s});
    QCOMPARE(git_->stashes().size(), 2);
    QVERIFY(git_->stashDrop(u"stash@{1}"_s).isSuccess());
    QCOMPARE(git_->stashes().size(), 1);
    QVERIFY(git_->stashPop(u"stash@{0}"_s).isSuccess());
    QVERIFY(git_->stashes().isEmpty());
    QCOMPARE(repository_->read(u"untracked"_s), QByteArray("x"));
    QVERIFY(git_->stashPop(u"stash@{0}"_s).message().contains(u"stash@{0}"_s));
    QVERIFY(git_->stashShow(u"stash@{0}"_s).isEmpty());
}

void GitServiceRepositoryTest::tags()
{
    commitFile(u"a"_s, "1\n", u"first"_s);
    open();
    QVERIFY(git_->createTag(u"light"_s, u""_s).isSuccess());
    QVERIFY(git_->createTag(u"full"_s, u"첫 판"_s).isSuccess());
    QCOMPARE(git_->tags().size(), 2);
    QCOMPARE(git_->tags()[0].annotation, std::optional(u"첫 판"_s));
    QCOMPARE(git_->tags()[1].annotation, std::nullopt);
    QVERIFY(git_->createTag(u"light"_s, {}).message().contains(u"already exists"_s));
    QVERIFY(git_->deleteTag(u"light"_s).isSuccess());
    QCOMPARE(git_->tags().size(), 1);
}

void GitServiceRepositoryTest::remotesWithTwoURLs()
{
    open();
    QVERIFY(git_->addRemote(u"origin"_s, u"/fetch here"_s).isSuccess());
    repository_->git({u"remote"_s, u"set-url"_s, u"--push"_s, u"origin"_s, u"/push there"_s});
    git_->refreshRemotes();
    QCOMPARE(git_->remotes().size(), 1);
    QCOMPARE(git_->remotes()[0].url, u"/fetch here"_s);
    QVERIFY(git_->addRemote(u"another"_s, u"u"_s).isSuccess());
    QVERIFY(git_->setRemoteURL(u"another"_s, u"v"_s).isSuccess());
    QCOMPARE(git_->remotes()[0].name, u"another"_s);
    QCOMPARE(git_->remotes()[0].url, u"v"_s);
    QVERIFY(git_->removeRemote(u"another"_s).isSuccess());
    QCOMPARE(git_->remotes().size(), 1);
    QVERIFY(git_->addRemote(u"origin"_s, u"x"_s).message().contains(u"already exists"_s));
}

void GitServiceRepositoryTest::logBlameAndShow()
{
    commitFile(u"a"_s, "one\ntwo\n", u"first"_s);
    commitFile(u"b"_s, "x\n", u"second"_s);
    commitFile(u"a"_s, "one\nTWO\n한\n", u"third"_s);
    commitFile(u"c"_s, "x\n", u"with \x1f separator"_s);
    open();
    QStringList summaries;
    for (const GitCommit& commit : git_->log(50)) {
        summaries.append(commit.summary);
    }
    QCOMPARE(summaries, (QStringList{u"third"_s, u"second"_s, u"first"_s}));
    QCOMPARE(git_->log(2).size(), 1);
    QCOMPARE(git_->fileLog(u"a"_s, 50).size(), 2);
    const auto blame = git_->blame(u"a"_s);
    QCOMPARE(blame.size(), 3);
    QCOMPARE(blame[0].sha, git_->fileLog(u"a"_s, 50)[1].id);
    QCOMPARE(blame[0].author, u"Test Author"_s);
    QCOMPARE(blame[0].line, u"one"_s);
    QCOMPARE(blame[2].sha, git_->fileLog(u"a"_s, 50)[0].id);
    QCOMPARE(blame[2].line, u"한"_s);
    const QString shown = git_->showCommit(blame[2].sha);
    QVERIFY(shown.startsWith(u"commit "_s + blame[2].sha));
    QVERIFY(shown.contains(u"+TWO\n+한"_s));
    QVERIFY(git_->showCommit(u"nonsense"_s).isEmpty());
}

void GitServiceRepositoryTest::shownCommitHasOneForm_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("value");
    const auto row = [](const char* key, const char* value) {
        QTest::addRow("%s=%s", key, value) << QString::fromLatin1(key) << QString::fromLatin1(value);
    };
    row("format.pretty", "oneline");
    row("format.pretty", "fuller");
    row("format.pretty", "raw");
    row("log.showRoot", "false");
    row("diff.noprefix", "true");
    row("diff.mnemonicPrefix", "true");
    row("diff.srcPrefix", "old/");
    row("diff.dstPrefix", "new/");
}

void GitServiceRepositoryTest::shownCommitHasOneForm()
{
    QFETCH(QString, key);
    QFETCH(QString, value);
    commitFile(u"a"_s, "one\n", u"first"_s);
    open();
    const QString id = git_->log(1).value(0).id;
    const QString plain = git_->showCommit(id);
    QVERIFY(plain.contains(u"\nAuthor: Test Author"_s) && plain.contains(u"\n    first\n"_s));
    QVERIFY(plain.contains(u"diff --git a/a b/a\n"_s) && plain.contains(u"+one"_s));
    // The settings of a user, which hold for all repositories.
    repository_->git({u"config"_s, u"--global"_s, key, value});
    QCOMPARE(git_->showCommit(id), plain);
}

void GitServiceRepositoryTest::userSettings()
{
    open();
    QCOMPARE(git_->userName(), std::optional(u"Test Author"_s));
    QVERIFY(git_->setUserName(u"다른 사람"_s).isSuccess());
    QVERIFY(git_->setUserEmail(u"other@example.org"_s).isSuccess());
    QCOMPARE(git_->userName(), std::optional(u"다른 사람"_s));
    QCOMPARE(git_->userEmail(), std::optional(u"other@example.org"_s));
    QCOMPARE(QString::fromUtf8(repository_->git({u"config"_s, u"--local"_s, u"user.name"_s})).trimmed(),
             u"다른 사람"_s);
}

void GitServiceRepositoryTest::pushFetchPullWithALocalRemote()
{
    TemporaryRepository remote({u"init"_s, u"-q"_s, u"--bare"_s});
    commitFile(u"a"_s, "1\n", u"first"_s);
    open();
    QVERIFY(!git_->upstreamMissingForCurrent());
    QVERIFY(git_->addRemote(u"origin"_s, remote.path()).isSuccess());
    QVERIFY(git_->upstreamMissingForCurrent());
    QVERIFY(!waitFor([&](auto done) { git_->push({}, done); }).isSuccess());
    QCOMPARE(waitFor([&](auto done) { git_->push(git_->branch(), done); }), GitOpResult::success());
    QVERIFY(!git_->upstreamMissingForCurrent());
    QCOMPARE(described(git_->branches()), (QStringList{u"*main -> origin/main"_s, u"remote origin/main"_s}));

    TemporaryRepository other;
    other.git({u"pull"_s, u"-q"_s, remote.path(), u"main"_s});
    other.write(u"b"_s, "theirs\n");
    other.commitAll(u"theirs"_s);
    other.git({u"push"_s, u"-q"_s, remote.path(), u"HEAD:main"_s, u"HEAD:topic"_s});
    commitFile(u"c"_s, "ours\n", u"ours"_s);
    QCOMPARE(waitFor([&](auto done) { git_->fetch({}, false, done); }), GitOpResult::success());
    QCOMPARE(git_->ahead(), 1);
    QCOMPARE(git_->behind(), 1);
    QCOMPARE(git_->branches().size(), 3);
    const GitOpResult rejected = waitFor([&](auto done) { git_->push({}, done); });
    QVERIFY2(rejected.message().contains(u"rejected"_s), qPrintable(rejected.message()));
    QCOMPARE(takeError(), rejected.message());
    QCOMPARE(waitFor([&](auto done) { git_->pull(true, done); }), GitOpResult::success());
    QCOMPARE(git_->behind(), 0);
    QCOMPARE(git_->ahead(), 1);
    QCOMPARE(git_->log(1)[0].summary, u"ours"_s);
    QCOMPARE(waitFor([&](auto done) { git_->push({}, done); }), GitOpResult::success());
    QCOMPARE(git_->ahead(), 0);

    QVERIFY(git_->checkoutBranch(u"topic"_s).isSuccess());
    QVERIFY(described(git_->branches()).contains(u"*topic -> origin/topic"_s));
    other.git({u"push"_s, u"-q"_s, remote.path(), u":topic"_s});
    QCOMPARE(waitFor([&](auto done) { git_->fetch(u"origin"_s, true, done); }), GitOpResult::success());
    QVERIFY(!described(git_->branches()).contains(u"remote origin/topic"_s));
}

void GitServiceRepositoryTest::remoteThatRefusesAPushIsReported()
{
    TemporaryRepository remote({u"init"_s, u"-q"_s, u"--bare"_s});
    remote.write(u"hooks/pre-receive"_s, "#!/bin/sh\necho 'remote says no'\nexit 1\n");
    QFile::setPermissions(remote.filePath(u"hooks/pre-receive"_s),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    commitFile(u"a"_s, "1\n", u"first"_s);
    repository_->git({u"remote"_s, u"add"_s, u"origin"_s, remote.path()});
    open();
    const GitOpResult result = waitFor([&](auto done) { git_->push(u"main"_s, done); });
    QVERIFY2(result.message().contains(u"remote says no"_s), qPrintable(result.message()));
    QVERIFY(!git_->isBusy());
}

void GitServiceRepositoryTest::remoteThatIsGoneIsReported()
{
    commitFile(u"a"_s, "1\n", u"first"_s);
    repository_->git({u"remote"_s, u"add"_s, u"origin"_s, u"/nowhere/at all"_s});
    open();
    const GitOpResult result = waitFor([&](auto done) { git_->fetch({}, false, done); });
    QVERIFY2(result.message().contains(u"/nowhere/at all"_s), qPrintable(result.message()));
}

void GitServiceRepositoryTest::remoteThatDoesNotAnswerLeavesTheWindowAlive()
{
    // A transport that says nothing until a file appears.
    const QString answer = repository_->filePath(u"answer"_s);
    repository_->write(u"silent.sh"_s,
                       "#!/bin/sh\nwhile [ ! -e '" + answer.toUtf8() + "' ]; do sleep 0.05; done\nexit 1\n");
    QFile::setPermissions(repository_->filePath(u"silent.sh"_s),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    commitFile(u"a"_s, "1\n", u"first"_s);
    repository_->git({u"config"_s, u"protocol.ext.allow"_s, u"always"_s});
    repository_->git({u"remote"_s, u"add"_s, u"origin"_s, u"ext::"_s + repository_->filePath(u"silent.sh"_s)});
    open();
    std::optional<GitOpResult> result;
    git_->push(u"main"_s, [&](const GitOpResult& value) { result = value; });
    QVERIFY(git_->isBusy());
    // Meanwhile the main thread works on, git included.
    repository_->write(u"b"_s, "1\n");
    git_->stage({u"b"_s});
    QVERIFY(described(git_->status()).contains(u"added - b"_s));
    QCoreApplication::processEvents();
    QVERIFY(!result);
    QVERIFY(git_->isBusy());
    repository_->write(u"answer"_s, "");
    QTRY_VERIFY_WITH_TIMEOUT(result.has_value(), 20000);
    QVERIFY(!result->isSuccess());
    QVERIFY(!git_->isBusy());
}

void GitServiceRepositoryTest::pushTagGoesToTheRemote()
{
    TemporaryRepository remote({u"init"_s, u"-q"_s, u"--bare"_s});
    commitFile(u"a"_s, "1\n", u"first"_s);
    repository_->git({u"remote"_s, u"add"_s, u"origin"_s, remote.path()});
    open();
    QVERIFY(git_->createTag(u"v1"_s, {}).isSuccess());
    QVERIFY(git_->pushTag(u"v1"_s, u"origin"_s).isSuccess());
    QCOMPARE(remote.git({u"tag"_s}), QByteArray("v1\n"));
    QVERIFY(!git_->pushTag(u"v2"_s, u"origin"_s).isSuccess());
}

void GitServiceRepositoryTest::indexLockLeftBehindIsReported()
{
    commitFile(u"a"_s, "1\n", u"first"_s);
    repository_->write(u"a"_s, "2\n");
    open();
    repository_->write(u".git/index.lock"_s, "");
    git_->stage({u"a"_s});
    QVERIFY(takeError().contains(u"index.lock"_s));
    // The status is still read.
    QCOMPARE(described(git_->status()), QStringList{u"- modified a"_s});
    QVERIFY(!git_->stashPush({}, false).isSuccess());
    QVERIFY(!git_->commit(u"m"_s));
    QVERIFY(repository_->remove(u".git/index.lock"_s));
    git_->stage({u"a"_s});
    QCOMPARE(described(git_->status()), QStringList{u"modified - a"_s});
}

void GitServiceRepositoryTest::initAndClone()
{
    commitFile(u"a 한"_s, "1\n", u"first"_s);
    QTemporaryDir parent;
    const QString root = QFileInfo(parent.path()).canonicalFilePath();
    const QUrl fresh = QUrl::fromLocalFile(root + u"/x/fresh 한"_s);
    QCOMPARE(git_->initRepo(fresh, u"trunk"_s), GitOpResult::success());
    QCOMPARE(git_->repoURL(), std::optional(fresh));
    QCOMPARE(QString::fromUtf8(ProcessRunner::system()
                                   .run(GitService::makeProcess({u"symbolic-ref"_s, u"HEAD"_s}, fresh.toLocalFile()))
                                   .standardOutput),
             u"refs/heads/trunk\n"_s);
    QVERIFY(!git_->initRepo(QUrl::fromLocalFile(root + u"/bad"_s), u"bad name"_s).isSuccess());
    QCOMPARE(git_->repoURL(), std::optional(fresh));

    const QUrl target = QUrl::fromLocalFile(root + u"/the clone"_s);
    QCOMPARE(waitFor([&](auto done) { git_->cloneRepo(repository_->path(), target, done); }), GitOpResult::success());
    QCOMPARE(git_->repoURL(), std::optional(target));
    QCOMPARE(git_->branch(), u"main"_s);
    QCOMPARE(git_->log(5).size(), 1);

    clearError();
    const GitOpResult again = waitFor([&](auto done) { git_->cloneRepo(repository_->path(), target, done); });
    QVERIFY2(again.message().contains(u"already exists"_s), qPrintable(again.message()));
    QCOMPARE(takeError(), again.message());
    QCOMPARE(git_->repoURL(), std::optional(target));
}

void GitServiceRepositoryTest::cloneIntoAMissingParentFailsOnLaunch()
{
    const GitOpResult result =
        waitFor([&](auto done) { git_->cloneRepo(u"/x"_s, QUrl::fromLocalFile(u"/nowhere/at all/clone"_s), done); });
    QVERIFY(!result.isSuccess());
    QVERIFY2(result.message().contains(u"/nowhere/at all"_s), qPrintable(result.message()));
    QVERIFY(takeError().isEmpty());
}

void GitServiceRepositoryTest::diffOfManyMegabytesDoesNotBlock()
{
    commitFile(u"a"_s, QByteArray("line of text\n").repeated(300000), u"first"_s);
    repository_->write(u"a"_s, QByteArray("other text\n").repeated(300000));
    open();
    QVERIFY(git_->diff(u"a"_s, false).size() > 7000000);
}

const kelm::test::Registered<GitServiceRepositoryTest> registered;

} // namespace git_service_repository_test

#include "git_service_repository_test.moc"
