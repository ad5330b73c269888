// Running a source file with its interpreter.
#pragma once

#include "app/language/language.h"
#include "platform/events/notification_center.h"
#include "platform/process/child_process.h"
#include "run/executable_search.h"
#include "run/kept_tail.h"
#include "run/run_failure.h"
#include "run/run_record.h"
#include "run/runner_table.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QUrl>

#include <functional>
#include <optional>

namespace kelm {

/// Runs one source file, or one unsaved text through a temporary file, as a child process, and publishes what the child
/// writes. There is one run at a time: a request that comes meanwhile is refused.
///
/// The child inherits the application's environment and its standard input, and works in the folder of the file. What
/// it writes comes in chunks as it is read, at most 64 KiB each, and each chunk is posted as `codeOutput` too. A chunk
/// that is not UTF-8 is left out. The child is read no faster than the observers take the text; the last
/// `mostKeptUnits` of it are kept, and the first line of `output` says how much was let go.
///
/// A runner that goes while its child runs leaves the child alone and still calls the completion. Main thread only.
class CodeRunner final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool isRunning READ isRunning NOTIFY isRunningChanged)
    Q_PROPERTY(QString output READ output WRITE setOutput NOTIFY outputChanged)
    Q_PROPERTY(QString stderrBuffer READ stderrBuffer NOTIFY stderrBufferChanged)
    Q_PROPERTY(std::optional<qint32> lastExitCode READ lastExitCode NOTIFY lastExitCodeChanged)

public:
    /// Gets true only when the child has ended with status 0.
    using Completion = std::function<void(bool)>;

    /// Posts to `notifications`, which outlives the runner, and finds programs by `search`.
    CodeRunner(NotificationCenter& notifications, ExecutableSearch search, QObject* parent = nullptr);
    ~CodeRunner() override;

    /// Whether a child is running.
    bool isRunning() const { return isRunning_; }
    /// What the user sees of the latest run: a header line, the child's output and, with a prefix, its errors, and the
    /// exit line; or why nothing could be run. Linear in the text, and not for each chunk.
    QString output() const { return output_.textBehindLetGoLine(); }
    /// Puts another text there, which is not that of a run.
    void setOutput(const QString& output);
    /// The standard error of the latest run alone, without prefixes.
    QString stderrBuffer() const { return stderrBuffer_.text(); }
    /// The same in the pieces that it came in, which a copy shares.
    const KeptTail& standardError() const { return stderrBuffer_; }
    /// Whether that is empty, whatever its length.
    bool isStderrEmpty() const { return stderrBuffer_.isEmpty(); }
    /// The exit status of the latest run, or the number of the signal that ended it; absent until it has ended.
    std::optional<qint32> lastExitCode() const { return lastExitCode_; }
    /// The run whose output is `output`; absent when that is not the output of a run.
    const std::optional<RunRecord>& record() const { return record_; }
    /// The child of the latest run with its pipes, kept when the run has ended; null before the first run.
    const ChildProcess* process() const { return process_; }

    /// Runs the file at the file URL `file` by its extension. While another run is on, the completion gets false and
    /// nothing changes. A file that cannot be run, and a program that cannot be started, are told in `output`, and the
    /// completion gets false before this returns.
    void run(const QUrl& file, const Completion& completion = {});

    /// Runs `code` as a file in `language`, by way of a `makeSnippetCopy`, which is removed when the run has ended,
    /// before the completion is called. While another run is on, and when the file cannot be written, which is told in
    /// `output`, the completion is not called. `name` is that of the run's record; the file's where it is empty.
    void runCode(const QString& code, Language language, Completion completion = {}, const QString& name = {});

    /// Ends the run with all that it has started (`endTree`). It goes on until its end has been reported as that of any
    /// run. Does nothing when nothing runs.
    void stop();

    /// The path of a program by its name, such as "python3"; blocks for a moment when it is in none of the usual
    /// folders.
    std::optional<QString> findExecutable(const QString& name) const;

Q_SIGNALS:
    void isRunningChanged();
    void outputChanged();
    void stderrBufferChanged();
    void lastExitCodeChanged();
    void recordChanged();
    /// A run that was asked for does not begin; not sent for one that is refused because another is on.
    void failed(const kelm::RunFailure& failure);

private:
    std::optional<RunnerConfig> getRunner(const QString& extension) const;
    void runAs(const QString& name, const QUrl& file, const Completion& completion);
    void beginRun(const QString& name, const QString& fileName);
    void endRun(const ProcessExit& exit);
    /// Puts a text in the place of the output.
    void replaceOutput(const QString& output);
    void setRecord(std::optional<RunRecord> record);
    ChildProcess* makeProcess(Completion completion);

    void setIsRunning(bool isRunning);
    void appendOutput(const QString& text);
    void post(const QString& text);

    NotificationCenter& notifications_;
    ExecutableSearch search_;

    bool isRunning_ = false;
    KeptTail output_;
    KeptTail stderrBuffer_;
    std::optional<qint32> lastExitCode_;
    std::optional<RunRecord> record_;
    QPointer<ChildProcess> process_;
};

} // namespace kelm
