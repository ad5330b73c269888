// Finding and pressing controls as a person does.
#pragma once

#include "platform/view/plain_button.h"

#include <QAbstractButton>
#include <QMenu>
#include <QtTest>

namespace kelm::test {

/// The first visible button with a text or an accessible name, or null.
inline QAbstractButton* visibleButton(const QWidget& parent, const QString& name)
{
    for (auto* button : parent.findChildren<QAbstractButton*>()) {
        if ((button->text() == name || button->accessibleName() == name) && button->isVisible()) {
            return button;
        }
    }
    return nullptr;
}

/// Presses a button with the mouse.
inline void clickOn(const QWidget& parent, const QString& name)
{
    QAbstractButton* button = visibleButton(parent, name);
    if (button == nullptr) {
        QFAIL(qPrintable(QStringLiteral("no visible button '%1'").arg(name)));
    }
    QTest::mouseClick(button, Qt::LeftButton);
}

/// The lines of a menu that a button opens: "-" for a separator, a leading "*" for a check mark, a leading "!" for a
/// disabled line.
inline QStringList linesOf(const QMenu& menu)
{
    QStringList lines;
    for (const QAction* action : menu.actions()) {
        if (action->isSeparator()) {
            lines.append(QStringLiteral("-"));
            continue;
        }
        const QString mark = action->isChecked() ? QStringLiteral("*") : QString();
        lines.append((action->isEnabled() ? QString() : QStringLiteral("!")) + mark + action->text());
    }
    return lines;
}

/// Opens the menu of a button with the mouse and hands it out; it is gone with `closeMenu`.
inline QMenu* openMenu(PlainButton& button)
{
    QTest::mousePress(&button, Qt::LeftButton);
    const auto menus = button.findChildren<QMenu*>(Qt::FindDirectChildrenOnly);
    return menus.isEmpty() ? nullptr : menus.last();
}

/// Chooses a line of an open menu with the mouse.
inline void choose(QMenu& menu, const QString& line)
{
    for (QAction* action : menu.actions()) {
        if (action->text() == line) {
            QTest::mouseClick(&menu, Qt::LeftButton, {}, menu.actionGeometry(action).center());
            return;
        }
    }
    QFAIL(qPrintable(QStringLiteral("no line '%1'").arg(line)));
}

} // namespace kelm::test
