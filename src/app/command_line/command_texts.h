// What is said of the command line: by the program itself, by its manual page, and to the shells.
#pragma once

#include <QByteArray>

namespace kelm {

/// What --help prints.
QByteArray helpText();
/// What --version prints.
QByteArray versionText(const QByteArray& version);

/// The sections of the manual page that tell of options and of exit statuses, from their headings to their ends.
QByteArray manualOptions();
QByteArray manualExitStatuses();

/// What completes a command line in each of the shells, as a file of its own.
QByteArray bashCompletion();
QByteArray zshCompletion();
QByteArray fishCompletion();

} // namespace kelm
