// What a diff text comes to when it is shown.
#pragma once

#include "git/diff/diff.h"

namespace kelm {

/// A diff text taken apart, and which of the three ways of showing it applies. Every parse gives fresh identities.
struct DiffContent
{
    enum class State {
        /// There is no text.
        noChanges,
        /// There is a text, but no file in it: it is shown as it stands.
        rawText,
        files
    };

    State state = State::noChanges;
    QList<DiffFile> files;

    /// The hunks of a combined diff come as they are read; every other is as it was parsed.
    static DiffContent of(const QString& diffText);
};

/// Such as "2 files   +10 −3", in one pass over the lines.
QString filesSummary(const QList<DiffFile>& files);

/// Such as "1 hunk".
QString hunkCountLabel(qsizetype hunks);

} // namespace kelm
