#include "search/project_walk.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <utility>

namespace kelm {

namespace {

enum class Kind { folder, file, other };

Kind kindOf(const dirent& entry, int folder)
{
    switch (entry.d_type) {
    case DT_DIR:
        return Kind::folder;
    case DT_REG:
        return Kind::file;
    case DT_UNKNOWN: {
        // Some file systems tell only when they are asked.
        struct stat status
        {};
        if (fstatat(folder, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) != 0) {
            return Kind::other;
        }
        return S_ISDIR(status.st_mode) ? Kind::folder : S_ISREG(status.st_mode) ? Kind::file : Kind::other;
    }
    default:
        return Kind::other;
    }
}

} // namespace

/// The folder that is being read, and the folders that were found in it.
struct ProjectWalk::Folder
{
    QByteArray path;
    std::unique_ptr<DIR, int (*)(DIR*)> entries;
    QList<QByteArray> folders = {};
};

ProjectWalk::ProjectWalk(QByteArray root, std::function<bool()> isCancelled)
    : isCancelled_(std::move(isCancelled)), pending_{std::move(root)}
{}

ProjectWalk::~ProjectWalk() = default;

QList<QByteArray> ProjectWalk::next(qsizetype count)
{
    QList<QByteArray> files;
    while (files.size() < count && (folder_ || openNext())) {
        const dirent* const entry = isCancelled_() ? nullptr : readdir(folder_->entries.get());
        if (entry == nullptr) {
            closeFolder();
        } else if (entry->d_name[0] != '.') {
            const Kind kind = kindOf(*entry, dirfd(folder_->entries.get()));
            if (kind == Kind::folder) {
                folder_->folders.append(entry->d_name);
            } else if (kind == Kind::file) {
                files.append(folder_->path + entry->d_name);
            }
        }
    }
    return files;
}

bool ProjectWalk::openNext()
{
    while (!pending_.isEmpty() && !isCancelled_()) {
        QByteArray path = pending_.takeLast();
        std::unique_ptr<DIR, int (*)(DIR*)> entries(opendir(path.constData()), closedir);
        if (entries) {
            folder_ = std::make_unique<Folder>(Folder{std::move(path), std::move(entries)});
            return true;
        }
    }
    return false;
}

void ProjectWalk::closeFolder()
{
    for (qsizetype at = folder_->folders.size() - 1; at >= 0; --at) {
        pending_.append(folder_->path + folder_->folders[at] + '/');
    }
    folder_.reset();
}

} // namespace kelm
