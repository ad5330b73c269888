#include "platform/process/child_process.h"

#include "platform/process/process_launch.h"
#include "platform/text/utf8_chunk_decoder.h"

#include <QCoreApplication>
#include <QSocketNotifier>
#include <QThread>
#include <QTimer>

#include <chrono>
#include <csignal>
#include <memory>
#include <utility>

namespace kelm {

namespace {

/// Reads below this many bytes are small ones.
constexpr qsizetype smallRead = qsizetype(8) * 1024;
/// After so many small reads in a row the reader rests, so that a child that writes by the line wakes the application
/// a few hundred times a second and not for each line. What fills its pipe is read without a rest, unless nobody hears
/// it any more.
constexpr int smallReadsBeforeRest = 4;
constexpr std::chrono::milliseconds restTime{4};
/// The most that is handed out at a time.
constexpr qsizetype longestReport = qsizetype(64) * 1024;

} // namespace

/// Reads one child to its end. It lives on its own, so that a child goes on undisturbed when nobody listens any more,
/// and deletes itself when the child has ended and both pipes are closed.
class ChildProcessReader final : public QObject
{
public:
    ChildProcessReader(LaunchedProcess child, const ProcessCommand& command, ChildProcess* listener)
        : child_(std::move(child)),
          listener_(listener),
          ownGroup_(command.ownGroup),
          input_(command.standardInput.value_or(QByteArray()))
    {
        // What is still there when the application or the thread ends goes with it.
        if (QCoreApplication* application = QCoreApplication::instance();
            application != nullptr && application->thread() == thread()) {
            setParent(application);
        } else {
            connect(thread(), &QThread::finished, this, &QObject::deleteLater);
        }
        output_ = {
            &child_.standardOutput, watch(child_.standardOutput, QSocketNotifier::Read), {}, &ChildProcess::outputRead};
        error_ = {
            &child_.standardError, watch(child_.standardError, QSocketNotifier::Read), {}, &ChildProcess::errorRead};
        connect(output_.notifier, &QSocketNotifier::activated, this, [this] { readSome(output_); });
        connect(error_.notifier, &QSocketNotifier::activated, this, [this] { readSome(error_); });
        connect(&rest_, &QTimer::timeout, this, [this] { setReading(true); });
        rest_.setSingleShot(true);
        exitNotifier_ = watch(child_.exitNotice, QSocketNotifier::Read);
        connect(exitNotifier_, &QSocketNotifier::activated, this, [this] { noteExit(); });
        if (child_.standardInput.isOpen()) {
            inputNotifier_ = watch(child_.standardInput, QSocketNotifier::Write);
            connect(inputNotifier_, &QSocketNotifier::activated, this, [this] { writeSome(); });
        }
    }

    ~ChildProcessReader() override
    {
        if (!ended_) {
            reapLater(child_.pid);
        }
    }

    qint64 processId() const { return ended_ ? 0 : child_.pid; }

    void signal(int number)
    {
        if (!ended_) {
            ::kill(ownGroup_ ? -child_.pid : child_.pid, number);
        }
    }

private:
    struct Stream
    {
        FileDescriptor* pipe = nullptr;
        QSocketNotifier* notifier = nullptr;
        Utf8ChunkDecoder decoder;
        void (ChildProcess::*signal)(const QString&) = nullptr;
    };

    QSocketNotifier* watch(const FileDescriptor& descriptor, QSocketNotifier::Type type)
    {
        return new QSocketNotifier(descriptor.number(), type, this);
    }

    static void close(FileDescriptor& descriptor, QSocketNotifier*& notifier)
    {
        if (notifier != nullptr) {
            notifier->setEnabled(false);
            notifier->deleteLater();
            notifier = nullptr;
        }
        descriptor.close();
    }

    void readSome(Stream& stream)
    {
        // A listener may run an event loop of its own: nothing of this object is touched after it was told.
        QByteArray bytes;
        if (!readOnce(*stream.pipe, bytes)) {
            close(*stream.pipe, stream.notifier);
            finishIfDone();
            return;
        }
        restAfter(bytes.size());
        report(stream, bytes);
    }

    void restAfter(qsizetype count)
    {
        smallReads_ = count < smallRead ? smallReads_ + 1 : 0;
        const bool isHeard = listener_ && !ended_;
        if (smallReads_ >= smallReadsBeforeRest || !isHeard) {
            // Both outputs rest and wake together, so that neither gets ahead of the other.
            setReading(false);
            rest_.start(restTime);
        }
    }

    void setReading(bool reading)
    {
        for (QSocketNotifier* notifier : {output_.notifier, error_.notifier}) {
            if (notifier != nullptr) {
                notifier->setEnabled(reading);
            }
        }
    }

    void report(Stream& stream, const QByteArray& bytes)
    {
        if (ended_ || !listener_) {
            return;
        }
        if (const auto text = stream.decoder.decode(bytes)) {
            Q_EMIT(listener_->*stream.signal)(*text);
        }
    }

    void noteExit()
    {
        close(child_.exitNotice, exitNotifier_);
        if (inputNotifier_ != nullptr) {
            close(child_.standardInput, inputNotifier_);
        }
        QByteArray lastOutput;
        QByteArray lastError;
        readAvailable(child_.standardOutput, lastOutput);
        readAvailable(child_.standardError, lastError);
        const QPointer<ChildProcessReader> self = this;
        for (const auto& [stream, bytes] : {std::pair(&output_, &lastOutput), std::pair(&error_, &lastError)}) {
            for (qsizetype from = 0; from < bytes->size() && self; from += longestReport) {
                report(*stream, bytes->mid(from, longestReport));
            }
        }
        if (!self) {
            return;
        }
        const ProcessExit exit = reap(child_.pid);
        ended_ = true;
        if (listener_) {
            Q_EMIT listener_->finished(exit);
        }
        if (self) {
            finishIfDone();
        }
    }

    void writeSome()
    {
        const int error = writeOnce(child_.standardInput, input_, written_);
        if (error != 0 || written_ == input_.size()) {
            close(child_.standardInput, inputNotifier_);
        }
    }

    void finishIfDone()
    {
        if (ended_ && !child_.standardOutput.isOpen() && !child_.standardError.isOpen()) {
            deleteLater();
        }
    }

    LaunchedProcess child_;
    QPointer<ChildProcess> listener_;
    bool ownGroup_;
    QByteArray input_;
    qsizetype written_ = 0;
    Stream output_;
    Stream error_;
    QTimer rest_;
    int smallReads_ = 0;
    QSocketNotifier* exitNotifier_ = nullptr;
    QSocketNotifier* inputNotifier_ = nullptr;
    bool ended_ = false;
};

ChildProcess::ChildProcess(QObject* parent) : QObject(parent) {}

ChildProcess::~ChildProcess() = default;

std::optional<QString> ChildProcess::start(const ProcessCommand& command)
{
    auto launched = launch(command);
    if (const QString* error = std::get_if<QString>(&launched)) {
        return *error;
    }
    reader_ = new ChildProcessReader(std::move(std::get<LaunchedProcess>(launched)), command, this);
    return std::nullopt;
}

bool ChildProcess::isRunning() const
{
    return processId() != 0;
}

qint64 ChildProcess::processId() const
{
    return reader_ ? reader_->processId() : 0;
}

void ChildProcess::interrupt()
{
    if (reader_) {
        reader_->signal(SIGINT);
        // A child of a group of its own may have been stopped at the terminal; it takes the signal only when it goes
        // on.
        reader_->signal(SIGCONT);
    }
}

void ChildProcess::terminate()
{
    if (reader_) {
        reader_->signal(SIGTERM);
        reader_->signal(SIGCONT);
    }
}

void ChildProcess::kill()
{
    if (reader_) {
        reader_->signal(SIGKILL);
    }
}

} // namespace kelm
