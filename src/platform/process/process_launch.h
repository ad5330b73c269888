// Starting a child process: the one place where pipes, folder, environment and signals of a child are set up.
#pragma once

#include "platform/files/file_descriptor.h"
#include "platform/process/process.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <sys/types.h>
#include <variant>

namespace kelm {

/// A child that has been started and not yet been reaped, with this side's ends of its pipes, none of which blocks.
struct LaunchedProcess
{
    pid_t pid = -1;
    /// Open only when the command has a text for the standard input.
    FileDescriptor standardInput;
    FileDescriptor standardOutput;
    FileDescriptor standardError;
    /// Becomes readable when the child has ended.
    FileDescriptor exitNotice;
};

/// Starts the child, or says in the system's words why it could not be started. Any thread.
std::variant<LaunchedProcess, QString> launch(const ProcessCommand& command);

/// Collects the exit of a child that has ended or is about to; blocks until it has.
ProcessExit reap(pid_t pid);

/// Leaves the child to itself: its exit is collected when a later child is started.
void reapLater(pid_t pid);

/// Writes what the pipe takes now of `bytes` from `written` on, and moves `written` past it. The error number, 0 for
/// none; a reader that has gone is an error like another.
int writeOnce(const FileDescriptor& pipe, QByteArrayView bytes, qsizetype& written);

/// As much as a pipe usually holds.
inline constexpr qsizetype chunkSize = qsizetype(64) * 1024;

/// Reads once, at most `limit` bytes, into the end of `bytes`. False when the pipe has come to its end or fails.
bool readOnce(const FileDescriptor& pipe, QByteArray& bytes, qsizetype limit = chunkSize);

/// Reads what stands in the pipe at this moment and no more, so that a writer who goes on cannot hold the reader.
void readAvailable(const FileDescriptor& pipe, QByteArray& bytes);

} // namespace kelm
