#include "screenshots/contact_sheet.h"

#include "platform/style/view/icons.h"
#include "platform/style/view/style.h"
#include "platform/style/view/tint.h"

#include <QPainter>

#include <array>

namespace kelm::screenshots {

namespace {

/// In points: those of buttons and rows, of the sidebar, and of the pages that say that there is nothing.
constexpr std::array sizes{9, 12, 16, 24, 60};
constexpr std::array applicationSizes{16, 22, 24, 32, 48, 64, 128, 256};
constexpr int columns = 5;
constexpr int cellWidth = 224;
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
    for (const int size : sizes) {
        const QRect box(x, corner.y() + (rowHeight - size) / 2, size, size);
        icons::paint(painter, name, box, Tint::primary().in(appearance));
        x += size + spacing;
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
    return sheet.save(file, "PNG", 0);
}

} // namespace

bool drawContactSheets(const QDir& folder)
{
    return draw(Appearance::dark, folder.filePath(QStringLiteral("icons-dark.png"))) &&
           draw(Appearance::light, folder.filePath(QStringLiteral("icons-light.png")));
}

} // namespace kelm::screenshots
