#include "git/service/git_service.h"

#include "git/service/git_transfers.h"
#include "git/service/git_worker.h"
#include "platform/files/file_url.h"
#include "platform/files/native_path.h"

#include <QDir>
#include <QFileInfo>

namespace kelm {

GitService::GitService(std::shared_ptr<ProcessRunner> runner, QObject* parent)
    : QObject(parent),
      runner_(std::move(runner)),
      transfers_(std::make_unique<GitTransfers>()),
      alive_(std::make_shared<const bool>(true))
{}

GitService::~GitService() = default;

void GitService::setLastError(const std::optional<QString>& text)
{
    assign(lastError_, text, &GitService::lastErrorChanged);
}

bool GitService::open(const QUrl& folder)
{
    constexpr int candidateLimit = 10;
    if (!folder.isLocalFile() || filePath(folder).isEmpty()) {
        clearState();
        return false;
    }
    QString candidate = QDir::cleanPath(QFileInfo(filePath(folder)).absoluteFilePath());
    for (int tried = 1;; ++tried) {
        if (isThere(QDir(candidate).filePath(QStringLiteral(".git")))) {
            repoURL_ = urlOfFile(candidate);
            refreshAll();
            return true;
        }
        const QString parent = QFileInfo(candidate).path();
        if (parent == candidate || tried == candidateLimit) {
            clearState();
            return false;
        }
        candidate = parent;
    }
}

void GitService::clearState()
{
    repoURL_.reset();
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
