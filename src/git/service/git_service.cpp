#include "git/service/git_service.h"

#include "git/service/foreign_programs.h"
#include "git/service/git_transfers.h"
#include "git/service/git_worker.h"
#include "git/service/repository_places.h"
#include "platform/files/file_url.h"

#include <algorithm>
#include <iterator>

namespace kelm {

GitService::GitService(std::shared_ptr<ProcessRunner> runner, QObject* parent)
    : QObject(parent),
      runner_(std::move(runner)),
      foreignPrograms_(std::make_unique<ForeignProgramFinder>(runner_)),
      transfers_(std::make_unique<GitTransfers>()),
      alive_(std::make_shared<const bool>(true))
{
    connect(this, &GitService::statusChanged, this, &GitService::forgetSolvedConflicts);
}

GitService::~GitService() = default;

void GitService::setLastError(const std::optional<QString>& text)
{
    setLastFailure(text ? std::optional(GitFailure{.text = *text}) : std::nullopt);
    assign(lastError_, text, &GitService::lastErrorChanged);
}

void GitService::takeError(const GitFailure& failure)
{
    // What a refresh learns is told only while nothing that was asked for has failed: it may well come of that.
    const bool isTold =
        failure.kind == GitErrorKind::operation ||
        (failure.kind == GitErrorKind::reading && (!lastFailure_ || lastFailure_->kind == GitErrorKind::reading));
    if (isTold) {
        setLastFailure(failure);
    }
    assign(lastError_, std::optional(failure.text), &GitService::lastErrorChanged);
}

void GitService::setLastFailure(const std::optional<GitFailure>& failure)
{
    // The same once more is told once more.
    if (failure || lastFailure_) {
        assign(lastFailure_, failure, &GitService::lastFailureChanged);
    }
}

void GitService::forgetSolvedConflicts()
{
    if (lastFailure_ && lastFailure_->isAboutConflicts() && std::none_of(status_.begin(), status_.end(), isUnmerged)) {
        setLastFailure(std::nullopt);
    }
}

bool GitService::open(const QUrl& folder)
{
    const bool isFolder = folder.isLocalFile() && !filePath(folder).isEmpty();
    const std::optional<QString> found = isFolder ? findRepository(filePath(folder)) : std::nullopt;
    if (!found) {
        clearState();
        return false;
    }
    ++age_;
    repoURL_ = urlOfFile(*found);
    refreshAll();
    return true;
}

RepositorySnapshot GitService::snapshot() const
{
    return {.branch = branch_,
            .head = head_,
            .status = status_,
            .counts = {.behind = behind_, .ahead = ahead_},
            .branches = branches_,
            .remotes = remotes_,
            .stashes = stashes_,
            .tags = tags_};
}

void GitService::take(const QUrl& folder, const RepositorySnapshot& now)
{
    const bool isAnother = repoURL_ != folder;
    if (isAnother) {
        ++age_;
        repoURL_ = folder;
    }
    const bool isHeadAnother = head_ != now.head;
    head_ = now.head;
    if (isAnother || isHeadAnother || branch_ != now.branch) {
        assign(branch_, now.branch, &GitService::branchChanged);
    }
    const auto takeList = [this, isAnother](auto& member, const auto& list, void (GitService::*changed)()) {
        if (isAnother || !isSameList(member, list)) {
            assign(member, list, changed);
        }
    };
    const auto takeCount = [this, isAnother](qint64& member, qint64 count, void (GitService::*changed)()) {
        if (isAnother || member != count) {
            assign(member, count, changed);
        }
    };
    takeList(status_, now.status, &GitService::statusChanged);
    takeCount(ahead_, now.counts.ahead, &GitService::aheadChanged);
    takeCount(behind_, now.counts.behind, &GitService::behindChanged);
    takeList(branches_, now.branches, &GitService::branchesChanged);
    takeList(remotes_, now.remotes, &GitService::remotesChanged);
    takeList(stashes_, now.stashes, &GitService::stashesChanged);
    takeList(tags_, now.tags, &GitService::tagsChanged);
    Q_EMIT taken();
}

void GitService::clearState()
{
    ++age_;
    repoURL_.reset();
    head_ = {};
    assign(branch_, QString(), &GitService::branchChanged);
    assign(status_, {}, &GitService::statusChanged);
    assign(ahead_, qint64(0), &GitService::aheadChanged);
    assign(behind_, qint64(0), &GitService::behindChanged);
    assign(branches_, {}, &GitService::branchesChanged);
    assign(remotes_, {}, &GitService::remotesChanged);
    assign(stashes_, {}, &GitService::stashesChanged);
    assign(tags_, {}, &GitService::tagsChanged);
}

QString GitService::repoPath() const
{
    return repoURL_ ? filePath(*repoURL_) : QString();
}

QList<GitFileStatus> GitService::conflictedFiles() const
{
    QList<GitFileStatus> files;
    std::copy_if(status_.begin(), status_.end(), std::back_inserter(files), [](const GitFileStatus& file) {
        return file.staged == GitFileChange::conflicted || file.unstaged == GitFileChange::conflicted;
    });
    return files;
}

bool GitService::hasConflicts() const
{
    return !conflictedFiles().isEmpty();
}

bool GitService::upstreamMissingForCurrent() const
{
    if (branch_.isEmpty()) {
        return false;
    }
    const auto current = std::find_if(branches_.begin(), branches_.end(), [this](const GitBranch& candidate) {
        return !candidate.isRemote && candidate.name == branch_;
    });
    if (current != branches_.end() && !current->upstream.value_or(QString()).isEmpty()) {
        return false;
    }
    return !remotes_.isEmpty();
}

} // namespace kelm
