#include "git/service/repository_files.h"

#include "platform/files/native_path.h"
#include "platform/files/start_of_file.h"

#include <QDir>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

constexpr qsizetype longestPath = 8192;

/// The path that a file of one line names, seen from `folder`.
QString pathIn(QByteArray line, const QString& folder)
{
    while (line.endsWith('\n') || line.endsWith('\r')) {
        line.chop(1);
    }
    return QDir::cleanPath(QDir(folder).absoluteFilePath(pathOfNative(line)));
}

} // namespace

std::optional<RepositoryFiles> RepositoryFiles::of(const QString& folder)
{
    constexpr QByteArrayView prefix = "gitdir: ";
    RepositoryFiles files{.folder = folder, .gitFolder = QDir(folder).filePath(u".git"_s), .commonFolder = {}};
    if (!isFolder(files.gitFolder)) {
        const auto link = startOfFile(files.gitFolder, longestPath);
        if (!link || !link->startsWith(prefix)) {
            return std::nullopt;
        }
        files.gitFolder = pathIn(link->sliced(prefix.size()), folder);
    }
    const auto common = startOfFile(files.gitFolder + u"/commondir"_s, longestPath);
    files.commonFolder = common ? pathIn(*common, files.gitFolder) : files.gitFolder;
    return files;
}

bool RepositoryFiles::hasReadableHead() const
{
    const auto start = startOfFile(head(), longestPath + 1);
    return start ? start->size() <= longestPath : !isThere(head());
}

} // namespace kelm
