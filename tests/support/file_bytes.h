// Files of a test, looked at and written without what is tested.
#pragma once

#include "platform/files/native_path.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QStringList>

#include <sys/stat.h>

namespace kelm::test {

inline QByteArray readBytes(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(unreadable)");
}

inline void writeBytes(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
        qFatal("cannot set up the file");
    }
}

/// Of a link the link's own; all zeros where there is nothing.
inline struct stat statusOf(const QString& path)
{
    struct stat status = {};
    ::lstat(nativePath(path).constData(), &status);
    return status;
}

/// All that stands in a folder, by name.
inline QStringList entriesOf(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}

} // namespace kelm::test
