// Filling the snapshot, and reading what is not part of it.
#include "git/service/ahead_behind_parser.h"
#include "git/service/blame_parser.h"
#include "git/service/branch_parser.h"
#include "git/service/git_refusal.h"
#include "git/service/git_service.h"
#include "git/service/git_worker.h"
#include "git/service/log_parser.h"
#include "git/service/refresh_commands.h"
#include "git/service/remote_parser.h"
#include "git/service/stash_parser.h"
#include "git/service/status_parser.h"
#include "git/service/tag_parser.h"
#include "platform/text/decimal_integer.h"

using namespace Qt::Literals::StringLiterals;

namespace kelm {

void GitService::refreshAll()
{
    refreshBranch();
    refreshStatus();
    refreshAheadBehind();
    refreshBranches();
    refreshRemotes();
    refreshStashes();
    refreshTags();
}

void GitService::refreshBranch()
{
    const auto output = read(refreshCommands::branch(), GitErrorKind::state);
    head_ = repoURL_ ? readHead(repoPath()) : GitHead{};
    assign(branch_, output.value_or(QString()).trimmed(), &GitService::branchChanged);
}

void GitService::refreshStatus()
{
    const auto output = read(refreshCommands::status());
    QList<GitFileStatus> files;
    worker().parse(output.value_or(QString()), [&files](const QString& text) { files = parseStatus(text); });
    assign(status_, files, &GitService::statusChanged);
}

void GitService::refreshAheadBehind()
{
    const auto output = read(refreshCommands::aheadBehind(), GitErrorKind::state);
    if (const auto counts = parseAheadBehind(output.value_or(QString()))) {
        assign(ahead_, counts->ahead, &GitService::aheadChanged);
        assign(behind_, counts->behind, &GitService::behindChanged);
    }
}

void GitService::refreshBranches()
{
    QList<GitBranch> branches;
    if (const auto local = read(refreshCommands::localBranches())) {
        const auto remote = read(refreshCommands::remoteBranches());
        branches = parseLocalBranches(*local) + parseRemoteBranches(remote.value_or(QString()));
    }
    assign(branches_, branches, &GitService::branchesChanged);
}

void GitService::refreshRemotes()
{
    const auto output = read(refreshCommands::remotes());
    assign(remotes_, parseRemotes(output.value_or(QString())), &GitService::remotesChanged);
}

void GitService::refreshStashes()
{
    const auto output = read(refreshCommands::stashes());
    assign(stashes_, parseStashes(output.value_or(QString())), &GitService::stashesChanged);
}

void GitService::refreshTags()
{
    const auto output = read(refreshCommands::tags());
    assign(tags_, parseTags(output.value_or(QString())), &GitService::tagsChanged);
}

QString GitService::diff(const QString& file, bool staged)
{
    return diff(QStringList{file}, staged);
}

QString GitService::diff(const QStringList& files, bool staged)
{
    const QStringList args = staged ? QStringList{u"diff"_s, u"--cached"_s, u"--"_s} : QStringList{u"diff"_s, u"--"_s};
    return read(args + files).value_or(QString());
}

QList<GitCommit> GitService::log(qint64 limit)
{
    return parseLog(read(refreshCommands::log(limit), GitErrorKind::state).value_or(QString()));
}

QList<GitCommit> GitService::fileLog(const QString& path, qint64 limit)
{
    return parseLog(read(refreshCommands::log(limit) + QStringList{u"--"_s, path}).value_or(QString()));
}

QString GitService::showCommit(const QString& sha)
{
    if (const auto sentence = refusal(GitNameKind::commit, sha)) {
        refuse(*sentence);
        return {};
    }
    return read({u"show"_s, u"--no-color"_s, sha}).value_or(QString());
}

QList<GitBlameLine> GitService::blame(const QString& path)
{
    return parseBlame(read({u"blame"_s, u"--porcelain"_s, u"--"_s, path}).value_or(QString()));
}

std::optional<qint64> GitService::contentSize(const QString& hash)
{
    const auto size = hash.isEmpty() ? std::nullopt : read({u"cat-file"_s, u"-s"_s, hash}, GitErrorKind::state);
    return size ? decimalInteger(size->trimmed()) : std::nullopt;
}

QString GitService::stashShow(const QString& stash)
{
    if (const auto sentence = refusal(GitNameKind::stash, stash)) {
        refuse(*sentence);
        return {};
    }
    return read({u"stash"_s, u"show"_s, u"-p"_s, stash}).value_or(QString());
}

std::optional<QString> GitService::userName()
{
    return configValue(u"user.name"_s);
}

std::optional<QString> GitService::userEmail()
{
    return configValue(u"user.email"_s);
}

std::optional<QString> GitService::configValue(const QString& key)
{
    auto value = read({u"config"_s, key}, GitErrorKind::state);
    if (value) {
        value = value->trimmed();
    }
    return value;
}

} // namespace kelm
