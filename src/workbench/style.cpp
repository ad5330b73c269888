#include "workbench/style.h"

#include <QFontDatabase>

namespace kelm::style {

QFont monospaced(int pixelSize)
{
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPixelSize(pixelSize);
    return font;
}

} // namespace kelm::style
