// A text view for screen readers.
#pragma once

#include "text/text_range.h"

namespace kelm {

class TextView;

/// Makes text views answer the platform's accessibility interface. Calling it again does nothing.
void installAccessibleTextViewFactory();

/// Tells a screen reader, when one listens, what an edit did.
void notifyAccessibleEdit(TextView& view, const TextEdit& edit);
/// Tells a screen reader where caret and selection stand now.
void notifyAccessibleSelection(TextView& view);

} // namespace kelm
