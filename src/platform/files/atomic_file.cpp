#include "platform/files/atomic_file.h"

#include <QByteArray>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#ifdef Q_OS_LINUX
#include <sys/xattr.h>
#endif

#include "platform/files/native_path.h"
#include "platform/files/open_file.h"
#include "platform/files/symbolic_links.h"
#include "platform/files/temporary_file.h"
#include "platform/files/writing_in_place.h"

namespace kelm {

namespace {

constexpr mode_t permissionBits = 07777;
constexpr mode_t setIdBits = S_ISUID | S_ISGID;

#ifdef Q_OS_LINUX

/// The extended attributes of a file, access lists among them. What the system refuses to hand on stays behind: the
/// file is saved all the same.
void copyExtendedAttributes(const QByteArray& from, int to)
{
    const ssize_t size = ::listxattr(from.constData(), nullptr, 0);
    if (size <= 0) {
        return;
    }
    QByteArray names(size, Qt::Uninitialized);
    names.truncate(std::max(ssize_t(0), ::listxattr(from.constData(), names.data(), std::size_t(size))));
    for (const QByteArray& name : names.split('\0')) {
        char value[XATTR_SIZE_MAX];
        const ssize_t length =
            name.isEmpty() ? -1 : ::getxattr(from.constData(), name.constData(), value, sizeof value);
        if (length >= 0) {
            ::fsetxattr(to, name.constData(), value, std::size_t(length), 0);
        }
    }
}

#else

void copyExtendedAttributes(const QByteArray&, int) {}

#endif

/// Gives the temporary file what the old file has beside its content. False, with `errno` set, only when the
/// permissions cannot be given.
bool copyAttributes(const QByteArray& from, const struct stat& old, int to)
{
    struct stat made = {};
    if (::fstat(to, &made) != 0) {
        return false;
    }
    // Only a privileged process can give a file away; the group alone may still be possible.
    if ((made.st_uid != old.st_uid || made.st_gid != old.st_gid) && ::fchown(to, old.st_uid, old.st_gid) != 0) {
        [[maybe_unused]] const int groupOnly = ::fchown(to, uid_t(-1), old.st_gid);
    }
    copyExtendedAttributes(from, to);
    // A program that runs with its owner's rights must not run with another's.
    const bool isSameOwner = ::fstat(to, &made) == 0 && made.st_uid == old.st_uid && made.st_gid == old.st_gid;
    const mode_t kept = isSameOwner ? permissionBits : permissionBits & ~setIdBits;
    // Last, since a change of owner clears some of the bits.
    return ::fchmod(to, old.st_mode & kept) == 0;
}

/// Makes the renaming last. A folder that cannot be opened for reading or flushed at all is left to the system.
bool flushFolder(const QByteArray& folder)
{
    const OpenFile opened(::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return !opened.isOpen() || opened.flushToDisk() || errno == EINVAL || errno == ENOTSUP;
}

/// What stands at a path that is to be written.
struct Target
{
    QByteArray path;
    bool exists = false;
    struct stat status = {};
};

/// Absent, with `errno` set, where nothing can be written: a folder, a device, a file that this user may not write.
std::optional<Target> findTarget(const QString& path)
{
    const std::optional<QByteArray> followed = followLinks(nativePath(path));
    if (!followed) {
        return std::nullopt;
    }
    Target target{*followed};
    target.exists = ::stat(target.path.constData(), &target.status) == 0;
    if (!target.exists) {
        return errno == ENOENT ? std::optional(target) : std::nullopt;
    }
    if (!S_ISREG(target.status.st_mode)) {
        errno = S_ISDIR(target.status.st_mode) ? EISDIR : EINVAL;
        return std::nullopt;
    }
    return ::access(target.path.constData(), W_OK) == 0 ? std::optional(target) : std::nullopt;
}

/// False, with `errno` set, when something fails.
bool replaceFile(const Target& target, QByteArrayView bytes)
{
    const QByteArray folder = folderOf(target.path);
    // Until it has the old file's permissions, nobody else may look into the copy. It gets them after the text, since
    // writing takes some of them away again.
    TemporaryFile temporary(folder, target.exists ? 0600 : 0666);
    OpenFile& file = temporary.file();
    return file.isOpen() && file.writeAll(bytes.data(), bytes.size()) &&
           (!target.exists || copyAttributes(target.path, target.status, file.get())) && file.flushToDisk() &&
           file.close() && temporary.renameTo(target.path) && flushFolder(folder);
}

/// The error of the system's last number for a file that could not be written. A file itself need not be there.
FileError writingError(const QString& path)
{
    FileError error = systemError(path, errno);
    return errno == ENOENT ? FileError{error.message, systemError(path, ENOTDIR).reason} : error;
}

} // namespace

std::optional<FileError> writeAtomically(const QString& path, QByteArrayView bytes)
{
    if (path.contains(QChar::Null)) {
        return nullInPath(path);
    }
    const std::optional<Target> target = findTarget(path);
    return target && replaceFile(*target, bytes) ? std::nullopt : std::optional(writingError(path));
}

std::variant<Saved, FileError> saveFile(const QString& path, QByteArrayView bytes, const KeepOldContent& keep)
{
    if (path.contains(QChar::Null)) {
        return nullInPath(path);
    }
    const std::optional<Target> target = findTarget(path);
    if (!target) {
        return writingError(path);
    }
    const bool hasOtherNames = target->exists && target->status.st_nlink > 1;
    if (!hasOtherNames && replaceFile(*target, bytes)) {
        return Saved::byReplacing;
    }
    const bool isRefused = errno == EACCES || errno == EPERM;
    if (!hasOtherNames && (!target->exists || !isRefused)) {
        return writingError(path);
    }
    if (std::optional<FileError> error = writeInPlace(path, target->path, bytes, keep)) {
        return *std::move(error);
    }
    return hasOtherNames ? Saved::inPlaceForItsNames : Saved::inPlaceForItsFolder;
}

} // namespace kelm
