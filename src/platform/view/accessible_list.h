// The rows of a list as screen readers see them.
#pragma once

#include "platform/view/row.h"

#include <QAccessible>

#include <functional>

class QAbstractItemView;

namespace kelm {

/// What a screen reader is told of an item of a list.
struct AccessibleItem
{
    QString name;
    QString description = {};
    QAccessible::Role role = QAccessible::ListItem;
    bool isExpandable = false;
    bool isExpanded = false;
    /// What a press on the item does, or nothing.
    std::function<void()> press = {};
    /// What else it offers, by name.
    QList<RowAction> actions = {};
};

/// Tells the items of a list of one column by `describe`, which is asked for an item when a screen reader asks, and
/// never before. What `describe` reaches outlives the list. Controls that stand in the list come behind its items. To
/// be called as soon as the list is made, and again whenever it gets another model. Main thread only.
void setAccessibleItems(QAbstractItemView& list, std::function<AccessibleItem(int item)> describe);

} // namespace kelm
