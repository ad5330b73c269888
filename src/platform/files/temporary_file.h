// The file that a text is written to before it takes its place.
#pragma once

#include "platform/files/open_file.h"

#include <QByteArray>
#include <QString>

#include <sys/types.h>

namespace kelm {

/// A new, empty file in a folder, removed again unless it is put in its place. While it lives it is locked, so that
/// one that a kill has left behind can be told from one that is being written.
class TemporaryFile
{
public:
    /// Makes the file with the permissions `mode`, as far as the process's mask leaves them. `folder` is in the
    /// system's bytes and ends in a slash. Not open, with `errno` set, when it cannot be made.
    TemporaryFile(const QByteArray& folder, mode_t mode);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    OpenFile& file() { return file_; }

    /// Puts the file in the place of `target`; false, with `errno` set, when that cannot be.
    bool renameTo(const QByteArray& target);

private:
    /// Whether the file is there and its lock is held by this process.
    bool make(const QByteArray& folder, mode_t mode);

    QByteArray path_;
    OpenFile file_;
    /// Holds the lock on until the file has its place, when `file_` is closed already.
    OpenFile lock_;
    bool isLeft_ = false;
};

/// Removes the temporary files of this user in a folder that a killed program has left there. Nothing else is touched,
/// and a failure changes nothing. Linear in the folder's entries; from any thread.
void removeLeftFiles(const QString& folder);

} // namespace kelm
