#include "search/file_search.h"

#include "platform/files/file_url.h"
#include "platform/files/native_path.h"
#include "platform/files/utf8_decoding.h"
#include "platform/text/character_sets.h"
#include "search/line_pieces_reader.h"

#include <algorithm>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kelm {

namespace {

constexpr qsizetype pieceSize = LinePiecesReader::usualPiece;

} // namespace

FileSearch::Outcome FileSearch::search(const QByteArray& path, const OnResult& onResult)
{
    const OpenFile file(::open(path.constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    if (!file.isOpen()) {
        return Outcome::searched;
    }
    if (bytes_.size() < pieceSize) {
        bytes_.resize(pieceSize);
    }
    const qsizetype read = file.read(bytes_.data(), pieceSize);
    if (read == pieceSize) {
        return searchPieces(file, path, read, onResult);
    }
    // A regular file gives all that was asked for, unless it has come to its end.
    const QByteArrayView bytes(bytes_.constData(), std::max<qsizetype>(read, 0));
    if (needle_.mayBeIn(bytes) && decode(bytes)) {
        Place place{path};
        searchLines(place, onResult);
    }
    return Outcome::searched;
}

FileSearch::Outcome FileSearch::searchPieces(const OpenFile& file, const QByteArray& path, qsizetype read,
                                             const OnResult& onResult)
{
    const qsizetype begun = begunUtf8AtEnd({bytes_.constData(), read});
    struct stat status
    {};
    if (!decode({bytes_.constData(), read - begun}) || ::fstat(file.get(), &status) != 0) {
        return Outcome::searched;
    }
    if (status.st_size > limits_.file) {
        return Outcome::tooLong;
    }
    if (!mayBeInFile(file, read)) {
        return Outcome::searched;
    }
    if (const auto outcome = refuse(file)) {
        return *outcome;
    }
    Place place{path};
    LinePiecesReader reader(file, bytes_, limits_.line, isCancelled_);
    while (reader.next() == LinePiecesReader::Step::piece) {
        if (!needle_.mayBeIn(reader.bytes())) {
            place.line += newlinesIn(reader.bytes());
        } else if (decode(reader.bytes())) {
            searchLines(place, onResult);
        } else {
            break;
        }
    }
    // What one long line took is given back.
    if (bytes_.size() > 2 * pieceSize) {
        bytes_ = QByteArray();
        text_ = QString();
    }
    return Outcome::searched;
}

/// A look at the bytes, `read` of which are there already, without a thought of what they mean.
bool FileSearch::mayBeInFile(const OpenFile& file, qsizetype read)
{
    const qsizetype overlap = needle_.quickLookOverlap();
    qint64 all = read;
    while (read > 0) {
        if (overlap * 2 > pieceSize || needle_.mayBeIn({bytes_.constData(), read})) {
            return true;
        }
        const qsizetype kept = std::min(overlap, read);
        std::copy_n(bytes_.cbegin() + read - kept, kept, bytes_.begin());
        const qsizetype got = file.read(bytes_.data() + kept, pieceSize - kept);
        // A file that grows all the while is looked at up to the limit.
        all += got;
        if (got <= 0 || isCancelled_() || all > limits_.file) {
            return false;
        }
        read = kept + got;
    }
    return false;
}

/// Why no line of the file is told, if so: it is no UTF-8, or a line is too long.
std::optional<FileSearch::Outcome> FileSearch::refuse(const OpenFile& file)
{
    LinePiecesReader reader(file, bytes_, limits_.line, isCancelled_);
    for (;;) {
        switch (reader.next()) {
        case LinePiecesReader::Step::piece:
            if (!decode(reader.bytes())) {
                return Outcome::searched;
            }
            break;
        case LinePiecesReader::Step::tooLongLine: {
            const QByteArrayView bytes = reader.bytes();
            return decode(bytes.chopped(begunUtf8AtEnd(bytes))) ? Outcome::tooLong : Outcome::searched;
        }
        case LinePiecesReader::Step::failed:
            return Outcome::searched;
        case LinePiecesReader::Step::end:
            return std::nullopt;
        }
    }
}

/// Puts the text of the bytes into the buffer, in stretches that are short enough to be cancelled between.
bool FileSearch::decode(QByteArrayView bytes)
{
    if (text_.size() < bytes.size() + 1) {
        text_ = QString(bytes.size() + 1, Qt::Uninitialized);
    }
    QChar* end = text_.data();
    while (!bytes.isEmpty()) {
        qsizetype length = std::min(bytes.size(), pieceSize);
        if (length < bytes.size()) {
            length -= begunUtf8AtEnd(bytes.first(length));
        }
        end = decodeUtf8To(end, bytes.first(length));
        if (end == nullptr || isCancelled_()) {
            return false;
        }
        bytes = bytes.sliced(length);
    }
    textLength_ = end - text_.constData();
    return true;
}

bool FileSearch::isIn(QStringView line) const
{
    return line.size() <= LocalizedNeedle::usualStretch ? needle_.isIn(line) : needle_.isIn(line, isCancelled_);
}

void FileSearch::searchLines(Place& place, const OnResult& onResult) const
{
    const QStringView text = QStringView(text_).first(textLength_);
    for (qsizetype start = 0; start < text.size() && !isCancelled_();) {
        qsizetype end = start;
        while (end < text.size() && !isNewline(text[end].unicode())) {
            ++end;
        }
        const QStringView line = text.sliced(start, end - start);
        if (isIn(line)) {
            if (place.url.isEmpty()) {
                const QString file = pathOfNative(place.path);
                place.url = urlOfFile(file);
                place.name = shownPath(file.mid(file.lastIndexOf(u'/') + 1));
            }
            onResult(
                {.fileURL = place.url, .fileName = place.name, .lineNumber = place.line, .matchLine = line.toString()});
        }
        start = end + 1;
        place.line += end < text.size() ? 1 : 0;
    }
}

} // namespace kelm
