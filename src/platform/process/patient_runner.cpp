#include "platform/process/patient_runner.h"

#include "platform/events/held_work.h"
#include "platform/process/process_stop.h"

#include <QCoreApplication>
#include <QEvent>
#include <QEventLoop>
#include <QPointer>
#include <QScopedValueRollback>
#include <QSocketNotifier>
#include <QThread>
#include <QTimer>

#include <condition_variable>
#include <mutex>
#include <type_traits>
#include <utility>
#include <vector>

namespace kelm {

namespace {

/// How long the main thread waits without a look at the window, for one command or several in a row. Most have ended by
/// then, and the window has lost no picture.
constexpr std::chrono::milliseconds plainWait{8};

bool isMainThread()
{
    const QCoreApplication* const application = QCoreApplication::instance();
    return application != nullptr && application->thread() == QThread::currentThread();
}

template <typename... Arguments>
void call(const std::function<void(Arguments...)>& sign, std::type_identity_t<Arguments>... arguments)
{
    if (sign) {
        sign(arguments...);
    }
}

/// Keeps off what would enter the program from inside a wait and is neither a queued piece of its work nor input.
class KeptOff final : public QObject
{
public:
    KeptOff() { QCoreApplication::instance()->installEventFilter(this); }
    ~KeptOff() override
    {
        for (const QPointer<QSocketNotifier>& notifier : resting_) {
            if (notifier) {
                notifier->setEnabled(true);
            }
        }
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        switch (event->type()) {
        case QEvent::SockAct:
            // Not every event loop leaves them out when it is asked to, and what is not read is told without end.
            if (auto* notifier = qobject_cast<QSocketNotifier*>(watched)) {
                notifier->setEnabled(false);
                resting_.emplace_back(notifier);
                return true;
            }
            return false;
        case QEvent::DragEnter:
        case QEvent::DragMove:
        case QEvent::Drop:
            event->ignore();
            return true;
        default:
            return false;
        }
    }

private:
    std::vector<QPointer<QSocketNotifier>> resting_;
};

} // namespace

/// What can be told of a wait.
struct PatientRunner::Child
{
    const ProcessCommand& command;
    ProcessStop& stop;
};

/// What is waited for, between the thread that does it and the one that waits.
class PatientRunner::Job
{
public:
    explicit Job(const std::function<void()>& work) : work_(work) {}

    /// On the worker.
    void doWork()
    {
        work_();
        const std::lock_guard lock(mutex_);
        isDone_ = true;
        if (loop_ != nullptr) {
            // Not at once: a loop that has not begun yet would forget it.
            QMetaObject::invokeMethod(loop_, &QEventLoop::quit, Qt::QueuedConnection);
        }
        done_.notify_all();
    }

    bool isDone() const
    {
        const std::lock_guard lock(mutex_);
        return isDone_;
    }

    void wait()
    {
        std::unique_lock lock(mutex_);
        done_.wait(lock, [this] { return isDone_; });
    }

    bool waitFor(std::chrono::milliseconds time)
    {
        std::unique_lock lock(mutex_);
        return done_.wait_for(lock, time, [this] { return isDone_; });
    }

    /// The loop ends when the work does; null for none. False when it has ended.
    bool setLoop(QEventLoop* loop)
    {
        const std::lock_guard lock(mutex_);
        loop_ = loop;
        return !isDone_;
    }

private:
    /// The waiting thread's own, which does not go on before it is done.
    const std::function<void()>& work_;
    mutable std::mutex mutex_;
    std::condition_variable done_;
    bool isDone_ = false;
    QEventLoop* loop_ = nullptr;
};

PatientRunner::PatientRunner(std::shared_ptr<ProcessRunner> runner, Signs signs)
    : runner_(std::move(runner)), signs_(std::move(signs))
{}

PatientRunner::~PatientRunner() = default;

ProcessResult PatientRunner::run(const ProcessCommand& command)
{
    ProcessStop stop;
    return runStoppable(command, stop);
}

ProcessResult PatientRunner::runStoppable(const ProcessCommand& command, ProcessStop& stop)
{
    ProcessResult result;
    const Child child{command, stop};
    wait([&] { result = runner_->runStoppable(command, stop); }, &child);
    return result;
}

void PatientRunner::compute(const std::function<void()>& work)
{
    wait(work, nullptr);
}

void PatientRunner::wait(const std::function<void()>& work, const Child* child)
{
    if (!isMainThread() || isWaiting_) {
        work();
        return;
    }
    const QScopedValueRollback waiting(isWaiting_, true);
    // The worker may still be leaving it when the wait is over.
    const auto job = std::make_shared<Job>(work);
    worker_.add([job] { job->doWork(); });
    if (!job->waitFor(plainTimeLeft())) {
        waitAndPaint(*job, child);
        plainSince_->reset();
    }
}

std::chrono::milliseconds PatientRunner::plainTimeLeft()
{
    if (!*plainSince_) {
        *plainSince_ = Clock::now();
        // The caller's own work counts, and what comes behind it does not.
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), [since = plainSince_] { since->reset(); }, Qt::QueuedConnection);
    }
    const auto spent = std::chrono::floor<std::chrono::milliseconds>(Clock::now() - **plainSince_);
    return std::max(plainWait - spent, std::chrono::milliseconds(0));
}

PatientRunner::Turn PatientRunner::turnUntil(Job& job, Clock::time_point time, bool takesInput)
{
    QEventLoop loop;
    QTimer timer;
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
    timer.callOnTimeout(&loop, &QEventLoop::quit);
    timer.start(std::max(std::chrono::ceil<std::chrono::milliseconds>(time - Clock::now()), plainWait));
    if (job.setLoop(&loop)) {
        loop.exec(QEventLoop::ExcludeSocketNotifiers |
                  (takesInput ? QEventLoop::AllEvents : QEventLoop::ExcludeUserInputEvents));
    }
    job.setLoop(nullptr);
    if (job.isDone()) {
        return Turn::workIsDone;
    }
    return timer.isActive() ? Turn::programEnds : Turn::timeHasCome;
}

void PatientRunner::waitAndPaint(Job& job, const Child* child)
{
    const HeldWork held;
    const KeptOff keptOff;
    const Clock::time_point begin = Clock::now();
    bool isTold = false;
    Clock::time_point next = begin + silentTime;
    for (;;) {
        const Turn turn = turnUntil(job, next, isTold && signs_.began);
        if (turn == Turn::programEnds) {
            if (child != nullptr) {
                child->stop.stop();
            }
            job.wait();
        }
        if (turn != Turn::timeHasCome) {
            break;
        }
        auto time = std::chrono::seconds(0);
        if (child == nullptr) {
            next += silentTime;
            continue;
        }
        if (isTold) {
            time = std::chrono::round<std::chrono::seconds>(Clock::now() - begin);
            call(signs_.lasted, time);
        } else {
            call(signs_.began, child->command, [child] { child->stop.stop(); });
        }
        isTold = true;
        next = begin + time + std::chrono::seconds(1);
    }
    if (isTold) {
        call(signs_.ended);
    }
}

} // namespace kelm
