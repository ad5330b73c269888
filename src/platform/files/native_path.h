// Names of files as text, and in the system's own bytes.
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringList>

namespace kelm {

/// The text of a path in the system's bytes. A name may be any bytes: each that is not part of valid UTF-8 becomes an
/// unpaired surrogate from U+DC80 to U+DCFF, which no valid name gives. So every name has a text of its own, and
/// `nativePath` gives its bytes again. For the person's eyes there is `shownPath`.
QString pathOfNative(QByteArrayView bytes);

/// The system's bytes of a path. To be given to the system in the place of what the toolkit makes of such a text, which
/// loses the bytes that are not UTF-8.
QByteArray nativePath(const QString& path);

/// Whether a path holds bytes that are not UTF-8, so that the toolkit's own functions cannot take it.
bool holdsRawBytes(QStringView path);

/// A path as it is shown: U+FFFD for each byte that is not UTF-8.
QString shownPath(QString path);

/// The texts of what the system gives a program beside its own name, in the form of paths.
QStringList argumentsOf(int count, const char* const* arguments);

/// The path of the folder that the program runs in; empty where that is gone.
QString currentFolder();

/// Whether the path names a folder, and whether it names anything. A path with a NUL names nothing.
bool isFolder(const QString& path);
bool isThere(const QString& path);

} // namespace kelm
