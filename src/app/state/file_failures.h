// Files that could not be opened or saved, as a notice tells of them.
#pragma once

#include "platform/files/file_error.h"

#include <QList>
#include <QString>
#include <QUrl>

namespace kelm {

class Notices;

/// What went wrong with a file.
struct FileFailure
{
    QUrl url;
    FileError error;
};

/// Tells of failures in one notice, however many they are; nothing when there are none. `done` is what was to be done
/// with them: "opened".
void reportFailures(Notices& notices, const QList<FileFailure>& failures, const QString& done);

/// The name of a file as a notice shows it: in one line, and of a length that leaves room for the rest.
QString shownName(const QUrl& url);

} // namespace kelm
