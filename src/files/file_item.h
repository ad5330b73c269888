// The entries of a folder.
#pragma once

#include "platform/desktop/named_colors.h"
#include "platform/files/file_error.h"

#include <QList>
#include <QString>
#include <QUrl>
#include <QUuid>

#include <variant>

namespace kelm {

/// An entry of a folder, made anew each time the folder is listed.
struct FileItem
{
    QUuid id = QUuid::createUuid();
    QUrl url;
    /// False for a symbolic link, whatever it leads to.
    bool isDirectory = false;

    /// The symbol that stands for the entry.
    QString icon() const;
    /// Follows the extension of the name, that of a folder too.
    SystemColor iconColor() const;
    /// The last component of the path.
    QString name() const;
};

/// The entries of the folder at `url`, one level deep: folders first, and each kind in the order of the user's
/// language, letter case aside. Hidden entries, whose names begin with a dot, are left out. The error says why the
/// folder cannot be read.
std::variant<QList<FileItem>, FileError> listFolder(const QUrl& url);

} // namespace kelm
