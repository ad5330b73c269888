// The application's own environment variables.
#pragma once

#include <QMap>
#include <QString>

namespace kelm {

/// The variables as texts; of two entries of one name the first, which is the one that programs see, where the
/// toolkit's QProcessEnvironment gives the last. Bytes that are not UTF-8 stand as replacement characters.
QMap<QString, QString> applicationEnvironment();

} // namespace kelm
