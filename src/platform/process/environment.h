// The application's own environment variables.
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

namespace kelm {

/// The variables as texts; of two entries of one name the first, which is the one that programs see. Bytes that are
/// not UTF-8 stand as replacement characters.
QMap<QString, QString> applicationEnvironment();

/// The bytes of "name=value" for a child. Where the application has this very variable, they are its own, which need
/// not be UTF-8; what a person has set since is encoded in UTF-8.
QByteArray environmentEntry(const QString& name, const QString& value);

/// The application's variables as the system keeps them, ended by a null pointer.
char** environmentBlock();

} // namespace kelm
