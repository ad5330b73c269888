// The names of files as git prints them, and as they are.
#pragma once

#include "git/service/git_records.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace kelm {

/// The names of one entry of `git status`, relative to the working tree, in the form that `native_path.h` gives names
/// of any bytes.
struct GitFileNames
{
    /// The file's name now.
    QString current;
    /// The name that a renamed or copied file comes from.
    std::optional<QString> previous = std::nullopt;

    bool operator==(const GitFileNames&) const = default;
};

/// The names in an entry's path. Only an entry that is renamed or copied has two: "old -> new" is a name like any other
/// for the rest.
GitFileNames namesOf(const GitFileStatus& file);

/// The names that an operation on an entry takes. Both of a rename where that is what the side of the index knows: the
/// old name of a staged rename is gone from the index and the folder, so that it can be unstaged and not staged; a
/// rename that is not staged has its old name in the index and its new one in the folder, so that both are staged, and
/// only the old one can be brought back.
QStringList namesToStage(const GitFileStatus& file);
QStringList namesToUnstage(const GitFileStatus& file);
QStringList namesToDiscard(const GitFileStatus& file);
QStringList namesToDiff(const GitFileStatus& file, bool staged);
/// The same of the entry that has the name now; the name alone where none has it.
QStringList namesToDiff(const QList<GitFileStatus>& status, const QString& name, bool staged);

/// The entry's names for the person's eyes: "old -> new" for a rename, with a sign for each character that is not seen.
QString shownNames(const GitFileStatus& file);

} // namespace kelm
