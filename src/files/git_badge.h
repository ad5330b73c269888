// The letters that tell of changes beside the names of files.
#pragma once

#include "files/file_item.h"
#include "git/service/file_status_mark.h"
#include "git/service/git_records.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QUrl>

#include <optional>

namespace kelm {

/// Knows the badge of every file and folder of a repository from one pass over its status: a row then asks for its own
/// in no time, however long the status is.
class GitBadges
{
public:
    GitBadges() = default;
    /// Without a repository nothing has a badge.
    GitBadges(const QList<GitFileStatus>& status, const std::optional<QUrl>& repoURL);

    /// The badge of an entry; absent for what has not changed, what lies outside of the repository, and its root.
    std::optional<FileStatusMark> badge(const FileItem& item) const;

private:
    /// From the least to the most important, which is what a folder shows of what it holds.
    enum class FolderState { modified, untracked, conflicted };

    /// Counts a change for each folder that a path lies in.
    void markFolders(const QString& path, FolderState state);

    QString root_;
    QHash<QString, FileStatusMark> files_;
    QHash<QString, FolderState> folders_;
};

} // namespace kelm
