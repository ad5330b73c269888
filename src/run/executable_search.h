// Where interpreters and compilers are found.
#pragma once

#include "platform/process/process.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace kelm {

/// Finds programs by name. Nothing is remembered: each search looks anew.
class ExecutableSearch
{
public:
    /// Searches the usual folders, then asks "/usr/bin/which" through `runner`, which outlives the search.
    explicit ExecutableSearch(ProcessRunner& runner);
    /// Searches `folders`, then asks `which`.
    ExecutableSearch(QStringList folders, QString which, ProcessRunner& runner);

    /// The absolute path of the program called `name`, or nothing. What a folder holds is returned when it is an
    /// executable file; what `which` answers is returned without a further look. Blocks while `which` runs.
    std::optional<QString> find(const QString& name) const;

    /// The usual folders, in the order of the search: what the administrator put there goes before the system's own,
    /// and both before the package managers' and the user's.
    static QStringList usualFolders();

private:
    std::optional<QString> askWhich(const QString& name) const;

    QStringList folders_;
    QString which_;
    ProcessRunner* runner_;
};

} // namespace kelm
