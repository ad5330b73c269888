// The pictures that the toolkit asks its style for.
#pragma once

#include <QIcon>
#include <QStyle>

namespace kelm {

/// The symbol that stands for a standard picture of the toolkit, in the colour that belongs to it. A null icon where
/// there is none.
QIcon standardSymbol(QStyle::StandardPixmap picture, const QStyleOption* option);

} // namespace kelm
