#include "files/git_badge.h"

#include "git/service/git_names.h"
#include "platform/files/file_url.h"

#include <algorithm>

namespace kelm {

GitBadges::GitBadges(const QList<GitFileStatus>& status, const std::optional<QUrl>& repoURL)
{
    if (!repoURL) {
        return;
    }
    root_ = folderPrefix(*repoURL);
    for (const GitFileStatus& file : status) {
        const GitFileNames names = namesOf(file);
        const QString& path = names.current;
        const bool isKnown = files_.contains(path);
        if (!isKnown && (file.staged || file.unstaged)) {
            files_.insert(path, fileStatusMark(file, false));
        }
        const auto is = [&file](GitFileChange change) { return file.staged == change || file.unstaged == change; };
        const FolderState state = is(GitFileChange::conflicted)  ? FolderState::conflicted
                                  : is(GitFileChange::untracked) ? FolderState::untracked
                                                                 : FolderState::modified;
        markFolders(path, state);
        if (names.previous) {
            // The path of such an entry begins with the folder that the file has left, or was copied from.
            markFolders(*names.previous, state);
        }
    }
}

void GitBadges::markFolders(const QString& path, FolderState state)
{
    for (qsizetype slash = path.indexOf(u'/'); slash >= 0; slash = path.indexOf(u'/', slash + 1)) {
        FolderState& folder = folders_[path.left(slash)];
        folder = std::max(folder, state);
    }
}

std::optional<FileStatusMark> GitBadges::badge(const FileItem& item) const
{
    const QString path = filePath(item.url);
    if (root_.isEmpty() || !path.startsWith(root_) || path.size() == root_.size()) {
        return std::nullopt;
    }
    const QString relative = path.mid(root_.size());
    if (!item.isDirectory) {
        const auto found = files_.constFind(relative);
        return found == files_.constEnd() ? std::nullopt : std::optional(*found);
    }
    const auto found = folders_.constFind(relative);
    if (found == folders_.constEnd()) {
        return std::nullopt;
    }
    switch (*found) {
    case FolderState::conflicted:
        return FileStatusMark{QStringLiteral("!"), SystemColor::orange};
    case FolderState::untracked:
        return FileStatusMark{QStringLiteral("U"), SystemColor::green};
    case FolderState::modified:
        return FileStatusMark{QStringLiteral("M"), SystemColor::yellow};
    }
    return std::nullopt;
}

} // namespace kelm
