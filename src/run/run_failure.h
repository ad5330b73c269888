// Why a run did not begin.
#pragma once

#include <QString>
#include <QStringView>

namespace kelm {

/// A run that did not begin.
struct RunFailure
{
    enum class Reason {
        /// Nothing is known that runs files of that extension.
        unknownExtension,
        /// What runs them is not on this computer.
        missingProgram,
        /// The system says why.
        notStarted,
    };

    Reason reason = Reason::notStarted;
    /// The file, or the text without one, by the name that the person knows.
    QString name;
    /// The extension, the program's name, or what the system says.
    QString detail;

    friend bool operator==(const RunFailure&, const RunFailure&) = default;
};

/// One sentence or two for a person; of a missing program also the package that usually has it.
QString failureText(const RunFailure& failure);

/// The Debian package that has a program; empty where that is not known.
QString packageOf(QStringView program);

} // namespace kelm
