// Filling the snapshot, and reading what is not part of it.
#include "git/service/ahead_behind_parser.h"
#include "git/service/blame_parser.h"
#include "git/service/branch_parser.h"
#include "git/service/git_service.h"
#include "git/service/log_parser.h"
#include "git/service/remote_parser.h"
#include "git/service/stash_parser.h"
#include "git/service/status_parser.h"
#include "git/service/tag_parser.h"

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

QStringList logArgs(qint64 limit)
{
    return {u"log"_s, u"-n"_s, QString::number(limit), u"--date=short"_s, u"--pretty=format:%H%x1f%an%x1f%ad%x1f%s"_s};
}

} // namespace

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
    const auto output = run({u"rev-parse"_s, u"--abbrev-ref"_s, u"HEAD"_s});
    assign(branch_, output.value_or(QString()).trimmed(), &GitService::branchChanged);
}

void GitService::refreshStatus()
{
    const auto output = run({u"status"_s, u"--porcelain=v1"_s});
    QList<GitFileStatus> files;
    worker().parse(output.value_or(QString()), [&files](const QString& text) { files = parseStatus(text); });
    assign(status_, files, &GitService::statusChanged);
}

void GitService::refreshAheadBehind()
{
    const auto output = run({u"rev-list"_s, u"--left-right"_s, u"--count"_s, u"@{u}...HEAD"_s});
    if (const auto counts = parseAheadBehind(output.value_or(QString()))) {
        assign(ahead_, counts->ahead, &GitService::aheadChanged);
        assign(behind_, counts->behind, &GitService::behindChanged);
    }
}

void GitService::refreshBranches()
{
    QList<GitBranch> branches;
    const auto local =
        run({u"for-each-ref"_s, u"--format=%(refname:short)%00%(HEAD)%00%(upstream:short)"_s, u"refs/heads"_s});
    if (local) {
        const auto remote = run({u"for-each-ref"_s, u"--format=%(refname:short)"_s, u"refs/remotes"_s});
        branches = parseLocalBranches(*local) + parseRemoteBranches(remote.value_or(QString()));
    }
    assign(branches_, branches, &GitService::branchesChanged);
}

void GitService::refreshRemotes()
{
    const auto output = run({u"remote"_s, u"-v"_s});
    assign(remotes_, parseRemotes(output.value_or(QString())), &GitService::remotesChanged);
}

void GitService::refreshStashes()
{
    const auto output = run({u"stash"_s, u"list"_s, u"--pretty=format:%gd%x1f%s"_s});
    assign(stashes_, parseStashes(output.value_or(QString())), &GitService::stashesChanged);
}

void GitService::refreshTags()
{
    const auto output = run({u"for-each-ref"_s,
                             u"--format=%(refname:short)%00%(objecttype)%00%(*objectname)%00%(objectname)%00"
                             "%(contents:subject)"_s,
                             u"refs/tags"_s});
    assign(tags_, parseTags(output.value_or(QString())), &GitService::tagsChanged);
}

QString GitService::diff(const QString& file, bool staged)
{
    return run(staged ? QStringList{u"diff"_s, u"--cached"_s, u"--"_s, file} : QStringList{u"diff"_s, u"--"_s, file})
        .value_or(QString());
}

QList<GitCommit> GitService::log(qint64 limit)
{
    return parseLog(run(logArgs(limit)).value_or(QString()));
}

QList<GitCommit> GitService::fileLog(const QString& path, qint64 limit)
{
    return parseLog(run(logArgs(limit) + QStringList{u"--"_s, path}).value_or(QString()));
}

QString GitService::showCommit(const QString& sha)
{
    return run({u"show"_s, u"--no-color"_s, sha}).value_or(QString());
}

QList<GitBlameLine> GitService::blame(const QString& path)
{
    return parseBlame(run({u"blame"_s, u"--porcelain"_s, u"--"_s, path}).value_or(QString()));
}

QString GitService::stashShow(const QString& stash)
{
    return run({u"stash"_s, u"show"_s, u"-p"_s, stash}).value_or(QString());
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
    auto value = run({u"config"_s, key});
    if (value) {
        value = value->trimmed();
    }
    return value;
}

} // namespace kelm
