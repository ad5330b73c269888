#include "platform/process/child_process.h"

#include "platform/process/output_pipe.h"
#include "platform/process/process_launch.h"
#include "platform/text/utf8_chunk_decoder.h"

#include <QCoreApplication>
#include <QProcess>
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
constexpr qsizetype longestReport = OutputPipe::usualSize;

} // namespace

/// Reads one child to its end. It lives on its own, so that a child goes on undisturbed when nobody listens any more,
/// and deletes itself when the child has ended and both pipes are closed.
class ChildProcessReader final : public QObject
{
public:
    explicit ChildProcessReader(ChildProcess* listener) : listener_(listener)
    {
        // What is still there when the application or the thread ends goes with it.
        if (QCoreApplication* application = QCoreApplication::instance();
            application != nullptr && application->thread() == thread()) {
            setParent(application);
        } else {
            connect(thread(), &QThread::finished, this, &QObject::deleteLater);
        }
    }

    ~ChildProcessReader() override
    {
        if (!ended_) {
            leaveRunning(std::move(process_));
        }
    }

    std::optional<QString> start(const ProcessCommand& command)
    {
        if (!output_.pipe.open() || !error_.pipe.open()) {
            return launchErrorText(command, qt_error_string());
        }
        if (auto error = launch(*process_, command, {output_.pipe.writeEnd(), error_.pipe.writeEnd()})) {
            return error;
        }
        ended_ = false;
        processId_ = process_->processId();
        ownGroup_ = command.ownGroup;
        for (Stream* stream : {&output_, &error_}) {
            stream->pipe.closeWriteEnd();
            stream->notifier = new QSocketNotifier(stream->pipe.readEnd(), QSocketNotifier::Read, this);
            connect(stream->notifier, &QSocketNotifier::activated, this, [this, stream] { readSome(*stream); });
        }
        connect(&rest_, &QTimer::timeout, this, [this] { setReading(true); });
        rest_.setSingleShot(true);
        connect(process_.get(), &QProcess::finished, this, [this] { noteExit(); });
        if (command.standardInput) {
            process_->write(*command.standardInput);
            process_->closeWriteChannel();
        }
        return std::nullopt;
    }

    qint64 processId() const { return ended_ ? 0 : processId_; }

    void signal(int number)
    {
        // Unlike the number that is told until the end is reported, this one is that of a child that is still there.
        if (const auto process = static_cast<pid_t>(process_->processId()); process > 0) {
            ::kill(ownGroup_ ? -process : process, number);
        }
    }

private:
    struct Stream
    {
        void (ChildProcess::*signal)(const QString&) = nullptr;
        OutputPipe pipe = {};
        QSocketNotifier* notifier = nullptr;
        Utf8ChunkDecoder decoder = {};
    };

    static void close(Stream& stream)
    {
        stream.notifier->setEnabled(false);
        stream.notifier->deleteLater();
        stream.notifier = nullptr;
        stream.pipe.close();
    }

    void readSome(Stream& stream)
    {
        // A listener may run an event loop of its own: nothing of this object is touched after it was told.
        QByteArray bytes;
        if (!stream.pipe.readOnce(bytes)) {
            close(stream);
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
        QByteArray lastOutput;
        QByteArray lastError;
        output_.pipe.readAvailable(lastOutput);
        error_.pipe.readAvailable(lastError);
        const QPointer<ChildProcessReader> self = this;
        for (const auto& [stream, bytes] : {std::pair(&output_, &lastOutput), std::pair(&error_, &lastError)}) {
            for (qsizetype from = 0; from < bytes->size() && self; from += longestReport) {
                report(*stream, bytes->mid(from, longestReport));
            }
        }
        if (!self) {
            return;
        }
        ended_ = true;
        if (listener_) {
            Q_EMIT listener_->finished(exitOf(*process_));
        }
        if (self) {
            finishIfDone();
        }
    }

    void finishIfDone()
    {
        if (ended_ && !output_.pipe.isOpen() && !error_.pipe.isOpen()) {
            deleteLater();
        }
    }

    std::unique_ptr<QProcess> process_ = std::make_unique<QProcess>();
    QPointer<ChildProcess> listener_;
    qint64 processId_ = 0;
    bool ownGroup_ = false;
    Stream output_{&ChildProcess::outputRead};
    Stream error_{&ChildProcess::errorRead};
    QTimer rest_;
    int smallReads_ = 0;
    bool ended_ = true;
};

ChildProcess::ChildProcess(QObject* parent) : QObject(parent) {}

ChildProcess::~ChildProcess() = default;

std::optional<QString> ChildProcess::start(const ProcessCommand& command)
{
    auto reader = std::make_unique<ChildProcessReader>(this);
    if (auto error = reader->start(command)) {
        return error;
    }
    reader_ = reader.release();
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
