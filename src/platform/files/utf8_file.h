// Text files in UTF-8, to the byte.
#pragma once

#include "platform/files/file_error.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringView>

#include <optional>
#include <variant>

namespace kelm {

/// The text of UTF-8 bytes (RFC 3629), unit for unit: a leading byte-order mark stays as U+FEFF, and NUL, noncharacters
/// and every kind of line end stay as they are, so that `encodeUtf8Text` gives the same bytes again. Absent when
/// anything is not valid: an overlong form, an encoded surrogate, a value beyond U+10FFFF, a cut-off or a stray byte.
/// Linear time.
std::optional<QString> decodeUtf8Text(QByteArrayView bytes);

/// The UTF-8 bytes of `text`, without a mark of its own. An unpaired surrogate, which no file that was read can have
/// brought in and for which UTF-8 has no form, becomes U+FFFD.
QByteArray encodeUtf8Text(QStringView text);

/// Reads the whole regular file at `path` as strict UTF-8. The error tells why it cannot be read, or that it is no
/// UTF-8.
std::variant<QString, FileError> readUtf8File(const QString& path);

} // namespace kelm
