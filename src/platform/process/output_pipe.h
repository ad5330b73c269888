// A pipe that a child writes to.
#pragma once

#include "platform/files/open_file.h"

#include <QByteArray>

namespace kelm {

/// A pipe whose one end becomes a child's output and whose other end is read without waiting. The toolkit's process has
/// pipes as well, but closes them with the child's end, and a process that the child left behind in the background is
/// then ended by its next output. Any thread, one at a time.
class OutputPipe
{
public:
    /// As much as a pipe usually holds, in bytes.
    static constexpr qsizetype usualSize = qsizetype(64) * 1024;

    /// Makes the pipe; no other child inherits it. False, with `errno` set, when the system gives none.
    bool open();

    /// Whether the end that is read is open.
    bool isOpen() const { return readEnd_.isOpen(); }
    int readEnd() const { return readEnd_.get(); }
    int writeEnd() const { return writeEnd_.get(); }

    /// To be called when the child has that end: reading comes to an end when the last one that has it has closed it.
    void closeWriteEnd() { writeEnd_.close(); }
    void close() { readEnd_.close(); }

    /// Reads once, at most `limit` bytes, into the end of `bytes`. False when the pipe has come to its end or fails.
    bool readOnce(QByteArray& bytes, qsizetype limit = usualSize) const;

    /// Reads what stands in the pipe at this moment and no more, so that a writer who goes on cannot hold the reader.
    void readAvailable(QByteArray& bytes) const;

private:
    OpenFile readEnd_;
    OpenFile writeEnd_;
};

} // namespace kelm
