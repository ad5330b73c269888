// UTF-8 that arrives in chunks.
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <optional>

namespace kelm {

/// Decodes a stream that arrives in chunks cut at any byte: the character that a chunk begins and does not end is kept
/// for the next one. One that the next chunk does not go on with is dropped, and that chunk stands for itself.
class Utf8ChunkDecoder
{
public:
    /// The text of the kept bytes and `chunk` up to the last whole character. Absent when that is empty, and when it is
    /// not valid UTF-8: such a chunk is dropped.
    std::optional<QString> decode(QByteArrayView chunk);

private:
    /// The whole characters of `bytes`, absent when they are not valid; keeps what is begun behind them.
    std::optional<QString> decodeWhole(QByteArrayView bytes);

    QByteArray begun_;
};

} // namespace kelm
