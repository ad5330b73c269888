// Reading a file that should be short.
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace kelm {

/// The first bytes of a file, `limit` at most. Absent for one that is not there, cannot be read or is not a regular
/// file: a pipe or a device may never end.
std::optional<QByteArray> startOfFile(const QString& path, qsizetype limit);

} // namespace kelm
