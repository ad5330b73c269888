#include "platform/events/file_watch.h"

#include "platform/files/native_path.h"
#include "platform/files/open_file.h"
#include "platform/files/symbolic_links.h"

#ifdef Q_OS_LINUX
#include <QSocketNotifier>

#include <cerrno>
#include <sys/inotify.h>
#include <unistd.h>
#else
#include <QFileSystemWatcher>
#endif

#include <utility>

namespace kelm {

namespace {

/// The folder that holds a folder, both with a slash at their ends; the root for itself.
QByteArray parentOf(const QByteArray& folder)
{
    return folder == "/" || folder == "./" ? folder : folderOf(folder.chopped(1));
}

} // namespace

#ifdef Q_OS_LINUX

// The toolkit's watcher takes no names that are not UTF-8, and loses a file that is saved by a renaming.
struct FileWatch::System
{
    OpenFile queue{::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)};
    std::unique_ptr<QSocketNotifier> notifier;
    /// The names that count in each folder, by the number of its watch. An empty one stands for all.
    QHash<int, QSet<QByteArray>> names;
};

FileWatch::FileWatch(QObject* parent) : QObject(parent), system_(std::make_unique<System>())
{
    if (system_->queue.isOpen()) {
        system_->notifier = std::make_unique<QSocketNotifier>(system_->queue.get(), QSocketNotifier::Read);
        connect(system_->notifier.get(), &QSocketNotifier::activated, this, &FileWatch::readEvents);
    }
}

void FileWatch::setFiles(const QList<QByteArray>& nativePaths)
{
    const QHash<int, QSet<QByteArray>> before = std::exchange(system_->names, {});
    for (const QByteArray& path : nativePaths) {
        add(path);
    }
    for (auto entry = before.cbegin(); entry != before.cend(); ++entry) {
        if (!system_->names.contains(entry.key())) {
            ::inotify_rm_watch(system_->queue.get(), entry.key());
        }
    }
}

void FileWatch::addFolder(QByteArray folder, const QByteArray& name)
{
    constexpr quint32 events = IN_MODIFY | IN_CLOSE_WRITE | IN_ATTRIB | IN_MOVED_FROM | IN_MOVED_TO | IN_CREATE |
                               IN_DELETE | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;
    QByteArray wanted = name;
    for (;;) {
        const int watch = ::inotify_add_watch(system_->queue.get(), folder.constData(), events);
        if (watch >= 0) {
            system_->names[watch].insert(wanted);
            return;
        }
        if ((errno != ENOENT && errno != ENOTDIR) || parentOf(folder) == folder) {
            return;
        }
        folder = parentOf(folder);
        wanted.clear();
    }
}

void FileWatch::readEvents()
{
    alignas(inotify_event) char buffer[16 * 1024];
    bool counts = false;
    for (ssize_t size = 0; (size = ::read(system_->queue.get(), buffer, sizeof buffer)) > 0;) {
        for (ssize_t at = 0; at < size;) {
            const auto* const event = reinterpret_cast<const inotify_event*>(buffer + at);
            at += ssize_t(sizeof(inotify_event) + event->len);
            const QSet<QByteArray> names = system_->names.value(event->wd);
            // What has no name is about the folder itself, or about events that were too many to tell.
            counts = counts || event->len == 0 || names.contains(QByteArray()) || names.contains(event->name);
            if ((event->mask & IN_IGNORED) != 0) {
                system_->names.remove(event->wd);
            }
        }
    }
    if (counts) {
        Q_EMIT changed();
    }
}

#else

struct FileWatch::System
{
    QFileSystemWatcher watcher;
};

FileWatch::FileWatch(QObject* parent) : QObject(parent), system_(std::make_unique<System>())
{
    connect(&system_->watcher, &QFileSystemWatcher::fileChanged, this, &FileWatch::changed);
    connect(&system_->watcher, &QFileSystemWatcher::directoryChanged, this, &FileWatch::changed);
}

void FileWatch::setFiles(const QList<QByteArray>& nativePaths)
{
    const QStringList before = system_->watcher.files() + system_->watcher.directories();
    if (!before.isEmpty()) {
        system_->watcher.removePaths(before);
    }
    for (const QByteArray& path : nativePaths) {
        add(path);
    }
}

void FileWatch::addFolder(QByteArray folder, const QByteArray& name)
{
    system_->watcher.addPath(pathOfNative(folder + name));
    while (!system_->watcher.addPath(pathOfNative(folder)) && parentOf(folder) != folder) {
        folder = parentOf(folder);
    }
}

void FileWatch::readEvents() {}

#endif

FileWatch::~FileWatch() = default;

void FileWatch::add(const QByteArray& nativePath)
{
    const QList<QByteArray> paths = linksFrom(nativePath).value_or(QList{nativePath});
    for (const QByteArray& path : paths) {
        const QByteArray folder = folderOf(path);
        addFolder(folder, path.sliced(path.startsWith('/') ? folder.size() : path.lastIndexOf('/') + 1));
    }
}

} // namespace kelm
