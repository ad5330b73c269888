#include "run/code_runner.h"

#include "platform/files/file_url.h"
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
    if (isRunning_) {
        call(completion, false);
        return;
    }
    const QString extension = pathExtension(file).toLower();
    const auto config = getRunner(extension);
    if (!config) {
        setOutput(u"Error: Unsupported file type '."_s + extension + u"'"_s);
        call(completion, false);
        return;
    }
    const QString path = filePath(file);
    beginRun(lastPathComponent(file));
    process_ = makeProcess(completion);
    const auto error = process_->start({.program = config->executable,
                                        .arguments = config->args + QStringList{path},
                                        .workingDirectory = QFileInfo(path).path(),
                                        // A program that reads from the terminal would be stopped in another group.
                                        .ownGroup = ::isatty(STDIN_FILENO) == 0});
    if (error) {
        setIsRunning(false);
        appendOutput(u"Error: "_s + *error);
        call(completion, false);
    }
}

void CodeRunner::runCode(const QString& code, Language language, Completion completion)
{
    if (isRunning_) {
        return;
    }
    const auto copy = makeSnippetCopy(code, language);
    if (const auto* error = std::get_if<FileError>(&copy)) {
        setOutput(u"Error creating temp file: "_s + error->message);
        return;
    }
    const QString path = std::get<QString>(copy);
    run(QUrl::fromLocalFile(path), [path, completion = std::move(completion)](bool success) {
        removeSnippetCopy(path);
        call(completion, success);
    });
}

std::optional<QString> CodeRunner::findExecutable(const QString& name) const
{
    return search_.find(name);
}

std::optional<RunnerConfig> CodeRunner::getRunner(const QString& extension) const
{
    return runnerFor(extension, search_);
}

void CodeRunner::beginRun(const QString& fileName)
{
    setIsRunning(true);
    setOutput(u"Running "_s + fileName + u"...\n"_s);
    stderrBuffer_.clear();
    Q_EMIT stderrBufferChanged();
    lastExitCode_.reset();
    Q_EMIT lastExitCodeChanged();
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
                    runner->endRun(exit.status);
                }
                call(completion, exit.status == 0);
            });
    return process;
}

void CodeRunner::endRun(int status)
{
    // Whoever hears of one field finds them all at their last values, and may start the next run.
    const QString exitLine = u"\n\nProcess exited with code %1\n"_s.arg(status);
    isRunning_ = false;
    lastExitCode_ = status;
    output_.append(exitLine);
    Q_EMIT isRunningChanged();
    Q_EMIT lastExitCodeChanged();
    Q_EMIT outputChanged();
    post(exitLine);
}

void CodeRunner::setIsRunning(bool isRunning)
{
    isRunning_ = isRunning;
    Q_EMIT isRunningChanged();
}

void CodeRunner::setOutput(const QString& output)
{
    output_.clear();
    output_.append(output);
    Q_EMIT outputChanged();
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
