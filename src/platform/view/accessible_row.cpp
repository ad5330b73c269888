#include "platform/view/accessible_row.h"

#include "platform/view/row_model.h"

namespace kelm {

AccessibleItem accessibleRow(const RowModel& rows, int item)
{
    if (rows.isTitle(item)) {
        return {.name = rows.titleOf(item), .role = QAccessible::Heading};
    }
    const Row row = rows.rowAt(item);
    return {.name = row.help, .press = row.onClick, .actions = row.actions + row.menu};
}

} // namespace kelm
