#include "soak/files_on_disk.h"

#include "app/state/watched_files.h"

#include <QStringDecoder>

namespace kelm::soak {

using namespace Qt::Literals::StringLiterals;

std::optional<QString> textOf(const QByteArray& bytes)
{
    const bool hasMark = bytes.startsWith("\xEF\xBB\xBF");
    // Not one that waits for the rest of a character that is cut off at the end.
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder.decode(hasMark ? bytes.sliced(3) : bytes);
    if (decoder.hasError()) {
        return std::nullopt;
    }
    return hasMark ? QChar(0xfeff) + text : text;
}

QByteArray bytesOf(const QString& text)
{
    QByteArray bytes;
    for (const char32_t character : text.toStdU32String()) {
        const auto tail = [character](int shift) { return static_cast<char>(0x80 | ((character >> shift) & 0x3f)); };
        if (character < 0x80) {
            bytes += static_cast<char>(character);
        } else if (character < 0x800) {
            bytes += static_cast<char>(0xc0 | (character >> 6));
            bytes += tail(0);
        } else if (character < 0x10000) {
            bytes += static_cast<char>(0xe0 | (character >> 12));
            bytes += tail(6);
            bytes += tail(0);
        } else {
            bytes += static_cast<char>(0xf0 | (character >> 18));
            bytes += tail(12);
            bytes += tail(6);
            bytes += tail(0);
        }
    }
    return bytes;
}

void expectOpened(World& world, const QUrl& url)
{
    if (const auto open = world.tabs.indexOf(url)) {
        world.tabs.select(*open);
        return;
    }
    const std::optional<QByteArray> bytes = world.disk.bytesOf(url.toLocalFile());
    if (const auto text = bytes ? textOf(*bytes) : std::nullopt) {
        world.tabs.open(ShadowDocument(*text, url));
    }
}

bool expectSaved(World& world, ShadowDocument& document)
{
    const QString path = world.disk.behindLinks(document.url->toLocalFile());
    if (QFileInfo(QFileInfo(path).path()).isDir()) {
        world.disk.expect(path, bytesOf(document.text()));
        document.saved();
        return true;
    }
    return false;
}

void followDisk(World& world)
{
    world.state.watchedFiles().lookAgain();
    world.waitFor([&world] { return world.state.watchedFiles().isSettled(); }, u"the open files to be looked at"_s);
    for (ShadowDocument& document : world.tabs.all()) {
        const auto bytes =
            document.url ? world.disk.bytesOf(world.disk.behindLinks(document.url->toLocalFile())) : std::nullopt;
        const auto text = bytes ? textOf(*bytes) : std::nullopt;
        if (document.url) {
            document.fileText = text;
        }
        if (text && !document.isModified && *text != document.text()) {
            document.edited(*text);
            document.isModified = false;
        }
    }
}

QUrl someFile(World& world)
{
    QStringList paths;
    for (const QString& path : world.disk.paths()) {
        if (path.startsWith(world.repository.path() + u'/')) {
            paths.append(path);
        }
    }
    return paths.isEmpty() ? QUrl() : QUrl::fromLocalFile(world.chance.pick(paths));
}

} // namespace kelm::soak
