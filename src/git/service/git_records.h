// The records of a repository's snapshot, as the parsers make them from git's output.
#pragma once

#include <QString>
#include <QUuid>

#include <optional>

namespace kelm {

/// What happened to a file on one side of the index.
enum class GitFileChange { modified, added, deleted, renamed, copied, untracked, conflicted };

/// The change's name in texts, such as "modified".
QString rawValue(GitFileChange change);

/// The change that one column of `git status` stands for; absent for a blank and for every letter that has none.
/// `letter` is one character as the user sees it, which may be several UTF-16 units.
std::optional<GitFileChange> changeFrom(QStringView letter);

/// One entry of `git status`. Identities are fresh in each parse.
struct GitFileStatus
{
    QUuid id;
    /// What follows the two columns, unchanged: a rename keeps "old -> new", a quoted path its quotes.
    QString path;
    std::optional<GitFileChange> staged;
    std::optional<GitFileChange> unstaged;

    bool operator==(const GitFileStatus&) const = default;
};

/// Whether a merge has left both sides of a file: one of them says so, or both have added it, or both taken it away.
bool isUnmerged(const GitFileStatus& file);

struct GitBranch
{
    QUuid id;
    /// The short name; that of a remote branch begins with its remote.
    QString name;
    bool isRemote = false;
    bool isCurrent = false;
    std::optional<QString> upstream;

    bool operator==(const GitBranch&) const = default;
};

struct GitRemote
{
    QUuid id;
    QString name;
    QString url;

    bool operator==(const GitRemote&) const = default;
};

struct GitTag
{
    QUuid id;
    QString name;
    /// The first line of an annotated tag's message; absent for a lightweight tag.
    std::optional<QString> annotation;
    /// The object that the tag stands for: of an annotated tag the one it points at.
    std::optional<QString> sha;

    bool operator==(const GitTag&) const = default;
};

struct GitStash
{
    /// The place in git's list, from 0.
    qint64 id = 0;
    /// The reflog selector, such as "stash@{0}".
    QString label;
    QString message;

    bool operator==(const GitStash&) const = default;
};

struct GitCommit
{
    /// The full hash.
    QString id;
    QString author;
    /// As git prints it: year, month and day.
    QString date;
    QString summary;

    bool operator==(const GitCommit&) const = default;
};

/// One line of a file with the commit that it comes from.
struct GitBlameLine
{
    QString sha;
    QString author;
    QString line;

    bool operator==(const GitBlameLine&) const = default;
};

} // namespace kelm
