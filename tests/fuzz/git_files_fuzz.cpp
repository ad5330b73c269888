// Any bytes as what stands in a repository, read without git. An odd first byte makes them the file ".git" that names
// another place, an even one the file HEAD.
#include "fuzz/require.h"
#include "git/service/git_head.h"
#include "git/service/repository_places.h"
#include "workbench/status/git_branch.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QUrl>

#include <algorithm>
#include <cstdint>

namespace {

void write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    require(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace kelm;

    if (size == 0) {
        return 0;
    }
    static const QTemporaryDir folder;
    const QString git = folder.filePath(QStringLiteral(".git"));
    const QByteArray bytes(reinterpret_cast<const char*>(data + 1), qsizetype(size - 1));
    if (data[0] % 2 == 1) {
        write(git, bytes);
    } else {
        require(QDir().mkpath(git));
        write(git + QStringLiteral("/HEAD"), bytes);
    }
    const GitHead head = readHead(folder.path());
    require(head.branch.isEmpty() || head.commit.isEmpty());
    require(head.branch.size() <= bytes.size() || data[0] % 2 == 1);
    require(std::all_of(head.commit.begin(), head.commit.end(), [](QChar digit) { return digit.isLetterOrNumber(); }));
    const RepositoryPlaces places = repositoryPlaces(folder.path());
    require(places.gitFolder.isEmpty() == places.commonFolder.isEmpty());
    require(places.gitFolder.isEmpty() || (places.gitFolder.endsWith('/') && places.commonFolder.endsWith('/')));
    findRepository(folder.path());
    if (const auto branch = gitBranch(QUrl::fromLocalFile(folder.path()))) {
        require(branch->size() <= bytes.size() || data[0] % 2 == 1);
    }
    QDir(git).removeRecursively();
    QFile::remove(git);
    return 0;
}
