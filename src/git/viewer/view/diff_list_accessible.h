// A list of diffs for screen readers.
#pragma once

namespace kelm {

/// Makes lists of diffs answer the platform's accessibility interface. Calling it again does nothing.
void installAccessibleDiffListFactory();

} // namespace kelm
