#include "git/service/repository_snapshot.h"

#include "git/service/branch_parser.h"
#include "git/service/foreign_programs.h"
#include "git/service/git_environment.h"
#include "git/service/git_service.h"
#include "git/service/log_parser.h"
#include "git/service/refresh_commands.h"
#include "git/service/remote_parser.h"
#include "git/service/stash_parser.h"
#include "git/service/status_parser.h"
#include "git/service/tag_parser.h"
#include "platform/files/utf8_file.h"

#include <algorithm>
#include <memory>
#include <tuple>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

/// Asks git one thing after the other, until that is to end.
class Reader
{
public:
    Reader(ProcessRunner& runner, const QString& folder, const std::atomic<bool>& stop)
        : runner_(runner), folder_(folder), stop_(stop), foreignPrograms_({std::shared_ptr<ProcessRunner>(), &runner})
    {}

    bool isStopped() const { return stop_; }

    /// What a command printed; absent where it failed and printed nothing, as for a refresh.
    std::optional<QString> output(const QStringList& arguments)
    {
        if (isStopped()) {
            return std::nullopt;
        }
        const ProcessResult result = runner_.run(commandFor(arguments));
        if (result.launchError) {
            return std::nullopt;
        }
        auto text = decodeUtf8Text(result.standardOutput);
        return result.exit.isSuccess() || (text && !text->isEmpty()) ? text : std::nullopt;
    }

private:
    ProcessCommand commandFor(const QStringList& arguments)
    {
        // It takes no locks: a reading that writes the index would be the next change to be read.
        ProcessCommand command = GitService::makeProcess(arguments, folder_);
        replaceForeignPrograms(*command.environment, foreignPrograms_.find(folder_, arguments));
        return command;
    }

    ProcessRunner& runner_;
    const QString& folder_;
    const std::atomic<bool>& stop_;
    ForeignProgramFinder foreignPrograms_;
};

// All that a record says, but for its identity, which is another in each reading.
auto said(const GitFileStatus& file)
{
    return std::tie(file.path, file.staged, file.unstaged);
}

auto said(const GitBranch& branch)
{
    return std::tie(branch.name, branch.isRemote, branch.isCurrent, branch.upstream);
}

auto said(const GitRemote& remote)
{
    return std::tie(remote.name, remote.url);
}

auto said(const GitStash& stash)
{
    return std::tie(stash.id, stash.label, stash.message);
}

auto said(const GitTag& tag)
{
    return std::tie(tag.name, tag.annotation, tag.sha);
}

/// The old list where the new one says the same.
template <typename Record>
QList<Record> oldIfSame(const QList<Record>& before, const QList<Record>& now)
{
    const bool isSame = std::equal(before.begin(), before.end(), now.begin(), now.end(),
                                   [](const Record& a, const Record& b) { return said(a) == said(b); });
    return isSame ? before : now;
}

} // namespace

std::optional<RepositorySnapshot> readSnapshot(ProcessRunner& runner, const QString& folder,
                                               const RepositorySnapshot& before, const std::atomic<bool>& stop)
{
    Reader git(runner, folder, stop);
    RepositorySnapshot now;
    now.branch = git.output(refreshCommands::branch()).value_or(QString()).trimmed();
    now.head = readHead(folder);
    const std::optional<QString> status = git.output(refreshCommands::status());
    if (!status) {
        return std::nullopt;
    }
    now.status = oldIfSame(before.status, parseStatus(*status));
    now.counts =
        parseAheadBehind(git.output(refreshCommands::aheadBehind()).value_or(QString())).value_or(before.counts);
    if (const auto local = git.output(refreshCommands::localBranches())) {
        const auto remote = git.output(refreshCommands::remoteBranches());
        now.branches = parseLocalBranches(*local) + parseRemoteBranches(remote.value_or(QString()));
    }
    now.branches = oldIfSame(before.branches, now.branches);
    const auto textOf = [&git](const QStringList& command) { return git.output(command).value_or(QString()); };
    now.remotes = oldIfSame(before.remotes, parseRemotes(textOf(refreshCommands::remotes())));
    now.stashes = oldIfSame(before.stashes, parseStashes(textOf(refreshCommands::stashes())));
    now.tags = oldIfSame(before.tags, parseTags(textOf(refreshCommands::tags())));
    return git.isStopped() ? std::nullopt : std::optional(now);
}

std::optional<QList<GitCommit>> readLog(ProcessRunner& runner, const QString& folder, qint64 limit,
                                        const std::atomic<bool>& stop)
{
    const std::optional<QString> output = Reader(runner, folder, stop).output(refreshCommands::log(limit));
    return output ? std::optional(parseLog(*output)) : std::nullopt;
}

} // namespace kelm
