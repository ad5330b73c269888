// Any bytes as the desktop's list of recent files: a list that is no list stays as it is, and a file that is noted
// stands in it behind what was there.
#include "fuzz/require.h"
#include "platform/desktop/recently_used.h"

#include <QFile>
#include <QTemporaryDir>
#include <QUrl>

#include <cstdint>

namespace {

QByteArray read(const QString& path)
{
    QFile file(path);
    require(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace kelm;

    static const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("recently-used.xbel"));
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    QFile file(path);
    require(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    file.close();
    const QUrl noted(QStringLiteral("file:///home/someone/notes.py"));
    if (!noteRecentlyUsed(path, {noted})) {
        require(read(path) == bytes);
        return 0;
    }
    const QByteArray once = read(path);
    require(once.contains(noted.toEncoded()) && once.contains("KelmWright"));
    require(noteRecentlyUsed(path, {noted}));
    require(read(path).count("<bookmark ") == once.count("<bookmark "));
    return 0;
}
