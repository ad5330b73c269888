#include "platform/view/splitter.h"

#include "platform/view/accessible_role.h"

namespace kelm {

Splitter::Splitter(Qt::Orientation orientation, QWidget* parent) : QSplitter(orientation, parent)
{
    setChildrenCollapsible(false);
    setHandleWidth(1);
}

QSplitterHandle* Splitter::createHandle()
{
    QSplitterHandle* handle = QSplitter::createHandle();
    setAccessibleRole(*handle, QAccessible::Separator);
    return handle;
}

} // namespace kelm
