#include "files/file_item.h"

#include "platform/files/file_url.h"
#include "platform/files/native_path.h"
#include "platform/text/string_comparison.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <vector>

namespace kelm {

namespace {

struct FileKind
{
    const char* extension;
    const char* icon;
    SystemColor color;
};

constexpr std::array fileKinds{
    FileKind{"swift", "swift", SystemColor::orange},
    FileKind{"py", "chevron.left.forwardslash.chevron.right", SystemColor::blue},
    FileKind{"js", "curlybraces", SystemColor::yellow},
    FileKind{"ts", "curlybraces", SystemColor::blue},
    FileKind{"json", "doc.text", SystemColor::green},
    FileKind{"md", "doc.richtext", SystemColor::purple},
    FileKind{"html", "globe", SystemColor::secondaryLabel},
    FileKind{"css", "globe", SystemColor::secondaryLabel},
};

constexpr FileKind otherKind{"", "doc", SystemColor::secondaryLabel};

const FileKind& kindOf(const QUrl& url)
{
    const QString extension = pathExtension(url).toLower();
    const auto found = std::find_if(fileKinds.begin(), fileKinds.end(), [&extension](const FileKind& kind) {
        return extension == QLatin1String(kind.extension);
    });
    return found == fileKinds.end() ? otherKind : *found;
}

bool isFolder(const dirent& entry, int folder)
{
    if (entry.d_type != DT_UNKNOWN) {
        return entry.d_type == DT_DIR;
    }
    // Some file systems tell only when they are asked.
    struct stat status
    {};
    return fstatat(folder, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(status.st_mode);
}

/// An entry with the key by which it is sorted: comparing keys costs far less than comparing names.
struct SortedItem
{
    QByteArray key;
    FileItem item;
};

QList<FileItem> sorted(std::vector<SortedItem> entries)
{
    std::stable_sort(entries.begin(), entries.end(), [](const SortedItem& a, const SortedItem& b) {
        if (a.item.isDirectory != b.item.isDirectory) {
            return a.item.isDirectory;
        }
        return a.key < b.key;
    });
    QList<FileItem> items;
    items.reserve(static_cast<qsizetype>(entries.size()));
    for (SortedItem& entry : entries) {
        items.append(std::move(entry.item));
    }
    return items;
}

} // namespace

QString FileItem::icon() const
{
    return isDirectory ? QStringLiteral("folder.fill") : QString::fromLatin1(kindOf(url).icon);
}

SystemColor FileItem::iconColor() const
{
    return kindOf(url).color;
}

QString FileItem::name() const
{
    return lastPathComponent(url);
}

std::variant<QList<FileItem>, FileError> listFolder(const QUrl& url)
{
    const QString path = folderPrefix(url);
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(nativePath(path).constData()), closedir);
    if (!folder) {
        return systemError(filePath(url), errno);
    }
    const StringComparison& comparison = StringComparison::current();
    std::vector<SortedItem> entries;
    while (const dirent* entry = readdir(folder.get())) {
        if (entry->d_name[0] == '.') {
            continue;
        }
        const QString name = pathOfNative(entry->d_name);
        FileItem item{.url = urlOfFile(path + name), .isDirectory = isFolder(*entry, dirfd(folder.get()))};
        entries.push_back({comparison.sortKey(name), std::move(item)});
    }
    return sorted(std::move(entries));
}

} // namespace kelm
