// The list of recent files that the desktop's programs share.
#pragma once

#include <QList>
#include <QString>
#include <QUrl>

namespace kelm {

/// The path of that list: `recently-used.xbel` in the data home.
QString recentlyUsedPath();

/// Whether the desktop is to be told of a file: one on this machine, in no place for what is temporary, in no cache or
/// state of programs, and in no `.git` folder, where the texts of commits are.
bool isToldToDesktop(const QUrl& file);

/// Notes in the list at `listPath` that the program has opened or saved each of the files, the last of them latest.
/// Entries of other programs stay as they are. A list that cannot be read as one, or that holds what would be lost by
/// writing it again, is left alone. The list is replaced in one step and is its owner's alone. False when nothing was
/// written. From any thread, one call at a time.
bool noteRecentlyUsed(const QString& listPath, const QList<QUrl>& files);

} // namespace kelm
