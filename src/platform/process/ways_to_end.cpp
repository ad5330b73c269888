#include "platform/process/ways_to_end.h"

#include "platform/events/main_queue.h"
#include "platform/events/quiet_thread.h"
#include "platform/events/worker_pool.h"
#include "platform/files/user_defaults.h"
#include "platform/process/child_groups.h"
#include "platform/process/log.h"
#include "platform/process/orderly_end.h"

#include <QGuiApplication>
#include <QThread>

#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <map>
#include <poll.h>
#include <unistd.h>

namespace kelm {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::array endingSignals{SIGHUP, SIGINT, SIGTERM};
constexpr std::chrono::milliseconds sameSignal(250);
constexpr std::chrono::seconds timeToComeBack(5);
/// What a shell adds to the number of the signal that has ended a program.
constexpr int signalStatus = 128;

int wakeEnd = -1;
UserDefaults* writtenAtTheEnd = nullptr;
QtMessageHandler takeMessages = nullptr;
std::atomic<int> firstSignal = 0;
std::atomic<bool> isLeaving = false;

/// A signal, and when it came: whoever waits for it may be late.
struct SignalNote
{
    int number = 0;
    Clock::time_point time;
};

extern "C" void noteSignal(int number)
{
    const int error = errno;
    const SignalNote note{number, Clock::now()};
    [[maybe_unused]] const ssize_t count = ::write(wakeEnd, &note, sizeof note);
    errno = error;
}

/// Ends the process as if the signal had never been watched.
[[noreturn]] void endAtOnce(int number)
{
    std::signal(number, SIG_DFL);
    sigset_t only;
    sigemptyset(&only);
    sigaddset(&only, number);
    ::pthread_sigmask(SIG_UNBLOCK, &only, nullptr);
    ::kill(::getpid(), number);
    // It may be another thread that takes it.
    for (;;) {
        ::pause();
    }
}

void endLoop(int number)
{
    endInOrder();
    QCoreApplication::exit(signalStatus + number);
}

/// Waits for signals, on a thread that nothing else can hold up.
void watchSignals(int readEnd)
{
    std::map<int, Clock::time_point> seen;
    Clock::time_point end = Clock::time_point::max();
    for (;;) {
        pollfd watched{readEnd, POLLIN, 0};
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
        if (firstSignal != 0 && left <= 0) {
            endAtOnce(firstSignal);
        }
        SignalNote note;
        if (::poll(&watched, 1, firstSignal != 0 ? int(left) : -1) <= 0 ||
            ::read(readEnd, &note, sizeof note) != ssize_t(sizeof note)) {
            continue;
        }
        const auto [before, isNew] = seen.try_emplace(note.number, note.time);
        if (!isNew && note.time - before->second >= sameSignal) {
            endAtOnce(note.number);
        }
        if (firstSignal == 0) {
            firstSignal = note.number;
            end = note.time + timeToComeBack;
            if (!isLeaving) {
                onMainQueueInAnyCase([number = note.number] { endLoop(number); });
            }
        }
    }
}

void catchSignals()
{
    int ends[2] = {-1, -1};
    if (::pipe(ends) != 0) {
        return;
    }
    for (const int end : ends) {
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
    }
    ::fcntl(ends[1], F_SETFL, O_NONBLOCK);
    wakeEnd = ends[1];
    auto thread = startQuietThread([readEnd = ends[0]] { watchSignals(readEnd); });
    if (!thread) {
        return;
    }
    thread->detach();
    for (const int number : endingSignals) {
        struct sigaction action = {};
        if (::sigaction(number, nullptr, &action) == 0 && action.sa_handler != SIG_IGN) {
            action = {};
            action.sa_handler = noteSignal;
            action.sa_flags = SA_RESTART;
            ::sigaction(number, &action, nullptr);
        }
    }
}

/// Ends the process in order from inside the event loop; among its exit handlers as well, before the statics go that
/// were made earlier.
void endFromInside()
{
    if (isLeaving || QCoreApplication::instance() == nullptr ||
        QCoreApplication::instance()->thread() != QThread::currentThread()) {
        return;
    }
    endInOrder();
    endChildren();
    writtenAtTheEnd->synchronize();
    Log::finishSystem();
    // Nothing that stands behind the display could be taken down any more.
    std::_Exit(EXIT_FAILURE);
}

/// A Wayland display's end leads past all exit handlers: the toolkit says these words of it, and the process is gone.
void takeLastWords(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    takeMessages(type, context, message);
    if (message.startsWith(QStringLiteral("The Wayland connection "))) {
        endFromInside();
    }
}

} // namespace

void watchWaysToEnd(UserDefaults& preferences)
{
    writtenAtTheEnd = &preferences;
    // What is made once and for all has to be made before, so as to go later.
    backgroundWorkers();
    std::atexit(endFromInside);
    takeMessages = qInstallMessageHandler(takeLastWords);
    catchSignals();
    if (const auto* application = qobject_cast<QGuiApplication*>(QCoreApplication::instance())) {
        const auto save = [] { endInOrder(); };
        QObject::connect(application, &QGuiApplication::commitDataRequest, application, save, Qt::DirectConnection);
        QObject::connect(application, &QGuiApplication::saveStateRequest, application, save, Qt::DirectConnection);
    }
}

void endBySignal()
{
    isLeaving = true;
    if (firstSignal != 0) {
        Log::finishSystem();
        endAtOnce(firstSignal);
    }
}

} // namespace kelm
