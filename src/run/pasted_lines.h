// Lines that are pasted at a terminal's prompt.
#pragma once

#include <QString>
#include <QStringList>
#include <QStringView>

#include <optional>

namespace kelm {

/// What becomes of a pasted text: commands that are run in their order, and what is left on the command line.
struct PastedLines
{
    QStringList commands;
    QString rest;

    friend bool operator==(const PastedLines&, const PastedLines&) = default;
};

/// The commands of a text that is pasted: each line that has an end is one. Lines that seem to belong together, as
/// those of a loop or of a text in quotes do, are one command with line feeds in it.
///
/// Absent where nothing is to be run before the person has seen it: in a text without a line end, in one whose lines
/// belong together and whose last has no end, and in one that holds what `holdsSigns` looks for.
std::optional<PastedLines> pastedLines(QStringView text);

/// Whether a text holds control characters other than tabs and line ends, or characters that change the direction in
/// which others are read: what is seen of it may not be what a shell would run.
bool holdsSigns(QStringView text);

} // namespace kelm
