// What the sheets of source control have in common.
#pragma once

#include <QDialog>
#include <QMargins>

class QPushButton;

namespace kelm {

inline constexpr int sheetSpacing = 10;

/// Around a sheet's header.
inline QMargins sheetMargins()
{
    return {16, 12, 16, 12};
}

/// Makes `dialog` a window-modal sheet with a header, a line below it and the content.
void frameSheet(QDialog& dialog, QWidget* header, QWidget* content);

/// The button "Close", which closes `dialog`. Return does not press it.
QPushButton* makeCloseButton(QDialog& dialog);

} // namespace kelm
