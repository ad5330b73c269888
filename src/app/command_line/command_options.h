// The options of the command line, and the ways in which the program ends: one table for all that names them.
#pragma once

#include <QLatin1String>

#include <array>

namespace kelm {

enum class CommandOptionId { help, version, line, wait, newFile, openFolder };

/// A row of the table.
struct CommandOption
{
    CommandOptionId id;
    /// With its two hyphens.
    QLatin1String name;
    /// What its value is called; empty for an option that takes none.
    QLatin1String value;
    /// In a line of the help, after the option.
    QLatin1String summary;
    /// Whole sentences for the manual page.
    QLatin1String description;
};

inline constexpr std::array commandOptions{
    CommandOption{CommandOptionId::line, QLatin1String("--line"), QLatin1String("N"),
                  QLatin1String("go to line N of each file that names no line itself"),
                  QLatin1String("Go to line N, counted from 1, of each FILE that names no line itself. Beyond the end "
                                "that is the last line.")},
    CommandOption{CommandOptionId::wait, QLatin1String("--wait"), QLatin1String(),
                  QLatin1String("return when the tabs of the files are closed"),
                  QLatin1String("Return when the tab of each FILE, and that of standard input, is closed, or the "
                                "editor has ended. The exit status tells whether the texts were saved. So the command "
                                "serves as EDITOR and as git's "
                                "core.editor. Where the editor does not run yet it is started, and goes on "
                                "afterwards. Folders and links are not waited for.")},
    CommandOption{CommandOptionId::newFile, QLatin1String("--new-file"), QLatin1String(),
                  QLatin1String("open a new, empty tab"),
                  QLatin1String("Open a new, empty tab, as the desktop's menu of the program does.")},
    CommandOption{CommandOptionId::openFolder, QLatin1String("--open-folder"), QLatin1String(),
                  QLatin1String("choose the folder of the project in the window"),
                  QLatin1String("Have the folder of the project chosen in the window, as the desktop's menu of the "
                                "program does.")},
    CommandOption{CommandOptionId::help, QLatin1String("--help"), QLatin1String(),
                  QLatin1String("print this text and end"), QLatin1String("Print a short help and end.")},
    CommandOption{CommandOptionId::version, QLatin1String("--version"), QLatin1String(),
                  QLatin1String("print the version and end"), QLatin1String("Print the version and end.")},
};

/// The status with which the program ends.
enum class ExitStatus : int { done = 0, failed = 1, usage = 2, unsaved = 3, notOpened = 4, editorDied = 5 };

struct ExitStatusRow
{
    ExitStatus status;
    QLatin1String description;
};

inline constexpr std::array exitStatuses{
    ExitStatusRow{ExitStatus::done,
                  QLatin1String("The editor has ended, or another start of it took over what was to be opened. With "
                                "--wait: each text was closed as it was saved, or as it was opened.")},
    ExitStatusRow{ExitStatus::failed,
                  QLatin1String("The editor runs and does not answer, standard input is no text or could not be "
                                "kept, the output or the picture could not be written, or the display has gone.")},
    ExitStatusRow{ExitStatus::usage, QLatin1String("The command line is not one that is described here.")},
    ExitStatusRow{ExitStatus::unsaved, QLatin1String("With --wait: a text was closed with unsaved changes.")},
    ExitStatusRow{ExitStatus::notOpened, QLatin1String("With --wait: a FILE could not be opened.")},
    ExitStatusRow{ExitStatus::editorDied, QLatin1String("With --wait: the editor did not start, or died.")},
};

} // namespace kelm
