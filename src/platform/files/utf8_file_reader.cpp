#include "platform/files/utf8_file_reader.h"

#include "platform/files/native_path.h"
#include "platform/files/open_file.h"
#include "platform/files/utf8_decoding.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <future>
#include <memory>
#include <new>
#include <sys/stat.h>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

/// What is read and decoded at one go: small enough to stay in a processor's cache between the two.
constexpr qsizetype chunkSize = qsizetype(1) << 18;
/// From here on a second thread saves more time than its start costs.
constexpr qint64 leastSizeOfSections = qint64(8) << 20;
/// Up to here a text finds its memory, or the program would not run.
constexpr qint64 mostSizeUnchecked = qint64(16) << 20;
constexpr qint64 mostBytesOfUnit = 3;

enum class Fault { none, notReadable, notUtf8, tooLong, tooLarge, changed, stopped };

/// What became of a part of the file, with the system's number for what cannot be read.
struct Outcome
{
    Fault fault = Fault::none;
    int systemError = 0;
};

/// What tells of a file whether it was written to.
struct FileState
{
    qint64 size = 0;
    timespec changed = {};

    explicit FileState(const struct stat& status) : size(status.st_size), changed(status.st_mtim) {}
    friend bool operator==(const FileState& a, const FileState& b)
    {
        // What the system makes up has any time.
        const bool isSameTime = a.changed.tv_sec == b.changed.tv_sec && a.changed.tv_nsec == b.changed.tv_nsec;
        return a.size == b.size && (a.size == 0 || isSameTime);
    }
};

/// With room for what pieces of a text take beside their units.
qint64 neededMemory(qint64 bytes)
{
    return bytes * 2 + bytes / 8;
}

bool isTooLarge(qint64 bytes, const Utf8Limits& limits)
{
    if (bytes <= mostSizeUnchecked) {
        return false;
    }
    const std::optional<qint64> free = limits.freeMemory();
    return free && neededMemory(bytes) > *free;
}

QString megabytes(qint64 bytes)
{
    constexpr qint64 megabyte = 1'000'000;
    return QString::number((bytes + megabyte - 1) / megabyte) + u" MB"_s;
}

/// One reading of an open file from its start to its end.
class Reading
{
public:
    Reading(const OpenFile& file, qint64 size, Utf8Sink& sink, const Utf8Limits& limits)
        : file_(file), size_(size), sink_(sink), limits_(limits)
    {}

    Outcome run();

private:
    static constexpr qint64 toTheEnd = std::numeric_limits<qint64>::max();

    Outcome readSection(int section, qint64 from, qint64 to);
    /// What there is to be said against what was read of a section, or of the text, until now.
    Fault verdict();
    /// The first place from `offset` on where a character can begin.
    qint64 characterStart(qint64 offset) const;

    const OpenFile& file_;
    const qint64 size_;
    Utf8Sink& sink_;
    const Utf8Limits& limits_;
    std::atomic<qint64> bytesRead_ = 0;
    std::atomic<qsizetype> unitsRead_ = 0;
    /// Whether one section has failed, so that the others need not go on.
    std::atomic<bool> hasFailed_ = false;
};

Outcome Reading::run()
{
    if (size_ < leastSizeOfSections) {
        sink_.begin(1, size_);
        // Files that the system makes up say a size of 0, whatever they hold.
        return readSection(0, 0, size_ > 0 ? size_ : toTheEnd);
    }
    sink_.begin(2, size_);
    const qint64 middle = characterStart(size_ / 2);
    std::future<Outcome> second =
        std::async(std::launch::async, [this, middle] { return readSection(1, middle, size_); });
    const Outcome first = readSection(0, 0, middle);
    const Outcome last = second.get();
    // Who merely ended since the other had failed says nothing of the file.
    return first.fault == Fault::none || (first.fault == Fault::stopped && last.fault != Fault::none) ? last : first;
}

qint64 Reading::characterStart(qint64 offset) const
{
    std::array<char, longestBegunUtf8> bytes = {};
    const qsizetype count = file_.readAt(offset, bytes.data(), qsizetype(bytes.size()));
    qsizetype at = 0;
    while (at < count && (static_cast<unsigned char>(bytes[std::size_t(at)]) & 0xc0) == 0x80) {
        ++at;
    }
    return offset + at;
}

Fault Reading::verdict()
{
    if (unitsRead_ > limits_.longestText) {
        return Fault::tooLong;
    }
    // What says its size was asked for it before.
    if (size_ == 0 && isTooLarge(bytesRead_, limits_)) {
        return Fault::tooLarge;
    }
    const double share = size_ > 0 ? double(bytesRead_) / double(size_) : 0;
    return hasFailed_ || !sink_.goesOn(std::min(share, 1.0)) ? Fault::stopped : Fault::none;
}

Outcome Reading::readSection(int section, qint64 from, qint64 to)
{
    const auto failed = [this](Fault fault, int systemError = 0) {
        hasFailed_ = true;
        return Outcome{fault, systemError};
    };
    try {
        const qsizetype most = qsizetype(std::min(to - from, qint64(chunkSize)));
        const auto chunk = std::make_unique_for_overwrite<char[]>(std::size_t(most + longestBegunUtf8));
        const auto units = std::make_unique_for_overwrite<QChar[]>(std::size_t(most + longestBegunUtf8 + 1));
        qsizetype begun = 0;
        for (qint64 at = from;;) {
            const auto wanted = qsizetype(std::min(to - at, qint64(most)));
            const qsizetype count = wanted > 0 ? file_.readAt(at, chunk.get() + begun, wanted) : 0;
            if (count < 0) {
                return failed(Fault::notReadable, errno);
            }
            at += count;
            const QByteArrayView bytes(chunk.get(), begun + count);
            begun = count == 0 ? 0 : begunUtf8AtEnd(bytes);
            const QByteArrayView whole = bytes.chopped(begun);
            const QChar* const end = decodeUtf8To(units.get(), whole);
            if (end == nullptr) {
                return failed(Fault::notUtf8);
            }
            sink_.append(section, QStringView(units.get(), end));
            unitsRead_ += end - units.get();
            bytesRead_ += count;
            if (const Fault fault = verdict(); fault != Fault::none) {
                return failed(fault);
            }
            if (count == 0) {
                return {};
            }
            std::memmove(chunk.get(), whole.data() + whole.size(), std::size_t(begun));
        }
    } catch (const std::bad_alloc&) {
        return failed(Fault::tooLarge);
    }
}

/// Reads the file at `path` as it stands now.
Outcome readOnce(const QByteArray& path, Utf8Sink& sink, const Utf8Limits& limits, qint64& size)
{
    const OpenFile file = OpenFile::openForReading(path);
    struct stat status = {};
    if (!file.isOpen() || ::fstat(file.get(), &status) != 0) {
        return {Fault::notReadable, errno};
    }
    const FileState before(status);
    size = before.size;
    // Whatever its characters are, so large a file has too many of them.
    if (before.size / mostBytesOfUnit > limits.longestText) {
        return {Fault::tooLong};
    }
    if (isTooLarge(before.size, limits)) {
        return {Fault::tooLarge};
    }
    const Outcome outcome = Reading(file, before.size, sink, limits).run();
    if (outcome.fault == Fault::stopped) {
        return outcome;
    }
    // By its path, so that a file that was put in the place of this one shows as well.
    const bool isThere = ::stat(path.constData(), &status) == 0;
    return isThere && FileState(status) == before ? outcome : Outcome{Fault::changed};
}

/// The system's reasons are told by `systemError`.
QString reasonOf(const Outcome& outcome, qint64 size, const Utf8Limits& limits)
{
    switch (outcome.fault) {
    case Fault::notUtf8:
        return u"The file is not valid UTF-8 text."_s;
    case Fault::tooLong:
        return u"The text is longer than the %1 units that one can have."_s.arg(limits.longestText);
    case Fault::tooLarge:
        if (const std::optional<qint64> free = limits.freeMemory(); free && isTooLarge(size, limits)) {
            return u"The file is too large for the memory: it takes %1, and %2 are free."_s.arg(
                megabytes(neededMemory(size)), megabytes(*free));
        }
        return u"The file is too large for the memory."_s;
    case Fault::changed:
        return u"The file keeps changing while it is read."_s;
    case Fault::notReadable:
    case Fault::stopped:
    case Fault::none:
        break;
    }
    return u"The reading was stopped."_s;
}

QString plainReasonOf(Fault fault)
{
    switch (fault) {
    case Fault::notUtf8:
        return u"it is no text in UTF-8"_s;
    case Fault::tooLong:
        return u"its text is longer than one can be"_s;
    case Fault::tooLarge:
        return u"it is too large for the memory"_s;
    case Fault::changed:
        return u"it keeps changing"_s;
    case Fault::notReadable:
    case Fault::stopped:
    case Fault::none:
        break;
    }
    return u"the reading was stopped"_s;
}

FileError errorOf(const QString& path, const Outcome& outcome, qint64 size, const Utf8Limits& limits)
{
    if (outcome.fault == Fault::notReadable) {
        return systemError(path, outcome.systemError);
    }
    return {u"%1: %2"_s.arg(shownPath(path), reasonOf(outcome, size, limits)), plainReasonOf(outcome.fault)};
}

} // namespace

std::optional<FileError> readUtf8File(const QString& path, Utf8Sink& sink, const Utf8Limits& limits)
{
    if (path.contains(QChar::Null)) {
        return nullInPath(path);
    }
    const QByteArray native = nativePath(path);
    qint64 size = 0;
    Outcome outcome = readOnce(native, sink, limits, size);
    if (outcome.fault == Fault::changed) {
        outcome = readOnce(native, sink, limits, size);
    }
    if (outcome.fault == Fault::none) {
        return std::nullopt;
    }
    return errorOf(path, outcome, size, limits);
}

} // namespace kelm
