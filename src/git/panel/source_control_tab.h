// The tabs of the source control panel, as data.
#pragma once

#include <QString>

#include <array>
#include <optional>

namespace kelm {

class GitService;

/// One tab of the source control panel.
enum class SourceControlTab { changes, history, branches, stashes, tags, remotes };

/// All tabs, in the order in which they stand.
inline constexpr std::array allSourceControlTabs{SourceControlTab::changes,  SourceControlTab::history,
                                                 SourceControlTab::branches, SourceControlTab::stashes,
                                                 SourceControlTab::tags,     SourceControlTab::remotes};

/// The tab's name in texts, such as "changes".
QString rawValue(SourceControlTab tab);
/// The tab's name for the user.
QString label(SourceControlTab tab);
/// The name of the tab's icon.
QString symbol(SourceControlTab tab);

/// How many things the tab holds, of branches the local ones; absent for the history. Linear in the list it counts.
std::optional<qsizetype> badgeCount(SourceControlTab tab, const GitService& git);

} // namespace kelm
