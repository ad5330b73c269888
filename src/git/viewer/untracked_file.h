// A file that git does not know yet, as something to read.
#pragma once

#include <QString>

namespace kelm {

/// What is shown of a file without a diff. Never both.
struct UntrackedFile
{
    /// A diff that adds the whole file; it stands for no command's output, and none of its hunks can be staged alone.
    QString diff;
    /// Why there is none, in a sentence.
    QString words;

    /// Of a file is read no more than this, in bytes, up to a whole line.
    static constexpr qsizetype most = 4'000'000;

    /// Reads the file `path`, which has the name `shownName`. Nothing but a regular file is read; a link is told.
    static UntrackedFile read(const QString& path, const QString& shownName);
};

} // namespace kelm
