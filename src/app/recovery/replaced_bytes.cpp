#include "app/recovery/replaced_bytes.h"

#include "platform/files/native_path.h"
#include "platform/files/open_file.h"
#include "platform/files/utf8_file.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

#include <chrono>
#include <optional>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

/// What is made is locked at once.
constexpr std::chrono::milliseconds longestBegin = std::chrono::minutes(1);

/// Opens it, and keeps others from taking it; closed when somebody else has it, or had, such as the program whose save
/// goes on.
OpenFile claim(const QByteArray& path)
{
    OpenFile file = OpenFile::openForReading(path);
    struct stat status = {};
    const bool isOurs = file.isOpen() && ::flock(file.get(), LOCK_EX | LOCK_NB) == 0 &&
                        ::fstat(file.get(), &status) == 0 && status.st_nlink > 0;
    return isOurs ? std::move(file) : OpenFile();
}

} // namespace

const QString ReplacedBytes::prefix = u"replaced-"_s;

QByteArray ReplacedBytes::encoded() const
{
    return url.toEncoded() + '\n' + content;
}

ReplacedBytes ReplacedBytes::decoded(const QByteArray& bytes)
{
    const qsizetype end = bytes.indexOf('\n');
    const QUrl url = end > 0 ? QUrl::fromEncoded(bytes.first(end), QUrl::StrictMode) : QUrl();
    if (!url.isLocalFile()) {
        return {{}, bytes};
    }
    return {url, bytes.sliced(end + 1)};
}

ShownBytes ShownBytes::of(const QByteArray& bytes)
{
    const std::optional<QString> text = decodeUtf8Text(bytes);
    return {text ? *text : QString::fromLatin1(bytes), !text.has_value()};
}

void takeLeftBytes(const QString& folder, qint64 now,
                   const std::function<bool(const ReplacedBytes& bytes, qint64 time)>& keep)
{
    for (const QFileInfo& each : QDir(folder).entryInfoList({ReplacedBytes::prefix + u'*'}, QDir::Files)) {
        const qint64 time = each.lastModified().toMSecsSinceEpoch();
        if (each.isSymLink() || (each.size() == 0 && now - time < longestBegin.count())) {
            continue;
        }
        const QByteArray path = nativePath(each.filePath());
        const OpenFile file = claim(path);
        const std::optional<QByteArray> bytes = file.isOpen() ? file.readAll() : std::nullopt;
        // Nothing at all was written to an empty one.
        if (bytes && (bytes->isEmpty() || keep(ReplacedBytes::decoded(*bytes), time))) {
            ::unlink(path.constData());
        }
    }
}

} // namespace kelm
