// A file in pieces that end with a line.
#pragma once

#include "platform/files/open_file.h"

#include <QByteArray>
#include <QByteArrayView>

#include <functional>

namespace kelm {

/// Reads the UTF-8 bytes of a file from its start in pieces of whole lines: each ends behind a newline, of any kind, or
/// at the end of the file. A piece is as long as `usualPiece`, or as its one line where that is longer. One thread.
class LinePiecesReader
{
public:
    enum class Step {
        /// A piece is there.
        piece,
        end,
        /// The file cannot be read, or the reading was cancelled.
        failed,
        /// The next line is longer than it may be; `bytes` gives what was read of it.
        tooLongLine
    };

    static constexpr qsizetype usualPiece = qsizetype(1) << 20;

    /// The file and the buffer, of whose size nothing is asked, outlive the reader.
    LinePiecesReader(const OpenFile& file, QByteArray& buffer, qsizetype longestLine,
                     const std::function<bool()>& isCancelled);

    Step next();
    /// The piece, until the next step.
    QByteArrayView bytes() const { return {buffer_.constData(), end_}; }
    /// Whether the piece goes to the end of the file.
    bool isLast() const { return isAtEnd_ && end_ == filled_; }

private:
    bool readMore();

    const OpenFile& file_;
    QByteArray& buffer_;
    qsizetype longestLine_;
    const std::function<bool()>& isCancelled_;
    qsizetype end_ = 0;
    qsizetype filled_ = 0;
    bool isAtEnd_ = false;
    bool isDone_ = false;
};

/// The number of units in UTF-8 bytes that are newlines, as `isNewline` has them.
qsizetype newlinesIn(QByteArrayView bytes);

/// The offset behind the last newline at or behind `from`; -1 for none.
qsizetype behindLastNewline(QByteArrayView bytes, qsizetype from);

} // namespace kelm
