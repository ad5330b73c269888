#include "search/project_scan.h"

#include "platform/files/file_url.h"
#include "platform/files/native_path.h"
#include "platform/files/utf8_file.h"
#include "platform/text/character_sets.h"

#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace kelm {

namespace {

enum class Kind { folder, file, other };

struct Entry
{
    QByteArray name;
    Kind kind;
};

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

/// The bytes of a file in one buffer that serves for all files.
class FileReader
{
public:
    /// What the file holds, until the next call; empty when it cannot be read.
    QByteArrayView read(const QByteArray& path, const std::function<bool()>& isCancelled)
    {
        const int file = open(path.constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
        if (file < 0) {
            return {};
        }
        const qsizetype size = readAll(file, isCancelled);
        close(file);
        return {buffer_.constData(), size};
    }

private:
    qsizetype readAll(int file, const std::function<bool()>& isCancelled)
    {
        constexpr qsizetype firstRoom = 256 * qsizetype(1024);
        qsizetype size = 0;
        for (;;) {
            if (buffer_.size() - size < firstRoom) {
                buffer_.resize(std::max(firstRoom, buffer_.size() * 2));
            }
            const ssize_t got = ::read(file, buffer_.data() + size, std::size_t(buffer_.size() - size));
            if (got <= 0 || isCancelled()) {
                return got == 0 ? size : 0;
            }
            size += got;
        }
    }

    QByteArray buffer_;
};

class Scan
{
public:
    Scan(const LocalizedNeedle& needle, const ProjectScanCallbacks& callbacks) : needle_(needle), callbacks_(callbacks)
    {}

    /// Every path of a folder ends with a slash.
    void walk(const QByteArray& folder)
    {
        // A list instead of a call within a call: folders may be nested as deep as the disk likes.
        QList<QByteArray> pending{folder};
        while (!pending.isEmpty() && !callbacks_.isCancelled()) {
            const QByteArray path = pending.takeLast();
            QList<QByteArray> folders;
            walkOne(path, folders);
            for (qsizetype at = folders.size() - 1; at >= 0; --at) {
                pending.append(path + folders[at] + '/');
            }
        }
    }

private:
    void walkOne(const QByteArray& path, QList<QByteArray>& folders)
    {
        const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(path.constData()), closedir);
        if (!folder) {
            return;
        }
        while (const dirent* entry = readdir(folder.get())) {
            if (entry->d_name[0] == '.') {
                continue;
            }
            const Kind kind = kindOf(*entry, dirfd(folder.get()));
            if (kind == Kind::folder) {
                folders.append(entry->d_name);
            } else if (kind == Kind::file) {
                if (callbacks_.isCancelled()) {
                    return;
                }
                search(path + entry->d_name);
            }
        }
    }

    void search(const QByteArray& path)
    {
        const QByteArrayView bytes = reader_.read(path, callbacks_.isCancelled);
        if (bytes.isEmpty() || !needle_.mayBeIn(bytes)) {
            return;
        }
        const std::optional<QString> text = decodeUtf8Text(bytes);
        if (text) {
            searchLines(path, *text);
        }
    }

    void searchLines(const QByteArray& path, const QString& text)
    {
        QUrl url;
        QString name;
        qsizetype number = 1;
        qsizetype start = 0;
        for (qsizetype at = 0; at <= text.size(); ++at) {
            if (at < text.size() && !isNewline(text[at].unicode())) {
                continue;
            }
            const QStringView line = QStringView(text).sliced(start, at - start);
            if (callbacks_.isCancelled()) {
                return;
            }
            if (needle_.isIn(line)) {
                if (url.isEmpty()) {
                    const QString file = pathOfNative(path);
                    url = urlOfFile(file);
                    name = shownPath(file.mid(file.lastIndexOf(u'/') + 1));
                }
                callbacks_.onResult(
                    {.fileURL = url, .fileName = name, .lineNumber = number, .matchLine = line.toString()});
            }
            ++number;
            start = at + 1;
        }
    }

    const LocalizedNeedle& needle_;
    const ProjectScanCallbacks& callbacks_;
    FileReader reader_;
};

} // namespace

void scanProject(const QString& root, const LocalizedNeedle& needle, const ProjectScanCallbacks& callbacks)
{
    Scan(needle, callbacks).walk(nativePath(root.endsWith(u'/') ? root : root + u'/'));
}

} // namespace kelm
