// Reading a text file straight into what is made of it.
#pragma once

#include "platform/files/available_memory.h"
#include "platform/files/file_error.h"

#include <QStringView>

#include <functional>
#include <limits>
#include <optional>

namespace kelm {

/// Takes in the text of a file while it is read.
class Utf8Sink
{
public:
    virtual ~Utf8Sink() = default;

    /// A text begins, which comes in `sections` parts that follow each other; what came before is to be forgotten. The
    /// file says that it has `bytes` bytes, of which each gives one unit at most; one that does not say has 0.
    virtual void begin(int sections, qint64 bytes) = 0;

    /// The next units of a section. Those of one section come in their order, and those of several at the same time, on
    /// a thread for each.
    virtual void append(int section, QStringView units) = 0;

    /// How much of the file is read, from 0 to 1; false ends the reading. Asked often, on any of the threads.
    virtual bool goesOn(double share)
    {
        Q_UNUSED(share);
        return true;
    }
};

/// What is refused for its size.
struct Utf8Limits
{
    /// The most units that a text can have: rows, screen readers and input methods count in numbers of this kind.
    qsizetype longestText = std::numeric_limits<int>::max();
    /// How many bytes of memory are free; absent when nobody knows, and then no file is too large for it.
    std::function<std::optional<qint64>()> freeMemory = availableMemory;
};

/// Reads the whole regular file at `path` as strict UTF-8, in two sections on two threads where that saves time. What
/// the sink was given counts only when there is no error: a fault may stand at the very end. The error tells why the
/// file cannot be read, that it is no UTF-8, too long, too large for the memory, or that the sink ended it.
///
/// A file whose length or time of change is another one afterwards was written to meanwhile, or is another file. It is
/// read once more from its start, and refused when that happens again.
std::optional<FileError> readUtf8File(const QString& path, Utf8Sink& sink, const Utf8Limits& limits = {});

} // namespace kelm
