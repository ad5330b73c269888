// What the header of a file in a diff says beside its hunks.
#pragma once

#include "git/diff/diff.h"

#include <optional>

namespace kelm {

/// Sizes of the two versions of a file, in bytes; absent for one that is not there or not known.
struct DiffFileSizes
{
    std::optional<qint64> oldSize;
    std::optional<qint64> newSize;

    bool operator==(const DiffFileSizes&) const = default;
};

/// What became of a file. Texts are as they stand in the diff.
struct DiffFileFacts
{
    enum class Origin { itself, rename, copy };

    bool isBinary = false;
    bool isNew = false;
    bool isDeleted = false;
    /// Of a change of mode.
    QString oldMode;
    QString newMode;
    Origin origin = Origin::itself;
    /// Where it comes from, and how much of it is the same, such as "96%".
    QString oldPath;
    QString similarity;
    /// The names of the two versions' contents; empty where there is none.
    QString oldContent;
    QString newContent;
    /// The commits of a repository within the repository; empty for anything else, and where there is none.
    QString oldCommit;
    QString newCommit;

    bool operator==(const DiffFileFacts&) const = default;

    static DiffFileFacts of(const DiffFile& file);
    /// Such as "Binary file, 12 KB → 15 KB"; empty when its hunks tell everything.
    QString inWords(const DiffFileSizes& sizes = {}) const;
};

/// What stands at the right of a file's header: what is special about it, and the number of its hunks if it has any.
QString fileLabel(const DiffFile& file, const DiffFileSizes& sizes = {});

/// Such as "12 KB", with 1024 bytes to each.
QString sizeInWords(qint64 bytes);

} // namespace kelm
