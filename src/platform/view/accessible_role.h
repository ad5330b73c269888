// What screen readers take a widget of our own for.
#pragma once

#include <QAccessible>

class QWidget;

namespace kelm {

/// Says what `widget` is to a screen reader; its name is its accessible name. Widgets that the toolkit knows have their
/// roles already. A widget with a slot "press()" can be pressed. To be called before the
/// widget is given a name, with which screen readers first look at it. Main thread only.
void setAccessibleRole(QWidget& widget, QAccessible::Role role);

/// Gives a widget that was given a role these states beside those that every widget has, such as to be selected or
/// busy, in the place of those that it was given before, and tells screen readers what is new. Main thread only.
void setAccessibleState(QWidget& widget, const QAccessible::State& state);

} // namespace kelm
