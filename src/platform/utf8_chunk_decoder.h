// UTF-8 that arrives in chunks.
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <optional>

namespace kelm {

/// Decodes a stream that arrives in chunks cut at any byte: the character that a chunk begins and does not end is kept
/// for the next one.
class Utf8ChunkDecoder
{
public:
    /// The text of the kept bytes and `chunk` up to the last whole character. Absent when that is empty, and when it is
    /// not valid UTF-8: such a chunk is dropped.
    std::optional<QString> decode(QByteArrayView chunk);

private:
    QByteArray begun_;
};

} // namespace kelm
