// Writing a file that must not be replaced.
#pragma once

#include "platform/files/atomic_file.h"
#include "platform/files/file_error.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <optional>

namespace kelm {

/// Writes `bytes` over the content of the regular file at `nativePath`, which `path` names for messages, once `keep`
/// has its old content safe. There is room for the whole before the first byte is written; what fails after that is
/// taken back as far as the disk allows. Returns what went wrong, or nothing.
std::optional<FileError> writeInPlace(const QString& path, const QByteArray& nativePath, QByteArrayView bytes,
                                      const KeepOldContent& keep);

} // namespace kelm
