// A git command that failed, and what the person is told of it.
#pragma once

#include <QString>
#include <QStringList>

namespace kelm {

/// What a failing command is to the person: one that was asked for has failed; a reading that ought to work has; or it
/// tells no more than a state of the repository, such as a branch that follows no other.
enum class GitErrorKind { operation, reading, state };

/// The words of a failure, and the command that they came from.
struct GitFailure
{
    /// What git was told to do; empty where that is not known.
    QStringList command = {};
    /// As git or the system wrote it.
    QString text = {};
    GitErrorKind kind = GitErrorKind::operation;

    /// Why it failed, on one line: git's reason without "error:", hints and progress. Never longer than
    /// `mostSentenceUnits`; empty only where the text holds nothing to be seen.
    QString sentence() const;
    /// Whether there is more to read than the sentence.
    bool hasMore() const;
    /// Whether it tells of conflicts, so that it is over as soon as they are.
    bool isAboutConflicts() const;

    bool operator==(const GitFailure&) const = default;

    static constexpr qsizetype mostSentenceUnits = 500;
};

} // namespace kelm
