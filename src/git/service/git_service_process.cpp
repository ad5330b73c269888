// Finding, building and running git.
#include "git/service/foreign_programs.h"
#include "git/service/git_environment.h"
#include "git/service/git_service.h"
#include "git/service/git_worker.h"
#include "platform/files/utf8_file.h"
#include "platform/process/environment.h"

#include <QFileInfo>

#include <array>

namespace kelm {

namespace {

constexpr std::array places{"/usr/bin/git", "/opt/homebrew/bin/git", "/usr/local/bin/git"};

constexpr QStringView noRepository = u"no repo open";

} // namespace

QString GitService::findGit(const PathTest& isExecutable)
{
    for (const char* place : places) {
        QString path = QLatin1String(place);
        if (isExecutable ? isExecutable(path) : QFileInfo(path).isExecutable()) {
            return path;
        }
    }
    return QLatin1String(places.front());
}

ProcessCommand GitService::makeProcess(const QStringList& args, const QString& cwd)
{
    return {.program = findGit(),
            .arguments = args,
            .workingDirectory = cwd,
            .environment = gitEnvironment(args, applicationEnvironment())};
}

ProcessCommand GitService::makeProcess(const QStringList& args)
{
    ProcessCommand process = makeProcess(args, repoPath());
    if (onlyReads(args)) {
        replaceForeignPrograms(*process.environment, foreignPrograms_->find(repoPath(), args));
    }
    return process;
}

GitService::Worker GitService::worker()
{
    return Worker(*this);
}

std::optional<QString> GitService::run(const QStringList& args)
{
    return ask(args, GitErrorKind::operation).output;
}

GitService::Answer GitService::ask(const QStringList& args, GitErrorKind kind)
{
    if (!repoURL_) {
        return {};
    }
    ++age_;
    const ProcessResult result = worker().run(makeProcess(args));
    if (result.launchError) {
        // No state of the repository keeps git from being started.
        const bool isState = kind == GitErrorKind::state;
        worker().queueError({args, *result.launchError, isState ? GitErrorKind::reading : kind});
        return {.isFailed = true};
    }
    auto output = worker().text(result.standardOutput);
    if (result.exit.isSuccess()) {
        return {.output = output};
    }
    Answer answer{.isFailed = true, .words = decodeUtf8Text(result.standardError).value_or(QString())};
    if (!answer.words.isEmpty()) {
        worker().queueError({args, answer.words, kind});
    }
    if (output && !output->isEmpty()) {
        answer.output = output;
        answer.words = answer.words.isEmpty() ? *output : answer.words;
    }
    return answer;
}

GitOpResult GitService::runProcess(const ProcessCommand& process)
{
    ++age_;
    return worker().resultOf(worker().run(process), process.arguments);
}

GitOpResult GitService::runOp(const QStringList& args)
{
    if (!repoURL_) {
        return GitOpResult::failure(noRepository.toString());
    }
    return runProcess(makeProcess(args));
}

void GitService::runAsync(const QStringList& args, Completion onDone)
{
    if (!repoURL_) {
        onDone(GitOpResult::failure(noRepository.toString()));
        return;
    }
    ++age_;
    assign(isBusy_, true, &GitService::isBusyChanged);
    worker().runInBackground(makeProcess(args),
                             [onDone = std::move(onDone)](GitService* service, const GitOpResult& result) {
                                 if (service != nullptr) {
                                     ++service->age_;
                                     service->assign(service->isBusy_, false, &GitService::isBusyChanged);
                                 }
                                 onDone(result);
                             });
}

GitOpResult GitService::applyPartialPatch(const QString& patch, bool reverse)
{
    if (!repoURL_) {
        return GitOpResult::failure(noRepository.toString());
    }
    QStringList args{QStringLiteral("apply"), QStringLiteral("--cached"), QStringLiteral("--whitespace=nowarn"),
                     QStringLiteral("--unidiff-zero")};
    if (reverse) {
        args.append(QStringLiteral("--reverse"));
    }
    args.append(QStringLiteral("-"));
    ProcessCommand process = makeProcess(args);
    // A text that has no UTF-8 form is an empty patch, which git refuses.
    process.standardInput = patch.isValidUtf16() ? encodeUtf8Text(patch) : QByteArray();

    ++age_;
    const ProcessResult result = worker().run(process);
    if (result.launchError || result.inputError) {
        return GitOpResult::failure(result.launchError ? *result.launchError : *result.inputError);
    }
    if (result.exit.isSuccess()) {
        refreshStatus();
        return GitOpResult::success();
    }
    QString message = decodeUtf8Text(result.standardError).value_or(QString());
    if (message.isEmpty()) {
        message = QStringLiteral("git apply failed (exit %1)").arg(result.exit.status);
    }
    worker().queueError({args, message});
    return GitOpResult::failure(message);
}

} // namespace kelm
