#include "platform/desktop/recently_used.h"

#include "platform/files/atomic_file.h"
#include "platform/files/file_url.h"
#include "platform/files/native_path.h"
#include "platform/files/open_file.h"
#include "platform/files/standard_paths.h"

#include <QDir>
#include <QRegularExpression>
#include <QStandardPaths>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <optional>
#include <sys/stat.h>

#ifndef Q_OS_MACOS
#include <gio/gio.h>
#endif

namespace kelm {

using namespace Qt::Literals::StringLiterals;

QString recentlyUsedPath()
{
    return standardPaths::applicationSupportDirectory() + u"/recently-used.xbel"_s;
}

bool isToldToDesktop(const QUrl& file)
{
    const QString path = filePath(file);
    if (!file.isLocalFile() || !file.host().isEmpty() || !path.startsWith(u'/') || path.contains(u"/.git/"_s)) {
        return false;
    }
    const QStringList passing{
        u"/tmp"_s,
        u"/var/tmp"_s,
        u"/dev"_s,
        u"/proc"_s,
        u"/sys"_s,
        u"/run"_s,
        QDir::tempPath(),
        standardPaths::savedState(),
        standardPaths::applicationSupport(),
        QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation),
        qEnvironmentVariable("XDG_RUNTIME_DIR"),
    };
    return std::none_of(passing.begin(), passing.end(),
                        [&path](const QString& place) { return !place.isEmpty() && path.startsWith(place + u'/'); });
}

#ifdef Q_OS_MACOS

bool noteRecentlyUsed(const QString&, const QList<QUrl>&)
{
    return false;
}

#else

namespace {

constexpr qsizetype longestList = 16 * qsizetype(1024) * 1024;
/// What the library takes apart and puts together again; it loses what others have added to an entry.
const QByteArray knownOwner = "http://freedesktop.org";

using BookmarkFile = std::unique_ptr<GBookmarkFile, decltype(&g_bookmark_file_free)>;
using Words = std::unique_ptr<char, decltype(&g_free)>;

/// The bytes of the list; none where there is no list yet. Absent where it cannot be read.
std::optional<QByteArray> readList(const QString& path)
{
    const OpenFile file = OpenFile::openForReading(nativePath(path));
    if (!file.isOpen()) {
        return errno == ENOENT ? std::optional(QByteArray()) : std::nullopt;
    }
    return file.readAll();
}

/// Whether nothing is lost when the library writes the list again.
bool isAllKnown(const QByteArray& list)
{
    static const QRegularExpression owner(u"<metadata\\s+owner=[\"']([^\"']*)[\"']"_s);
    QRegularExpressionMatchIterator owners = owner.globalMatch(QString::fromUtf8(list));
    while (owners.hasNext()) {
        if (owners.next().captured(1).toUtf8() != knownOwner) {
            return false;
        }
    }
    return true;
}

struct List
{
    BookmarkFile entries{g_bookmark_file_new(), g_bookmark_file_free};

    /// False where the bytes are none; no bytes are an empty list.
    bool read(QByteArrayView bytes)
    {
        return bytes.isEmpty() || g_bookmark_file_load_from_data(entries.get(), bytes.data(),
                                                                 static_cast<gsize>(bytes.size()), nullptr) != FALSE;
    }
    /// Empty where the library fails.
    QByteArray written() const
    {
        gsize length = 0;
        const Words bytes(g_bookmark_file_to_data(entries.get(), &length, nullptr), g_free);
        return {bytes.get(), static_cast<qsizetype>(bytes ? length : 0)};
    }
};

/// Whether the library still has all of a list when it reads what it has written: it writes an entry that no program
/// owns, and leaves it out the next time.
bool isKept(const QByteArray& bytes)
{
    List again;
    return again.read(bytes) && again.written() == bytes;
}

void note(GBookmarkFile& list, const QUrl& file)
{
    const QByteArray uri = file.toEncoded(QUrl::FullyEncoded);
    const QByteArray name = nativePath(filePath(file));
    const Words content(g_content_type_guess(name.constData(), nullptr, 0, nullptr), g_free);
    const Words mime(g_content_type_get_mime_type(content.get()), g_free);
    const bool isUnknown = !mime || g_content_type_is_unknown(content.get()) != FALSE;
    // Whatever has been opened here is text.
    g_bookmark_file_set_mime_type(&list, uri.constData(), isUnknown ? "text/plain" : mime.get());
    g_bookmark_file_add_application(&list, uri.constData(), "KelmWright", "kelmwright %u");
}

} // namespace

bool noteRecentlyUsed(const QString& listPath, const QList<QUrl>& files)
{
    const std::optional<QByteArray> old = readList(listPath);
    if (!old || old->size() > longestList || !isAllKnown(*old)) {
        return false;
    }
    List list;
    if (!list.read(*old)) {
        return false;
    }
    for (const QUrl& file : files) {
        note(*list.entries, file);
    }
    const QByteArray bytes = list.written();
    if (bytes.isEmpty() || !isKept(bytes)) {
        return false;
    }
    if (old->isEmpty()) {
        QDir().mkpath(listPath.first(listPath.lastIndexOf(u'/')));
    }
    const bool isWritten = !writeAtomically(listPath, bytes).has_value();
    if (isWritten && old->isEmpty()) {
        // What somebody works on is nobody else's business.
        ::chmod(nativePath(listPath).constData(), S_IRUSR | S_IWUSR);
    }
    return isWritten;
}

#endif

} // namespace kelm
