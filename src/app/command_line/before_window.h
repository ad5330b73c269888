// What a start does before there is any window, and perhaps instead of one.
#pragma once

#include "app/command_line/command_line.h"
#include "app/command_line/command_options.h"
#include "platform/events/single_instance.h"

#include <QByteArray>
#include <QStringList>

#include <optional>
#include <variant>
#include <vector>

namespace kelm {

/// Says one line on standard error.
void complain(const QString& sentence);

/// Prints what was asked for, or what is wrong with the command line. Absent when neither is the case. To be called
/// before anything opens files, so that an output that is closed is known for one.
std::optional<ExitStatus> answerAtOnce(const std::variant<CommandLine, UsageError>& commandLine,
                                       const QByteArray& version);

/// What the command line asks to be opened, standard input read to its end. Absent, and complained of, when that is
/// not to be had.
std::optional<openRequest::Request> requestOf(const CommandLine& commandLine);

/// Hands over what a start asks for to the program that runs, and waits for the tabs if that was asked for. Absent
/// when this start is to be the program: the first, or one beside others where no place is to be had. A start that
/// waits does not become the first: it starts that as a program of its own, with `tokens`, which outlives it.
std::optional<ExitStatus> handOver(SingleInstance& instance, openRequest::Request& request,
                                   const QStringList& toolkitArguments);

/// Has what came in the program's last moment opened by a program that comes after it. Who waits asks anew by itself.
void startAgainFor(const std::vector<SingleInstance::Received>& unopened);

} // namespace kelm
