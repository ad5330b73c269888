#include "app/state/notices.h"
#include "app/state/watched_files.h"
#include "git/service/git_service.h"
#include "git/service/repository_follower.h"
#include "support/app_state_fixture.h"
#include "support/temporary_repository.h"
#include "support/test_program.h"

#include <QSignalSpy>
#include <QtTest>

#include <functional>

namespace watched_files_git_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

using Step = std::function<void(GitService&, const TemporaryRepository&)>;

/// What git does to a file that is open: how the repository comes to be before it is opened, what is run then, and what
/// the file holds afterwards.
struct Operation
{
    const char* name;
    Step prepare;
    Step run;
    QByteArray result;
};

void branchOff(const TemporaryRepository& repository, const QByteArray& text)
{
    repository.git({u"checkout"_s, u"-qb"_s, u"side"_s});
    repository.write(u"a.txt"_s, text);
    repository.commitAll(u"side"_s);
    repository.git({u"checkout"_s, u"-q"_s, u"main"_s});
}

/// Another repository that is a commit ahead, as the upstream.
void followOneAhead(const TemporaryRepository& repository)
{
    static QList<std::shared_ptr<TemporaryRepository>> upstreams;
    const auto upstream = std::make_shared<TemporaryRepository>();
    upstreams.append(upstream);
    upstream->git({u"pull"_s, u"-q"_s, repository.path(), u"main"_s});
    upstream->write(u"a.txt"_s, "pulled text\n");
    upstream->commitAll(u"ahead"_s);
    repository.git({u"remote"_s, u"add"_s, u"origin"_s, upstream->path()});
    repository.git({u"fetch"_s, u"-q"_s, u"origin"_s});
    repository.git({u"branch"_s, u"-q"_s, u"-u"_s, u"origin/main"_s});
}

const QList<Operation>& operations()
{
    static const Step change = [](GitService&, const TemporaryRepository& repository) {
        repository.write(u"a.txt"_s, "a changed text\n");
    };
    static const Step stash = [](GitService&, const TemporaryRepository& repository) {
        repository.write(u"a.txt"_s, "a stashed text\n");
        repository.git({u"stash"_s, u"-q"_s});
    };
    static const Step branch = [](GitService&, const TemporaryRepository& repository) {
        branchOff(repository, "text of the side\n");
    };
    static const Step conflict = [](GitService& git, const TemporaryRepository& repository) {
        branchOff(repository, "text of the side\n");
        repository.write(u"a.txt"_s, "text of main\n");
        repository.commitAll(u"main"_s);
        git.mergeBranch(u"side"_s);
    };
    static const QList<Operation> all{
        {"discard", change, [](GitService& git, const auto&) { git.discardChanges({u"a.txt"_s}); }, "one\n"},
        {"checkout", branch, [](GitService& git, const auto&) { git.checkoutBranch(u"side"_s); }, "text of the side\n"},
        {"merge", branch, [](GitService& git, const auto&) { git.mergeBranch(u"side"_s); }, "text of the side\n"},
        {"abort", conflict, [](GitService& git, const auto&) { git.abortMerge(); }, "text of main\n"},
        {"stash", change, [](GitService& git, const auto&) { git.stashPush(std::nullopt, false); }, "one\n"},
        {"stash apply", stash, [](GitService& git, const auto&) { git.stashApply(u"stash@{0}"_s); },
         "a stashed text\n"},
        {"stash pop", stash, [](GitService& git, const auto&) { git.stashPop(u"stash@{0}"_s); }, "a stashed text\n"},
        {"pull", [](GitService&, const TemporaryRepository& repository) { followOneAhead(repository); },
         [](GitService& git, const auto&) {
             git.pull(true);
             QTRY_VERIFY_WITH_TIMEOUT(!git.isBusy(), 20000);
         },
         "pulled text\n"},
    };
    return all;
}

} // namespace

/// Open documents while git changes their files.
class WatchedFilesGitTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { useFixedGitEnvironment(); }

    void anUnmodifiedOneFollows_data() { addOperations(); }
    void anUnmodifiedOneFollows();
    void aModifiedOneStaysAndIsToldOf_data() { addOperations(); }
    void aModifiedOneStaysAndIsToldOf();
    void aSaveIsReadByTheFollower();
    void aCloneBecomesTheProject();

private:
    static void addOperations()
    {
        QTest::addColumn<qsizetype>("operation");
        for (qsizetype i = 0; i < operations().size(); ++i) {
            QTest::newRow(operations()[i].name) << i;
        }
    }
    static void prepare(AppStateFixture& f, const TemporaryRepository& repository, const Operation& operation)
    {
        repository.write(u"a.txt"_s, "one\n");
        repository.commitAll(u"first"_s);
        QVERIFY(f.state.git().open(repository.url()));
        operation.prepare(f.state.git(), repository);
        f.state.openFile(QUrl::fromLocalFile(repository.filePath(u"a.txt"_s)));
        QVERIFY(f.state.currentDocument() != nullptr);
        settle(f);
    }
    /// Has time pass until nothing is looked at any more.
    static void settle(AppStateFixture& f)
    {
        do {
            QCoreApplication::processEvents();
            f.scheduler.advance(WatchedFiles::quietTime);
        } while (!f.state.watchedFiles().isSettled());
    }
};

void WatchedFilesGitTest::anUnmodifiedOneFollows()
{
    QFETCH(qsizetype, operation);
    const TemporaryRepository repository;
    AppStateFixture f;
    prepare(f, repository, operations()[operation]);
    operations()[operation].run(f.state.git(), repository);
    QCOMPARE(repository.read(u"a.txt"_s), operations()[operation].result);
    settle(f);
    settle(f);
    QCOMPARE(f.state.currentDocument()->content().toUtf8(), operations()[operation].result);
    QVERIFY(!f.state.currentDocument()->isModified());
    QVERIFY(f.state.notices().current() == nullptr);
}

void WatchedFilesGitTest::aModifiedOneStaysAndIsToldOf()
{
    QFETCH(qsizetype, operation);
    const TemporaryRepository repository;
    AppStateFixture f;
    prepare(f, repository, operations()[operation]);
    Document& document = *f.state.currentDocument();
    document.setContent(u"typed here\n"_s);
    document.setIsModified(true);
    operations()[operation].run(f.state.git(), repository);
    QCOMPARE(repository.read(u"a.txt"_s), operations()[operation].result);
    settle(f);
    settle(f);
    QCOMPARE(document.content(), u"typed here\n"_s);
    QVERIFY(document.isModified());
    const Notice* notice = f.state.notices().current();
    QVERIFY(notice != nullptr);
    QCOMPARE(notice->text, u"a.txt has changed on disk, and here too."_s);
    QCOMPARE(notice->offers.size(), 2U);
    // What git wrote is one click away.
    f.state.notices().accept(0);
    settle(f);
    QCOMPARE(document.content().toUtf8(), operations()[operation].result);
}

void WatchedFilesGitTest::aSaveIsReadByTheFollower()
{
    const TemporaryRepository repository;
    AppStateFixture f;
    prepare(f, repository, {"", [](GitService&, const auto&) {}, {}, {}});
    QObject viewer;
    f.state.repositoryFollower().setIsShownBy(viewer, true);
    f.state.currentDocument()->setContent(u"saved\n"_s);
    f.state.saveCurrentDocument();
    QTRY_VERIFY((settle(f), f.scheduler.advance(RepositoryFollower::readDelay), f.state.git().status().size() == 1));
    QCOMPARE(f.state.git().status().first().path, u"a.txt"_s);
}

void WatchedFilesGitTest::aCloneBecomesTheProject()
{
    const TemporaryRepository source;
    source.write(u"a.txt"_s, "one\n");
    source.commitAll(u"first"_s);
    AppStateFixture f;
    f.state.setCurrentProject(source.url());
    QSignalSpy cloned(&f.state, &AppState::projectCloned);
    bool isOpenInTime = false;
    f.state.git().cloneRepo(source.path(), f.url(u"clone"_s), [&](const GitOpResult& result) {
        isOpenInTime = result.isSuccess() && f.state.currentProject() == f.url(u"clone"_s);
    });
    QTRY_VERIFY_WITH_TIMEOUT(cloned.count() == 1, 20000);
    QVERIFY(isOpenInTime);
    QVERIFY(f.state.git().repoURL() == f.url(u"clone"_s));
}

const kelm::test::Registered<WatchedFilesGitTest> registered;

} // namespace watched_files_git_test

#include "watched_files_git_test.moc"
