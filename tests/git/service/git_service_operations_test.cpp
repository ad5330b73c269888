#include "git/service/git_service.h"
#include "platform/events/worker_pool.h"
#include "platform/files/file_url.h"
#include "platform/files/native_path.h"
#include "support/recording_process_runner.h"
#include "support/temporary_repository.h"
#include "support/test_program.h"

#include <QSignalSpy>
#include <QtTest>

#include <filesystem>
#include <iterator>
#include <semaphore>
#include <sys/stat.h>

namespace git_service_operations_test {

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace kelm;
using namespace kelm::test;

namespace {

/// The refreshes as the subcommands that they run; a refresh is known by its first words.
const QStringList status{u"status --porcelain=v1"_s};
const QStringList branches{u"for-each-ref refs/heads"_s, u"for-each-ref refs/remotes"_s};
const QStringList remotes{u"remote -v"_s};
const QStringList stashes{u"stash list"_s};
const QStringList tags{u"for-each-ref refs/tags"_s};
const QStringList branch{u"rev-parse HEAD"_s};
const QStringList aheadBehind{u"rev-list"_s};
const QStringList all = branch + status + aheadBehind + branches + remotes + stashes + tags;
const QStringList none;

/// A command in short: refreshes as above, everything else in full with its arguments in brackets.
QString shortForm(const QStringList& args)
{
    if (args.value(0) == u"for-each-ref") {
        return u"for-each-ref "_s + args.last();
    }
    if (args.value(0) == u"rev-parse") {
        return u"rev-parse "_s + args.last();
    }
    if (args.value(0) == u"rev-list") {
        return u"rev-list"_s;
    }
    if (args.value(0) == u"stash" && args.value(1) == u"list") {
        return u"stash list"_s;
    }
    if (args == QStringList{u"remote"_s, u"-v"_s} || args == QStringList{u"status"_s, u"--porcelain=v1"_s}) {
        return args.join(u' ');
    }
    return u'[' + args.join(u"]["_s) + u']';
}

QStringList shortForms(const QList<QStringList>& commands)
{
    QStringList forms;
    for (const QStringList& args : commands) {
        forms.append(shortForm(args));
    }
    return forms;
}

/// What refreshes signal, in order.
QStringList signalsOf(const QStringList& refreshes)
{
    static const QHash<QString, QStringList> signalsOfARefresh{
        {branch[0], {u"branch"_s}},     {status[0], {u"status"_s}},   {aheadBehind[0], {u"ahead"_s, u"behind"_s}},
        {branches[0], {u"branches"_s}}, {remotes[0], {u"remotes"_s}}, {stashes[0], {u"stashes"_s}},
        {tags[0], {u"tags"_s}}};
    QStringList names;
    for (const QString& refresh : refreshes) {
        names += signalsOfARefresh.value(refresh);
    }
    return names;
}

/// The members of a service's snapshot that were written, in order.
struct WrittenMembers
{
    explicit WrittenMembers(GitService& service)
    {
        const std::pair<void (GitService::*)(), QString> members[] = {
            {&GitService::branchChanged, u"branch"_s},     {&GitService::statusChanged, u"status"_s},
            {&GitService::aheadChanged, u"ahead"_s},       {&GitService::behindChanged, u"behind"_s},
            {&GitService::branchesChanged, u"branches"_s}, {&GitService::remotesChanged, u"remotes"_s},
            {&GitService::stashesChanged, u"stashes"_s},   {&GitService::tagsChanged, u"tags"_s}};
        for (const auto& [changed, name] : members) {
            QObject::connect(&service, changed, &context, [this, member = name] { names.append(member); });
        }
    }

    QObject context;
    QStringList names;
};

/// An operation, which says what came of it as a text: "success", "failure: …", "true", "false" or "none".
using Operation = std::function<QString(GitService&)>;

QString said(const GitOpResult& result)
{
    return result.isSuccess() ? u"success"_s : u"failure: "_s + result.message();
}

QString said(bool result)
{
    return result ? u"true"_s : u"false"_s;
}

/// Runs an operation of the network and waits for its completion.
template <typename Start>
QString waitFor(Start&& start)
{
    std::optional<GitOpResult> result;
    start([&result](const GitOpResult& value) { result = value; });
    [&] { QTRY_VERIFY(result.has_value()); }();
    return result ? said(*result) : u"no completion"_s;
}

} // namespace

/// Which command each operation runs, and which refreshes follow, whatever came of the command.
class GitServiceOperationsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { useFixedGitEnvironment(); }
    void init();

    void operationRunsItsCommandAndItsRefreshes_data();
    void operationRunsItsCommandAndItsRefreshes();
    void preconditionsComeFirst_data();
    void preconditionsComeFirst();
    void commitThatPrintsAndFailsCountsAsTrue();
    void messageIsNotTrimmed();
    void panelsPushNamesTheBranchWhenItHasNoUpstream();
    void completionMayBeAbsent();
    void completionComesAfterTheRefreshes();
    void completionComesAfterTheRefreshesWithoutARepository();
    void partialPatchGoesToStandardInput_data();
    void partialPatchGoesToStandardInput();
    void partialPatchFailures_data();
    void partialPatchFailures();
    void checkoutTellsThatItCouldNotLook_data();
    void checkoutTellsThatItCouldNotLook();
    void initRepoMakesTheFolder();
    void initRepoTakesAFolderOfAnyBytes();
    void initRepoThatCannotMakeTheFolderRunsNothing();
    void initRepoOnAFileFailsAtTheLaunch();
    void initRepoThatFailsOpensNothing();
    void cloneRunsInTheParentAndOpensTheClone();
    void cloneThatFailsLeavesTheStateAlone();
    void cloneOutlivesTheService();

private:
    std::shared_ptr<RecordingProcessRunner> runner_;
    std::unique_ptr<GitService> service_;
    std::unique_ptr<TemporaryRepository> repository_ = std::make_unique<TemporaryRepository>();

    void openRepository()
    {
        QVERIFY(service_->open(repository_->url()));
        QCoreApplication::sendPostedEvents();
        runner_->takeCommands();
    }
};

void GitServiceOperationsTest::init()
{
    runner_ = std::make_shared<RecordingProcessRunner>();
    service_ = std::make_unique<GitService>(runner_);
}

void GitServiceOperationsTest::operationRunsItsCommandAndItsRefreshes_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<QString>("command");
    QTest::addColumn<QStringList>("refreshes");
    QTest::addColumn<QString>("onSuccess");
    QTest::addColumn<QString>("onFailure");
    QTest::addColumn<QString>("withoutRepository");

    const auto row = [](const char* name, const Operation& operation, const QString& command,
                        const QStringList& refreshes, const QString& onSuccess, const QString& onFailure,
                        const QString& withoutRepository) {
        QTest::newRow(name) << operation << command << refreshes << onSuccess << onFailure << withoutRepository;
    };
    const auto fireRow = [&](const char* name, const std::function<void(GitService&)>& operation,
                             const QString& command, const QStringList& refreshes) {
        const auto call = [operation](GitService& git) {
            operation(git);
            return u"none"_s;
        };
        row(name, call, command, refreshes, u"none"_s, u"none"_s, u"none"_s);
    };
    const auto boolRow = [&](const char* name, const Operation& operation, const QString& command,
                             const QStringList& refreshes) {
        row(name, operation, command, refreshes, u"true"_s, u"false"_s, u"false"_s);
    };
    const auto opRow = [&](const char* name, const Operation& operation, const QString& command,
                           const QStringList& refreshes) {
        row(name, operation, command, refreshes, u"success"_s, u"failure: fatal: no\n"_s, u"failure: no repo open"_s);
    };

    fireRow(
        "stage",
        [](GitService& git) {
            git.stage({u"a b"_s, u"-c"_s});
        },
        u"[add][--][a b][-c]"_s, status);
    fireRow(
        "unstage", [](GitService& git) { git.unstage({u"a"_s}); }, u"[reset][HEAD][--][a]"_s, status);
    fireRow(
        "stage all", [](GitService& git) { git.stageAll(); }, u"[add][-A]"_s, status);
    fireRow(
        "discard changes", [](GitService& git) { git.discardChanges({u"a"_s}); }, u"[checkout][--][a]"_s, status);
    fireRow(
        "mark resolved", [](GitService& git) { git.markResolved({u"a"_s}); }, u"[add][--][a]"_s, status);

    boolRow(
        "commit", [](GitService& git) { return said(git.commit(u"m 한\n\nb"_s)); }, u"[commit][-m][m 한\n\nb]"_s, all);
    boolRow(
        "amend", [](GitService& git) { return said(git.amendCommit(u"m"_s)); }, u"[commit][--amend][-m][m]"_s, all);
    boolRow(
        "amend without a message", [](GitService& git) { return said(git.amendCommit({})); },
        u"[commit][--amend][--no-edit]"_s, all);
    boolRow(
        "amend with an empty message", [](GitService& git) { return said(git.amendCommit(u""_s)); },
        u"[commit][--amend][--no-edit]"_s, all);

    opRow(
        "create branch with checkout", [](GitService& git) { return said(git.createBranch(u"b"_s, true)); },
        u"[checkout][-b][b]"_s, all);
    opRow(
        "create branch", [](GitService& git) { return said(git.createBranch(u"b"_s, false)); }, u"[branch][b]"_s,
        branches);
    opRow(
        "checkout branch", [](GitService& git) { return said(git.checkoutBranch(u"b/c"_s)); }, u"[checkout][b/c]"_s,
        all);
    opRow(
        "delete branch", [](GitService& git) { return said(git.deleteBranch(u"b"_s, false)); }, u"[branch][-d][b]"_s,
        branches);
    opRow(
        "delete branch by force", [](GitService& git) { return said(git.deleteBranch(u"b"_s, true)); },
        u"[branch][-D][b]"_s, branches);
    opRow(
        "rename branch", [](GitService& git) { return said(git.renameBranch(u"a"_s, u"b"_s)); },
        u"[branch][-m][a][b]"_s, branch + branches);
    opRow(
        "merge branch", [](GitService& git) { return said(git.mergeBranch(u"b"_s)); }, u"[merge][--no-edit][b]"_s, all);
    opRow(
        "abort merge", [](GitService& git) { return said(git.abortMerge()); }, u"[merge][--abort]"_s, all);
    opRow(
        "add remote", [](GitService& git) { return said(git.addRemote(u"o"_s, u"u"_s)); }, u"[remote][add][o][u]"_s,
        remotes);
    opRow(
        "remove remote", [](GitService& git) { return said(git.removeRemote(u"o"_s)); }, u"[remote][remove][o]"_s,
        remotes);
    opRow(
        "set the URL of a remote", [](GitService& git) { return said(git.setRemoteURL(u"o"_s, u"u"_s)); },
        u"[remote][set-url][o][u]"_s, remotes);
    opRow(
        "stash", [](GitService& git) { return said(git.stashPush({}, false)); }, u"[stash][push]"_s, all);
    opRow(
        "stash with an empty message", [](GitService& git) { return said(git.stashPush(u""_s, false)); },
        u"[stash][push]"_s, all);
    opRow(
        "stash with a message", [](GitService& git) { return said(git.stashPush(u"m"_s, false)); },
        u"[stash][push][-m][m]"_s, all);
    opRow(
        "stash untracked files", [](GitService& git) { return said(git.stashPush({}, true)); }, u"[stash][push][-u]"_s,
        all);
    opRow(
        "stash with all", [](GitService& git) { return said(git.stashPush(u"m"_s, true)); },
        u"[stash][push][-u][-m][m]"_s, all);
    opRow(
        "stash pop", [](GitService& git) { return said(git.stashPop(u"stash@{1}"_s)); }, u"[stash][pop][stash@{1}]"_s,
        all);
    opRow(
        "stash apply", [](GitService& git) { return said(git.stashApply(u"stash@{1}"_s)); },
        u"[stash][apply][stash@{1}]"_s, status);
    opRow(
        "stash drop", [](GitService& git) { return said(git.stashDrop(u"stash@{1}"_s)); },
        u"[stash][drop][stash@{1}]"_s, stashes);
    opRow(
        "create tag", [](GitService& git) { return said(git.createTag(u"v"_s, {})); }, u"[tag][v]"_s, tags);
    opRow(
        "create tag with an empty message", [](GitService& git) { return said(git.createTag(u"v"_s, u""_s)); },
        u"[tag][v]"_s, tags);
    opRow(
        "create annotated tag", [](GitService& git) { return said(git.createTag(u"v"_s, u"m"_s)); },
        u"[tag][-a][v][-m][m]"_s, tags);
    opRow(
        "delete tag", [](GitService& git) { return said(git.deleteTag(u"v"_s)); }, u"[tag][-d][v]"_s, tags);
    opRow(
        "push tag", [](GitService& git) { return said(git.pushTag(u"v"_s, u"o"_s)); }, u"[push][o][refs/tags/v]"_s,
        none);
    opRow(
        "set user name", [](GitService& git) { return said(git.setUserName(u"A B"_s)); }, u"[config][user.name][A B]"_s,
        none);
    opRow(
        "set user email", [](GitService& git) { return said(git.setUserEmail(u"a@b"_s)); },
        u"[config][user.email][a@b]"_s, none);

    const QStringList afterTransfer = aheadBehind + branches;
    opRow(
        "fetch", [](GitService& git) { return waitFor([&](auto done) { git.fetch({}, false, done); }); }, u"[fetch]"_s,
        afterTransfer);
    opRow(
        "fetch from one remote with pruning",
        [](GitService& git) { return waitFor([&](auto done) { git.fetch(u"o"_s, true, done); }); },
        u"[fetch][--prune][o]"_s, afterTransfer);
    opRow(
        "pull", [](GitService& git) { return waitFor([&](auto done) { git.pull(false, done); }); }, u"[pull]"_s, all);
    opRow(
        "pull with rebase", [](GitService& git) { return waitFor([&](auto done) { git.pull(true, done); }); },
        u"[pull][--rebase]"_s, all);
    opRow(
        "push", [](GitService& git) { return waitFor([&](auto done) { git.push({}, done); }); }, u"[push]"_s,
        afterTransfer);
    opRow(
        "push with an empty upstream",
        [](GitService& git) { return waitFor([&](auto done) { git.push(u""_s, done); }); }, u"[push]"_s, afterTransfer);
    opRow(
        "push with upstream", [](GitService& git) { return waitFor([&](auto done) { git.push(u"b"_s, done); }); },
        u"[push][-u][origin][b]"_s, afterTransfer);
}

void GitServiceOperationsTest::operationRunsItsCommandAndItsRefreshes()
{
    QFETCH(Operation, operation);
    QFETCH(QString, command);
    QFETCH(QStringList, refreshes);
    QFETCH(QString, onSuccess);
    QFETCH(QString, onFailure);
    QFETCH(QString, withoutRepository);

    // Without a repository no process starts, and the refreshes that still run empty their members.
    WrittenMembers written(*service_);
    QCOMPARE(operation(*service_), withoutRepository);
    QVERIFY(runner_->takeCommands().isEmpty());
    QCOMPARE(written.names, signalsOf(refreshes));

    openRepository();
    // The branch that is checked out is looked for first.
    const bool looksFirst = command == u"[checkout][b/c]";
    const QStringList expected = (looksFirst ? QStringList{u"for-each-ref refs/remotes/**/b/c"_s} : QStringList()) +
                                 QStringList{command} + refreshes;
    const auto isLook = [](const ProcessCommand& each) { return each.arguments.contains(u"refs/heads/b/c"_s); };
    runner_->setAnswer(
        [isLook](const ProcessCommand& each) { return ended(0, isLook(each) ? "refs/heads/b/c\n" : ""); });
    QCOMPARE(operation(*service_), onSuccess);
    QList<QStringList> arguments;
    for (const ProcessCommand& each : runner_->takeCommands()) {
        QCOMPARE(each, GitService::makeProcess(each.arguments, repository_->path()));
        arguments.append(each.arguments);
    }
    QCOMPARE(shortForms(arguments), expected);

    runner_->setAnswer([command, isLook](const ProcessCommand& each) {
        return shortForm(each.arguments) == command ? ended(128, "", "fatal: no\n")
               : isLook(each)                       ? ended(0, "refs/heads/b/c\n")
                                                    : ended(0, "x\n");
    });
    QCOMPARE(operation(*service_), onFailure);
    QCOMPARE(shortForms(runner_->takeArguments()), expected);
    QTRY_COMPARE(service_->lastError(), u"fatal: no\n"_s);
    QVERIFY(!service_->isBusy());
}

void GitServiceOperationsTest::preconditionsComeFirst_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<QString>("answer");
    const auto row = [](const char* name, const Operation& operation, const QString& answer) {
        QTest::newRow(name) << operation << answer;
    };
    row(
        "commit with an empty message", [](GitService& git) { return said(git.commit(u""_s)); }, u"false"_s);
    row(
        "branch with an empty name", [](GitService& git) { return said(git.createBranch(u""_s, false)); },
        u"failure: branch name is empty"_s);
    row(
        "branch with an empty name and checkout", [](GitService& git) { return said(git.createBranch(u""_s, true)); },
        u"failure: branch name is empty"_s);
    row(
        "tag with an empty name", [](GitService& git) { return said(git.createTag(u""_s, u"m"_s)); },
        u"failure: tag name is empty"_s);
}

void GitServiceOperationsTest::preconditionsComeFirst()
{
    QFETCH(Operation, operation);
    QFETCH(QString, answer);
    QCOMPARE(operation(*service_), answer);
    openRepository();
    QCOMPARE(operation(*service_), answer);
    QCoreApplication::sendPostedEvents();
    QVERIFY(runner_->takeCommands().isEmpty());
    QVERIFY(!service_->lastError());
}

void GitServiceOperationsTest::commitThatPrintsAndFailsCountsAsTrue()
{
    openRepository();
    runner_->setAnswer([](const ProcessCommand&) { return ended(1, "nothing to commit, working tree clean\n"); });
    QVERIFY(service_->commit(u"m"_s));
    QVERIFY(service_->amendCommit(u"m"_s));
    QCoreApplication::sendPostedEvents();
    QVERIFY(!service_->lastError());
}

void GitServiceOperationsTest::messageIsNotTrimmed()
{
    openRepository();
    service_->commit(u" \n"_s);
    QCOMPARE(runner_->takeArguments().front(), (QStringList{u"commit"_s, u"-m"_s, u" \n"_s}));
}

void GitServiceOperationsTest::panelsPushNamesTheBranchWhenItHasNoUpstream()
{
    const auto push = [this](const QByteArray& remoteLines) {
        runner_->setAnswer([remoteLines](const ProcessCommand& command) {
            const QString form = shortForm(command.arguments);
            return ended(0, form == branch.front()     ? QByteArray("topic\n")
                            : form == branches.front() ? withNulls("topic#*#\n")
                            : form == remotes.front()  ? remoteLines
                                                       : QByteArray());
        });
        openRepository();
        waitFor([&](auto done) {
            service_->push(service_->upstreamMissingForCurrent() ? std::optional(service_->branch()) : std::nullopt,
                           done);
        });
        return runner_->takeArguments().front();
    };
    // The remote is "origin" whatever remotes there are.
    QCOMPARE(push("other\tu (fetch)\n"), (QStringList{u"push"_s, u"-u"_s, u"origin"_s, u"topic"_s}));
    QCOMPARE(push(""), QStringList{u"push"_s});
}

void GitServiceOperationsTest::completionMayBeAbsent()
{
    // Also where nothing is open, which calls back at once.
    service_->fetch({}, false);
    service_->pull(true);
    service_->push({});
    openRepository();
    service_->fetch({}, false);
    service_->pull(true);
    service_->push({});
    QVERIFY(commonWorkers().waitForDone(20s));
    QTRY_VERIFY(!service_->isBusy());
    QCoreApplication::sendPostedEvents();
    QCOMPARE(runner_->takeCommands().size(), 3 + 2 * (aheadBehind + branches).size() + all.size());
}

void GitServiceOperationsTest::completionComesAfterTheRefreshes()
{
    openRepository();
    QStringList ranBefore;
    bool done = false;
    service_->pull(true, [&](const GitOpResult&) {
        ranBefore = shortForms(runner_->takeArguments());
        done = true;
    });
    QTRY_VERIFY(done);
    QCOMPARE(ranBefore, QStringList{u"[pull][--rebase]"_s} + all);
}

void GitServiceOperationsTest::completionComesAfterTheRefreshesWithoutARepository()
{
    WrittenMembers written(*service_);
    QStringList writtenBefore;
    const GitService::Completion done = [&](const GitOpResult& result) {
        QCOMPARE(result, GitOpResult::failure(u"no repo open"_s));
        writtenBefore = std::exchange(written.names, {});
    };
    service_->fetch({}, false, done);
    QCOMPARE(writtenBefore, signalsOf(aheadBehind + branches));
    service_->push({}, done);
    QCOMPARE(writtenBefore, signalsOf(aheadBehind + branches));
    service_->pull(true, done);
    QCOMPARE(writtenBefore, signalsOf(all));
    QVERIFY(written.names.isEmpty());
}

void GitServiceOperationsTest::partialPatchGoesToStandardInput_data()
{
    QTest::addColumn<QString>("patch");
    QTest::addColumn<bool>("reverse");
    QTest::addColumn<QByteArray>("input");
    QTest::newRow("forwards") << u"diff --git\n한\n"_s << false << QByteArray("diff --git\n한\n");
    QTest::newRow("backwards") << u"x\n"_s << true << QByteArray("x\n");
    QTest::newRow("what has no UTF-8 form is an empty patch") << u"x"_s + QChar(0xD800) << false << QByteArray("");
}

void GitServiceOperationsTest::partialPatchGoesToStandardInput()
{
    QFETCH(QString, patch);
    QFETCH(bool, reverse);
    QFETCH(QByteArray, input);
    openRepository();
    QCOMPARE(service_->applyPartialPatch(patch, reverse), GitOpResult::success());
    const auto commands = runner_->takeCommands();
    QCOMPARE(commands.size(), 2);
    QStringList args{u"apply"_s, u"--cached"_s, u"--whitespace=nowarn"_s, u"--unidiff-zero"_s};
    if (reverse) {
        args.append(u"--reverse"_s);
    }
    ProcessCommand expected = GitService::makeProcess(args + QStringList{u"-"_s}, repository_->path());
    expected.standardInput = input;
    QCOMPARE(commands[0], expected);
    QCOMPARE(shortForm(commands[1].arguments), status.front());
}

void GitServiceOperationsTest::partialPatchFailures_data()
{
    QTest::addColumn<ProcessResult>("answer");
    QTest::addColumn<QString>("message");
    QTest::addColumn<bool>("setsLastError");
    QTest::newRow("refused") << ended(1, "out", "error: corrupt patch at line 5\n")
                             << u"error: corrupt patch at line 5\n"_s << true;
    QTest::newRow("refused with output only") << ended(1, "out") << u"git apply failed (exit 1)"_s << true;
    QTest::newRow("refused, error not UTF-8") << ended(128, "", "\xFF") << u"git apply failed (exit 128)"_s << true;
    QTest::newRow("launch failure") << ProcessResult{.launchError = u"no git"_s} << u"no git"_s << false;
    QTest::newRow("input not taken") << ProcessResult{.inputError = u"Broken pipe"_s} << u"Broken pipe"_s << false;
}

void GitServiceOperationsTest::partialPatchFailures()
{
    QFETCH(ProcessResult, answer);
    QFETCH(QString, message);
    QFETCH(bool, setsLastError);
    openRepository();
    runner_->setAnswer([answer](const ProcessCommand&) { return answer; });
    QCOMPARE(service_->applyPartialPatch(u"x"_s, false), GitOpResult::failure(message));
    // No refresh follows a failure.
    QCOMPARE(runner_->takeCommands().size(), 1);
    QVERIFY(!service_->lastError());
    QCoreApplication::sendPostedEvents();
    QCOMPARE(service_->lastError(), setsLastError ? std::optional(message) : std::nullopt);
}

void GitServiceOperationsTest::checkoutTellsThatItCouldNotLook_data()
{
    QTest::addColumn<ProcessResult>("answer");
    QTest::addColumn<QString>("message");
    QTest::addColumn<bool>("setsLastError");
    QTest::newRow("launch failure") << ProcessResult{.launchError = u"no folder"_s} << u"no folder"_s << false;
    QTest::newRow("stopped") << ProcessResult{.exit = {15, true}, .isStopped = true}
                             << u"git for-each-ref was stopped."_s << true;
    QTest::newRow("refused") << ended(128, "", "fatal: no\n") << u"fatal: no\n"_s << true;
    QTest::newRow("refused with output") << ended(128, "refs/heads/b\n", "fatal: no\n") << u"fatal: no\n"_s << true;
    QTest::newRow("refused without a word") << ended(129) << u"git exited 129"_s << true;
}

void GitServiceOperationsTest::checkoutTellsThatItCouldNotLook()
{
    QFETCH(ProcessResult, answer);
    QFETCH(QString, message);
    QFETCH(bool, setsLastError);
    openRepository();
    runner_->setAnswer([answer](const ProcessCommand& command) {
        return command.arguments.contains(u"refs/heads/b"_s) ? answer : ended(0);
    });
    QCOMPARE(service_->checkoutBranch(u"b"_s), GitOpResult::failure(message));
    QCOMPARE(shortForms(runner_->takeArguments()), QStringList{u"for-each-ref refs/remotes/**/b"_s} + all);
    QCoreApplication::sendPostedEvents();
    QCOMPARE(service_->lastError(), setsLastError ? std::optional(message) : std::nullopt);
}

void GitServiceOperationsTest::initRepoMakesTheFolder()
{
    QTemporaryDir parent;
    const QString folder = parent.filePath(u"a/b 한"_s);
    runner_->setAnswer([folder](const ProcessCommand& command) {
        if (command.arguments.front() == u"init") {
            QDir(folder).mkdir(u".git"_s);
        }
        return ended(0);
    });
    QCOMPARE(service_->initRepo(QUrl::fromLocalFile(folder), u"main"_s), GitOpResult::success());
    QVERIFY(QFileInfo(folder).isDir());
    const auto commands = runner_->takeCommands();
    QCOMPARE(commands.front(), GitService::makeProcess({u"init"_s, u"-b"_s, u"main"_s}, folder));
    QList<QStringList> rest;
    for (const ProcessCommand& command : commands.sliced(1)) {
        rest.append(command.arguments);
    }
    QCOMPARE(shortForms(rest), all);
    QCOMPARE(service_->repoURL(), std::optional(QUrl::fromLocalFile(folder)));
}

void GitServiceOperationsTest::initRepoTakesAFolderOfAnyBytes()
{
    const QTemporaryDir parent;
    const QString there = parent.path() + u'/' + pathOfNative("caf\xe9");
    const QString below = there + pathOfNative("/\xff below");
    QCOMPARE(::mkdir(nativePath(there).constData(), 0700), 0);
    GitService service(ProcessRunner::sharedSystem());
    for (const QString& folder : {there, below}) {
        const GitOpResult result = service.initRepo(urlOfFile(folder), u"main"_s);
        QVERIFY2(result.isSuccess(), qPrintable(result.message()));
        QVERIFY(isFolder(folder + u"/.git"_s));
        QCOMPARE(service.repoURL(), std::optional(urlOfFile(folder)));
    }
    // And beside it there is no other.
    const auto entries = std::filesystem::directory_iterator(nativePath(parent.path()).toStdString());
    QVERIFY(std::distance(begin(entries), end(entries)) == 1);
    // The toolkit does not take away what it cannot name.
    std::filesystem::remove_all(nativePath(there).toStdString());
}

void GitServiceOperationsTest::initRepoThatCannotMakeTheFolderRunsNothing()
{
    QTemporaryDir parent;
    QFile file(parent.filePath(u"file"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    const GitOpResult result = service_->initRepo(QUrl::fromLocalFile(parent.filePath(u"file/below"_s)), u"main"_s);
    QVERIFY(!result.isSuccess());
    QVERIFY2(result.message().contains(qt_error_string(ENOTDIR)), qPrintable(result.message()));
    QVERIFY(runner_->takeCommands().isEmpty());
    QCoreApplication::sendPostedEvents();
    QVERIFY(!service_->lastError());
}

void GitServiceOperationsTest::initRepoOnAFileFailsAtTheLaunch()
{
    QTemporaryDir parent;
    QFile file(parent.filePath(u"file"_s));
    QVERIFY(file.open(QIODevice::ReadWrite) && file.write("text") == 4 && file.flush());
    const QUrl location = QUrl::fromLocalFile(file.fileName());

    // The command is tried in what is there.
    runner_->setAnswer([](const ProcessCommand&) { return ProcessResult{.launchError = u"no folder"_s}; });
    QCOMPARE(service_->initRepo(location, u"main"_s), GitOpResult::failure(u"no folder"_s));
    QCOMPARE(runner_->takeCommands(),
             (QList{GitService::makeProcess({u"init"_s, u"-b"_s, u"main"_s}, file.fileName())}));

    // And so it goes with git itself.
    GitService service(ProcessRunner::sharedSystem());
    const GitOpResult result = service.initRepo(location, u"main"_s);
    QVERIFY(!result.isSuccess() && !result.message().isEmpty());
    QCoreApplication::sendPostedEvents();
    for (GitService* const each : {service_.get(), &service}) {
        QVERIFY(!each->lastError());
        QVERIFY(!each->repoURL());
    }
    QCOMPARE(QDir(parent.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList{u"file"_s});
    QVERIFY(file.seek(0));
    QCOMPARE(file.readAll(), QByteArray("text"));
}

void GitServiceOperationsTest::initRepoThatFailsOpensNothing()
{
    openRepository();
    runner_->setAnswer([](const ProcessCommand&) { return ended(128, "", "fatal: x\n"); });
    QTemporaryDir folder;
    QCOMPARE(service_->initRepo(QUrl::fromLocalFile(folder.path()), u"bad name"_s),
             GitOpResult::failure(u"fatal: x\n"_s));
    QCOMPARE(runner_->takeCommands().size(), 1);
    QCOMPARE(service_->repoURL(), std::optional(repository_->url()));
    QTRY_COMPARE(service_->lastError(), u"fatal: x\n"_s);
}

void GitServiceOperationsTest::cloneRunsInTheParentAndOpensTheClone()
{
    QTemporaryDir parent;
    const QString folder = parent.filePath(u"the clone"_s);
    runner_->setAnswer([folder](const ProcessCommand& command) {
        if (command.arguments.front() == u"clone") {
            QDir().mkpath(folder + u"/.git"_s);
        }
        return ended(0);
    });
    QSignalSpy busy(service_.get(), &GitService::isBusyChanged);
    bool wasOpenInTheCompletion = false;
    QCOMPARE(waitFor([&](auto done) {
                 service_->cloneRepo(u" https://h/r.git "_s, QUrl::fromLocalFile(folder),
                                     [&, done](const GitOpResult& result) {
                                         wasOpenInTheCompletion = service_->repoURL().has_value();
                                         done(result);
                                     });
                 QVERIFY(!service_->repoURL());
             }),
             u"success"_s);
    QVERIFY(wasOpenInTheCompletion);
    QCOMPARE(busy.count(), 0);
    const auto commands = runner_->takeCommands();
    QCOMPARE(commands.front(),
             GitService::makeProcess({u"clone"_s, u" https://h/r.git "_s, u"the clone"_s}, parent.path()));
    QCOMPARE(commands.size(), 1 + all.size());
    QCOMPARE(service_->repoURL(), std::optional(QUrl::fromLocalFile(folder)));
}

void GitServiceOperationsTest::cloneThatFailsLeavesTheStateAlone()
{
    openRepository();
    runner_->setAnswer([](const ProcessCommand&) { return ended(128, "", "fatal: x"); });
    QCOMPARE(waitFor([&](auto done) { service_->cloneRepo(u"u"_s, QUrl::fromLocalFile(u"/tmp/x/"_s), done); }),
             u"failure: fatal: x"_s);
    QCOMPARE(runner_->takeCommands(), (QList{GitService::makeProcess({u"clone"_s, u"u"_s, u"x"_s}, u"/tmp"_s)}));
    QCOMPARE(service_->repoURL(), std::optional(repository_->url()));
    QCOMPARE(service_->lastError(), u"fatal: x"_s);
    // Without a completion nothing is missed.
    service_->cloneRepo(u"u"_s, QUrl::fromLocalFile(u"/tmp/x"_s));
    QVERIFY(commonWorkers().waitForDone(20s));
    QCoreApplication::sendPostedEvents();
    QCOMPARE(runner_->takeCommands().size(), 1);
}

void GitServiceOperationsTest::cloneOutlivesTheService()
{
    std::counting_semaphore<> started{0};
    std::counting_semaphore<> release{0};
    runner_->setAnswer([&](const ProcessCommand&) {
        started.release();
        release.acquire();
        return ended(0);
    });
    QCOMPARE(waitFor([&](auto done) {
                 service_->cloneRepo(u"u"_s, QUrl::fromLocalFile(u"/tmp/x"_s), done);
                 started.acquire();
                 service_.reset();
                 release.release();
             }),
             u"success"_s);
    QCOMPARE(runner_->takeCommands().size(), 1);
}

const kelm::test::Registered<GitServiceOperationsTest> registered;

} // namespace git_service_operations_test

#include "git_service_operations_test.moc"
