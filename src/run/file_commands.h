// How the terminal runs a file.
#pragma once

#include <QString>
#include <QUrl>

#include <optional>

namespace kelm {

/// The shell line that runs a file, by its extension in any letter case; absent for one that none is known for.
std::optional<QString> shellLineFor(const QUrl& file);

} // namespace kelm
