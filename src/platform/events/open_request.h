// The message by which a second start of the program hands its list to the first.
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QStringList>

#include <optional>

/// A list of texts as bytes: a mark, the number of texts, and each text as its length and its UTF-8 bytes, the numbers
/// as four bytes with the highest first. A message of more than 64 MiB, or of more
/// than 65,536 texts, is none.
namespace kelm::openRequest {

inline constexpr qsizetype largestMessage = 64 * qsizetype(1024) * 1024;
inline constexpr qsizetype mostTexts = 65'536;

/// The message of a list; empty when it would be too large.
QByteArray encode(const QStringList& texts);

enum class State { incomplete, invalid, complete };

struct Decoded
{
    State state = State::incomplete;
    QStringList texts = {};
};

/// Reads the message that begins at the start of `bytes`. What can no longer become one is invalid at once. Linear in
/// the length of the bytes, and it never makes room for what has not come.
Decoded decode(QByteArrayView bytes);

} // namespace kelm::openRequest
