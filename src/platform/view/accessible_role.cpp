#include "platform/view/accessible_role.h"

#include "platform/view/screen_reader.h"

#include <QAccessibleWidget>
#include <QVariant>
#include <QWidget>

#include <bit>

namespace kelm {

namespace {

constexpr const char* roleProperty = "kelmAccessibleRole";
constexpr const char* stateProperty = "kelmAccessibleState";

static_assert(sizeof(QAccessible::State) == sizeof(quint64));

quint64 bitsOf(const QAccessible::State& state)
{
    return std::bit_cast<quint64>(state);
}

quint64 givenBits(const QWidget& widget)
{
    return widget.property(stateProperty).toULongLong();
}

/// A widget under the role that it was given. The toolkit takes one that hands the keyboard on to a part of its own for
/// one that has it.
class RoleInterface final : public QAccessibleWidget
{
public:
    RoleInterface(QWidget* widget, QAccessible::Role role) : QAccessibleWidget(widget, role) {}

    QAccessible::State state() const override
    {
        auto state = std::bit_cast<QAccessible::State>(bitsOf(QAccessibleWidget::state()) | givenBits(*widget()));
        const bool handsOn = widget()->focusProxy() != nullptr;
        state.focused = state.focused && !handsOn;
        state.focusable = state.focusable && !handsOn;
        return state;
    }

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

/// Whether a widget is one of our own that only holds others, which the toolkit knows nothing of.
bool isPlain(const QObject& object)
{
    const QMetaObject* type = object.metaObject();
    while (QByteArrayView(type->className()).startsWith("kelm::")) {
        type = type->superClass();
    }
    return type == &QWidget::staticMetaObject && type != object.metaObject();
}

QAccessibleInterface* makeInterface(const QString&, QObject* object)
{
    auto* widget = qobject_cast<QWidget*>(object);
    if (widget == nullptr) {
        return nullptr;
    }
    const QVariant role = widget->property(roleProperty);
    if (role.isValid()) {
        return new RoleInterface(widget, static_cast<QAccessible::Role>(role.toInt()));
    }
    return isPlain(*object) ? new RoleInterface(widget, QAccessible::Client) : nullptr;
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

void setAccessibleState(QWidget& widget, const QAccessible::State& state)
{
    const quint64 changed = givenBits(widget) ^ bitsOf(state);
    if (changed == 0) {
        return;
    }
    widget.setProperty(stateProperty, bitsOf(state));
    if (screenReader::isListening()) {
        QAccessibleStateChangeEvent event(&widget, std::bit_cast<QAccessible::State>(changed));
        screenReader::tell(event);
    }
}

} // namespace kelm
