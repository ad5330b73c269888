// How long the main thread is busy without a look at the window while the source control panel works on a large
// repository: 100,000 files, of which 20,000 differ. Told are the longest such slice, on the clock and on a processor,
// and the time of the whole. KELM_REPOSITORY names a repository made before; otherwise one is made, which takes a
// minute.
#include "app/state/app_state.h"
#include "git/panel/view/source_control_view.h"
#include "git/service/git_service.h"
#include "platform/desktop/file_panels.h"
#include "platform/files/user_defaults.h"
#include "platform/process/log.h"
#include "platform/style/view/style.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>

namespace {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

/// Times everything between two looks at what a person does: an event with all that it sends on, less what an event
/// loop inside it hands out or waits for.
class BusyApplication final : public QApplication
{
public:
    BusyApplication(int& argc, char** argv) : QApplication(argc, argv)
    {
        const QAbstractEventDispatcher* const loop = QAbstractEventDispatcher::instance();
        connect(loop, &QAbstractEventDispatcher::aboutToBlock, this, [this] {
            mark();
            isBusy_ = false;
        });
        connect(loop, &QAbstractEventDispatcher::awake, this, &BusyApplication::mark);
    }

    bool notify(QObject* receiver, QEvent* event) override
    {
        if (thread() != QThread::currentThread()) {
            return QApplication::notify(receiver, event);
        }
        const int levelBefore = level_;
        const bool isOfAnotherLoop = thread()->loopLevel() != levelBefore;
        if (isOfAnotherLoop) {
            level_ = thread()->loopLevel();
            mark();
        }
        const bool isTaken = QApplication::notify(receiver, event);
        if (isOfAnotherLoop) {
            mark();
            level_ = levelBefore;
        }
        return isTaken;
    }

    /// In milliseconds.
    double longestWall = 0;
    double longestCpu = 0;

private:
    /// Ends a slice and begins another.
    void mark()
    {
        const double wall = milliseconds(CLOCK_MONOTONIC);
        const double cpu = milliseconds(CLOCK_THREAD_CPUTIME_ID);
        if (isBusy_) {
            longestWall = std::max(longestWall, wall - wall_);
            longestCpu = std::max(longestCpu, cpu - cpu_);
        }
        isBusy_ = true;
        wall_ = wall;
        cpu_ = cpu;
    }
    static double milliseconds(clockid_t clock)
    {
        timespec time{};
        clock_gettime(clock, &time);
        return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
    }

    bool isBusy_ = false;
    int level_ = 0;
    double wall_ = 0;
    double cpu_ = 0;
};

/// Does something from the event loop, and lets that run until all that comes of it is done.
void measure(BusyApplication& application, const char* name, const std::function<void()>& act)
{
    QCoreApplication::processEvents();
    QElapsedTimer clock;
    QEventLoop loop;
    qint64 time = 0;
    QTimer::singleShot(0, &loop, [&] {
        application.longestWall = application.longestCpu = 0;
        clock.start();
        act();
        time = clock.elapsed();
        // Behind the pictures that are due by now.
        QTimer::singleShot(100, &loop, &QEventLoop::quit);
    });
    loop.exec();
    std::printf("%-28s %6lld ms in all, longest slice %6.1f ms, %6.1f ms of a processor\n", name, time,
                application.longestWall, application.longestCpu);
}

} // namespace

int main(int argc, char** argv)
{
    BusyApplication application(argc, argv);
    style::installOn(application);
    const QTemporaryDir folder;
    QString repository = qEnvironmentVariable("KELM_REPOSITORY");
    if (repository.isEmpty()) {
        repository = folder.filePath(u"repository"_s);
        if (QProcess::execute(QStringLiteral(KELM_SOURCE_ROOT) + u"/bench/git/make_repository.py"_s,
                              {repository, u"--changed"_s, u"20000"_s}) != 0) {
            qFatal("no repository");
        }
    }
    UserDefaults defaults(folder.filePath(u"defaults.conf"_s));
    NotificationCenter notifications;
    AppState state({FilePanels::shared(), defaults, Scheduler::system(), notifications, Log::system(),
                    ProcessRunner::sharedSystem(), ExecutableSearch(ProcessRunner::system())});
    SourceControlView panel(state, {state.filePanels(), state.scheduler()});
    state.setCurrentProject(QUrl::fromLocalFile(repository));
    panel.resize(260, 700);
    measure(application, "first opening", [&panel] { panel.show(); });
    measure(application, "refresh of everything", [&state] { state.git().refreshAll(); });
    measure(application, "stage all", [&state] { state.git().stageAll(); });
    measure(application, "unstage all", [&state] { state.git().unstage({u"."_s}); });
    return 0;
}
