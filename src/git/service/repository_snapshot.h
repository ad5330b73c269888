// All that is known of a repository at one moment.
#pragma once

#include "git/service/ahead_behind_parser.h"
#include "git/service/git_head.h"
#include "git/service/git_records.h"
#include "platform/process/process.h"

#include <QList>
#include <QString>

#include <atomic>
#include <optional>

namespace kelm {

struct RepositorySnapshot
{
    QString branch;
    GitHead head;
    QList<GitFileStatus> status;
    AheadBehind counts;
    QList<GitBranch> branches;
    QList<GitRemote> remotes;
    QList<GitStash> stashes;
    QList<GitTag> tags;
};

/// What the repository in `folder` holds now, by the same commands in the same order as a whole refresh. A list that
/// says what it said in `before` is that itself, down to the identities of its records, so that a comparison of the two
/// costs nothing. Absent once `stop` is set, and where not even the status can be read. Any thread; takes as long as
/// git does.
std::optional<RepositorySnapshot> readSnapshot(ProcessRunner& runner, const QString& folder,
                                               const RepositorySnapshot& before, const std::atomic<bool>& stop);

/// The newest `limit` commits of the repository in `folder`, as `GitService::log` reads them. Absent where they cannot
/// be read, also since there are none. Any thread.
std::optional<QList<GitCommit>> readLog(ProcessRunner& runner, const QString& folder, qint64 limit,
                                        const std::atomic<bool>& stop);

/// Whether two lists are one and the same, which takes no look at what they hold.
template <typename Record>
bool isSameList(const QList<Record>& a, const QList<Record>& b)
{
    return a.size() == b.size() && a.constData() == b.constData();
}

} // namespace kelm
