// Operations that go to other repositories, and new repositories.
#include "git/service/git_refusal.h"
#include "git/service/git_service.h"
#include "git/service/git_worker.h"
#include "platform/files/file_url.h"
#include "platform/files/native_path.h"

#include <QDir>
#include <QFileInfo>
#include <QPointer>

#include <filesystem>
#include <system_error>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

void GitService::push(const std::optional<QString>& setUpstreamFor, Completion onDone)
{
    if (const auto sentence = refusal(GitNameKind::branch, setUpstreamFor.value_or(QString()))) {
        refuseAtOnce(*sentence, onDone);
        return;
    }
    runAsync(branchedArgs({u"push"_s}, setUpstreamFor),
             refreshingFirst(&GitService::refreshAfterTransfer, std::move(onDone)));
}

void GitService::pull(bool rebase, Completion onDone)
{
    runAsync(rebase ? QStringList{u"pull"_s, u"--rebase"_s} : QStringList{u"pull"_s},
             refreshingFirst(&GitService::refreshAll, std::move(onDone)));
}

void GitService::fetch(const std::optional<QString>& remote, bool prune, Completion onDone)
{
    if (const auto sentence = refusal(GitNameKind::remote, remote.value_or(QString()))) {
        refuseAtOnce(*sentence, onDone);
        return;
    }
    QStringList args{u"fetch"_s};
    if (prune) {
        args.append(u"--prune"_s);
    }
    if (remote && !remote->isEmpty()) {
        args.append(*remote);
    }
    runAsync(args, refreshingFirst(&GitService::refreshAfterTransfer, std::move(onDone)));
}

void GitService::refuseAtOnce(const QString& sentence, const Completion& onDone)
{
    const GitOpResult result = refuse(sentence);
    if (onDone) {
        onDone(result);
    }
}

GitService::Completion GitService::refreshingFirst(void (GitService::*refresh)(), Completion onDone)
{
    return [service = QPointer<GitService>(this), refresh, onDone = std::move(onDone)](const GitOpResult& result) {
        if (service) {
            (service->*refresh)();
        }
        if (onDone) {
            onDone(result);
        }
    };
}

void GitService::refreshAfterTransfer()
{
    refreshAheadBehind();
    refreshBranches();
}

QStringList GitService::branchedArgs(const QStringList& args, const std::optional<QString>& setUpstreamFor)
{
    if (!setUpstreamFor || setUpstreamFor->isEmpty()) {
        return args;
    }
    // A push takes "+x" for x by force, and "tag" for the word before a tag's name.
    const bool isMisread = setUpstreamFor->startsWith(u'+') || *setUpstreamFor == u"tag";
    return args + QStringList{u"-u"_s, u"origin"_s, (isMisread ? u"refs/heads/"_s : QString()) + *setUpstreamFor};
}

GitOpResult GitService::initRepo(const QUrl& at, const QString& defaultBranch)
{
    if (const auto sentence = refusal(GitNameKind::branch, defaultBranch)) {
        return refuse(*sentence);
    }
    const QString folder = at.isLocalFile() ? filePath(at) : QString();
    if (!isThere(folder)) {
        std::error_code error;
        std::filesystem::create_directories(nativePath(folder).toStdString(), error);
        if (error) {
            return GitOpResult::failure(u"Cannot make the folder \"%1\": %2"_s.arg(
                shownPath(folder), QString::fromLocal8Bit(error.message().c_str())));
        }
    }
    GitOpResult result = runProcess(makeProcess({u"init"_s, u"-b"_s, defaultBranch}, folder));
    if (result.isSuccess()) {
        open(at);
    }
    return result;
}

void GitService::cloneRepo(const QString& url, const QUrl& into, Completion onDone)
{
    const QFileInfo target(QDir::cleanPath(into.toLocalFile()));
    auto sentence = refusal(GitNameKind::url, url);
    if (!sentence) {
        sentence = refusal(GitNameKind::folder, target.fileName());
    }
    if (sentence) {
        refuseAtOnce(*sentence, onDone);
        return;
    }
    const bool wasThere = target.exists() || target.isSymLink();
    worker().runInBackground(
        makeProcess({u"clone"_s, url, target.fileName()}, target.path()),
        [into, target, wasThere, onDone = std::move(onDone)](GitService* service, const GitOpResult& result) {
            if (!result.isSuccess() && !wasThere) {
                // Git takes away what it has made, but for an empty folder when it was stopped right behind that.
                ::rmdir(nativePath(target.filePath()).constData());
            }
            if (result.isSuccess() && service != nullptr) {
                service->open(into);
                Q_EMIT service->cloned(into);
            }
            if (onDone) {
                onDone(result);
            }
        });
}

} // namespace kelm
