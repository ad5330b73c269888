// The capitalised form of a text.
#pragma once

#include <QString>

namespace kelm {

/// Each character in title or lower case, as `TextTransformer::toCapitalized` says.
QString capitalizedForm(const QString& text);

} // namespace kelm
