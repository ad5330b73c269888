// Which interpreter or compiler runs a file.
#pragma once

#include "run/executable_search.h"

#include <QString>
#include <QStringList>
#include <QStringView>

#include <optional>
#include <vector>

namespace kelm {

/// A program that runs a file, and what its arguments are before the path of the file.
struct RunnerConfig
{
    /// An absolute path.
    QString executable;
    QStringList args;

    friend bool operator==(const RunnerConfig&, const RunnerConfig&) = default;
};

/// How the files of some extensions are run.
struct RunnerRow
{
    /// A program that is searched for, and its arguments.
    struct Searched
    {
        QString name;
        QStringList args;
    };

    /// In lower case, without a dot.
    QStringList extensions;
    /// The first of these that is found runs the file.
    std::vector<Searched> searched;
    /// Runs the file when none of them is found, whether it exists or not; without one the file cannot be run then.
    std::optional<RunnerConfig> fallback;
};

const std::vector<RunnerRow>& runnerTable();

/// What runs files of `extension`, in lower case and without a dot; nothing for an extension that the table lacks, and
/// when what it needs is not found.
std::optional<RunnerConfig> runnerFor(QStringView extension, const ExecutableSearch& search);

/// The name of the program that runs files of `extension`, where `runner` is what `runnerFor` gave; empty for an
/// extension that the table lacks.
QString programName(QStringView extension, const std::optional<RunnerConfig>& runner);

} // namespace kelm
