#include "platform/files/native_path.h"

#include "platform/files/utf8_file.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace kelm {

namespace {

constexpr char16_t firstRaw = 0xdc80;
constexpr char16_t lastRaw = 0xdcff;
constexpr char16_t rawBase = 0xdc00;
constexpr qsizetype longestCharacter = 4;

bool isRaw(QChar unit)
{
    return unit.unicode() >= firstRaw && unit.unicode() <= lastRaw;
}

/// The place of the next unit that stands for a byte, from `from` on; the length where there is none.
qsizetype nextRaw(QStringView path, qsizetype from)
{
    for (qsizetype at = from; at < path.size(); ++at) {
        if (path[at].isHighSurrogate() && at + 1 < path.size() && path[at + 1].isLowSurrogate()) {
            ++at;
        } else if (isRaw(path[at])) {
            return at;
        }
    }
    return path.size();
}

/// Takes the valid character off the start of `bytes`; absent where there is none.
std::optional<QString> takeCharacter(QByteArrayView& bytes)
{
    for (qsizetype length = 1; length <= std::min(longestCharacter, bytes.size()); ++length) {
        if (std::optional<QString> character = decodeUtf8Text(bytes.first(length))) {
            bytes = bytes.sliced(length);
            return character;
        }
    }
    return std::nullopt;
}

std::optional<struct stat> statusOf(const QString& path)
{
    struct stat status = {};
    const bool isFound = !path.contains(QChar::Null) && ::stat(nativePath(path).constData(), &status) == 0;
    return isFound ? std::optional(status) : std::nullopt;
}

} // namespace

QString pathOfNative(QByteArrayView bytes)
{
    if (std::optional<QString> text = decodeUtf8Text(bytes)) {
        return *std::move(text);
    }
    QString path;
    while (!bytes.isEmpty()) {
        if (const std::optional<QString> character = takeCharacter(bytes)) {
            path += *character;
        } else {
            path += QChar(char16_t(rawBase + static_cast<unsigned char>(bytes.front())));
            bytes = bytes.sliced(1);
        }
    }
    return path;
}

QByteArray nativePath(const QString& path)
{
    QByteArray bytes;
    for (qsizetype at = 0; at < path.size();) {
        const qsizetype raw = nextRaw(path, at);
        bytes += QStringView(path).sliced(at, raw - at).toUtf8();
        if (raw < path.size()) {
            bytes += char(path[raw].unicode() - rawBase);
        }
        at = raw + 1;
    }
    return bytes;
}

bool holdsRawBytes(QStringView path)
{
    return nextRaw(path, 0) < path.size();
}

QString shownPath(QString path)
{
    for (qsizetype at = nextRaw(path, 0); at < path.size(); at = nextRaw(path, at + 1)) {
        path[at] = QChar::ReplacementCharacter;
    }
    return path;
}

QStringList argumentsOf(int count, const char* const* arguments)
{
    QStringList texts;
    for (int index = 1; index < count; ++index) {
        texts << pathOfNative(arguments[index]);
    }
    return texts;
}

QString currentFolder()
{
    const std::unique_ptr<char, decltype(&std::free)> path(::getcwd(nullptr, 0), std::free);
    return path ? pathOfNative(path.get()) : QString();
}

bool isFolder(const QString& path)
{
    const std::optional<struct stat> status = statusOf(path);
    return status && S_ISDIR(status->st_mode);
}

bool isThere(const QString& path)
{
    return statusOf(path).has_value();
}

} // namespace kelm
