// Where diagnostics go.
#pragma once

#include <QString>

namespace kelm {

/// The two places of plain diagnostic lines, behind an interface so that tests can read them. There are no levels.
class Log
{
public:
    virtual ~Log() = default;

    /// Writes one line to the platform's log: standard error, with a time stamp before it. From any thread.
    virtual void write(const QString& line) = 0;

    /// Writes one line to standard output, which is flushed. From any thread.
    virtual void print(const QString& line) = 0;

    /// The process's own standard error and standard output. Nobody waits for whoever reads them: the lines are written
    /// in their order by a thread, and at the end of the process those that still wait have a quarter of a second.
    static Log& system();

    /// Waits for the system's lines as at the end of the process; for those who end it in another way. From any thread.
    static void finishSystem();

    /// Has the toolkit's own messages written to standard error in the same way. Main thread, before there are others.
    static void takeToolkitMessages();
};

} // namespace kelm
