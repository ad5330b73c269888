#include "git/panel/source_control_tab.h"

#include "git/service/git_service.h"

#include <algorithm>

namespace kelm {

namespace {

struct TabInfo
{
    const char* rawValue;
    const char* label;
    const char* symbol;
};

constexpr std::array<TabInfo, allSourceControlTabs.size()> infos{{
    {"changes", "Changes", "doc.text"},
    {"history", "History", "clock"},
    {"branches", "Branches", "arrow.triangle.branch"},
    {"stashes", "Stashes", "tray.full"},
    {"tags", "Tags", "tag"},
    {"remotes", "Remotes", "network"},
}};

const TabInfo& infoOf(SourceControlTab tab)
{
    return infos[static_cast<std::size_t>(tab)];
}

} // namespace

QString rawValue(SourceControlTab tab)
{
    return QLatin1String(infoOf(tab).rawValue);
}

QString label(SourceControlTab tab)
{
    return QLatin1String(infoOf(tab).label);
}

QString symbol(SourceControlTab tab)
{
    return QLatin1String(infoOf(tab).symbol);
}

std::optional<qsizetype> badgeCount(SourceControlTab tab, const GitService& git)
{
    switch (tab) {
    case SourceControlTab::changes:
        return git.status().size();
    case SourceControlTab::history:
        return std::nullopt;
    case SourceControlTab::branches:
        return std::count_if(git.branches().begin(), git.branches().end(),
                             [](const GitBranch& branch) { return !branch.isRemote; });
    case SourceControlTab::stashes:
        return git.stashes().size();
    case SourceControlTab::tags:
        return git.tags().size();
    case SourceControlTab::remotes:
        return git.remotes().size();
    }
    return std::nullopt;
}

} // namespace kelm
