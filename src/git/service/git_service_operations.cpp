// What the user does to the repository on this machine. Each operation ends with its refreshes, whatever came of it.
#include "git/service/checkout_target.h"
#include "git/service/git_names.h"
#include "git/service/git_operations.h"
#include "git/service/git_service.h"
#include "git/service/git_worker.h"
#include "git/service/listed_name.h"
#include "platform/files/native_path.h"
#include "platform/text/shown_name.h"

#include <algorithm>
#include <sys/stat.h>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

bool isGiven(const std::optional<QString>& text)
{
    return text && !text->isEmpty();
}

} // namespace

GitOpResult GitService::perform(const GitOperation& operation, const QStringList& given)
{
    if (const auto sentence = operation.refusalOf(given)) {
        return refuse(*sentence);
    }
    GitOpResult result = runOp(operation.arguments(given));
    refreshAfter(operation);
    return result;
}

GitService::Look GitService::look(const QStringList& args)
{
    ++age_;
    const ProcessResult result = worker().run(makeProcess(args));
    GitOpResult outcome = worker().resultOf(result, args);
    return {outcome.isSuccess() ? pathOfNative(result.standardOutput) : QString(), outcome};
}

GitOpResult GitService::performOnListed(const GitOperation& operation, QStringList given)
{
    const ListedName listed(operation.kinds.front(), given.front());
    if (!repoURL_ || listed.shortForm().isEmpty() || operation.refusalOf(given)) {
        return perform(operation, given);
    }
    const Look references = look(listed.question());
    if (!references.result.isSuccess()) {
        refreshAfter(operation);
        return references.result;
    }
    given.front() = listed.nameIn(references.output);
    return perform(operation, given);
}

GitOpResult GitService::refuse(const QString& sentence)
{
    worker().queueError({.text = sentence});
    return GitOpResult::failure(sentence);
}

bool GitService::performForOutput(const GitOperation& operation, const QStringList& given)
{
    const bool hasOutput = run(operation.arguments(given)).has_value();
    refreshAfter(operation);
    return hasOutput;
}

void GitService::refreshAfter(const GitOperation& operation)
{
    for (const GitOperation::Refresh refresh : operation.refreshes) {
        if (refresh != nullptr) {
            (this->*refresh)();
        }
    }
}

void GitService::stage(const QStringList& paths)
{
    performForOutput(gitOperations::stage, paths);
}

void GitService::unstage(const QStringList& paths)
{
    performForOutput(gitOperations::unstage, paths);
}

void GitService::stageAll()
{
    performForOutput(gitOperations::stageAll, {});
}

void GitService::discardChanges(const QStringList& paths)
{
    performForOutput(gitOperations::discardChanges, paths);
}

bool GitService::performCommit(const GitOperation& operation, const QStringList& given)
{
    const QStringList args = operation.arguments(given);
    const Answer answer = ask(args, GitErrorKind::operation);
    const bool isRefusal = answer.isFailed && answer.output;
    commitRefusal_ = isRefusal ? std::optional(GitFailure{args, answer.words}) : std::nullopt;
    refreshAfter(operation);
    return answer.output.has_value();
}

bool GitService::commit(const QString& message)
{
    return !message.isEmpty() && performCommit(gitOperations::commit, {message});
}

bool GitService::amendCommit(const std::optional<QString>& message)
{
    return isGiven(message) ? performCommit(gitOperations::amend, {*message})
                            : performCommit(gitOperations::amendKeepingMessage, {});
}

GitOpResult GitService::createBranch(const QString& name, bool checkout)
{
    if (name.isEmpty()) {
        return GitOpResult::failure(u"branch name is empty"_s);
    }
    return perform(checkout ? gitOperations::createAndCheckOutBranch : gitOperations::createBranch, {name});
}

GitOpResult GitService::checkoutBranch(const QString& name)
{
    const GitOperation& operation = gitOperations::checkoutBranch;
    if (!repoURL_ || operation.refusalOf({name})) {
        return perform(operation, {name});
    }
    const CheckoutTarget target(name);
    const Look references = look(target.question());
    const auto branch = target.nameIn(references.output);
    const bool isLocal = target.isLocalIn(references.output);
    // A tracked file is one to git also where it is gone from the folder.
    const Look files = branch && !isLocal ? look({u"ls-files"_s, u"--"_s, *branch}) : Look{};
    for (const Look* const each : {&references, &files}) {
        if (!each->result.isSuccess()) {
            refreshAfter(operation);
            return each->result;
        }
    }
    if (branch && (isLocal || (files.output.isEmpty() && !isNameOfAFile(*branch)))) {
        return perform(operation, {*branch});
    }
    // A row that is no longer true goes.
    refreshAfter(operation);
    return refuse(branch
                      ? u"\"%1\" is the name of a branch and of a file, and git would not know which is meant."_s.arg(
                            shownName(name))
                      : u"There is no branch \"%1\" any more."_s.arg(shownName(name)));
}

bool GitService::isNameOfAFile(const QString& name) const
{
    // A link counts wherever it leads.
    struct stat status = {};
    return ::lstat(nativePath(repoPath() + u'/' + name).constData(), &status) == 0;
}

GitOpResult GitService::deleteBranch(const QString& name, bool force)
{
    return performOnListed(force ? gitOperations::deleteUnmergedBranch : gitOperations::deleteBranch, {name});
}

GitOpResult GitService::renameBranch(const QString& from, const QString& to)
{
    return performOnListed(gitOperations::renameBranch, {from, to});
}

GitOpResult GitService::mergeBranch(const QString& name)
{
    return perform(gitOperations::mergeBranch, {name});
}

GitOpResult GitService::addRemote(const QString& name, const QString& url)
{
    return perform(gitOperations::addRemote, {name, url});
}

GitOpResult GitService::removeRemote(const QString& name)
{
    return perform(gitOperations::removeRemote, {name});
}

GitOpResult GitService::setRemoteURL(const QString& name, const QString& url)
{
    return perform(gitOperations::setRemoteURL, {name, url});
}

GitOpResult GitService::stashPush(const std::optional<QString>& message, bool includeUntracked)
{
    QStringList options;
    if (includeUntracked) {
        options.append(u"-u"_s);
    }
    if (isGiven(message)) {
        options.append({u"-m"_s, *message});
    }
    return perform(gitOperations::stashPush, options);
}

GitOpResult GitService::stashPop(const QString& stash)
{
    return perform(gitOperations::stashPop, {stash});
}

GitOpResult GitService::stashApply(const QString& stash)
{
    return perform(gitOperations::stashApply, {stash});
}

GitOpResult GitService::stashDrop(const QString& stash)
{
    return perform(gitOperations::stashDrop, {stash});
}

GitOpResult GitService::createTag(const QString& name, const std::optional<QString>& message)
{
    if (name.isEmpty()) {
        return GitOpResult::failure(u"tag name is empty"_s);
    }
    return isGiven(message) ? perform(gitOperations::createAnnotatedTag, {name, *message})
                            : perform(gitOperations::createTag, {name});
}

GitOpResult GitService::deleteTag(const QString& name)
{
    return performOnListed(gitOperations::deleteTag, {name});
}

GitOpResult GitService::pushTag(const QString& name, const QString& remote)
{
    return performOnListed(gitOperations::pushTag, {name, remote});
}

void GitService::markResolved(const QStringList& paths)
{
    stage(paths);
}

GitOpResult GitService::abortMerge()
{
    return perform(gitOperations::abortMerge, {});
}

GitOpResult GitService::setUserName(const QString& name)
{
    return perform(gitOperations::setUserName, {name});
}

GitOpResult GitService::setUserEmail(const QString& email)
{
    return perform(gitOperations::setUserEmail, {email});
}

} // namespace kelm
