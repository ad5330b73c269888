#include "platform/files/temporary_file.h"

#include "platform/files/file_step.h"
#include "platform/files/native_path.h"

#include <QRandomGenerator>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kelm {

namespace {

constexpr int mostNames = 100;
// Short names of their own, since the target's may be as long as names can be.
constexpr QByteArrayView prefix(".kelm-");
constexpr int base = 36;
constexpr qsizetype mostDigits = 13;

bool isTemporaryName(QByteArrayView name)
{
    const QByteArrayView digits = name.sliced(std::min(prefix.size(), name.size()));
    const auto isDigit = [](char unit) { return (unit >= '0' && unit <= '9') || (unit >= 'a' && unit <= 'z'); };
    return name.startsWith(prefix) && !digits.isEmpty() && digits.size() <= mostDigits &&
           std::all_of(digits.begin(), digits.end(), isDigit);
}

/// Whether the open file is still the one that its path names: a program that tidies up may have taken it away between
/// its making and its locking.
bool isStillNamed(const OpenFile& file)
{
    struct stat status = {};
    return ::fstat(file.get(), &status) == 0 && status.st_nlink > 0;
}

void removeIfLeft(int folder, const char* name)
{
    const OpenFile file(::openat(folder, name, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW));
    struct stat status = {};
    if (file.isOpen() && ::fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode) && status.st_nlink == 1 &&
        status.st_uid == ::geteuid() && ::flock(file.get(), LOCK_EX | LOCK_NB) == 0) {
        ::unlinkat(folder, name, 0);
    }
}

} // namespace

TemporaryFile::TemporaryFile(const QByteArray& folder, mode_t mode)
{
    for (int i = 0; i < mostNames && !make(folder, mode); ++i) {
        if (!file_.isOpen() && errno != EEXIST) {
            return;
        }
    }
}

bool TemporaryFile::make(const QByteArray& folder, mode_t mode)
{
    path_ = folder + prefix.toByteArray() + QByteArray::number(QRandomGenerator::global()->generate64(), base);
    if (!mayTake(FileStep::create)) {
        return false;
    }
    file_ = OpenFile(::open(path_.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
    if (!file_.isOpen()) {
        return false;
    }
    isLeft_ = true;
    // Who tidies up holds it for a moment at most. Where files cannot be locked nobody finds this one left behind.
    if (::flock(file_.get(), LOCK_EX) == 0) {
        lock_ = OpenFile(::fcntl(file_.get(), F_DUPFD_CLOEXEC, 0));
    }
    return isStillNamed(file_);
}

TemporaryFile::~TemporaryFile()
{
    if (isLeft_) {
        const int reason = errno;
        ::unlink(path_.constData());
        errno = reason;
    }
}

bool TemporaryFile::renameTo(const QByteArray& target)
{
    isLeft_ = !mayTake(FileStep::rename) || std::rename(path_.constData(), target.constData()) != 0;
    return !isLeft_;
}

void removeLeftFiles(const QString& folder)
{
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(::opendir(nativePath(folder).constData()), ::closedir);
    while (const dirent* entry = entries ? ::readdir(entries.get()) : nullptr) {
        if (isTemporaryName(entry->d_name)) {
            removeIfLeft(::dirfd(entries.get()), entry->d_name);
        }
    }
}

} // namespace kelm
