// The order in which Tab walks through the window.
#pragma once

#include <QList>

class QWidget;

namespace kelm {

/// What Tab reaches from `current`: the visible, enabled stops of the regions one after the other, within a region in
/// reading order where its stops stand in one row, else in the order in which they were made. Panels come and go, so
/// the order is read off the window each time. From what is no stop itself, the way goes on in its region. Null without
/// a stop.
QWidget* nextFocusStop(const QList<QWidget*>& regions, QWidget* current, bool forward);

} // namespace kelm
