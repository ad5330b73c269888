#include "app/command_line/before_window.h"

#include "app/command_line/command_texts.h"
#include "app/command_line/operands.h"
#include "app/command_line/standard_input.h"
#include "platform/events/start_tokens.h"
#include "platform/files/native_path.h"
#include "platform/files/standard_paths.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QUrl>

#include <array>
#include <cerrno>
#include <csignal>
#include <unistd.h>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

/// A program that is started has to make its window before it answers.
constexpr std::chrono::seconds patienceWithStart(60);

/// What git says to an editor of the repository that it was started for, and what no other repository may hear.
constexpr std::array repositoryVariables{
    "GIT_ALTERNATE_OBJECT_DIRECTORIES",
    "GIT_COMMON_DIR",
    "GIT_CONFIG",
    "GIT_CONFIG_COUNT",
    "GIT_CONFIG_PARAMETERS",
    "GIT_DIR",
    "GIT_EDITOR",
    "GIT_GRAFT_FILE",
    "GIT_IMPLICIT_WORK_TREE",
    "GIT_INDEX_FILE",
    "GIT_INTERNAL_SUPER_PREFIX",
    "GIT_NO_REPLACE_OBJECTS",
    "GIT_OBJECT_DIRECTORY",
    "GIT_PREFIX",
    "GIT_REFLOG_ACTION",
    "GIT_REPLACE_REF_BASE",
    "GIT_SEQUENCE_EDITOR",
    "GIT_SHALLOW_FILE",
    "GIT_WORK_TREE",
};

bool writeAll(int descriptor, QByteArrayView bytes)
{
    while (!bytes.isEmpty()) {
        const ssize_t count = ::write(descriptor, bytes.data(), std::size_t(bytes.size()));
        if (count < 0 && errno != EINTR) {
            return false;
        }
        bytes = bytes.sliced(std::max<ssize_t>(count, 0));
    }
    return true;
}

ExitStatus print(const QByteArray& text)
{
    // A reader that has gone is told by the status, and not by a signal.
    std::signal(SIGPIPE, SIG_IGN);
    if (writeAll(STDOUT_FILENO, text)) {
        return ExitStatus::done;
    }
    complain(u"standard output could not be written"_s);
    return ExitStatus::failed;
}

/// The file of this very program.
QString ownProgram()
{
    const QString path = QFile::symLinkTarget(u"/proc/self/exe"_s);
    return QFileInfo::exists(path) ? path : u"kelmwright"_s;
}

/// The number of a program that goes on by itself, without this one's session and streams; 0 when it did not start.
qint64 startProgram(const QStringList& arguments)
{
    QProcess program;
    program.setProgram(ownProgram());
    program.setArguments(arguments);
    program.setStandardInputFile(QProcess::nullDevice());
    program.setStandardOutputFile(QProcess::nullDevice());
    program.setStandardErrorFile(QProcess::nullDevice());
    qint64 number = 0;
    return program.startDetached(&number) ? number : 0;
}

/// Starts the program that is to be the first, and hands over to it.
SingleInstance::Part leaveToNewProgram(SingleInstance& instance, openRequest::Request& request,
                                       const QStringList& toolkitArguments)
{
    for (const char* variable : repositoryVariables) {
        qunsetenv(variable);
    }
    // The window is that of the new program.
    putStartTokens(std::exchange(request.tokens, {}));
    instance.setPatience(patienceWithStart);
    const qint64 program = startProgram(toolkitArguments);
    return instance.leaveTo(request, [program] { return program > 0 && ::kill(pid_t(program), 0) == 0; });
}

ExitStatus statusOf(openRequest::Outcome outcome)
{
    switch (outcome) {
    case openRequest::Outcome::unsaved:
        complain(u"a text was closed with unsaved changes"_s);
        return ExitStatus::unsaved;
    case openRequest::Outcome::failed:
        complain(u"a file could not be opened"_s);
        return ExitStatus::notOpened;
    case openRequest::Outcome::saved:
    case openRequest::Outcome::untaken:
        break;
    }
    return ExitStatus::done;
}

/// Absent when nothing was opened, so that it is to be asked for again.
std::optional<ExitStatus> awaitTabs(SingleInstance& instance)
{
    const std::optional<openRequest::Outcome> outcome = instance.awaitOutcome();
    if (!outcome) {
        complain(u"the editor has died"_s);
        return ExitStatus::editorDied;
    }
    return outcome == openRequest::Outcome::untaken ? std::nullopt : std::optional(statusOf(*outcome));
}

} // namespace

void complain(const QString& sentence)
{
    writeAll(STDERR_FILENO, "kelmwright: " + sentence.toUtf8() + '\n');
}

std::optional<ExitStatus> answerAtOnce(const std::variant<CommandLine, UsageError>& commandLine,
                                       const QByteArray& version)
{
    if (const auto* error = std::get_if<UsageError>(&commandLine)) {
        std::signal(SIGPIPE, SIG_IGN);
        complain(error->message + u"; see kelmwright --help"_s);
        return ExitStatus::usage;
    }
    switch (std::get<CommandLine>(commandLine).task) {
    case CommandLine::Task::help:
        return print(helpText());
    case CommandLine::Task::version:
        return print(versionText(version));
    case CommandLine::Task::open:
        break;
    }
    return std::nullopt;
}

std::optional<openRequest::Request> requestOf(const CommandLine& commandLine)
{
    openRequest::Request request{QUuid::createUuid()};
    request.waits = commandLine.waits;
    const QString folder = currentFolder();
    for (const CommandLine::Operand& operand : commandLine.operands) {
        openRequest::Item item;
        if (operand.isStandardInput) {
            const std::variant<QString, FileError> copy =
                keepStandardInput(STDIN_FILENO, standardPaths::savedState() + u"/unsaved"_s);
            if (const auto* error = std::get_if<FileError>(&copy)) {
                const QString& reason = error->reason.isEmpty() ? error->message : error->reason;
                complain(u"standard input could not be opened: "_s + reason);
                return std::nullopt;
            }
            item = openRequest::Item(std::get<QString>(copy), 0, 0, openRequest::Item::Kind::copy);
        } else {
            item = itemOfOperand(operand.text, folder);
        }
        if (item.line == 0) {
            item.line = commandLine.line;
        }
        request.items.append(item);
    }
    if (commandLine.makesNewFile) {
        request.items.append(openRequest::Item({}, 0, 0, openRequest::Item::Kind::newFile));
    }
    if (commandLine.choosesFolder) {
        request.items.append(openRequest::Item({}, 0, 0, openRequest::Item::Kind::folderPanel));
    }
    return request;
}

std::optional<ExitStatus> handOver(SingleInstance& instance, openRequest::Request& request,
                                   const QStringList& toolkitArguments)
{
    for (;;) {
        SingleInstance::Part part = instance.claim(request);
        if (part == SingleInstance::Part::first && request.waits) {
            part = leaveToNewProgram(instance, request, toolkitArguments);
            if (part == SingleInstance::Part::alone) {
                complain(u"the editor did not start"_s);
                return ExitStatus::editorDied;
            }
        }
        switch (part) {
        case SingleInstance::Part::first:
        case SingleInstance::Part::alone:
            return std::nullopt;
        case SingleInstance::Part::unanswered:
            complain(u"the editor runs already and does not answer"_s);
            return ExitStatus::failed;
        case SingleInstance::Part::handedOver:
            break;
        }
        if (!request.waits) {
            return ExitStatus::done;
        }
        if (const std::optional<ExitStatus> status = awaitTabs(instance)) {
            return status;
        }
        request.id = QUuid::createUuid();
    }
}

void startAgainFor(const std::vector<SingleInstance::Received>& unopened)
{
    for (const SingleInstance::Received& received : unopened) {
        if (received.waiting) {
            received.waiting->note(openRequest::Outcome::untaken);
            continue;
        }
        QStringList operands;
        for (const openRequest::Item& item : received.request.items) {
            // Copies wait where they are kept, and the window offers them.
            if (item.kind == openRequest::Item::Kind::url) {
                const QString operand = operandOf(item);
                // The toolkit hands on no bytes that are not UTF-8. They come through in an address, without its line.
                operands.append(holdsRawBytes(operand) ? item.text : operand);
            }
        }
        startProgram(QStringList{u"--"_s} + operands);
    }
}

} // namespace kelm
