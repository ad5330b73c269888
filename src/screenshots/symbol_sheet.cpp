#include "screenshots/symbol_sheet.h"

#include "platform/style/view/icons.h"
#include "platform/style/view/style.h"
#include "platform/style/view/tint.h"
#include "screenshots/small_png.h"

#include <QPainter>

#include <array>

namespace kelm::screenshots {

namespace {

struct Size
{
    int points;
    int scale;
};

/// Those of buttons and rows, of the sidebar, and of the pages that say that there is nothing.
constexpr std::array sizes{Size{9, 1},  Size{12, 1}, Size{16, 1}, Size{20, 1}, Size{24, 1},
                           Size{16, 2}, Size{20, 2}, Size{24, 2}, Size{60, 1}};
constexpr std::array applicationSizes{16, 22, 24, 32, 48, 64};
constexpr int columns = 4;
constexpr int cellWidth = 400;
constexpr int rowHeight = 60;
constexpr int cellHeight = rowHeight + 32;
constexpr int margin = 24;
constexpr int spacing = 16;

int rowsOf(qsizetype count)
{
    return (static_cast<int>(count) + columns - 1) / columns;
}

void drawSymbol(QPainter& painter, const QString& name, QPoint corner, Appearance appearance)
{
    int x = corner.x();
    for (const Size& size : sizes) {
        QPixmap symbol = icons::pixmap(name, size.points, Tint::primary().in(appearance), size.scale);
        // Its pixels are those of the sheet.
        symbol.setDevicePixelRatio(1);
        painter.drawPixmap(x, corner.y() + (rowHeight - symbol.height()) / 2, symbol);
        x += symbol.width() + spacing;
    }
    painter.setPen(Tint::secondary().in(appearance));
    painter.drawText(corner + QPoint(0, rowHeight + 14), name);
}

void drawApplicationIcon(QPainter& painter, QPoint corner)
{
    const QIcon icon = icons::application();
    for (const int size : applicationSizes) {
        painter.drawPixmap(corner, icon.pixmap(size, size));
        corner.rx() += size + spacing;
    }
}

bool draw(Appearance appearance, const QString& file)
{
    const QStringList names = icons::names();
    const int symbolsHeight = rowsOf(names.size()) * cellHeight;
    QImage sheet(columns * cellWidth + 2 * margin, symbolsHeight + applicationSizes.back() + 2 * margin,
                 QImage::Format_RGB32);
    sheet.fill(systemColor(SystemColor::windowBackground, appearance));
    QPainter painter(&sheet);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(style::interfaceFont(style::typeSize::caption));
    int cell = 0;
    for (const QString& name : names) {
        drawSymbol(painter, name, QPoint(margin + cell % columns * cellWidth, margin + cell / columns * cellHeight),
                   appearance);
        ++cell;
    }
    drawApplicationIcon(painter, QPoint(margin, margin + symbolsHeight));
    painter.end();
    return saveSmall(sheet, file);
}

} // namespace

bool drawSymbolSheets(const QDir& folder)
{
    return draw(Appearance::dark, folder.filePath(QStringLiteral("icons-dark.png"))) &&
           draw(Appearance::light, folder.filePath(QStringLiteral("icons-light.png")));
}

} // namespace kelm::screenshots
