#include "platform/view/accessible_list.h"

#include "platform/view/screen_reader.h"

#include <QAbstractItemView>
#include <QAccessibleWidget>
#include <QFocusEvent>
#include <QHash>
#include <QPointer>
#include <QVariant>

#include <utility>

namespace kelm {

namespace {

constexpr const char* itemsProperty = "kelmAccessibleItems";

/// What is told of a list's items, and the interfaces that were handed out for them.
class AccessibleItems final : public QObject
{
public:
    AccessibleItems(QAbstractItemView& list, std::function<AccessibleItem(int)> describe)
        : QObject(&list), describe_(std::move(describe)), list_(list)
    {
        // One that was made before these items knows nothing of them.
        QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(QAccessible::queryAccessibleInterface(&list)));
        list.setProperty(itemsProperty, QVariant::fromValue<QObject*>(this));
        list.installEventFilter(this);
        if (const QAbstractItemModel* model = list.model()) {
            connect(model, &QAbstractItemModel::modelReset, this, &AccessibleItems::forget);
            connect(model, &QAbstractItemModel::layoutChanged, this, &AccessibleItems::forget);
            connect(model, &QAbstractItemModel::rowsInserted, this, &AccessibleItems::forget);
            connect(model, &QAbstractItemModel::rowsRemoved, this, &AccessibleItems::forget);
        }
    }
    ~AccessibleItems() override { forget(); }

    static AccessibleItems* of(const QObject* list)
    {
        return list == nullptr ? nullptr
                               : static_cast<AccessibleItems*>(list->property(itemsProperty).value<QObject*>());
    }

    AccessibleItem describe(int item) const { return describe_(item); }
    QAccessibleInterface* interfaceOf(int item);
    int count() const { return list_.model() != nullptr ? list_.model()->rowCount() : 0; }
    QAbstractItemView& list() const { return list_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::FocusIn && screenReader::isListening()) {
            // Behind the list's own telling.
            QMetaObject::invokeMethod(this, &AccessibleItems::tellFocus, Qt::QueuedConnection);
        }
        return QObject::eventFilter(watched, event);
    }

private:
    /// The item at a place is another one now.
    void forget()
    {
        for (const QAccessible::Id id : std::exchange(interfaces_, {})) {
            QAccessible::deleteAccessibleInterface(id);
        }
    }

    void tellFocus()
    {
        const int current = list_.currentIndex().row();
        if (list_.hasFocus() && current >= 0) {
            QAccessibleEvent focused(&list_, QAccessible::Focus);
            focused.setChild(current);
            screenReader::tell(focused);
        }
    }

    std::function<AccessibleItem(int)> describe_;
    QAbstractItemView& list_;
    QHash<int, QAccessible::Id> interfaces_;
};

class ItemInterface final : public QAccessibleInterface, public QAccessibleActionInterface
{
public:
    ItemInterface(AccessibleItems& items, int item) : items_(&items), item_(item) {}

    int item() const { return item_; }
    bool isOf(const AccessibleItems& items) const { return items_ == &items; }

    bool isValid() const override { return items_ && item_ < items_->count(); }
    QObject* object() const override { return nullptr; }
    QWindow* window() const override { return isValid() ? items_->list().window()->windowHandle() : nullptr; }
    QAccessibleInterface* parent() const override
    {
        return isValid() ? QAccessible::queryAccessibleInterface(&items_->list()) : nullptr;
    }
    QAccessibleInterface* child(int) const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    QAccessible::Role role() const override { return isValid() ? described().role : QAccessible::NoRole; }

    QRect rect() const override
    {
        if (!isValid()) {
            return {};
        }
        const QRect box = items_->list().visualRect(index());
        return {items_->list().viewport()->mapToGlobal(box.topLeft()), box.size()};
    }

    QString text(QAccessible::Text what) const override
    {
        if (!isValid() || (what != QAccessible::Name && what != QAccessible::Description)) {
            return {};
        }
        const AccessibleItem item = described();
        return what == QAccessible::Name ? item.name : item.description;
    }
    void setText(QAccessible::Text, const QString&) override {}

    QAccessible::State state() const override
    {
        QAccessible::State state;
        if (!isValid()) {
            state.invalid = true;
            return state;
        }
        const QAbstractItemView& list = items_->list();
        const AccessibleItem item = described();
        const bool isCurrent = list.currentIndex().row() == item_;
        const bool canBeCurrent = index().flags().testFlag(Qt::ItemIsSelectable);
        state.disabled = !list.isEnabled();
        state.invisible = !list.isVisible();
        state.offscreen = !list.viewport()->rect().intersects(list.visualRect(index()));
        state.selectable = canBeCurrent;
        state.focusable = canBeCurrent && list.focusPolicy() != Qt::NoFocus;
        state.selected = canBeCurrent && isCurrent;
        state.focused = isCurrent && list.hasFocus();
        state.expandable = item.isExpandable;
        state.expanded = item.isExpandable && item.isExpanded;
        state.collapsed = item.isExpandable && !item.isExpanded;
        return state;
    }

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this) : nullptr;
    }

    // QAccessibleActionInterface
    QStringList actionNames() const override
    {
        QStringList names;
        if (isValid()) {
            const AccessibleItem item = described();
            if (item.press) {
                names.append(pressAction());
            }
            for (const RowAction& action : item.actions) {
                names.append(action.help);
            }
            if (index().flags().testFlag(Qt::ItemIsSelectable)) {
                names.append(setFocusAction());
            }
        }
        return names;
    }

    void doAction(const QString& name) override
    {
        if (!isValid()) {
            return;
        }
        // What runs may make the items anew, and this one go.
        const AccessibleItem item = described();
        if (name == setFocusAction()) {
            items_->list().setCurrentIndex(index());
            items_->list().setFocus(Qt::OtherFocusReason);
        } else if (name == pressAction() && item.press) {
            item.press();
        } else {
            for (const RowAction& action : item.actions) {
                if (action.help == name) {
                    action.run();
                    return;
                }
            }
        }
    }

    QStringList keyBindingsForAction(const QString&) const override { return {}; }

private:
    AccessibleItem described() const { return items_->describe(item_); }
    QModelIndex index() const { return items_->list().model()->index(item_, 0); }

    QPointer<AccessibleItems> items_;
    int item_;
};

QAccessibleInterface* AccessibleItems::interfaceOf(int item)
{
    if (item < 0 || item >= count()) {
        return nullptr;
    }
    if (const auto known = interfaces_.constFind(item); known != interfaces_.constEnd()) {
        return QAccessible::accessibleInterface(*known);
    }
    auto* made = new ItemInterface(*this, item);
    interfaces_.insert(item, QAccessible::registerAccessibleInterface(made));
    return made;
}

/// The items first, and behind them the viewport while controls stand in it.
class ListInterface final : public QAccessibleWidget
{
public:
    explicit ListInterface(QAbstractItemView& list) : QAccessibleWidget(&list, QAccessible::List) {}

    int childCount() const override { return count() + (hasControls() ? 1 : 0); }

    QAccessibleInterface* child(int index) const override
    {
        if (index == count() && hasControls()) {
            return QAccessible::queryAccessibleInterface(list().viewport());
        }
        return items() != nullptr ? items()->interfaceOf(index) : nullptr;
    }

    int indexOfChild(const QAccessibleInterface* child) const override
    {
        if (child == nullptr) {
            return -1;
        }
        if (child->object() != nullptr) {
            return child->object() == list().viewport() && hasControls() ? count() : -1;
        }
        const auto* item = dynamic_cast<const ItemInterface*>(child);
        return item != nullptr && items() != nullptr && item->isOf(*items()) ? item->item() : -1;
    }

    QAccessibleInterface* childAt(int x, int y) const override
    {
        const QPoint place = list().viewport()->mapFromGlobal(QPoint(x, y));
        if (list().viewport()->childAt(place) != nullptr) {
            return QAccessible::queryAccessibleInterface(list().viewport());
        }
        return list().viewport()->rect().contains(place) ? child(list().indexAt(place).row()) : nullptr;
    }

    QAccessibleInterface* focusChild() const override
    {
        if (list().hasFocus() && list().currentIndex().isValid()) {
            return child(list().currentIndex().row());
        }
        return QAccessibleWidget::focusChild();
    }

private:
    QAbstractItemView& list() const { return *static_cast<QAbstractItemView*>(object()); }
    AccessibleItems* items() const { return AccessibleItems::of(object()); }
    int count() const { return items() != nullptr ? items()->count() : 0; }

    bool hasControls() const
    {
        for (const QObject* child : list().viewport()->children()) {
            if (child->isWidgetType() && static_cast<const QWidget*>(child)->isVisible()) {
                return true;
            }
        }
        return false;
    }
};

QAccessibleInterface* makeInterface(const QString&, QObject* object)
{
    // A list that is being taken down is asked for as well, when it is none any more.
    auto* const list = qobject_cast<QAbstractItemView*>(object);
    return list != nullptr && AccessibleItems::of(object) != nullptr ? new ListInterface(*list) : nullptr;
}

} // namespace

void setAccessibleItems(QAbstractItemView& list, std::function<AccessibleItem(int item)> describe)
{
    static const bool isInstalled = [] {
        QAccessible::installFactory(makeInterface);
        return true;
    }();
    Q_UNUSED(isInstalled)
    delete AccessibleItems::of(&list);
    new AccessibleItems(list, std::move(describe));
}

} // namespace kelm
