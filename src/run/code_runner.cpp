#include "run/code_runner.h"

#include "learning/end_of_input.h"
#include "platform/files/file_url.h"
#include "platform/files/native_path.h"
#include "platform/process/process_tree.h"
#include "run/snippet_copies.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <unistd.h>
#include <utility>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

void call(const CodeRunner::Completion& completion, bool success)
{
    if (completion) {
        completion(success);
    }
}

} // namespace

CodeRunner::CodeRunner(NotificationCenter& notifications, ExecutableSearch search, QObject* parent)
    : QObject(parent), notifications_(notifications), search_(std::move(search))
{}

CodeRunner::~CodeRunner()
{
    if (!process_) {
        return;
    }
    if (process_->isRunning()) {
        // It stays until its completion has been called.
        connect(process_, &ChildProcess::finished, process_, &QObject::deleteLater);
    } else {
        process_->deleteLater();
    }
}

void CodeRunner::run(const QUrl& file, const Completion& completion)
{
    runAs(shownPath(lastPathComponent(file)), file, completion);
}

void CodeRunner::runAs(const QString& name, const QUrl& file, const Completion& completion)
{
    if (isRunning_) {
        call(completion, false);
        return;
    }
    const QString extension = pathExtension(file).toLower();
    const auto config = getRunner(extension);
    const QString program = programName(extension, config);
    if (!config) {
        setOutput(u"Error: Unsupported file type '."_s + extension + u"'"_s);
        Q_EMIT failed(program.isEmpty() ? RunFailure{RunFailure::Reason::unknownExtension, name, extension}
                                        : RunFailure{RunFailure::Reason::missingProgram, name, program});
        call(completion, false);
        return;
    }
    const QString path = filePath(file);
    beginRun(name, lastPathComponent(file));
    process_ = makeProcess(completion);
    const auto error = process_->start({.program = config->executable,
                                        .arguments = config->args + QStringList{path},
                                        .workingDirectory = QFileInfo(path).path(),
                                        // A program that reads from the terminal would be stopped in another group.
                                        .ownGroup = ::isatty(STDIN_FILENO) == 0});
    if (error) {
        setRecord(std::nullopt);
        setIsRunning(false);
        appendOutput(u"Error: "_s + *error);
        Q_EMIT failed(QFileInfo::exists(config->executable)
                          ? RunFailure{RunFailure::Reason::notStarted, name, *error}
                          : RunFailure{RunFailure::Reason::missingProgram, name, program});
        call(completion, false);
    }
}

void CodeRunner::runCode(const QString& code, Language language, Completion completion, const QString& name)
{
    if (isRunning_) {
        return;
    }
    const auto copy = makeSnippetCopy(code, language);
    if (const auto* error = std::get_if<FileError>(&copy)) {
        setOutput(u"Error creating temp file: "_s + error->message);
        Q_EMIT failed({RunFailure::Reason::notStarted, name, error->message});
        return;
    }
    const QString path = std::get<QString>(copy);
    const QUrl file = QUrl::fromLocalFile(path);
    runAs(name.isEmpty() ? lastPathComponent(file) : name, file,
          [path, completion = std::move(completion)](bool success) {
              removeSnippetCopy(path);
              call(completion, success);
          });
}

void CodeRunner::stop()
{
    if (process_ && process_->isRunning()) {
        endTree(process_->processId());
    }
}

std::optional<QString> CodeRunner::findExecutable(const QString& name) const
{
    return search_.find(name);
}

std::optional<RunnerConfig> CodeRunner::getRunner(const QString& extension) const
{
    return runnerFor(extension, search_);
}

void CodeRunner::beginRun(const QString& name, const QString& fileName)
{
    record_ = RunRecord{name, std::chrono::steady_clock::now()};
    setIsRunning(true);
    replaceOutput(u"Running "_s + fileName + u"...\n"_s);
    stderrBuffer_.clear();
    Q_EMIT stderrBufferChanged();
    lastExitCode_.reset();
    Q_EMIT lastExitCodeChanged();
    Q_EMIT recordChanged();
}

ChildProcess* CodeRunner::makeProcess(Completion completion)
{
    if (process_) {
        process_->deleteLater();
    }
    // It belongs to the application, since it may outlive the runner.
    auto* process = new ChildProcess(QCoreApplication::instance());
    connect(process, &ChildProcess::outputRead, this, [this](const QString& text) {
        appendOutput(text);
        post(text);
    });
    connect(process, &ChildProcess::errorRead, this, [this](const QString& text) {
        const QString marked = u"[ERROR] "_s + text;
        appendOutput(marked);
        stderrBuffer_.append(text);
        Q_EMIT stderrBufferChanged();
        post(marked);
    });
    connect(process, &ChildProcess::finished, process,
            [runner = QPointer<CodeRunner>(this), completion = std::move(completion)](const ProcessExit& exit) {
                if (runner) {
                    runner->endRun(exit);
                }
                call(completion, exit.status == 0);
            });
    return process;
}

void CodeRunner::endRun(const ProcessExit& exit)
{
    // Whoever hears of one field finds them all at their last values, and may start the next run.
    const QString exitLine = u"\n\nProcess exited with code %1\n"_s.arg(exit.status);
    isRunning_ = false;
    lastExitCode_ = exit.status;
    output_.append(exitLine);
    if (record_) {
        record_->exit = exit;
        record_->lasted =
            std::chrono::floor<std::chrono::milliseconds>(std::chrono::steady_clock::now() - record_->began);
        record_->missedInput = !exit.isSuccess() && tellsOfEndOfInput(stderrBuffer_.end(longestEndOfInputLook));
    }
    Q_EMIT isRunningChanged();
    Q_EMIT lastExitCodeChanged();
    Q_EMIT outputChanged();
    Q_EMIT recordChanged();
    post(exitLine);
}

void CodeRunner::setIsRunning(bool isRunning)
{
    isRunning_ = isRunning;
    Q_EMIT isRunningChanged();
}

void CodeRunner::setOutput(const QString& output)
{
    // A run that goes on is told of all the same.
    if (!isRunning_) {
        setRecord(std::nullopt);
    }
    replaceOutput(output);
}

void CodeRunner::replaceOutput(const QString& output)
{
    output_.clear();
    output_.append(output);
    Q_EMIT outputChanged();
}

void CodeRunner::setRecord(std::optional<RunRecord> record)
{
    record_ = std::move(record);
    Q_EMIT recordChanged();
}

void CodeRunner::appendOutput(const QString& text)
{
    output_.append(text);
    Q_EMIT outputChanged();
}

void CodeRunner::post(const QString& text)
{
    notifications_.post(notifications::codeOutput, text);
}

} // namespace kelm
