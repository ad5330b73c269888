#include "platform/files/utf8_decoding.h"

#include <QStringDecoder>

#include <algorithm>

namespace kelm {

QChar* decodeUtf8To(QChar* out, QByteArrayView bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8,
                           QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
    QChar* const end = decoder.appendToBuffer(out, bytes);
    return decoder.hasError() ? nullptr : end;
}

qsizetype begunUtf8AtEnd(QByteArrayView bytes)
{
    for (qsizetype length = 1; length <= std::min(longestBegunUtf8, bytes.size()); ++length) {
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

} // namespace kelm
