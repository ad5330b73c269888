// What the user does to the repository on this machine. Each operation ends with its refreshes, whatever came of it.
#include "git/service/git_service.h"

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

bool isGiven(const std::optional<QString>& text)
{
    return text && !text->isEmpty();
}

} // namespace

void GitService::stage(const QStringList& paths)
{
    run(QStringList{u"add"_s, u"--"_s} + paths);
    refreshStatus();
}

void GitService::unstage(const QStringList& paths)
{
    run(QStringList{u"reset"_s, u"HEAD"_s, u"--"_s} + paths);
    refreshStatus();
}

void GitService::stageAll()
{
    run({u"add"_s, u"-A"_s});
    refreshStatus();
}

void GitService::discardChanges(const QStringList& paths)
{
    run(QStringList{u"checkout"_s, u"--"_s} + paths);
    refreshStatus();
}

bool GitService::commit(const QString& message)
{
    if (message.isEmpty()) {
        return false;
    }
    const bool hasOutput = run({u"commit"_s, u"-m"_s, message}).has_value();
    refreshAll();
    return hasOutput;
}

bool GitService::amendCommit(const std::optional<QString>& message)
{
    const QStringList args = isGiven(message) ? QStringList{u"commit"_s, u"--amend"_s, u"-m"_s, *message}
                                              : QStringList{u"commit"_s, u"--amend"_s, u"--no-edit"_s};
    const bool hasOutput = run(args).has_value();
    refreshAll();
    return hasOutput;
}

GitOpResult GitService::createBranch(const QString& name, bool checkout)
{
    if (name.isEmpty()) {
        return GitOpResult::failure(u"branch name is empty"_s);
    }
    if (checkout) {
        GitOpResult result = runOp({u"checkout"_s, u"-b"_s, name});
        refreshAll();
        return result;
    }
    GitOpResult result = runOp({u"branch"_s, name});
    refreshBranches();
    return result;
}

GitOpResult GitService::checkoutBranch(const QString& name)
{
    GitOpResult result = runOp({u"checkout"_s, name});
    refreshAll();
    return result;
}

GitOpResult GitService::deleteBranch(const QString& name, bool force)
{
    GitOpResult result = runOp({u"branch"_s, force ? u"-D"_s : u"-d"_s, name});
    refreshBranches();
    return result;
}

GitOpResult GitService::renameBranch(const QString& from, const QString& to)
{
    GitOpResult result = runOp({u"branch"_s, u"-m"_s, from, to});
    // It may be the current branch that has a new name.
    refreshBranch();
    refreshBranches();
    return result;
}

GitOpResult GitService::mergeBranch(const QString& name)
{
    GitOpResult result = runOp({u"merge"_s, u"--no-edit"_s, name});
    refreshAll();
    return result;
}

GitOpResult GitService::addRemote(const QString& name, const QString& url)
{
    GitOpResult result = runOp({u"remote"_s, u"add"_s, name, url});
    refreshRemotes();
    return result;
}

GitOpResult GitService::removeRemote(const QString& name)
{
    GitOpResult result = runOp({u"remote"_s, u"remove"_s, name});
    refreshRemotes();
    return result;
}

GitOpResult GitService::setRemoteURL(const QString& name, const QString& url)
{
    GitOpResult result = runOp({u"remote"_s, u"set-url"_s, name, url});
    refreshRemotes();
    return result;
}

GitOpResult GitService::stashPush(const std::optional<QString>& message, bool includeUntracked)
{
    QStringList args{u"stash"_s, u"push"_s};
    if (includeUntracked) {
        args.append(u"-u"_s);
    }
    if (isGiven(message)) {
        args.append({u"-m"_s, *message});
    }
    GitOpResult result = runOp(args);
    refreshAll();
    return result;
}

GitOpResult GitService::stashPop(const QString& stash)
{
    GitOpResult result = runOp({u"stash"_s, u"pop"_s, stash});
    refreshAll();
    return result;
}

GitOpResult GitService::stashApply(const QString& stash)
{
    GitOpResult result = runOp({u"stash"_s, u"apply"_s, stash});
    refreshStatus();
    return result;
}

GitOpResult GitService::stashDrop(const QString& stash)
{
    GitOpResult result = runOp({u"stash"_s, u"drop"_s, stash});
    refreshStashes();
    return result;
}

GitOpResult GitService::createTag(const QString& name, const std::optional<QString>& message)
{
    if (name.isEmpty()) {
        return GitOpResult::failure(u"tag name is empty"_s);
    }
    GitOpResult result =
        runOp(isGiven(message) ? QStringList{u"tag"_s, u"-a"_s, name, u"-m"_s, *message} : QStringList{u"tag"_s, name});
    refreshTags();
    return result;
}

GitOpResult GitService::deleteTag(const QString& name)
{
    GitOpResult result = runOp({u"tag"_s, u"-d"_s, name});
    refreshTags();
    return result;
}

GitOpResult GitService::pushTag(const QString& name, const QString& remote)
{
    return runOp({u"push"_s, remote, u"refs/tags/"_s + name});
}

void GitService::markResolved(const QStringList& paths)
{
    stage(paths);
}

GitOpResult GitService::abortMerge()
{
    GitOpResult result = runOp({u"merge"_s, u"--abort"_s});
    refreshAll();
    return result;
}

GitOpResult GitService::setUserName(const QString& name)
{
    return runOp({u"config"_s, u"user.name"_s, name});
}

GitOpResult GitService::setUserEmail(const QString& email)
{
    return runOp({u"config"_s, u"user.email"_s, email});
}

} // namespace kelm
