// A text view for screen readers.
#pragma once

#include "text/storage/text_range.h"

#include <QAccessible>

#include <memory>

namespace kelm {

class TextView;

/// Makes text views answer the platform's accessibility interface. Calling it again does nothing.
void installAccessibleTextViewFactory();

/// Says what a text view is to a screen reader where it is more than a text to edit.
void setAccessibleTextRole(TextView& view, QAccessible::Role role);
/// Says whether a text still grows or changes by itself.
void setAccessibleTextBusy(TextView& view, bool isBusy);

/// What an edit is for a screen reader: an insertion, a removal, or both as an update. Of a long one its beginning is
/// told.
std::unique_ptr<QAccessibleTextCursorEvent> accessibleEditEvent(TextView& view, const TextEdit& edit);
/// What a screen reader is told about the primary selection: its range, or where the caret stands.
std::unique_ptr<QAccessibleTextCursorEvent> accessibleSelectionEvent(TextView& view);

/// Tells a screen reader, when one listens, what an edit did.
void notifyAccessibleEdit(TextView& view, const TextEdit& edit);
/// Tells a screen reader where caret and selection stand now.
void notifyAccessibleSelection(TextView& view);

} // namespace kelm
