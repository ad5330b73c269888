#include "screenshots/contact_sheet.h"

#include "platform/view/icons.h"
#include "platform/view/style.h"
#include "platform/view/tint.h"

#include <QPainter>

#include <array>

namespace kelm::screenshots {

namespace {

constexpr std::array sizes{9, 12, 16, 24, 40};
constexpr int columns = 4;
constexpr int cellWidth = 290;
constexpr int cellHeight = 66;
constexpr int margin = 16;

bool draw(Appearance appearance, const QString& file)
{
    const QStringList names = icons::names();
    const int rows = (static_cast<int>(names.size()) + columns - 1) / columns;
    QImage sheet(columns * cellWidth + 2 * margin, rows * cellHeight + 2 * margin, QImage::Format_RGB32);
    sheet.fill(systemColor(SystemColor::windowBackground, appearance));
    QPainter painter(&sheet);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(style::interfaceFont(style::typeSize::caption));
    int cell = 0;
    for (const QString& name : names) {
        const QPoint corner(margin + cell % columns * cellWidth, margin + cell / columns * cellHeight);
        int x = corner.x();
        for (const int size : sizes) {
            icons::paint(painter, name, QRectF(x, corner.y() + (40 - size) / 2, size, size),
                         Tint::primary().in(appearance));
            x += size + 14;
        }
        painter.setPen(Tint::secondary().in(appearance));
        painter.drawText(QPoint(corner.x(), corner.y() + 56), name);
        ++cell;
    }
    return sheet.save(file, "PNG", 0);
}

} // namespace

bool drawContactSheets(const QDir& folder)
{
    return draw(Appearance::dark, folder.filePath(QStringLiteral("icons-dark.png"))) &&
           draw(Appearance::light, folder.filePath(QStringLiteral("icons-light.png")));
}

} // namespace kelm::screenshots
