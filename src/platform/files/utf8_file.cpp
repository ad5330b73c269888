#include "platform/files/utf8_file.h"

#include "platform/files/open_file.h"

#include <QFile>
#include <QStringDecoder>
#include <QStringEncoder>

#include <cerrno>
#include <cstring>
#include <memory>
#include <new>
#include <sys/stat.h>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

/// What is read and decoded at one go: small enough to stay in a processor's cache between the two.
constexpr qsizetype chunkSize = qsizetype(1) << 18;
/// The longest that a begun character can be.
constexpr qsizetype longestBegun = 3;

/// Decodes whole characters to `out`, and returns its new end; null when they are not valid.
QChar* decodeTo(QChar* out, QByteArrayView bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8,
                           QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
    QChar* const end = decoder.appendToBuffer(out, bytes);
    return decoder.hasError() ? nullptr : end;
}

/// The length of a character that is begun but not whole at the end of `bytes`; 0 when there is none. What is not UTF-8
/// at all may count either way.
qsizetype begunAtEnd(QByteArrayView bytes)
{
    for (qsizetype length = 1; length <= std::min(longestBegun, bytes.size()); ++length) {
        const auto byte = static_cast<unsigned char>(bytes[bytes.size() - length]);
        if (byte >= 0xc0) {
            const qsizetype whole = byte >= 0xf0 ? 4 : byte >= 0xe0 ? 3 : 2;
            return length < whole ? length : 0;
        }
        if (byte < 0x80) {
            break;
        }
    }
    return 0;
}

FileError fileError(const QString& path, const QString& reason)
{
    return {u"%1: %2"_s.arg(path, reason)};
}

FileError systemError(const QString& path)
{
    return fileError(path, QString::fromLocal8Bit(std::strerror(errno)));
}

/// Makes room for `count` more units behind the `used` ones.
void makeRoom(QString& text, qsizetype used, qsizetype count)
{
    if (text.size() < used + count) {
        text.resize(std::max(used + count, text.size() + text.size() / 2));
    }
}

std::variant<QString, FileError> readUtf8(const OpenFile& file, const QString& path)
{
    struct stat status = {};
    if (::fstat(file.get(), &status) != 0) {
        return systemError(path);
    }
    // A byte gives one unit at most. Files that the system makes up say a size of 0, and any file may grow meanwhile.
    QString text(qsizetype(status.st_size) + 1, Qt::Uninitialized);
    qsizetype used = 0;
    const auto chunk = std::make_unique<char[]>(chunkSize + longestBegun);
    qsizetype begun = 0;
    for (;;) {
        const qsizetype count = file.read(chunk.get() + begun, chunkSize);
        if (count < 0) {
            return systemError(path);
        }
        const QByteArrayView bytes(chunk.get(), begun + count);
        begun = count == 0 ? 0 : begunAtEnd(bytes);
        const QByteArrayView whole = bytes.chopped(begun);
        makeRoom(text, used, whole.size() + 1);
        QChar* const start = text.data() + used;
        QChar* const end = decodeTo(start, whole);
        if (end == nullptr) {
            return fileError(path, u"The file is not valid UTF-8 text."_s);
        }
        used += end - start;
        if (count == 0) {
            break;
        }
        std::memmove(chunk.get(), whole.data() + whole.size(), std::size_t(begun));
    }
    text.resize(used);
    return text;
}

} // namespace

std::optional<QString> decodeUtf8Text(QByteArrayView bytes)
{
    QString text(bytes.size() + 1, Qt::Uninitialized);
    const QChar* const end = decodeTo(text.data(), bytes);
    if (end == nullptr) {
        return std::nullopt;
    }
    text.resize(end - text.constData());
    return text;
}

QByteArray encodeUtf8Text(QStringView text)
{
    QStringEncoder encoder(QStringEncoder::Utf8, QStringEncoder::Flag::Stateless);
    return encoder.encode(text);
}

std::variant<QString, FileError> readUtf8File(const QString& path)
{
    const OpenFile file = OpenFile::openForReading(QFile::encodeName(path));
    if (!file.isOpen()) {
        return systemError(path);
    }
    try {
        return readUtf8(file, path);
    } catch (const std::bad_alloc&) {
        return fileError(path, u"The file is too large for the memory."_s);
    }
}

} // namespace kelm
