// Whether a file can be saved at a place, before anybody tries.
#pragma once

#include <QString>

namespace kelm {

/// Why nothing can be saved at an absolute path, in a sentence for the person who chose it: the folder is gone, or the
/// rights do not suffice. Empty where nothing speaks against it, which is no promise.
QString whyNotSaved(const QString& path);

} // namespace kelm
