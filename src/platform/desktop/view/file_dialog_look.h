// How file dialogs look that no desktop draws.
#pragma once

class QFileDialog;
class QLineEdit;

namespace kelm {

/// Gives a dialog that the toolkit draws the symbols and the measures of the rest of the program. Does nothing to one
/// that the desktop draws.
void giveOwnLook(QFileDialog& dialog);

/// The field for the name in a dialog that the toolkit draws; null in one that the desktop draws.
QLineEdit* nameField(const QFileDialog& dialog);

} // namespace kelm
