#include "app/recovery/copy_file.h"

#include "app/recovery/copy_records.h"

#include <QFile>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr mode_t ownersAlone = 0600;

/// A write that fails leaves `errno` set, which closing and removing must not change.
class KeptErrno
{
public:
    KeptErrno() = default;
    ~KeptErrno() { errno = kept_; }
    KeptErrno(const KeptErrno&) = delete;
    KeptErrno& operator=(const KeptErrno&) = delete;

private:
    int kept_ = errno;
};

bool writeBytes(const OpenFile& file, const QByteArray& bytes, qint64& size)
{
    size += bytes.size();
    return file.writeAll(bytes.constData(), bytes.size());
}

} // namespace

std::optional<FileError> CopyFile::write(const CopyHeader& header, const TextTree& text)
{
    const std::optional<bool> isAppended = appendEdit(header, text);
    if (isAppended ? *isAppended : writeWhole(header, text)) {
        return std::nullopt;
    }
    return FileError{u"%1: %2"_s.arg(QFile::decodeName(path_), QString::fromLocal8Bit(std::strerror(errno)))};
}

// Not by `writeAtomically`, which wants all bytes at once: those of a long text are as much memory again. The copy goes
// to the disk piece by piece.
bool CopyFile::writeWhole(const CopyHeader& header, const TextTree& text)
{
    const QByteArray temporary = path_ + ".part";
    ::unlink(temporary.constData());
    OpenFile file(::open(temporary.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, ownersAlone));
    if (!file.isOpen()) {
        return false;
    }
    qint64 size = 0;
    const bool isWritten =
        writeBytes(file, copyMark.toByteArray(), size) &&
        writeBytes(file, copyRecord(CopyRecord::header, encodeHeader(header)), size) &&
        forEachTextRecord(text, [&](const QByteArray& record) { return writeBytes(file, record, size); }) &&
        ::fsync(file.get()) == 0 && std::rename(temporary.constData(), path_.constData()) == 0;
    if (!isWritten) {
        const KeptErrno kept;
        ::unlink(temporary.constData());
        return false;
    }
    // Only what is long is gone on with.
    const bool isLong = text.length() >= leastLong;
    file_ = isLong ? std::move(file) : OpenFile();
    text_ = isLong ? text : TextTree();
    header_ = header;
    copySize_ = size;
    size_ = size;
    writtenBytes_ += size;
    return true;
}

std::optional<bool> CopyFile::appendEdit(const CopyHeader& header, const TextTree& text)
{
    struct stat status = {};
    // Somebody may have removed the file, or the folder with all in it.
    if (!file_.isOpen() || text.length() < leastLong || ::fstat(file_.get(), &status) != 0 || status.st_nlink == 0) {
        return std::nullopt;
    }
    const qsizetype start = commonStart(text_, text);
    const qsizetype end = commonEnd(text_, text, start);
    const TextRange removed{start, text_.length() - end - start};
    const TextRange inserted{start, text.length() - end - start};
    const bool isSameText = removed.length == 0 && inserted.length == 0;
    CopyHeader atItsTime = header_;
    atItsTime.time = header.time;
    if (isSameText && atItsTime == header) {
        return true;
    }
    const qint64 most = std::min(2 * copySize_ - size_, qint64(largestRecord) / 2);
    if (2 * inserted.length > most) {
        return std::nullopt;
    }
    QByteArray records = copyRecord(CopyRecord::header, encodeHeader(header));
    if (!isSameText) {
        records += editRecord(removed, text, inserted);
    }
    qint64 size = size_;
    if (!writeBytes(file_, records, size) || ::fsync(file_.get()) != 0) {
        const KeptErrno kept;
        if (::ftruncate(file_.get(), size_) != 0 || ::lseek(file_.get(), size_, SEEK_SET) < 0) {
            // Nothing can be put behind what is half a record: the next is a whole copy.
            file_ = {};
        }
        return false;
    }
    text_ = text;
    header_ = header;
    size_ = size;
    writtenBytes_ += records.size();
    return true;
}

} // namespace kelm
