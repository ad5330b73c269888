// Any bytes as text, whole, in pieces and as a name: what is valid comes back to the byte, and what is not is refused.
// The first byte says how long pieces are.
#include "fuzz/require.h"
#include "platform/files/native_path.h"
#include "platform/files/utf8_decoding.h"
#include "platform/files/utf8_file.h"
#include "platform/text/utf8_chunk_decoder.h"

#include <cstdint>

namespace {

using namespace kelm;

/// What a stream gives that is cut at any byte. Absent when a piece of it was dropped.
std::optional<QString> streamed(QByteArrayView bytes, qsizetype pieceLength)
{
    Utf8ChunkDecoder decoder;
    QString text;
    for (qsizetype at = 0; at < bytes.size(); at += pieceLength) {
        text += decoder.decode(bytes.sliced(at, std::min(pieceLength, bytes.size() - at))).value_or(QString());
    }
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0) {
        return 0;
    }
    const qsizetype pieceLength = 1 + data[0] % 16;
    const QByteArray bytes(reinterpret_cast<const char*>(data + 1), qsizetype(size - 1));
    const std::optional<QString> text = decodeUtf8Text(bytes);
    require(text.has_value() == bytes.isValidUtf8());
    if (text) {
        require(encodeUtf8Text(*text) == bytes && text->isValidUtf16());
        require(streamed(bytes, pieceLength) == text);
        require(pathOfNative(bytes) == *text);
    } else {
        streamed(bytes, pieceLength);
    }
    const QString path = pathOfNative(bytes);
    require(nativePath(path) == bytes && holdsRawBytes(path) == !text.has_value());
    require(shownPath(path).size() == path.size() && !holdsRawBytes(shownPath(path)));

    const qsizetype begun = begunUtf8AtEnd(bytes);
    require(begun >= 0 && begun <= std::min(longestBegunUtf8, bytes.size()) && (!text || begun == 0));
    QString room(bytes.size() + 1, QChar());
    const QChar* const end = decodeUtf8To(room.data(), bytes);
    require((end != nullptr) == text.has_value() && (end == nullptr || room.left(end - room.constData()) == *text));
    return 0;
}
