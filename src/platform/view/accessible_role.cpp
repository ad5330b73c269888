#include "platform/view/accessible_role.h"

#include <QAccessibleWidget>
#include <QVariant>
#include <QWidget>

namespace kelm {

namespace {

constexpr const char* roleProperty = "kelmAccessibleRole";

/// A widget under the role that it was given.
class RoleInterface final : public QAccessibleWidget
{
public:
    RoleInterface(QWidget* widget, QAccessible::Role role) : QAccessibleWidget(widget, role) {}

    QStringList actionNames() const override
    {
        QStringList names = QAccessibleWidget::actionNames();
        if (canPress()) {
            names.prepend(pressAction());
        }
        return names;
    }

    void doAction(const QString& name) override
    {
        if (name == pressAction() && canPress()) {
            QMetaObject::invokeMethod(widget(), "press");
        } else {
            QAccessibleWidget::doAction(name);
        }
    }

private:
    bool canPress() const { return widget()->metaObject()->indexOfMethod("press()") >= 0; }
};

QAccessibleInterface* makeInterface(const QString&, QObject* object)
{
    auto* widget = qobject_cast<QWidget*>(object);
    const QVariant role = widget != nullptr ? widget->property(roleProperty) : QVariant();
    return role.isValid() ? new RoleInterface(widget, static_cast<QAccessible::Role>(role.toInt())) : nullptr;
}

} // namespace

void setAccessibleRole(QWidget& widget, QAccessible::Role role)
{
    static const bool isInstalled = [] {
        QAccessible::installFactory(makeInterface);
        return true;
    }();
    Q_UNUSED(isInstalled)
    widget.setProperty(roleProperty, static_cast<int>(role));
}

} // namespace kelm
