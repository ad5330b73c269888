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

    /// The process's own standard error and standard output.
    static Log& system();
};

} // namespace kelm
