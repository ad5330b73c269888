// Decoding of whole characters, for those who read files.
#pragma once

#include <QByteArrayView>
#include <QChar>

namespace kelm {

/// The longest that a begun character can be, in bytes.
inline constexpr qsizetype longestBegunUtf8 = 3;

/// Decodes whole characters to `out`, where there is room for a unit a byte and one more, and returns its new end; null
/// when they are not valid.
QChar* decodeUtf8To(QChar* out, QByteArrayView bytes);

/// The length of a character that is begun but not whole at the end of `bytes`; 0 when there is none. What is not UTF-8
/// at all may count either way.
qsizetype begunUtf8AtEnd(QByteArrayView bytes);

} // namespace kelm
