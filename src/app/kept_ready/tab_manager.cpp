#include "app/kept_ready/tab_manager.h"

namespace kelm {

void TabManager::setTabs(const QList<TabItem>& tabs)
{
    if (tabs != tabs_) {
        tabs_ = tabs;
        Q_EMIT tabsChanged();
    }
}

void TabManager::setSelectedTabId(const std::optional<QUuid>& selectedTabId)
{
    if (selectedTabId != selectedTabId_) {
        selectedTabId_ = selectedTabId;
        Q_EMIT selectedTabIdChanged();
    }
}

} // namespace kelm
