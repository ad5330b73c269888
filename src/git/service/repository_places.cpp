#include "git/service/repository_places.h"

#include "git/service/repository_files.h"
#include "platform/files/native_path.h"

#include <QDir>
#include <QFileInfo>

#include <dirent.h>
#include <memory>
#include <sys/stat.h>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

constexpr int mostCandidates = 10;
/// What a hostile repository may have the system watch.
constexpr qsizetype mostFolders = 1000;

bool isFolderAt(const QByteArray& path)
{
    struct stat status = {};
    return ::stat(path.constData(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool isFolderItself(const QByteArray& path)
{
    struct stat status = {};
    return ::lstat(path.constData(), &status) == 0 && S_ISDIR(status.st_mode);
}

/// The folders in a folder. A link is none, or one might lead back to where it stands.
QList<QByteArray> foldersIn(const QByteArray& folder)
{
    QList<QByteArray> folders;
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(::opendir(folder.constData()), &::closedir);
    while (const dirent* entry = entries ? ::readdir(entries.get()) : nullptr) {
        const QByteArray name = entry->d_name;
        if (name == "." || name == "..") {
            continue;
        }
        const QByteArray path = folder + name;
        if (entry->d_type == DT_DIR || (entry->d_type == DT_UNKNOWN && isFolderItself(path))) {
            folders.append(path + '/');
        }
    }
    return folders;
}

} // namespace

std::optional<QString> findRepository(const QString& folder)
{
    QString candidate = QDir::cleanPath(QFileInfo(folder).absoluteFilePath());
    for (int tried = 1;; ++tried) {
        if (isThere(QDir(candidate).filePath(u".git"_s))) {
            // Git would read HEAD to its end, which a pipe may not have.
            const auto files = RepositoryFiles::of(candidate);
            return !files || files->hasReadableHead() ? std::optional(candidate) : std::nullopt;
        }
        const QString parent = QFileInfo(candidate).path();
        if (parent == candidate || tried == mostCandidates) {
            return std::nullopt;
        }
        candidate = parent;
    }
}

RepositoryPlaces repositoryPlaces(const QString& folder)
{
    const std::optional<RepositoryFiles> files = RepositoryFiles::of(folder);
    if (!files) {
        return {};
    }
    return {.gitFolder = nativePath(files->gitFolder) + '/', .commonFolder = nativePath(files->commonFolder) + '/'};
}

QList<QByteArray> filesOfState(const RepositoryPlaces& places)
{
    if (places.gitFolder.isEmpty()) {
        return {};
    }
    QList<QByteArray> files{places.gitFolder + "index", places.gitFolder + "HEAD", places.gitFolder + "MERGE_HEAD",
                            places.commonFolder + "packed-refs", places.commonFolder + "config"};
    QList<QByteArray> folders;
    for (const char* name : {"refs/", "reftable/"}) {
        if (isFolderAt(places.commonFolder + name)) {
            folders.append(places.commonFolder + name);
        }
    }
    // The tags and branches of one level stand in one folder: there are few, however many there are of those.
    for (qsizetype at = 0; at < folders.size() && folders.size() < mostFolders; ++at) {
        folders += foldersIn(folders[at]);
    }
    return files + folders.first(std::min(folders.size(), mostFolders));
}

} // namespace kelm
