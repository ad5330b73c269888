// What has the keyboard is in sight.
#pragma once

#include <QObject>

class QWidget;

namespace kelm {

/// Scrolls to what takes the keyboard, and to the row of a list that has it, wherever that lies in something that
/// scrolls, in any window. What the pointer is pressed on is in sight already and stays where it is. Main thread only.
class FocusInSight final : public QObject
{
public:
    explicit FocusInSight(QObject* parent);
};

} // namespace kelm
