#include "platform/text/utf8_chunk_decoder.h"

#include "platform/files/utf8_file.h"

#include <algorithm>
#include <utility>

namespace kelm {

namespace {

/// How many bytes the character takes that begins with `lead`; 0 when no character begins so.
int sequenceLength(unsigned char lead)
{
    if (lead < 0x80) {
        return 1;
    }
    if (lead >= 0xC2 && lead <= 0xDF) {
        return 2;
    }
    if (lead >= 0xE0 && lead <= 0xEF) {
        return 3;
    }
    return lead >= 0xF0 && lead <= 0xF4 ? 4 : 0;
}

/// The number of bytes at the end of `bytes` that begin a character and do not end it.
qsizetype begunLength(QByteArrayView bytes)
{
    const qsizetype longest = std::min<qsizetype>(3, bytes.size());
    for (qsizetype length = 1; length <= longest; ++length) {
        const auto byte = static_cast<unsigned char>(bytes[bytes.size() - length]);
        if ((byte & 0xC0) != 0x80) {
            return sequenceLength(byte) > length ? length : 0;
        }
    }
    return 0;
}

} // namespace

std::optional<QString> Utf8ChunkDecoder::decode(QByteArrayView chunk)
{
    const QByteArray begun = std::exchange(begun_, {});
    if (!begun.isEmpty()) {
        const QByteArray joined = QByteArray(begun).append(chunk);
        if (const auto text = decodeWhole(joined)) {
            return text->isEmpty() ? std::nullopt : text;
        }
        // Nothing ever ended the begun character. That is no fault of this chunk.
    }
    const auto text = decodeWhole(chunk);
    return text && text->isEmpty() ? std::nullopt : text;
}

std::optional<QString> Utf8ChunkDecoder::decodeWhole(QByteArrayView bytes)
{
    const qsizetype begun = begunLength(bytes);
    begun_ = bytes.last(begun).toByteArray();
    return decodeUtf8Text(bytes.chopped(begun));
}

} // namespace kelm
