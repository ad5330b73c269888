// An open file of the operating system, closed by its owner's end.
#pragma once

#include <QByteArray>

#include <optional>
#include <utility>

namespace kelm {

/// Owns a POSIX file descriptor. `-1` stands for none.
class OpenFile
{
public:
    OpenFile() = default;
    explicit OpenFile(int descriptor) : descriptor_(descriptor) {}
    OpenFile(OpenFile&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    OpenFile& operator=(OpenFile&& other) noexcept
    {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }
    ~OpenFile() { close(); }

    bool isOpen() const { return descriptor_ >= 0; }
    int get() const { return descriptor_; }

    /// Closes the file now; false, with `errno` set, when the system only now reports that a write failed.
    bool close();

    /// Reads up to `size` bytes; 0 at the end of the file, -1 with `errno` set on failure.
    qsizetype read(char* bytes, qsizetype size) const;

    /// The same at an offset of a file that has places; where the next `read` goes on stays as it is.
    qsizetype readAt(qint64 offset, char* bytes, qsizetype size) const;

    /// All that is left of the file; absent with `errno` set on failure.
    std::optional<QByteArray> readAll() const;

    /// Writes all `size` bytes; false with `errno` set on failure.
    bool writeAll(const char* bytes, qsizetype size) const;

    /// Has the system put all that was written on the disk; false with `errno` set on failure.
    bool flushToDisk() const;

    /// Opens the regular file at `nativePath`, a path in the system's own bytes, for reading. Closed, with `errno` set,
    /// on failure; whatever is not a regular file is refused, since a pipe or a device may never end.
    static OpenFile openForReading(const QByteArray& nativePath);

private:
    int descriptor_ = -1;
};

} // namespace kelm
