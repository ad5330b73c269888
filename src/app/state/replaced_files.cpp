#include "app/state/replaced_files.h"

#include "app/recovery/replaced_bytes.h"
#include "platform/files/file_url.h"
#include "platform/files/native_path.h"

#include <QDir>
#include <QRandomGenerator>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr std::size_t mostHeld = 16;

} // namespace

std::optional<QUrl> ReplacedFilesFolder::keepReplaced(const QUrl& file, const QByteArray& content)
{
    constexpr int base = 36;
    constexpr mode_t ownersAlone = 0700;
    QDir().mkpath(folder_);
    const QByteArray folder = nativePath(folder_);
    ::chmod(folder.constData(), ownersAlone);
    const QString path =
        folder_ + u'/' + ReplacedBytes::prefix + QString::number(QRandomGenerator::global()->generate64(), base);
    OpenFile kept(::open(nativePath(path).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!kept.isOpen()) {
        return std::nullopt;
    }
    const QUrl url = urlOfFile(path);
    const QByteArray bytes = ReplacedBytes{file, content}.encoded();
    // A disk without locks keeps it as well.
    const bool isTaken = ::flock(kept.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    if (isTaken || !kept.writeAll(bytes.constData(), bytes.size()) || !kept.flushToDisk()) {
        forget(url);
        return std::nullopt;
    }
    // Those of saves that failed in their middle stay, and their number has no bound.
    if (held_.size() >= mostHeld) {
        held_.erase(held_.begin());
    }
    held_.insert_or_assign(url, std::move(kept));
    const OpenFile opened(::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    static_cast<void>(opened.isOpen() && opened.flushToDisk());
    return url;
}

void ReplacedFilesFolder::forget(const QUrl& kept)
{
    ::unlink(nativePath(filePath(kept)).constData());
    held_.erase(kept);
}

} // namespace kelm
