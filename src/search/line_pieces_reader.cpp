#include "search/line_pieces_reader.h"

#include <algorithm>
#include <unistd.h>

namespace kelm {

namespace {

/// Newlines beyond ASCII: U+0085 is two bytes, U+2028 and U+2029 are three.
bool endsLongNewline(QByteArrayView bytes, qsizetype last)
{
    const auto byte = [&](qsizetype at) { return at < 0 ? 0U : static_cast<unsigned char>(bytes[at]); };
    return (byte(last) == 0x85 && byte(last - 1) == 0xc2) ||
           ((byte(last) == 0xa8 || byte(last) == 0xa9) && byte(last - 1) == 0x80 && byte(last - 2) == 0xe2);
}

bool endsNewline(QByteArrayView bytes, qsizetype last)
{
    const char byte = bytes[last];
    return byte >= 0 ? byte >= '\n' && byte <= '\r' : endsLongNewline(bytes, last);
}

} // namespace

qsizetype newlinesIn(QByteArrayView bytes)
{
    qsizetype count = 0;
    for (const char byte : bytes) {
        count += byte >= '\n' && byte <= '\r' ? 1 : 0;
    }
    // These bytes end other characters too, but few.
    for (const char last : {'\x85', '\xa8', '\xa9'}) {
        for (qsizetype at = bytes.indexOf(last); at >= 0; at = bytes.indexOf(last, at + 1)) {
            count += endsLongNewline(bytes, at) ? 1 : 0;
        }
    }
    return count;
}

qsizetype behindLastNewline(QByteArrayView bytes, qsizetype from)
{
    for (qsizetype at = bytes.size(); at > from; --at) {
        if (endsNewline(bytes, at - 1)) {
            return at;
        }
    }
    return -1;
}

LinePiecesReader::LinePiecesReader(const OpenFile& file, QByteArray& buffer, qsizetype longestLine,
                                   const std::function<bool()>& isCancelled)
    : file_(file), buffer_(buffer), longestLine_(longestLine), isCancelled_(isCancelled)
{
    isDone_ = ::lseek(file_.get(), 0, SEEK_SET) != 0;
}

LinePiecesReader::Step LinePiecesReader::next()
{
    if (isDone_) {
        return isAtEnd_ ? Step::end : Step::failed;
    }
    // What was read behind the piece before comes first.
    std::copy(buffer_.cbegin() + end_, buffer_.cbegin() + filled_, buffer_.begin());
    filled_ -= end_;
    end_ = 0;
    qsizetype lookedAt = 0;
    for (;;) {
        if (!isAtEnd_ && !readMore()) {
            isDone_ = true;
            isAtEnd_ = false;
            return Step::failed;
        }
        end_ = filled_;
        if (isAtEnd_) {
            isDone_ = true;
            return Step::piece;
        }
        // Two bytes of a newline may have stood at the end before.
        const QByteArrayView read(buffer_.constData(), filled_);
        if (const qsizetype end = behindLastNewline(read, std::max<qsizetype>(0, lookedAt)); end >= 0) {
            end_ = end;
            return Step::piece;
        }
        lookedAt = filled_;
        if (filled_ > longestLine_) {
            isDone_ = true;
            return Step::tooLongLine;
        }
    }
}

bool LinePiecesReader::readMore()
{
    if (buffer_.size() - filled_ < usualPiece) {
        buffer_.resize(std::max(filled_ + usualPiece, std::min(buffer_.size() * 2, longestLine_ + 2 * usualPiece)));
    }
    const ssize_t got = ::read(file_.get(), buffer_.data() + filled_, std::size_t(usualPiece));
    if (got < 0 || isCancelled_()) {
        return false;
    }
    filled_ += got;
    isAtEnd_ = got == 0;
    return true;
}

} // namespace kelm
