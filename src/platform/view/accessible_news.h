// What screen readers say at once, wherever the keyboard is.
#pragma once

#include <QAccessible>

class QWidget;

namespace kelm {

/// Has screen readers say what `widget` is named, or would say if it had just appeared. It has the role of an alert, a
/// notification or a status bar; see setAccessibleRole. Costs nothing while none listens, and nothing is said of a
/// widget that is not on screen. Main thread only.
void announce(QWidget& widget);

} // namespace kelm
