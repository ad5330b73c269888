// A repository as the program shows it, and everything the user does to it, by way of the git command line.
#pragma once

#include "git/service/git_failure.h"
#include "git/service/git_head.h"
#include "git/service/git_records.h"
#include "git/service/git_result.h"
#include "git/service/repository_snapshot.h"
#include "platform/process/process.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <functional>
#include <memory>
#include <optional>

namespace kelm {

class ForeignProgramFinder;
class GitTransfers;
struct GitOperation;

/// Keeps a snapshot of the open repository and runs git for the user.
///
/// Main thread only, but for `findGit` and `makeProcess`. Refreshes and short operations block until git has ended;
/// fetch, pull, push and clone run on the global thread pool and come back to the main thread. The service watches
/// nothing: the snapshot changes when a refresh is called, or when a `RepositoryFollower` has read another one. There
/// is no timeout: a git that runs ends by itself, or when it is stopped (see `PatientRunner` and `GitTransfers`), and
/// has failed then.
///
/// A name that git would take for an option or that holds a control character is refused before git is started: the
/// result is a failure with one sentence, which goes to `lastError`, and no refresh follows.
///
/// Each write of an observable member is signalled, equal values included. `repoURL` is not observable by itself:
/// whatever sets it writes the other members behind it.
class GitService : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString branch READ branch NOTIFY branchChanged)
    Q_PROPERTY(QList<kelm::GitFileStatus> status READ status NOTIFY statusChanged)
    Q_PROPERTY(qint64 ahead READ ahead NOTIFY aheadChanged)
    Q_PROPERTY(qint64 behind READ behind NOTIFY behindChanged)
    Q_PROPERTY(bool isBusy READ isBusy NOTIFY isBusyChanged)
    Q_PROPERTY(std::optional<QString> lastError READ lastError WRITE setLastError NOTIFY lastErrorChanged)
    Q_PROPERTY(QList<kelm::GitBranch> branches READ branches NOTIFY branchesChanged)
    Q_PROPERTY(QList<kelm::GitRemote> remotes READ remotes NOTIFY remotesChanged)
    Q_PROPERTY(QList<kelm::GitStash> stashes READ stashes NOTIFY stashesChanged)
    Q_PROPERTY(QList<kelm::GitTag> tags READ tags NOTIFY tagsChanged)

public:
    using Completion = std::function<void(const GitOpResult&)>;
    using PathTest = std::function<bool(const QString& path)>;

    /// Every child is started by `runner`, which is used from several threads.
    explicit GitService(std::shared_ptr<ProcessRunner> runner, QObject* parent = nullptr);
    ~GitService() override;

    /// The current branch, "HEAD" where git says so, empty when there is none.
    const QString& branch() const { return branch_; }
    const QList<GitFileStatus>& status() const { return status_; }
    /// Commits that the branch has and its upstream has not, and the other way round.
    qint64 ahead() const { return ahead_; }
    qint64 behind() const { return behind_; }
    /// Whether a fetch, pull or push runs. Of several at once the first to end clears it.
    bool isBusy() const { return isBusy_; }
    /// The last failure's words, untrimmed; they stay until somebody takes them away or another failure comes.
    const std::optional<QString>& lastError() const { return lastError_; }
    /// Sets or takes away `lastFailure` as well.
    void setLastError(const std::optional<QString>& text);
    /// The last command that somebody asked for and that failed: unlike `lastError` no refresh behind it takes its
    /// place, it tells of no mere state, such as a branch without an upstream, and it goes with the conflicts that it
    /// is about. Where nothing asked for has failed, a refresh that could not read.
    const std::optional<GitFailure>& lastFailure() const { return lastFailure_; }
    /// What git said when it refused the last commit or amendment and that counted as made, since git printed; absent
    /// where that was made, or counted as failed.
    const std::optional<GitFailure>& commitRefusal() const { return commitRefusal_; }
    /// Local branches, then remote ones.
    const QList<GitBranch>& branches() const { return branches_; }
    const QList<GitRemote>& remotes() const { return remotes_; }
    const QList<GitStash>& stashes() const { return stashes_; }
    const QList<GitTag>& tags() const { return tags_; }
    /// The working tree's folder; absent when no repository is open.
    const std::optional<QUrl>& repoURL() const { return repoURL_; }
    /// What HEAD names: of a HEAD without a commit the branch, of a detached one the commit. Signalled with `branch`.
    const GitHead& head() const { return head_; }
    /// Grows with each command that is run, and when another repository is opened: what was read meanwhile by others
    /// may be older than the snapshot.
    quint64 age() const { return age_; }
    /// All of the snapshot at once, which copies no records.
    RepositorySnapshot snapshot() const;
    /// Takes a snapshot of the repository in `folder` that was read elsewhere, with `snapshot()` as it was before, and
    /// opens that repository if it is not. What is no other than it was is not signalled.
    void take(const QUrl& folder, const RepositorySnapshot& now);
    /// What starts the children; any thread.
    const std::shared_ptr<ProcessRunner>& runner() const { return runner_; }

    // Running git.

    /// The first of the usual places where git is executable; "/usr/bin/git" when it is nowhere, so that the failure
    /// comes from the launch. The answer is never kept.
    static QString findGit(const PathTest& isExecutable = {});
    /// git with `args` in the folder `cwd`, the standard input being the application's own. Its environment holds what
    /// keeps names from being patterns, git from asking where nobody answers, and a command that only reads from
    /// running what the repository brings along (`gitEnvironment`).
    static ProcessCommand makeProcess(const QStringList& args, const QString& cwd);
    /// The standard output of git in the open repository. Absent when none is open, when git cannot be launched, when
    /// it fails without output, and when its output is not UTF-8. A git that fails and prints is present, as a success
    /// is: only `lastError` tells.
    std::optional<QString> run(const QStringList& args);
    /// Runs a process to its end; a failure's words go to `lastError` too, unless they are those of the launch.
    GitOpResult runProcess(const ProcessCommand& process);
    /// `runProcess` for git in the open repository.
    GitOpResult runOp(const QStringList& args);
    /// `runOp` on the thread pool, with `isBusy` set meanwhile; `onDone` is called on the main thread, also when the
    /// service has gone by then. Without a repository it is called at once.
    void runAsync(const QStringList& args, Completion onDone);

    /// `runOp` for an operation of the table, with what it is given, and then its refreshes.
    GitOpResult perform(const GitOperation& operation, const QStringList& given);

    // The snapshot.

    /// Opens the repository that holds `folder`, looking at no more than ten folders upwards, and refreshes everything.
    /// False, with the state cleared, when there is none, or one whose HEAD is a pipe or of no sensible length.
    bool open(const QUrl& folder);
    void clearState();

    void refreshAll();
    void refreshBranch();
    void refreshStatus();
    void refreshAheadBehind();
    void refreshBranches();
    void refreshRemotes();
    void refreshStashes();
    void refreshTags();

    /// The unified diff of one path; empty on any failure.
    QString diff(const QString& file, bool staged);
    /// The same of several, which shows a rename as one when both of its names are given.
    QString diff(const QStringList& files, bool staged);
    /// The newest `limit` commits, newest first.
    QList<GitCommit> log(qint64 limit);
    QList<GitCommit> fileLog(const QString& path, qint64 limit);
    /// The commit's header and diff; empty on any failure.
    QString showCommit(const QString& sha);
    QList<GitBlameLine> blame(const QString& path);
    /// The bytes of a content by its hash; absent when it is not there. A failure is nothing that was asked for.
    std::optional<qint64> contentSize(const QString& hash);

    // Operations on the working tree and the index. Paths are the names of files as they are (`git_names.h`), never
    // patterns.

    void stage(const QStringList& paths);
    void unstage(const QStringList& paths);
    void stageAll();
    void discardChanges(const QStringList& paths);
    /// Applies a patch to the index alone, backwards when `reverse`.
    GitOpResult applyPartialPatch(const QString& patch, bool reverse);
    /// Whether git printed anything: a git that has nothing to commit says so on its output and counts as true. False,
    /// with nothing run, for an empty message.
    bool commit(const QString& message);
    /// As `commit`; an absent or empty message keeps that of the last commit.
    bool amendCommit(const std::optional<QString>& message);

    // The network.

    /// Fetches, pulls, pushes and clones that run now.
    GitTransfers& transfers() const { return *transfers_; }

    /// `setUpstreamFor` names the branch that is to follow "origin".
    void push(const std::optional<QString>& setUpstreamFor, Completion onDone = {});
    void pull(bool rebase, Completion onDone = {});
    void fetch(const std::optional<QString>& remote, bool prune, Completion onDone = {});

    // Branches, remotes, stashes, tags.

    GitOpResult createBranch(const QString& name, bool checkout);
    /// Refused where the name is no branch's, neither here nor of a remote: git would take it for a file, and throw
    /// its changes away; and where it is a remote's alone and that of a file, tracked or not. A failure without a
    /// checkout where that cannot be found out.
    GitOpResult checkoutBranch(const QString& name);
    GitOpResult deleteBranch(const QString& name, bool force);
    GitOpResult renameBranch(const QString& from, const QString& to);
    GitOpResult mergeBranch(const QString& name);
    GitOpResult addRemote(const QString& name, const QString& url);
    GitOpResult removeRemote(const QString& name);
    GitOpResult setRemoteURL(const QString& name, const QString& url);
    GitOpResult stashPush(const std::optional<QString>& message, bool includeUntracked);
    GitOpResult stashPop(const QString& stash);
    GitOpResult stashApply(const QString& stash);
    GitOpResult stashDrop(const QString& stash);
    /// The stash as a diff; empty on any failure.
    QString stashShow(const QString& stash);
    GitOpResult createTag(const QString& name, const std::optional<QString>& message);
    GitOpResult deleteTag(const QString& name);
    /// Blocks although it goes to the network.
    GitOpResult pushTag(const QString& name, const QString& remote);

    // Conflicts.

    QList<GitFileStatus> conflictedFiles() const;
    bool hasConflicts() const;
    void markResolved(const QStringList& paths);
    GitOpResult abortMerge();

    // New repositories.

    /// Makes the folder if nothing is there, makes it a repository, and opens that.
    GitOpResult initRepo(const QUrl& at, const QString& defaultBranch);
    /// Clones on the thread pool into the folder `into`, which git makes, and opens it. `isBusy` is not set.
    void cloneRepo(const QString& url, const QUrl& into, Completion onDone = {});

    // The user.

    std::optional<QString> userName();
    std::optional<QString> userEmail();
    GitOpResult setUserName(const QString& name);
    GitOpResult setUserEmail(const QString& email);

    /// Whether a push of the current branch has to name its upstream: it has none, and there is a remote.
    bool upstreamMissingForCurrent() const;

Q_SIGNALS:
    void branchChanged();
    void statusChanged();
    void aheadChanged();
    void behindChanged();
    void isBusyChanged();
    void lastErrorChanged();
    void lastFailureChanged();
    /// A snapshot that was read elsewhere has been taken, whether or not anything in it is another.
    void taken();
    /// A clone has been made and opened; `folder` is its working tree.
    void cloned(const QUrl& folder);
    void branchesChanged();
    void remotesChanged();
    void stashesChanged();
    void tagsChanged();

private:
    class Worker;

    template <typename Value>
    void assign(Value& member, Value value, void (GitService::*changed)())
    {
        member = std::move(value);
        Q_EMIT(this->*changed)();
    }

    /// What came of a command.
    struct Answer
    {
        /// As `run` gives it.
        std::optional<QString> output = std::nullopt;
        bool isFailed = false;
        /// A failure's words, from the one stream or the other.
        QString words = {};
    };
    /// `run`; what a failure means to the person depends on why git was asked.
    Answer ask(const QStringList& args, GitErrorKind kind);
    std::optional<QString> read(const QStringList& args, GitErrorKind kind = GitErrorKind::reading)
    {
        return ask(args, kind).output;
    }
    /// Takes a failure's words.
    void takeError(const GitFailure& failure);
    void setLastFailure(const std::optional<GitFailure>& failure);
    /// Drops a failure that was about conflicts once there are none.
    void forgetSolvedConflicts();
    bool performCommit(const GitOperation& operation, const QStringList& given);

    /// What came of a look at the repository before an operation.
    struct Look
    {
        /// In the form of paths, so that bytes which are not UTF-8 hide none of the rest; empty where the look failed.
        QString output = {};
        /// As `runOp` gives it.
        GitOpResult result = GitOpResult::success();
    };
    Look look(const QStringList& args);
    /// `perform` for an operation on branches alone, or on tags alone, whose first thing given is the name of one as it
    /// is listed.
    GitOpResult performOnListed(const GitOperation& operation, QStringList given);

    /// `run` for an operation of the table, and then its refreshes. Whether git printed anything.
    bool performForOutput(const GitOperation& operation, const QStringList& given);
    void refreshAfter(const GitOperation& operation);
    /// A failure for which git was not started; its sentence goes to `lastError` as git's words would.
    GitOpResult refuse(const QString& sentence);
    void refuseAtOnce(const QString& sentence, const Completion& onDone);
    bool isNameOfAFile(const QString& name) const;
    Worker worker();
    /// git with `args` in the open repository. A command that only reads is kept from running programs which the
    /// repository has named.
    ProcessCommand makeProcess(const QStringList& args);
    QString repoPath() const;
    /// Trimmed output of `config <key>`; absent when the key has no value.
    std::optional<QString> configValue(const QString& key);
    /// `onDone` with `refresh` before it, for as long as the service lives.
    Completion refreshingFirst(void (GitService::*refresh)(), Completion onDone);
    void refreshAfterTransfer();
    static QStringList branchedArgs(const QStringList& args, const std::optional<QString>& setUpstreamFor);

    QString branch_;
    QList<GitFileStatus> status_;
    qint64 ahead_ = 0;
    qint64 behind_ = 0;
    bool isBusy_ = false;
    std::optional<QString> lastError_;
    QList<GitBranch> branches_;
    QList<GitRemote> remotes_;
    QList<GitStash> stashes_;
    QList<GitTag> tags_;
    std::optional<QUrl> repoURL_;
    GitHead head_;
    std::optional<GitFailure> lastFailure_;
    std::optional<GitFailure> commitRefusal_;
    quint64 age_ = 0;

    std::shared_ptr<ProcessRunner> runner_;
    std::unique_ptr<ForeignProgramFinder> foreignPrograms_;
    const std::unique_ptr<GitTransfers> transfers_;
    /// Tells other threads whether the service is still there.
    std::shared_ptr<const bool> alive_;
};

} // namespace kelm
