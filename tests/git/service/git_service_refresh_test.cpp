#include "git/service/git_service.h"
#include "support/recording_process_runner.h"
#include "support/temporary_repository.h"
#include "support/test_program.h"

#include <QSignalSpy>
#include <QtTest>

namespace git_service_refresh_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

namespace {

const QStringList branchCommand{u"rev-parse"_s, u"--abbrev-ref"_s, u"HEAD"_s};
const QStringList statusCommand{u"status"_s, u"--porcelain=v1"_s};
const QStringList aheadBehindCommand{u"rev-list"_s, u"--left-right"_s, u"--count"_s, u"@{u}...HEAD"_s};
const QStringList localCommand{u"for-each-ref"_s, u"--format=%(refname:short)%00%(HEAD)%00%(upstream:short)"_s,
                               u"refs/heads"_s};
const QStringList remoteBranchesCommand{u"for-each-ref"_s, u"--format=%(refname:short)"_s, u"refs/remotes"_s};
const QStringList remotesCommand{u"remote"_s, u"-v"_s};
const QStringList stashesCommand{u"stash"_s, u"list"_s, u"--pretty=format:%gd%x1f%s"_s};
const QStringList tagsCommand{
    u"for-each-ref"_s,
    u"--format=%(refname:short)%00%(objecttype)%00%(*objectname)%00%(objectname)%00%(contents:subject)"_s,
    u"refs/tags"_s};

const QList<QStringList> allCommands{branchCommand,         statusCommand,  aheadBehindCommand, localCommand,
                                     remoteBranchesCommand, remotesCommand, stashesCommand,     tagsCommand};

/// What a healthy repository answers.
QByteArray healthyOutput(const QStringList& command)
{
    if (command == branchCommand) {
        return "main\n";
    }
    if (command == statusCommand) {
        return " M a\nUU b\nAU c\nAA d\n";
    }
    if (command == aheadBehindCommand) {
        return "3\t5\n";
    }
    if (command == localCommand) {
        return withNulls("main#*#origin/main\ntopic# #\n");
    }
    if (command == remoteBranchesCommand) {
        return "origin/HEAD\norigin/main\n";
    }
    if (command == remotesCommand) {
        return "origin\turl (fetch)\norigin\turl (push)\n";
    }
    if (command == stashesCommand) {
        return "stash@{0}\x1fWIP";
    }
    return withNulls("v1#commit##abc#s\n");
}

} // namespace

/// Which commands fill the snapshot, and what becomes of their answers.
class GitServiceRefreshTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { useFixedGitEnvironment(); }
    void init();

    void refreshAllRunsEverythingInOrder();
    void refreshAllRunsEverythingThoughAllFails();
    void eachRefreshRunsItsOwnCommand_data();
    void eachRefreshRunsItsOwnCommand();
    void failureEmptiesTheMember();
    void branchIsTrimmed_data();
    void branchIsTrimmed();
    void failedCountsAreZeroAndMalformedOnesStay();
    void failedLocalBranchesEndTheRefresh();
    void failedRemoteBranchesLeaveTheLocalOnes();
    void failureWithOutputIsParsed();
    void readingCommands_data();
    void readingCommands();
    void conflictedFilesAreThoseWithAConflict();
    void upstreamIsMissing_data();
    void upstreamIsMissing();
    void openLooksTenFoldersUp_data();
    void openLooksTenFoldersUp();
    void openTakesAFileForARepositoryToo();
    void openOfTheRootFindsNothing();
    void openWithoutAFolderFindsNothing();
    void failedOpenClearsTheState();
    void clearStateKeepsBusyAndError();
    void clearStateWritesInOrder();

private:
    std::shared_ptr<RecordingProcessRunner> runner_;
    std::unique_ptr<GitService> service_;
    std::unique_ptr<TemporaryRepository> repository_ = std::make_unique<TemporaryRepository>();

    void answerHealthily()
    {
        runner_->setAnswer([](const ProcessCommand& command) { return ended(0, healthyOutput(command.arguments)); });
    }
    void openHealthily()
    {
        answerHealthily();
        QVERIFY(service_->open(repository_->url()));
        runner_->takeCommands();
    }
};

void GitServiceRefreshTest::init()
{
    runner_ = std::make_shared<RecordingProcessRunner>();
    service_ = std::make_unique<GitService>(runner_);
}

void GitServiceRefreshTest::refreshAllRunsEverythingInOrder()
{
    openHealthily();
    service_->refreshAll();
    const auto commands = runner_->takeCommands();
    QList<QStringList> arguments;
    for (const ProcessCommand& command : commands) {
        QCOMPARE(command, GitService::makeProcess(command.arguments, repository_->path()));
        arguments.append(command.arguments);
    }
    QCOMPARE(arguments, allCommands);

    QCOMPARE(service_->branch(), u"main"_s);
    QCOMPARE(service_->status().size(), 4);
    QCOMPARE(service_->behind(), 3);
    QCOMPARE(service_->ahead(), 5);
    QCOMPARE(service_->branches().size(), 3);
    QVERIFY(service_->branches()[0].isCurrent);
    QVERIFY(service_->branches()[2].isRemote);
    QCOMPARE(service_->remotes().size(), 1);
    QCOMPARE(service_->stashes(), (QList<GitStash>{{0, u"stash@{0}"_s, u"WIP"_s}}));
    QCOMPARE(service_->tags().size(), 1);
}

void GitServiceRefreshTest::refreshAllRunsEverythingThoughAllFails()
{
    openHealthily();
    runner_->setAnswer([](const ProcessCommand&) { return ended(128, "", "fatal"); });
    service_->refreshAll();
    QList<QStringList> expected = allCommands;
    expected.removeOne(remoteBranchesCommand);
    QCOMPARE(runner_->takeArguments(), expected);
}

void GitServiceRefreshTest::eachRefreshRunsItsOwnCommand_data()
{
    using Refresh = void (GitService::*)();
    QTest::addColumn<Refresh>("refresh");
    QTest::addColumn<QList<QStringList>>("commands");
    QTest::addColumn<QByteArrayList>("written");
    const auto row = [](const char* name, Refresh refresh, const QList<QStringList>& commands,
                        const QByteArrayList& written) { QTest::newRow(name) << refresh << commands << written; };
    row("branch", &GitService::refreshBranch, {branchCommand}, {"branch"});
    row("status", &GitService::refreshStatus, {statusCommand}, {"status"});
    row("ahead and behind", &GitService::refreshAheadBehind, {aheadBehindCommand}, {"ahead", "behind"});
    row("branches", &GitService::refreshBranches, {localCommand, remoteBranchesCommand}, {"branches"});
    row("remotes", &GitService::refreshRemotes, {remotesCommand}, {"remotes"});
    row("stashes", &GitService::refreshStashes, {stashesCommand}, {"stashes"});
    row("tags", &GitService::refreshTags, {tagsCommand}, {"tags"});
}

void GitServiceRefreshTest::eachRefreshRunsItsOwnCommand()
{
    using Refresh = void (GitService::*)();
    QFETCH(Refresh, refresh);
    QFETCH(QList<QStringList>, commands);
    QFETCH(QByteArrayList, written);
    openHealthily();
    std::vector<std::pair<QByteArray, std::unique_ptr<QSignalSpy>>> spies;
    const QMetaObject* type = service_->metaObject();
    for (int index = type->propertyOffset(); index < type->propertyCount(); ++index) {
        const QMetaProperty property = type->property(index);
        spies.emplace_back(property.name(), std::make_unique<QSignalSpy>(service_.get(), property.notifySignal()));
    }
    (service_.get()->*refresh)();
    QCOMPARE(runner_->takeArguments(), commands);
    for (const auto& [name, spy] : spies) {
        QVERIFY2(spy->count() == (written.contains(name) ? 1 : 0), name.constData());
    }
}

void GitServiceRefreshTest::failureEmptiesTheMember()
{
    openHealthily();
    service_->refreshAll();
    runner_->setAnswer([](const ProcessCommand&) { return ended(1); });
    service_->refreshAll();
    QCOMPARE(service_->branch(), QString());
    QVERIFY(service_->status().isEmpty());
    QCOMPARE(service_->ahead(), 0);
    QCOMPARE(service_->behind(), 0);
    QVERIFY(service_->branches().isEmpty());
    QVERIFY(service_->remotes().isEmpty());
    QVERIFY(service_->stashes().isEmpty());
    QVERIFY(service_->tags().isEmpty());
    QVERIFY(service_->repoURL().has_value());
}

void GitServiceRefreshTest::branchIsTrimmed_data()
{
    QTest::addColumn<QByteArray>("output");
    QTest::addColumn<QString>("branch");
    QTest::newRow("newline") << QByteArray("main\n") << u"main"_s;
    QTest::newRow("blanks of all kinds") << QByteArray(" \t\xC2\xA0\xE3\x80\x80main\r\n\xE2\x80\xA8") << u"main"_s;
    QTest::newRow("inside stays") << QByteArray("a b\n") << u"a b"_s;
    QTest::newRow("nothing") << QByteArray() << QString();
    QTest::newRow("detached") << QByteArray("HEAD\n") << u"HEAD"_s;
}

void GitServiceRefreshTest::branchIsTrimmed()
{
    QFETCH(QByteArray, output);
    QFETCH(QString, branch);
    openHealthily();
    runner_->setAnswer([output](const ProcessCommand&) { return ended(0, output); });
    service_->refreshBranch();
    QCOMPARE(service_->branch(), branch);
}

void GitServiceRefreshTest::failedCountsAreZeroAndMalformedOnesStay()
{
    openHealthily();
    service_->refreshAheadBehind();
    QSignalSpy ahead(service_.get(), &GitService::aheadChanged);
    QSignalSpy behind(service_.get(), &GitService::behindChanged);
    runner_->setAnswer([](const ProcessCommand&) { return ended(0, "7\n"); });
    service_->refreshAheadBehind();
    QCOMPARE(service_->behind(), 3);
    QCOMPARE(service_->ahead(), 5);
    QCOMPARE(ahead.count() + behind.count(), 0);
    runner_->setAnswer([](const ProcessCommand&) { return ended(128, "", "fatal: no upstream"); });
    service_->refreshAheadBehind();
    QCOMPARE(service_->behind(), 0);
    QCOMPARE(service_->ahead(), 0);
}

void GitServiceRefreshTest::failedLocalBranchesEndTheRefresh()
{
    openHealthily();
    runner_->setAnswer([](const ProcessCommand& command) {
        return command.arguments == localCommand ? ended(1) : ended(0, healthyOutput(command.arguments));
    });
    service_->refreshBranches();
    QCOMPARE(runner_->takeArguments(), QList<QStringList>{localCommand});
    QVERIFY(service_->branches().isEmpty());
}

void GitServiceRefreshTest::failedRemoteBranchesLeaveTheLocalOnes()
{
    openHealthily();
    runner_->setAnswer([](const ProcessCommand& command) {
        return command.arguments == remoteBranchesCommand ? ended(1) : ended(0, healthyOutput(command.arguments));
    });
    service_->refreshBranches();
    QCOMPARE(service_->branches().size(), 2);
}

void GitServiceRefreshTest::failureWithOutputIsParsed()
{
    openHealthily();
    runner_->setAnswer([](const ProcessCommand&) { return ended(1, "?? half\n", "err"); });
    service_->refreshStatus();
    QCOMPARE(service_->status().size(), 1);
    QTRY_COMPARE(service_->lastError(), u"err"_s);
}

void GitServiceRefreshTest::readingCommands_data()
{
    using Read = std::function<QVariant(GitService&)>;
    QTest::addColumn<Read>("read");
    QTest::addColumn<QStringList>("command");
    QTest::addColumn<QByteArray>("output");
    QTest::addColumn<QVariant>("result");
    QTest::addColumn<QVariant>("resultOfFailure");
    const auto row = [](const char* name, const Read& read, const QStringList& command, const QByteArray& output,
                        const QVariant& result, const QVariant& resultOfFailure) {
        QTest::newRow(name) << read << command << output << result << resultOfFailure;
    };
    const QString format = u"--pretty=format:%H%x1f%an%x1f%ad%x1f%s"_s;
    row(
        "diff of the working tree", [](GitService& git) { return git.diff(u"-a b"_s, false); },
        {u"diff"_s, u"--"_s, u"-a b"_s}, "text\n", u"text\n"_s, QString());
    row(
        "diff of the index", [](GitService& git) { return git.diff(u"한"_s, true); },
        {u"diff"_s, u"--cached"_s, u"--"_s, u"한"_s}, "text", u"text"_s, QString());
    row(
        "log", [](GitService& git) { return git.log(50).size(); },
        {u"log"_s, u"-n"_s, u"50"_s, u"--date=short"_s, format},
        "h\x1f"
        "a\x1f"
        "d\x1fs\n",
        1, 0);
    row(
        "log of nothing", [](GitService& git) { return git.log(0).size(); },
        {u"log"_s, u"-n"_s, u"0"_s, u"--date=short"_s, format}, "", 0, 0);
    row(
        "log of a file", [](GitService& git) { return git.fileLog(u"-f"_s, 2).size(); },
        {u"log"_s, u"-n"_s, u"2"_s, u"--date=short"_s, format, u"--"_s, u"-f"_s},
        "h\x1f"
        "a\x1f"
        "d\x1fs\n",
        1, 0);
    row(
        "commit", [](GitService& git) { return git.showCommit(u"abc"_s); }, {u"show"_s, u"--no-color"_s, u"abc"_s},
        "c\n", u"c\n"_s, QString());
    row(
        "blame", [](GitService& git) { return git.blame(u"f"_s).size(); },
        {u"blame"_s, u"--porcelain"_s, u"--"_s, u"f"_s}, "aa 1 1 1\nauthor A\n\tx\n", 1, 0);
    row(
        "stash", [](GitService& git) { return git.stashShow(u"stash@{1}"_s); },
        {u"stash"_s, u"show"_s, u"-p"_s, u"stash@{1}"_s}, "d\n", u"d\n"_s, QString());
    row(
        "user name", [](GitService& git) { return git.userName().value_or(u"(none)"_s); },
        {u"config"_s, u"user.name"_s}, " A B \n", u"A B"_s, u"(none)"_s);
    row(
        "user email", [](GitService& git) { return git.userEmail().value_or(u"(none)"_s); },
        {u"config"_s, u"user.email"_s}, "a@b\n", u"a@b"_s, u"(none)"_s);
}

void GitServiceRefreshTest::readingCommands()
{
    using Read = std::function<QVariant(GitService&)>;
    QFETCH(Read, read);
    QFETCH(QStringList, command);
    QFETCH(QByteArray, output);
    QFETCH(QVariant, result);
    QFETCH(QVariant, resultOfFailure);
    openHealthily();
    runner_->setAnswer([output](const ProcessCommand&) { return ended(0, output); });
    QCOMPARE(read(*service_).toString(), result.toString());
    QCOMPARE(runner_->takeArguments(), QList<QStringList>{command});
    runner_->setAnswer([](const ProcessCommand&) { return ended(1); });
    QCOMPARE(read(*service_).toString(), resultOfFailure.toString());
    service_->clearState();
    runner_->takeCommands();
    QCOMPARE(read(*service_).toString(), resultOfFailure.toString());
    QVERIFY(runner_->takeCommands().isEmpty());
}

void GitServiceRefreshTest::conflictedFilesAreThoseWithAConflict()
{
    QVERIFY(!service_->hasConflicts());
    openHealthily();
    QStringList paths;
    for (const GitFileStatus& file : service_->conflictedFiles()) {
        paths.append(file.path);
    }
    // "AA" is two additions.
    QCOMPARE(paths, (QStringList{u"b"_s, u"c"_s}));
    QVERIFY(service_->hasConflicts());
}

void GitServiceRefreshTest::upstreamIsMissing_data()
{
    QTest::addColumn<QByteArray>("branch");
    QTest::addColumn<QByteArray>("branches");
    QTest::addColumn<QByteArray>("remoteBranches");
    QTest::addColumn<QByteArray>("remotes");
    QTest::addColumn<bool>("isMissing");
    const QByteArray tracking = withNulls("main#*#origin/main\n");
    const QByteArray alone = withNulls("main#*#\n");
    const QByteArray remote("origin\tu (fetch)\n");
    QTest::newRow("has an upstream") << QByteArray("main") << tracking << QByteArray() << remote << false;
    QTest::newRow("has none") << QByteArray("main") << alone << QByteArray() << remote << true;
    QTest::newRow("has none, no remote") << QByteArray("main") << alone << QByteArray() << QByteArray() << false;
    QTest::newRow("no branch") << QByteArray("") << alone << QByteArray() << remote << false;
    QTest::newRow("unknown branch") << QByteArray("HEAD") << tracking << QByteArray() << remote << true;
    QTest::newRow("unknown branch, no remote")
        << QByteArray("HEAD") << tracking << QByteArray() << QByteArray() << false;
    QTest::newRow("a remote branch of that name does not count")
        << QByteArray("main") << withNulls("other# #u\n") << QByteArray("main\n") << remote << true;
}

void GitServiceRefreshTest::upstreamIsMissing()
{
    QFETCH(QByteArray, branch);
    QFETCH(QByteArray, branches);
    QFETCH(QByteArray, remoteBranches);
    QFETCH(QByteArray, remotes);
    QFETCH(bool, isMissing);
    runner_->setAnswer([=](const ProcessCommand& command) {
        const QStringList& args = command.arguments;
        return ended(0, args == branchCommand           ? branch
                        : args == localCommand          ? branches
                        : args == remoteBranchesCommand ? remoteBranches
                        : args == remotesCommand        ? remotes
                                                        : QByteArray());
    });
    QVERIFY(service_->open(repository_->url()));
    QCOMPARE(service_->upstreamMissingForCurrent(), isMissing);
}

void GitServiceRefreshTest::openLooksTenFoldersUp_data()
{
    QTest::addColumn<int>("depth");
    QTest::addColumn<bool>("found");
    QTest::newRow("the folder itself") << 0 << true;
    QTest::newRow("one below") << 1 << true;
    QTest::newRow("nine below") << 9 << true;
    QTest::newRow("ten below") << 10 << false;
}

void GitServiceRefreshTest::openLooksTenFoldersUp()
{
    QFETCH(int, depth);
    QFETCH(bool, found);
    QString folder = repository_->path();
    for (int level = 0; level < depth; ++level) {
        folder += u"/d 한%"_s;
    }
    QVERIFY(QDir().mkpath(folder));
    for (const QString& form : {folder, folder + u'/'}) {
        openHealthily();
        QCOMPARE(service_->open(QUrl::fromLocalFile(form)), found);
        QCOMPARE(service_->repoURL(), found ? std::optional(repository_->url()) : std::nullopt);
        QCOMPARE(runner_->takeArguments(), found ? allCommands : QList<QStringList>());
        QCOMPARE(service_->branch(), found ? u"main"_s : QString());
    }
}

void GitServiceRefreshTest::openTakesAFileForARepositoryToo()
{
    QTemporaryDir folder;
    QFile file(folder.filePath(u".git"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(service_->open(QUrl::fromLocalFile(folder.path())));
    QCOMPARE(service_->repoURL()->toLocalFile(), folder.path());
}

void GitServiceRefreshTest::openOfTheRootFindsNothing()
{
    QVERIFY(!QFileInfo::exists(u"/.git"_s));
    QVERIFY(!service_->open(QUrl::fromLocalFile(u"/"_s)));
    QVERIFY(!service_->repoURL());
    QVERIFY(runner_->takeCommands().isEmpty());
}

void GitServiceRefreshTest::openWithoutAFolderFindsNothing()
{
    // Not the repository that the test happens to run in.
    QVERIFY(!service_->open(QUrl()));
    QVERIFY(!service_->open(QUrl(u"https://example.org/x"_s)));
    QVERIFY(!service_->repoURL());
}

void GitServiceRefreshTest::failedOpenClearsTheState()
{
    openHealthily();
    QTemporaryDir elsewhere;
    QVERIFY(!service_->open(QUrl::fromLocalFile(elsewhere.path())));
    QVERIFY(!service_->repoURL());
    QVERIFY(service_->branch().isEmpty());
    QVERIFY(service_->tags().isEmpty());
    QVERIFY(runner_->takeCommands().isEmpty());
    service_->refreshAll();
    QVERIFY(runner_->takeCommands().isEmpty());
}

void GitServiceRefreshTest::clearStateKeepsBusyAndError()
{
    openHealthily();
    service_->setLastError(u"e"_s);
    bool done = false;
    service_->runAsync({u"x"_s}, [&](const GitOpResult&) { done = true; });
    service_->clearState();
    QVERIFY(service_->isBusy());
    QCOMPARE(service_->lastError(), u"e"_s);
    QTRY_VERIFY(done);
}

void GitServiceRefreshTest::clearStateWritesInOrder()
{
    openHealthily();
    QStringList order;
    const auto note = [&](void (GitService::*signal)(), const QString& name) {
        connect(service_.get(), signal, service_.get(), [&order, name, this] {
            order.append(name);
            QVERIFY(!service_->repoURL());
        });
    };
    note(&GitService::tagsChanged, u"tags"_s);
    note(&GitService::stashesChanged, u"stashes"_s);
    note(&GitService::remotesChanged, u"remotes"_s);
    note(&GitService::branchesChanged, u"branches"_s);
    note(&GitService::behindChanged, u"behind"_s);
    note(&GitService::aheadChanged, u"ahead"_s);
    note(&GitService::statusChanged, u"status"_s);
    note(&GitService::branchChanged, u"branch"_s);
    service_->clearState();
    QCOMPARE(order, (QStringList{u"branch"_s, u"status"_s, u"ahead"_s, u"behind"_s, u"branches"_s, u"remotes"_s,
                                 u"stashes"_s, u"tags"_s}));
}

const kelm::test::Registered<GitServiceRefreshTest> registered;

} // namespace git_service_refresh_test

#include "git_service_refresh_test.moc"
