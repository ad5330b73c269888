#include "run/run_record.h"

#include "platform/text/shown_name.h"

#include <algorithm>
#include <array>
#include <csignal>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

using namespace std::chrono_literals;

struct SignalName
{
    int number;
    const char* name;
};

constexpr std::array signalNames{
    SignalName{SIGHUP, "SIGHUP"},   SignalName{SIGINT, "SIGINT"},   SignalName{SIGQUIT, "SIGQUIT"},
    SignalName{SIGILL, "SIGILL"},   SignalName{SIGTRAP, "SIGTRAP"}, SignalName{SIGABRT, "SIGABRT"},
    SignalName{SIGBUS, "SIGBUS"},   SignalName{SIGFPE, "SIGFPE"},   SignalName{SIGKILL, "SIGKILL"},
    SignalName{SIGUSR1, "SIGUSR1"}, SignalName{SIGSEGV, "SIGSEGV"}, SignalName{SIGUSR2, "SIGUSR2"},
    SignalName{SIGPIPE, "SIGPIPE"}, SignalName{SIGALRM, "SIGALRM"}, SignalName{SIGTERM, "SIGTERM"},
    SignalName{SIGXCPU, "SIGXCPU"}, SignalName{SIGXFSZ, "SIGXFSZ"}, SignalName{SIGSYS, "SIGSYS"},
};

QString signalName(int number)
{
    const auto found = std::find_if(signalNames.begin(), signalNames.end(),
                                    [number](const SignalName& each) { return each.number == number; });
    return found != signalNames.end() ? QString::fromLatin1(found->name) : u"signal "_s + QString::number(number);
}

/// With a digit behind the point below a minute, and two where there would be nothing before the last.
QString lastedText(std::chrono::milliseconds lasted)
{
    if (lasted >= 1min) {
        return durationText(std::chrono::floor<std::chrono::seconds>(lasted));
    }
    return QString::number(double(lasted.count()) / 1e3, 'f', lasted < 100ms ? 2 : 1) + u" s"_s;
}

} // namespace

QString durationText(std::chrono::seconds duration)
{
    if (duration < 1min) {
        return u"%1 s"_s.arg(duration.count());
    }
    const auto minutes = std::chrono::floor<std::chrono::minutes>(duration);
    if (duration < 1h) {
        return u"%1 min %2 s"_s.arg(minutes.count()).arg((duration - minutes).count());
    }
    const auto hours = std::chrono::floor<std::chrono::hours>(duration);
    return u"%1 h %2 min"_s.arg(hours.count()).arg((minutes - hours).count());
}

QString runningText(const RunRecord& run, std::chrono::seconds duration)
{
    return u"Running "_s + shownName(run.name) + u" … "_s + durationText(duration);
}

QString endedText(const RunRecord& run)
{
    const ProcessExit exit = run.exit.value_or(ProcessExit());
    const QString how = exit.bySignal ? u" was ended by "_s + signalName(exit.status)
                                      : u" ended with "_s + QString::number(exit.status);
    return shownName(run.name) + how + u" after "_s + lastedText(run.lasted);
}

} // namespace kelm
