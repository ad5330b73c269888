// The tree of controls as a screen reader walks it, and what it would miss there.
#pragma once

#include <QAccessible>
#include <QApplication>
#include <QHash>
#include <QMetaEnum>
#include <QStringList>
#include <QWidget>

#include <algorithm>
#include <functional>

namespace kelm::test {

inline QString roleName(QAccessible::Role role)
{
    const char* key = QMetaEnum::fromType<QAccessible::Role>().valueToKey(role);
    return key != nullptr ? QString::fromLatin1(key) : QString::number(role);
}

inline QAccessibleInterface* accessible(QObject& object)
{
    return QAccessible::queryAccessibleInterface(&object);
}

/// Goes through what is to be seen, parents before their children.
inline void walkAccessible(QAccessibleInterface& node,
                           const std::function<void(QAccessibleInterface& node, const QString& path)>& look,
                           const QString& path = {})
{
    const QString name = node.text(QAccessible::Name).left(40);
    const QString here =
        path + u'/' + roleName(node.role()) + (name.isEmpty() ? QString() : QStringLiteral(" '%1'").arg(name));
    look(node, here);
    for (int index = 0; index < node.childCount(); ++index) {
        QAccessibleInterface* child = node.child(index);
        if (child != nullptr && child->isValid() && !child->state().invisible) {
            walkAccessible(*child, look, here);
        }
    }
}

/// The first node with a name, and a role if one is given; null when there is none.
inline QAccessibleInterface* findAccessible(QAccessibleInterface& root, const QString& name,
                                            QAccessible::Role role = QAccessible::NoRole)
{
    QAccessibleInterface* found = nullptr;
    walkAccessible(root, [&](QAccessibleInterface& node, const QString&) {
        const bool isRole = role == QAccessible::NoRole || node.role() == role;
        if (found == nullptr && isRole && node.text(QAccessible::Name) == name) {
            found = &node;
        }
    });
    return found;
}

/// Roles that only hold others together, or show what needs no name.
inline bool isStructure(QAccessible::Role role)
{
    switch (role) {
    case QAccessible::Client:
    case QAccessible::Application:
    case QAccessible::LayeredPane:
    case QAccessible::Splitter:
    case QAccessible::Separator:
    case QAccessible::ScrollBar:
    case QAccessible::Grip:
    case QAccessible::MenuBar:
    case QAccessible::Pane:
    case QAccessible::ToolTip:
        return true;
    default:
        return false;
    }
}

inline bool hasWords(const QString& name)
{
    return std::any_of(name.begin(), name.end(), [](QChar letter) { return letter.isLetterOrNumber(); });
}

/// Whether a node says that the keyboard is on it. The inner part of a view that has the keyboard says so as well.
inline bool hasKeyboard(const QAccessibleInterface& node)
{
    const QAccessibleInterface* parent = node.parent();
    return node.state().focused && !(parent != nullptr && parent->state().focused);
}

/// What a screen reader could not tell a person about one node; empty if nothing.
inline QString accessibleFault(QAccessibleInterface& node)
{
    const QString name = node.text(QAccessible::Name);
    const QAccessible::State state = node.state();
    switch (node.role()) {
    case QAccessible::NoRole:
    case QAccessible::Border:
    case QAccessible::Whitespace:
        return QStringLiteral("has no role");
    case QAccessible::Client:
        if (state.focusable || hasKeyboard(node) || !name.isEmpty()) {
            return QStringLiteral("is no more than a filler");
        }
        return {};
    default:
        break;
    }
    const QObject* object = node.object();
    if (hasKeyboard(node) && object != nullptr && object != QApplication::focusWidget()) {
        return QStringLiteral("tells of a keyboard that is elsewhere");
    }
    if (isStructure(node.role())) {
        return {};
    }
    if (name.isEmpty()) {
        return QStringLiteral("has no name");
    }
    // A text may show what it likes; a control is called by words.
    if (node.role() != QAccessible::StaticText && !hasWords(name)) {
        return QStringLiteral("is named by signs alone");
    }
    return {};
}

/// Two controls of one parent, by which a person can do different things, and that sound the same.
inline QStringList doublesAmong(QAccessibleInterface& parent, const QString& path)
{
    QStringList faults;
    QHash<QString, int> heard;
    for (int index = 0; index < parent.childCount(); ++index) {
        QAccessibleInterface* child = parent.child(index);
        if (child == nullptr || !child->isValid() || child->state().invisible || !child->state().focusable) {
            continue;
        }
        const QString sound = roleName(child->role()) + u'|' + child->text(QAccessible::Name) + u'|' +
                              child->text(QAccessible::Description);
        if (++heard[sound] == 2) {
            faults.append(path + QStringLiteral(": two of ") + sound);
        }
    }
    return faults;
}

/// All that a screen reader could not tell a person below and at a node.
inline QStringList accessibleFaults(QAccessibleInterface& root)
{
    QStringList faults;
    walkAccessible(root, [&](QAccessibleInterface& node, const QString& path) {
        if (const QString fault = accessibleFault(node); !fault.isEmpty()) {
            const QObject* object = node.object();
            faults.append(path + QStringLiteral(" (") +
                          (object != nullptr ? QString::fromLatin1(object->metaObject()->className()) : QString()) +
                          QStringLiteral(") ") + fault);
        }
        faults += doublesAmong(node, path);
        // What is a child knows its place and its parent.
        for (int index = 0; index < node.childCount(); ++index) {
            QAccessibleInterface* child = node.child(index);
            if (child != nullptr && !child->state().invisible && node.indexOfChild(child) != index) {
                faults.append(path + QStringLiteral(": child %1 is not at its place").arg(index));
            }
        }
    });
    return faults;
}

} // namespace kelm::test
