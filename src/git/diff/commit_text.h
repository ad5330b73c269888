// The head of what `git show` prints of a commit.
#pragma once

#include <QString>

namespace kelm {

/// Who made a commit, when, and what for, as git printed it.
struct CommitText
{
    /// Name and address.
    QString author;
    QString date;
    /// The commits that a merge joins, in short; empty for any other.
    QString merged;
    /// The whole message without its indentation, notes included.
    QString message;

    bool operator==(const CommitText&) const = default;

    /// Of the text up to its first file. What is not there is empty. Linear in the head.
    static CommitText of(QStringView shown);
};

} // namespace kelm
