// A row of a row list as a screen reader sees it.
#pragma once

#include "platform/view/accessible_list.h"

namespace kelm {

class RowModel;

/// A section's title as a heading, and a row by its help text, with all that it offers, whether its buttons show or
/// not. `item` is one that there is.
AccessibleItem accessibleRow(const RowModel& rows, int item);

} // namespace kelm
