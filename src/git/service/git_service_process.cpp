// Finding, building and running git.
#include "git/service/git_service.h"
#include "git/service/git_worker.h"
#include "platform/files/utf8_file.h"

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
    return {.program = findGit(), .arguments = args, .workingDirectory = cwd};
}

GitService::Worker GitService::worker()
{
    return Worker(*this);
}

std::optional<QString> GitService::run(const QStringList& args)
{
    if (!repoURL_) {
        return std::nullopt;
    }
    const ProcessResult result = worker().run(makeProcess(args, repoPath()));
    if (result.launchError) {
        worker().queueLastError(*result.launchError);
        return std::nullopt;
    }
    if (result.exit.isSuccess()) {
        return decodeUtf8Text(result.standardOutput);
    }
    if (const auto error = decodeUtf8Text(result.standardError); error && !error->isEmpty()) {
        worker().queueLastError(*error);
    }
    if (auto output = decodeUtf8Text(result.standardOutput); output && !output->isEmpty()) {
        return output;
    }
    return std::nullopt;
}

GitOpResult GitService::runProcess(const ProcessCommand& process)
{
    return worker().resultOf(worker().run(process));
}

GitOpResult GitService::runOp(const QStringList& args)
{
    if (!repoURL_) {
        return GitOpResult::failure(noRepository.toString());
    }
    return runProcess(makeProcess(args, repoPath()));
}

void GitService::runAsync(const QStringList& args, Completion onDone)
{
    if (!repoURL_) {
        onDone(GitOpResult::failure(noRepository.toString()));
        return;
    }
    assign(isBusy_, true, &GitService::isBusyChanged);
    worker().runInBackground(makeProcess(args, repoPath()),
                             [onDone = std::move(onDone)](GitService* service, const GitOpResult& result) {
                                 if (service != nullptr) {
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
    ProcessCommand process = makeProcess(args, repoPath());
    // A text that has no UTF-8 form is an empty patch, which git refuses.
    process.standardInput = patch.isValidUtf16() ? encodeUtf8Text(patch) : QByteArray();

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
    worker().queueLastError(message);
    return GitOpResult::failure(message);
}

} // namespace kelm
