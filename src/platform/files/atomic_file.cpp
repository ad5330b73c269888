#include "platform/files/atomic_file.h"

#include <QByteArray>
#include <QFile>
#include <QRandomGenerator>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#ifdef Q_OS_LINUX
#include <sys/xattr.h>
#endif

#include "platform/files/open_file.h"

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int mostLinks = 40;
constexpr int mostNames = 100;
constexpr mode_t permissionBits = 07777;

QByteArray folderOf(const QByteArray& nativePath)
{
    const qsizetype slash = nativePath.lastIndexOf('/');
    return slash < 0 ? QByteArray("./") : nativePath.left(slash + 1);
}

/// What the symbolic link at `nativePath` says, or nothing when it is none.
std::optional<QByteArray> linkTarget(const QByteArray& nativePath)
{
    char target[PATH_MAX];
    const ssize_t length = ::readlink(nativePath.constData(), target, sizeof target);
    return length < 0 ? std::nullopt : std::optional(QByteArray(target, length));
}

/// The path behind all symbolic links in the last place of `nativePath`; absent, with `errno` set, when they run in a
/// circle.
std::optional<QByteArray> followLinks(QByteArray nativePath)
{
    for (int links = 0; links < mostLinks; ++links) {
        const std::optional<QByteArray> target = linkTarget(nativePath);
        if (!target) {
            return nativePath;
        }
        nativePath = target->startsWith('/') ? *target : folderOf(nativePath) + *target;
    }
    errno = ELOOP;
    return std::nullopt;
}

/// A new, empty file in a folder, removed again unless it is put in its place.
class TemporaryFile
{
public:
    /// Makes the file with the permissions `mode`, as far as the process's mask leaves them. Not open, with `errno`
    /// set, when it cannot be made.
    TemporaryFile(const QByteArray& folder, mode_t mode)
    {
        for (int i = 0; i < mostNames && !file_.isOpen(); ++i) {
            // A short name of its own, since the target's may be as long as names can be.
            path_ = folder + ".kelm-" + QByteArray::number(QRandomGenerator::global()->generate64(), 36);
            file_ = OpenFile(::open(path_.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
            if (!file_.isOpen() && errno != EEXIST) {
                return;
            }
        }
        isLeft_ = file_.isOpen();
    }

    ~TemporaryFile()
    {
        if (isLeft_) {
            const int reason = errno;
            ::unlink(path_.constData());
            errno = reason;
        }
    }

    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    OpenFile& file() { return file_; }

    bool renameTo(const QByteArray& target)
    {
        isLeft_ = std::rename(path_.constData(), target.constData()) != 0;
        return !isLeft_;
    }

private:
    QByteArray path_;
    OpenFile file_;
    bool isLeft_ = false;
};

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
    // Last, since a change of owner clears some of the bits.
    return ::fchmod(to, old.st_mode & permissionBits) == 0;
}

bool flushToDisk(int descriptor)
{
#ifdef F_FULLFSYNC
    if (::fcntl(descriptor, F_FULLFSYNC) == 0) {
        return true;
    }
#endif
    return ::fsync(descriptor) == 0;
}

/// Makes the renaming last. A folder that cannot be opened for reading or flushed at all is left to the system.
bool flushFolder(const QByteArray& folder)
{
    const OpenFile opened(::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return !opened.isOpen() || flushToDisk(opened.get()) || errno == EINVAL || errno == ENOTSUP;
}

/// False, with `errno` set, when something fails.
bool replaceFile(const QByteArray& target, QByteArrayView bytes)
{
    struct stat old = {};
    const bool exists = ::stat(target.constData(), &old) == 0;
    if (!exists && errno != ENOENT) {
        return false;
    }
    if (exists && !S_ISREG(old.st_mode)) {
        errno = S_ISDIR(old.st_mode) ? EISDIR : EINVAL;
        return false;
    }
    if (exists && ::access(target.constData(), W_OK) != 0) {
        return false;
    }
    const QByteArray folder = folderOf(target);
    // Until it has the old file's permissions, nobody else may look into the copy. It gets them after the text, since
    // writing takes some of them away again.
    TemporaryFile temporary(folder, exists ? 0600 : 0666);
    OpenFile& file = temporary.file();
    return file.isOpen() && file.writeAll(bytes.data(), bytes.size()) &&
           (!exists || copyAttributes(target, old, file.get())) && flushToDisk(file.get()) && file.close() &&
           temporary.renameTo(target) && flushFolder(folder);
}

} // namespace

std::optional<FileError> writeAtomically(const QString& path, QByteArrayView bytes)
{
    const std::optional<QByteArray> target = followLinks(QFile::encodeName(path));
    if (target && replaceFile(*target, bytes)) {
        return std::nullopt;
    }
    return FileError{u"%1: %2"_s.arg(path, QString::fromLocal8Bit(std::strerror(errno)))};
}

} // namespace kelm
