#include "platform/process/process_launch.h"

#include "platform/files/native_path.h"
#include "platform/process/child_groups.h"
#include "platform/process/raw_command.h"

#include <QCoreApplication>
#include <QDir>
#include <QPointer>
#include <QProcess>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <mutex>
#include <unistd.h>
#include <vector>

namespace kelm {

namespace {

/// Whoever started the application may have had the ends of children ignored. The system then keeps no child's exit, so
/// that each would seem to have ended well; what is asked for here holds for the whole application.
void keepExits()
{
    struct sigaction action = {};
    if (::sigaction(SIGCHLD, nullptr, &action) == 0 &&
        (action.sa_handler == SIG_IGN || (action.sa_flags & SA_NOCLDWAIT) != 0)) {
        action.sa_handler = SIG_DFL;
        action.sa_flags = 0;
        ::sigaction(SIGCHLD, &action, nullptr);
    }
}

/// A null character would cut a text short without a word.
bool holdsNull(const ProcessCommand& command)
{
    const auto isCut = [](const QString& text) { return text.contains(QChar(0)); };
    bool found = isCut(command.program) || isCut(command.workingDirectory) ||
                 std::any_of(command.arguments.begin(), command.arguments.end(), isCut);
    if (command.environment) {
        for (auto entry = command.environment->cbegin(); entry != command.environment->cend(); ++entry) {
            found = found || isCut(entry.key()) || isCut(entry.value());
        }
    }
    return found;
}

/// The error number of what will not start, as far as that can be foreseen; 0 for none. The toolkit's process (6.4)
/// leaves a descriptor open for each start that fails.
int foreseeableError(const ProcessCommand& command)
{
    const QString& folder = command.workingDirectory;
    if (holdsNull(command)) {
        return EINVAL;
    }
    if (!folder.isEmpty() && ::access(nativePath(folder + u'/').constData(), X_OK) != 0) {
        return errno;
    }
    const QString program = QDir(folder).filePath(command.program);
    if (::access(nativePath(program).constData(), X_OK) != 0) {
        return errno;
    }
    return isFolder(program) ? EACCES : 0;
}

/// Variables that the application has as well keep its bytes, which need not be UTF-8.
QProcessEnvironment environmentOf(const QMap<QString, QString>& variables)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString& name : environment.keys()) {
        if (!variables.contains(name)) {
            environment.remove(name);
        }
    }
    for (auto entry = variables.cbegin(); entry != variables.cend(); ++entry) {
        if (!environment.contains(entry.key()) || environment.value(entry.key()) != entry.value()) {
            environment.insert(entry.key(), entry.value());
        }
    }
    return environment;
}

/// Runs in the child before its program does, and calls nothing but the system. The child has no signal blocked.
/// Whoever started the application may have had signals ignored, those of the keyboard in the background or the end of
/// the terminal: they would pass a child by that leads a group and is told by them to end.
void prepareChild(bool ownGroup, bool readsNoTerminal, const ChildOutputs& outputs)
{
    if (readsNoTerminal) {
        // A read from the background then fails, and a change of the terminal's state is let be.
        ::signal(SIGTTIN, SIG_IGN);
        ::signal(SIGTTOU, SIG_IGN);
    }
    if (ownGroup) {
        ::setpgid(0, 0);
        for (const int number : {SIGINT, SIGQUIT, SIGHUP, SIGTERM}) {
            ::signal(number, SIG_DFL);
        }
    }
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    if (outputs.standardOutput >= 0) {
        ::dup2(outputs.standardOutput, STDOUT_FILENO);
        ::dup2(outputs.standardError, STDERR_FILENO);
    }
}

} // namespace

QString launchErrorText(const ProcessCommand& command, const QString& reason)
{
    if (!command.workingDirectory.isEmpty() && !isFolder(command.workingDirectory)) {
        return QStringLiteral("Cannot start \"%1\" in the folder \"%2\": %3")
            .arg(shownPath(command.program), shownPath(command.workingDirectory), reason);
    }
    return QStringLiteral("Cannot start \"%1\": %2").arg(shownPath(command.program), reason);
}

std::optional<QString> launch(QProcess& process, const ProcessCommand& command, const ChildOutputs& outputs)
{
    keepExits();
    if (const int error = foreseeableError(command)) {
        return launchErrorText(command, qt_error_string(error));
    }
    // The toolkit searches for a name without a folder.
    process.setProgram(command.program.contains(u'/') ? command.program : QStringLiteral("./") + command.program);
    process.setArguments(command.arguments);
    const std::optional<RawCommand> raw = RawCommand::of(command);
    process.setWorkingDirectory(raw ? QString() : command.workingDirectory);
    if (command.environment) {
        process.setProcessEnvironment(environmentOf(*command.environment));
    }
    if (!command.standardInput) {
        process.setInputChannelMode(QProcess::ForwardedInputChannel);
    }
    if (outputs.standardOutput >= 0) {
        process.setProcessChannelMode(QProcess::ForwardedChannels);
    }
    process.setChildProcessModifier([ownGroup = command.ownGroup, noTerminal = command.readsNoTerminal, outputs, raw] {
        prepareChild(ownGroup, noTerminal, outputs);
        if (raw) {
            raw->execute();
        }
    });
    process.start();
    if (!process.waitForStarted(-1)) {
        // Before the reason stands the name of the call that failed.
        return launchErrorText(command, process.errorString().section(QStringLiteral(": "), -1));
    }
    if (command.ownGroup) {
        noteChildGroup(process.processId());
    }
    return std::nullopt;
}

ProcessExit exitOf(const QProcess& process)
{
    return {process.exitCode(), process.exitStatus() == QProcess::CrashExit};
}

void leaveRunning(std::unique_ptr<QProcess> process)
{
    process->disconnect();
    QObject::connect(process.get(), &QProcess::finished, process.get(), &QObject::deleteLater);
    if (const QCoreApplication* application = QCoreApplication::instance()) {
        process->moveToThread(application->thread());
    }
    if (process->state() == QProcess::NotRunning) {
        process.release()->deleteLater();
        return;
    }
    // Children may outlive the application: neither their objects nor this list of them is ever taken down.
    static std::mutex mutex;
    static auto& left = *std::make_unique<std::vector<QPointer<QProcess>>>().release();
    const std::scoped_lock lock(mutex);
    std::erase(left, nullptr);
    left.emplace_back(process.release());
}

} // namespace kelm
