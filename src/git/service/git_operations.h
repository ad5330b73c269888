// What the user does to the repository on this machine, as data: one row an operation.
#pragma once

#include "git/service/git_refusal.h"
#include "git/service/git_service.h"

#include <QStringList>
#include <QStringView>

#include <array>

namespace kelm {

/// The words of a git command, and what has to be read anew when it has ended, whatever came of it.
struct GitOperation
{
    using Refresh = void (GitService::*)();

    /// "%1" stands for the first thing given and "%2" for the second, also within a word; "%@" for all of them, each a
    /// word of its own. Empty ones end the list.
    std::array<QStringView, 6> words;
    std::array<Refresh, 2> refreshes = {};
    /// What the first and the second thing given are, so that names that git would misread are refused.
    std::array<GitNameKind, 2> kinds = {};

    QStringList arguments(const QStringList& given) const;
    /// Why git is not started with what is given; absent when it may be.
    std::optional<QString> refusalOf(const QStringList& given) const;
};

namespace gitOperations {

using Git = GitService;
using Kind = GitNameKind;

inline constexpr GitOperation stage{{u"add", u"--", u"%@"}, {&Git::refreshStatus}};
inline constexpr GitOperation unstage{{u"reset", u"HEAD", u"--", u"%@"}, {&Git::refreshStatus}};
inline constexpr GitOperation stageAll{{u"add", u"-A"}, {&Git::refreshStatus}};
inline constexpr GitOperation discardChanges{{u"checkout", u"--", u"%@"}, {&Git::refreshStatus}};
inline constexpr GitOperation commit{{u"commit", u"-m", u"%1"}, {&Git::refreshAll}};
inline constexpr GitOperation amend{{u"commit", u"--amend", u"-m", u"%1"}, {&Git::refreshAll}};
inline constexpr GitOperation amendKeepingMessage{{u"commit", u"--amend", u"--no-edit"}, {&Git::refreshAll}};

inline constexpr GitOperation createBranch{{u"branch", u"%1"}, {&Git::refreshBranches}, {Kind::branch}};
inline constexpr GitOperation createAndCheckOutBranch{{u"checkout", u"-b", u"%1"}, {&Git::refreshAll}, {Kind::branch}};
inline constexpr GitOperation checkoutBranch{{u"checkout", u"%1"}, {&Git::refreshAll}, {Kind::branch}};
inline constexpr GitOperation deleteBranch{{u"branch", u"-d", u"%1"}, {&Git::refreshBranches}, {Kind::branch}};
inline constexpr GitOperation deleteUnmergedBranch{{u"branch", u"-D", u"%1"}, {&Git::refreshBranches}, {Kind::branch}};
/// It may be the current branch that has a new name.
inline constexpr GitOperation renameBranch{
    {u"branch", u"-m", u"%1", u"%2"}, {&Git::refreshBranch, &Git::refreshBranches}, {Kind::branch, Kind::branch}};
inline constexpr GitOperation mergeBranch{{u"merge", u"--no-edit", u"%1"}, {&Git::refreshAll}, {Kind::branch}};
inline constexpr GitOperation abortMerge{{u"merge", u"--abort"}, {&Git::refreshAll}};

inline constexpr GitOperation addRemote{
    {u"remote", u"add", u"%1", u"%2"}, {&Git::refreshRemotes}, {Kind::remote, Kind::url}};
inline constexpr GitOperation removeRemote{{u"remote", u"remove", u"%1"}, {&Git::refreshRemotes}, {Kind::remote}};
inline constexpr GitOperation setRemoteURL{
    {u"remote", u"set-url", u"%1", u"%2"}, {&Git::refreshRemotes}, {Kind::remote, Kind::url}};

inline constexpr GitOperation stashPush{{u"stash", u"push", u"%@"}, {&Git::refreshAll}};
inline constexpr GitOperation stashPop{{u"stash", u"pop", u"%1"}, {&Git::refreshAll}, {Kind::stash}};
inline constexpr GitOperation stashApply{{u"stash", u"apply", u"%1"}, {&Git::refreshStatus}, {Kind::stash}};
inline constexpr GitOperation stashDrop{{u"stash", u"drop", u"%1"}, {&Git::refreshStashes}, {Kind::stash}};

inline constexpr GitOperation createTag{{u"tag", u"%1"}, {&Git::refreshTags}, {Kind::tag}};
inline constexpr GitOperation createAnnotatedTag{
    {u"tag", u"-a", u"%1", u"-m", u"%2"}, {&Git::refreshTags}, {Kind::tag}};
inline constexpr GitOperation deleteTag{{u"tag", u"-d", u"%1"}, {&Git::refreshTags}, {Kind::tag}};
inline constexpr GitOperation pushTag{{u"push", u"%2", u"refs/tags/%1"}, {}, {Kind::tag, Kind::remote}};

inline constexpr GitOperation setUserName{{u"config", u"user.name", u"%1"}, {}, {Kind::userName}};
inline constexpr GitOperation setUserEmail{{u"config", u"user.email", u"%1"}, {}, {Kind::userEmail}};

} // namespace gitOperations

} // namespace kelm
