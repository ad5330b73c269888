// What the sheets of source control have in common.
#pragma once

#include <QMargins>
#include <QSize>
#include <QWidget>

#include <functional>

class QPushButton;

namespace kelm {

inline constexpr int sheetSpacing = 10;
inline constexpr QSize usualSheetSize(920, 640);
inline constexpr QSize leastSheetSize(520, 320);

/// Around a sheet's header.
inline QMargins sheetMargins()
{
    return {16, 12, 16, 12};
}

/// Lays out a header, a line below it and the content.
void frameSheet(QWidget& sheet, QWidget* header, QWidget* content);

/// The button "Close". Return does not press it.
QPushButton* makeCloseButton(QWidget& header, std::function<void()> close);

} // namespace kelm
