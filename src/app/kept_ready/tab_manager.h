// A list of tabs of its own, for an arrangement of several strips.
#pragma once

#include "app/document/document.h"

#include <QList>
#include <QObject>
#include <QUuid>

#include <memory>
#include <optional>

namespace kelm {

/// One tab.
struct TabItem
{
    QUuid id = QUuid::createUuid();
    std::shared_ptr<Document> document;

    friend bool operator==(const TabItem&, const TabItem&) = default;
};

/// The tabs of one strip and the selected one of them. Kept ready: the program's one strip reads the open documents of
/// the application state. Main thread only.
class TabManager final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QList<kelm::TabItem> tabs READ tabs WRITE setTabs NOTIFY tabsChanged)
    Q_PROPERTY(std::optional<QUuid> selectedTabId READ selectedTabId WRITE setSelectedTabId NOTIFY selectedTabIdChanged)

public:
    using QObject::QObject;

    const QList<TabItem>& tabs() const { return tabs_; }
    void setTabs(const QList<TabItem>& tabs);
    const std::optional<QUuid>& selectedTabId() const { return selectedTabId_; }
    void setSelectedTabId(const std::optional<QUuid>& selectedTabId);

Q_SIGNALS:
    void tabsChanged();
    void selectedTabIdChanged();

private:
    QList<TabItem> tabs_;
    std::optional<QUuid> selectedTabId_;
};

} // namespace kelm
