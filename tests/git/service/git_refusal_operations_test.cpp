#include "git/service/git_service.h"
#include "git/service/remote_branch_checkout.h"
#include "platform/files/native_path.h"
#include "support/recording_process_runner.h"
#include "support/temporary_repository.h"
#include "support/test_program.h"

#include <QTemporaryDir>
#include <QtTest>

namespace git_refusal_operations_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

namespace {

using Operation = std::function<void(GitService& git, const QString& name)>;

} // namespace

/// Names that git would misread, in every operation that takes a name.
class GitRefusalOperationsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { useFixedGitEnvironment(); }
    void init();
    void nameIsRefusedBeforeGitStarts_data();
    void nameIsRefusedBeforeGitStarts();
    void cloneURLIsNoOption();
    void cloneURLThatIsAProgramIsRefusedByGit();
    void remoteBranchIsNoOption();
    void staleRowIsNoFile_data();
    void staleRowIsNoFile();
    void branchNamedLikeAFileIsTheBranch();
    void remoteBranchNamedLikeAFileIsNotGuessed();
    void remoteBranchNamedLikeADeletedFolderIsNotGuessed();
    void remoteBranchIsFollowed();
    void remoteBranchThatIsNoUTF8HidesNoOther();
    void branchThatSharesItsNameIsTheBranch();
    void branchAndTagOfOneNameAreToldApart();
    void branchWithAPlusIsNotPushedByForce();

private:
    std::shared_ptr<RecordingProcessRunner> runner_;
    std::unique_ptr<TemporaryRepository> repository_;
    std::unique_ptr<GitService> git_;

    void open()
    {
        QVERIFY(git_->open(repository_->url()));
        takeError();
    }
    QString takeError()
    {
        QCoreApplication::sendPostedEvents();
        const QString text = git_->lastError().value_or(QString());
        git_->setLastError({});
        return text;
    }
    GitOpResult clone(const QString& url, const QString& into)
    {
        std::optional<GitOpResult> result;
        git_->cloneRepo(url, QUrl::fromLocalFile(into), [&result](const GitOpResult& value) { result = value; });
        [&] { QTRY_VERIFY(result.has_value()); }();
        return result.value_or(GitOpResult::success());
    }
    QByteArray head() const { return repository_->git({u"symbolic-ref"_s, u"--short"_s, u"HEAD"_s}).trimmed(); }
};

void GitRefusalOperationsTest::init()
{
    repository_ = std::make_unique<TemporaryRepository>();
    repository_->write(u"file"_s, "1\n");
    repository_->commitAll(u"first"_s);
    repository_->write(u"file"_s, "uncommitted\n");
    runner_ = std::make_shared<RecordingProcessRunner>();
    git_ = std::make_unique<GitService>(ProcessRunner::sharedSystem());
}

void GitRefusalOperationsTest::nameIsRefusedBeforeGitStarts_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<QString>("name");
    const std::pair<const char*, Operation> operations[] = {
        {"create branch", [](GitService& git, const QString& name) { git.createBranch(name, false); }},
        {"create branch and check out", [](GitService& git, const QString& name) { git.createBranch(name, true); }},
        {"check out", [](GitService& git, const QString& name) { git.checkoutBranch(name); }},
        {"delete branch", [](GitService& git, const QString& name) { git.deleteBranch(name, false); }},
        {"delete branch by force", [](GitService& git, const QString& name) { git.deleteBranch(name, true); }},
        {"rename branch", [](GitService& git, const QString& name) { git.renameBranch(name, u"b"_s); }},
        {"rename branch to", [](GitService& git, const QString& name) { git.renameBranch(u"b"_s, name); }},
        {"merge", [](GitService& git, const QString& name) { git.mergeBranch(name); }},
        {"add remote", [](GitService& git, const QString& name) { git.addRemote(name, u"u"_s); }},
        {"add remote at", [](GitService& git, const QString& name) { git.addRemote(u"r"_s, name); }},
        {"remove remote", [](GitService& git, const QString& name) { git.removeRemote(name); }},
        {"set URL of", [](GitService& git, const QString& name) { git.setRemoteURL(name, u"u"_s); }},
        {"set URL", [](GitService& git, const QString& name) { git.setRemoteURL(u"r"_s, name); }},
        {"stash pop", [](GitService& git, const QString& name) { git.stashPop(name); }},
        {"stash apply", [](GitService& git, const QString& name) { git.stashApply(name); }},
        {"stash drop", [](GitService& git, const QString& name) { git.stashDrop(name); }},
        {"stash show", [](GitService& git, const QString& name) { git.stashShow(name); }},
        {"create tag", [](GitService& git, const QString& name) { git.createTag(name, {}); }},
        {"create annotated tag", [](GitService& git, const QString& name) { git.createTag(name, u"m"_s); }},
        {"delete tag", [](GitService& git, const QString& name) { git.deleteTag(name); }},
        {"push tag", [](GitService& git, const QString& name) { git.pushTag(name, u"origin"_s); }},
        {"push tag to", [](GitService& git, const QString& name) { git.pushTag(u"t"_s, name); }},
        {"push", [](GitService& git, const QString& name) { git.push(name); }},
        {"fetch", [](GitService& git, const QString& name) { git.fetch(name, false); }},
        {"show", [](GitService& git, const QString& name) { git.showCommit(name); }},
        {"init", [](GitService& git, const QString& name) { git.initRepo(QUrl::fromLocalFile(u"/tmp"_s), name); }},
        {"clone", [](GitService& git, const QString& name) { git.cloneRepo(name, QUrl::fromLocalFile(u"/tmp/x"_s)); }},
        {"clone into",
         [](GitService& git, const QString& name) { git.cloneRepo(u"u"_s, QUrl::fromLocalFile(u"/tmp/"_s + name)); }},
        {"user name", [](GitService& git, const QString& name) { git.setUserName(name); }},
        {"user address", [](GitService& git, const QString& name) { git.setUserEmail(name); }},
    };
    const std::pair<const char*, QString> names[] = {
        {"-f", u"-f"_s}, {"--", u"--"_s}, {"--upload-pack=x", u"--upload-pack=x"_s}, {"line feed", u"a\nb"_s}};
    for (const auto& [tag, operation] : operations) {
        for (const auto& [nameTag, name] : names) {
            QTest::addRow("%s: %s", tag, nameTag) << operation << name;
        }
    }
}

void GitRefusalOperationsTest::nameIsRefusedBeforeGitStarts()
{
    QFETCH(Operation, operation);
    QFETCH(QString, name);
    git_ = std::make_unique<GitService>(runner_);
    open();
    runner_->takeCommands();
    operation(*git_, name);
    const QString error = takeError();
    QCOMPARE(runner_->takeArguments(), QList<QStringList>());
    QVERIFY2(error.contains(u"begins with a hyphen"_s) || error.contains(u"holds a control character"_s),
             qPrintable(error));
}

void GitRefusalOperationsTest::cloneURLIsNoOption()
{
    const QTemporaryDir folder;
    const QString marker = folder.filePath(u"marker"_s);
    const GitOpResult result =
        clone(u"--config=core.sshCommand=touch %1;/h:p"_s.arg(marker), folder.filePath(u"clone"_s));
    QVERIFY(!result.isSuccess());
    QVERIFY(!QFile::exists(marker));
    QVERIFY(!QFile::exists(folder.filePath(u"clone"_s)));
}

void GitRefusalOperationsTest::cloneURLThatIsAProgramIsRefusedByGit()
{
    const QTemporaryDir folder;
    const QString marker = folder.filePath(u"marker"_s);
    const GitOpResult result = clone(u"ext::touch %1"_s.arg(marker), folder.filePath(u"clone"_s));
    QVERIFY2(result.message().contains(u"not allowed"_s), qPrintable(result.message()));
    QVERIFY(!QFile::exists(marker));
}

void GitRefusalOperationsTest::remoteBranchIsNoOption()
{
    repository_->git({u"update-ref"_s, u"refs/remotes/origin/-f"_s, u"HEAD"_s});
    open();
    QCOMPARE(git_->branches().size(), 2);
    const GitOpResult result = git_->checkoutBranch(localNameOfRemoteBranch(git_->branches().last().name));
    QVERIFY(!result.isSuccess());
    QCOMPARE(repository_->read(u"file"_s), QByteArray("uncommitted\n"));
}

void GitRefusalOperationsTest::staleRowIsNoFile_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name : {"file", ".", "HEAD", "@", "HEAD~0", "*", "f*", "main~0", "@{-1}"}) {
        QTest::newRow(name) << QString::fromUtf8(name);
    }
}

void GitRefusalOperationsTest::staleRowIsNoFile()
{
    QFETCH(QString, name);
    open();
    const GitOpResult result = git_->checkoutBranch(name);
    QCOMPARE(result.message(), u"There is no branch \"%1\" any more."_s.arg(name));
    QCOMPARE(takeError(), result.message());
    QCOMPARE(repository_->read(u"file"_s), QByteArray("uncommitted\n"));
    QCOMPARE(head(), QByteArray("main"));
}

void GitRefusalOperationsTest::branchNamedLikeAFileIsTheBranch()
{
    repository_->git({u"branch"_s, u"file"_s});
    open();
    QVERIFY(git_->checkoutBranch(u"file"_s).isSuccess());
    QCOMPARE(head(), QByteArray("file"));
    QCOMPARE(repository_->read(u"file"_s), QByteArray("uncommitted\n"));
}

void GitRefusalOperationsTest::remoteBranchNamedLikeAFileIsNotGuessed()
{
    repository_->git({u"remote"_s, u"add"_s, u"origin"_s, u"nowhere"_s});
    repository_->git({u"update-ref"_s, u"refs/remotes/origin/file"_s, u"HEAD"_s});
    open();
    const GitOpResult result = git_->checkoutBranch(u"file"_s);
    QVERIFY2(result.message().contains(u"a branch and of a file"_s), qPrintable(result.message()));
    QCOMPARE(repository_->read(u"file"_s), QByteArray("uncommitted\n"));
}

void GitRefusalOperationsTest::remoteBranchNamedLikeADeletedFolderIsNotGuessed()
{
    repository_->write(u"docs/a"_s, "1\n");
    repository_->commitAll(u"second"_s);
    repository_->git({u"config"_s, u"checkout.guess"_s, u"false"_s});
    repository_->git({u"remote"_s, u"add"_s, u"origin"_s, u"nowhere"_s});
    repository_->git({u"update-ref"_s, u"refs/remotes/origin/docs"_s, u"HEAD"_s});
    QVERIFY(QDir(repository_->filePath(u"docs"_s)).removeRecursively());
    open();
    const GitOpResult result = git_->checkoutBranch(u"docs"_s);
    QVERIFY2(result.message().contains(u"a branch and of a file"_s), qPrintable(result.message()));
    QVERIFY(!QFile::exists(repository_->filePath(u"docs"_s)));
}

void GitRefusalOperationsTest::remoteBranchIsFollowed()
{
    repository_->git({u"remote"_s, u"add"_s, u"up/stream"_s, u"nowhere"_s});
    repository_->git({u"update-ref"_s, u"refs/remotes/up/stream/a/topic"_s, u"HEAD"_s});
    open();
    const GitOpResult result = git_->checkoutBranch(u"a/topic"_s);
    QVERIFY2(result.isSuccess(), qPrintable(result.message()));
    QCOMPARE(head(), QByteArray("a/topic"));
}

void GitRefusalOperationsTest::remoteBranchThatIsNoUTF8HidesNoOther()
{
    repository_->git({u"branch"_s, u"topic"_s});
    repository_->git({u"update-ref"_s, pathOfNative("refs/remotes/origin/caf\xe9/topic"), u"HEAD"_s});
    open();
    const GitOpResult result = git_->checkoutBranch(u"topic"_s);
    QVERIFY2(result.isSuccess(), qPrintable(result.message()));
    QCOMPARE(head(), QByteArray("topic"));
}

void GitRefusalOperationsTest::branchThatSharesItsNameIsTheBranch()
{
    repository_->git({u"branch"_s, u"v1"_s});
    repository_->git({u"commit"_s, u"-q"_s, u"--allow-empty"_s, u"-m"_s, u"second"_s});
    repository_->git({u"tag"_s, u"v1"_s});
    open();
    QStringList names;
    for (const GitBranch& branch : git_->branches()) {
        names.append(branch.name);
    }
    QVERIFY(names.contains(u"heads/v1"_s));
    const GitOpResult result = git_->checkoutBranch(u"heads/v1"_s);
    QVERIFY2(result.isSuccess(), qPrintable(result.message()));
    QCOMPARE(repository_->git({u"symbolic-ref"_s, u"HEAD"_s}).trimmed(), QByteArray("refs/heads/v1"));
}

void GitRefusalOperationsTest::branchAndTagOfOneNameAreToldApart()
{
    const TemporaryRepository remote({u"init"_s, u"-q"_s, u"--bare"_s});
    const auto referencesOf = [](const TemporaryRepository& repository) {
        return repository.git({u"for-each-ref"_s, u"--format=%(refname)"_s}).trimmed().split('\n');
    };
    repository_->git({u"remote"_s, u"add"_s, u"origin"_s, remote.path()});
    repository_->git({u"branch"_s, u"v1"_s});
    repository_->git({u"tag"_s, u"v1"_s});
    open();
    const QString tag = git_->tags().first().name;
    QCOMPARE(tag, u"tags/v1"_s);
    const auto verify = [](const GitOpResult& result) { QVERIFY2(result.isSuccess(), qPrintable(result.message())); };
    verify(git_->pushTag(tag, u"origin"_s));
    QCOMPARE(referencesOf(remote), QByteArrayList{"refs/tags/v1"});
    verify(git_->deleteTag(tag));
    QCOMPARE(referencesOf(*repository_), (QByteArrayList{"refs/heads/main", "refs/heads/v1"}));
    repository_->git({u"tag"_s, u"v1"_s});
    verify(git_->renameBranch(u"heads/v1"_s, u"v2"_s));
    QCOMPARE(referencesOf(*repository_), (QByteArrayList{"refs/heads/main", "refs/heads/v2", "refs/tags/v1"}));
    repository_->git({u"branch"_s, u"v1"_s});
    verify(git_->deleteBranch(u"heads/v1"_s, false));
    QCOMPARE(referencesOf(*repository_), (QByteArrayList{"refs/heads/main", "refs/heads/v2", "refs/tags/v1"}));
}

void GitRefusalOperationsTest::branchWithAPlusIsNotPushedByForce()
{
    TemporaryRepository remote({u"init"_s, u"-q"_s, u"--bare"_s});
    repository_->git({u"remote"_s, u"add"_s, u"origin"_s, remote.path()});
    repository_->git({u"commit"_s, u"-q"_s, u"--allow-empty"_s, u"-m"_s, u"theirs"_s});
    repository_->git({u"push"_s, u"-q"_s, u"origin"_s, u"HEAD:refs/heads/x"_s});
    repository_->git({u"branch"_s, u"x"_s, u"HEAD~1"_s});
    repository_->git({u"checkout"_s, u"-q"_s, u"-b"_s, u"+x"_s});
    const QByteArray before = remote.git({u"rev-parse"_s, u"refs/heads/x"_s});
    open();
    std::optional<GitOpResult> result;
    git_->push(git_->branch(), [&result](const GitOpResult& value) { result = value; });
    QTRY_VERIFY(result.has_value());
    QVERIFY2(result->isSuccess(), qPrintable(result->message()));
    QCOMPARE(remote.git({u"rev-parse"_s, u"refs/heads/x"_s}), before);
    QVERIFY(!remote.git({u"rev-parse"_s, u"refs/heads/+x"_s}).isEmpty());
}

const Registered<GitRefusalOperationsTest> registered;

} // namespace git_refusal_operations_test

#include "git_refusal_operations_test.moc"
