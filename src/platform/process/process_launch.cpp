#include "platform/process/process_launch.h"

#include "platform/process/environment.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <mutex>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <thread>
#include <vector>

namespace kelm {

namespace {

struct Pipe
{
    FileDescriptor readEnd;
    FileDescriptor writeEnd;

    bool isOpen() const { return readEnd.isOpen() && writeEnd.isOpen(); }
};

/// The descriptor moved above the three standard ones: the child's own would overwrite it there.
FileDescriptor aboveStandard(FileDescriptor descriptor)
{
    if (!descriptor.isOpen() || descriptor.number() > STDERR_FILENO) {
        return descriptor;
    }
    return FileDescriptor(::fcntl(descriptor.number(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
}

/// A pipe that other children do not inherit; its ends are closed when the system gives none.
Pipe makePipe()
{
    int ends[2] = {-1, -1};
#ifdef Q_OS_MACOS
    if (::pipe(ends) != 0) {
        return {};
    }
    for (const int end : ends) {
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
    }
#else
    if (::pipe2(ends, O_CLOEXEC) != 0) {
        return {};
    }
#endif
    Pipe pipe{FileDescriptor(ends[0]), FileDescriptor(ends[1])};
    return {aboveStandard(std::move(pipe.readEnd)), aboveStandard(std::move(pipe.writeEnd))};
}

void doNotBlock(const FileDescriptor& descriptor)
{
    ::fcntl(descriptor.number(), F_SETFL, ::fcntl(descriptor.number(), F_GETFL) | O_NONBLOCK);
}

/// Keeps the signal of a broken pipe from this thread for as long as it lives: writing to a child that has gone is an
/// error of that write, whatever the application does about the signal.
class BrokenPipeGuard
{
public:
    BrokenPipeGuard()
    {
        sigemptyset(&brokenPipe_);
        sigaddset(&brokenPipe_, SIGPIPE);
        wasPending_ = isPending();
        ::pthread_sigmask(SIG_BLOCK, &brokenPipe_, &before_);
    }
    BrokenPipeGuard(const BrokenPipeGuard&) = delete;
    BrokenPipeGuard& operator=(const BrokenPipeGuard&) = delete;
    ~BrokenPipeGuard()
    {
        const int error = errno;
        if (!wasPending_ && isPending()) {
            int taken = 0;
            ::sigwait(&brokenPipe_, &taken);
        }
        ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
        errno = error;
    }

private:
    static bool isPending()
    {
        sigset_t pending;
        sigemptyset(&pending);
        ::sigpending(&pending);
        return sigismember(&pending, SIGPIPE) == 1;
    }

    sigset_t brokenPipe_;
    sigset_t before_;
    bool wasPending_ = false;
};

/// The strings of an argument or environment list in the form that the system takes.
class CStringList
{
public:
    void append(QByteArray text) { texts_.push_back(std::move(text)); }

    bool holdsNull() const
    {
        return std::any_of(texts_.begin(), texts_.end(), [](const QByteArray& text) { return text.contains('\0'); });
    }

    /// Valid until the next `append`.
    char** data()
    {
        pointers_.clear();
        for (QByteArray& text : texts_) {
            pointers_.push_back(text.data());
        }
        pointers_.push_back(nullptr);
        return pointers_.data();
    }

private:
    std::vector<QByteArray> texts_;
    std::vector<char*> pointers_;
};

class SpawnActions
{
public:
    SpawnActions() { ::posix_spawn_file_actions_init(&actions_); }
    SpawnActions(const SpawnActions&) = delete;
    SpawnActions& operator=(const SpawnActions&) = delete;
    ~SpawnActions() { ::posix_spawn_file_actions_destroy(&actions_); }

    void duplicate(const FileDescriptor& from, int to)
    {
        ::posix_spawn_file_actions_adddup2(&actions_, from.number(), to);
    }
    void changeDirectory(const QByteArray& path)
    {
        ::posix_spawn_file_actions_addchdir_np(&actions_, path.constData());
    }
    const posix_spawn_file_actions_t* get() const { return &actions_; }

private:
    posix_spawn_file_actions_t actions_;
};

/// The child starts with no signal blocked and with the default meaning of a broken pipe, which the application
/// ignores. So it is with the keyboard's signals for a child that leads a group: whoever started the application in the
/// background may have had them ignored, and an interrupt would pass the child by.
class SpawnAttributes
{
public:
    explicit SpawnAttributes(bool ownGroup)
    {
        ::posix_spawnattr_init(&attributes_);
        sigset_t none;
        sigemptyset(&none);
        ::posix_spawnattr_setsigmask(&attributes_, &none);
        sigset_t reset;
        sigemptyset(&reset);
        sigaddset(&reset, SIGPIPE);
        if (ownGroup) {
            sigaddset(&reset, SIGINT);
            sigaddset(&reset, SIGQUIT);
        }
        ::posix_spawnattr_setsigdefault(&attributes_, &reset);
        short flags = POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF;
        if (ownGroup) {
            ::posix_spawnattr_setpgroup(&attributes_, 0);
            flags |= POSIX_SPAWN_SETPGROUP;
        }
        ::posix_spawnattr_setflags(&attributes_, flags);
    }
    SpawnAttributes(const SpawnAttributes&) = delete;
    SpawnAttributes& operator=(const SpawnAttributes&) = delete;
    ~SpawnAttributes() { ::posix_spawnattr_destroy(&attributes_); }

    const posix_spawnattr_t* get() const { return &attributes_; }

private:
    posix_spawnattr_t attributes_;
};

std::mutex abandonedMutex;

std::vector<pid_t>& abandoned()
{
    static std::vector<pid_t> pids;
    return pids;
}

void reapAbandoned()
{
    const std::scoped_lock lock(abandonedMutex);
    std::erase_if(abandoned(), [](pid_t pid) { return ::waitpid(pid, nullptr, WNOHANG) != 0; });
}

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

/// Where the system has no descriptor for a process: a pipe that a waiting thread closes when the child has ended.
FileDescriptor exitNoticeByThread(pid_t pid, Pipe pipe)
{
    std::thread([pid, end = std::move(pipe.writeEnd)] {
        siginfo_t info = {};
        while (::waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOWAIT) != 0 && errno == EINTR) {
        }
    }).detach();
    return std::move(pipe.readEnd);
}

/// `pipe` was made before the child: once that runs, there has to be a way to hear of its end.
FileDescriptor makeExitNotice(pid_t pid, Pipe pipe)
{
#ifdef SYS_pidfd_open
    FileDescriptor notice(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0)));
    if (notice.isOpen()) {
        return notice;
    }
#endif
    return exitNoticeByThread(pid, std::move(pipe));
}

/// The system does not say whether it was the folder or the program that failed.
QString launchErrorText(const ProcessCommand& command, int error)
{
    const QString reason = qt_error_string(error);
    if (!command.workingDirectory.isEmpty() && !QFileInfo(command.workingDirectory).isDir()) {
        return QStringLiteral("Cannot start \"%1\" in the folder \"%2\": %3")
            .arg(command.program, command.workingDirectory, reason);
    }
    return QStringLiteral("Cannot start \"%1\": %2").arg(command.program, reason);
}

} // namespace

std::variant<LaunchedProcess, QString> launch(const ProcessCommand& command)
{
    keepExits();
    reapAbandoned();

    CStringList arguments;
    arguments.append(QFile::encodeName(command.program));
    for (const QString& argument : command.arguments) {
        arguments.append(argument.toUtf8());
    }
    CStringList environment;
    if (command.environment) {
        for (auto entry = command.environment->cbegin(); entry != command.environment->cend(); ++entry) {
            environment.append(environmentEntry(entry.key(), entry.value()));
        }
    }
    const QByteArray folder = QFile::encodeName(command.workingDirectory);
    // A null character would cut the text short without a word.
    if (arguments.holdsNull() || environment.holdsNull() || folder.contains('\0')) {
        return launchErrorText(command, EINVAL);
    }

    SpawnActions actions;
    Pipe input;
    Pipe output = makePipe();
    Pipe error = makePipe();
    Pipe notice = makePipe();
    if (command.standardInput) {
        input = makePipe();
    }
    if (!output.isOpen() || !error.isOpen() || !notice.isOpen() || (command.standardInput && !input.isOpen())) {
        return launchErrorText(command, errno);
    }
    if (command.standardInput) {
        actions.duplicate(input.readEnd, STDIN_FILENO);
    }
    actions.duplicate(output.writeEnd, STDOUT_FILENO);
    actions.duplicate(error.writeEnd, STDERR_FILENO);
    if (!folder.isEmpty()) {
        actions.changeDirectory(folder);
    }

    const SpawnAttributes attributes(command.ownGroup);
    LaunchedProcess child;
    char** const argumentList = arguments.data();
    const int failure = ::posix_spawn(&child.pid, argumentList[0], actions.get(), attributes.get(), argumentList,
                                      command.environment ? environment.data() : environmentBlock());
    if (failure != 0) {
        return launchErrorText(command, failure);
    }
    // The child has its own ends now, so that there is room for one descriptor more.
    for (FileDescriptor* end : {&input.readEnd, &output.writeEnd, &error.writeEnd}) {
        end->close();
    }
    child.exitNotice = makeExitNotice(child.pid, std::move(notice));
    child.standardInput = std::move(input.writeEnd);
    child.standardOutput = std::move(output.readEnd);
    child.standardError = std::move(error.readEnd);
    for (const FileDescriptor* end : {&child.standardInput, &child.standardOutput, &child.standardError}) {
        if (end->isOpen()) {
            doNotBlock(*end);
        }
    }
    return child;
}

ProcessExit reap(pid_t pid)
{
    siginfo_t info = {};
    while (::waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED) != 0) {
        if (errno != EINTR) {
            // An exit that the system cannot tell is no success.
            constexpr int unknown = 255;
            return {unknown, false};
        }
    }
    return {info.si_status, info.si_code == CLD_KILLED || info.si_code == CLD_DUMPED};
}

void reapLater(pid_t pid)
{
    const std::scoped_lock lock(abandonedMutex);
    abandoned().push_back(pid);
}

int writeOnce(const FileDescriptor& pipe, QByteArrayView bytes, qsizetype& written)
{
    if (written == bytes.size()) {
        return 0;
    }
    const BrokenPipeGuard guard;
    const ssize_t count = ::write(pipe.number(), bytes.data() + written, static_cast<size_t>(bytes.size() - written));
    if (count < 0) {
        return errno == EAGAIN || errno == EINTR ? 0 : errno;
    }
    written += count;
    return 0;
}

bool readOnce(const FileDescriptor& pipe, QByteArray& bytes, qsizetype limit)
{
    const qsizetype size = bytes.size();
    bytes.resize(size + limit);
    ssize_t count = 0;
    do {
        count = ::read(pipe.number(), bytes.data() + size, static_cast<size_t>(limit));
    } while (count < 0 && errno == EINTR);
    const bool waits = count < 0 && errno == EAGAIN;
    bytes.resize(size + std::max<ssize_t>(count, 0));
    return count > 0 || waits;
}

void readAvailable(const FileDescriptor& pipe, QByteArray& bytes)
{
    int available = 0;
    if (!pipe.isOpen() || ::ioctl(pipe.number(), FIONREAD, &available) != 0) {
        return;
    }
    const qsizetype end = bytes.size() + available;
    bytes.reserve(end);
    while (bytes.size() < end && readOnce(pipe, bytes, end - bytes.size())) {
    }
}

} // namespace kelm
