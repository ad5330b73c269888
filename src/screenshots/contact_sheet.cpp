#include "screenshots/contact_sheet.h"

#include "platform/desktop/named_colors.h"
#include "platform/style/view/style.h"
#include "platform/style/view/tint.h"
#include "screenshots/small_png.h"

#include <QPainter>

namespace kelm::screenshots {

namespace {

constexpr int columns = 6;
constexpr QSize cell(276, 175);
constexpr int captionHeight = 22;
constexpr int margin = 16;
const QString lightSuffix = QStringLiteral("light");

QStringList picturesOf(const std::vector<Shot>& shots, const QDir& folder, Appearance appearance)
{
    QStringList names;
    for (const Shot& shot : shots) {
        for (const auto& [theme, suffix] : shot.themes) {
            const QString name = QString::fromLatin1(shot.name) + u'-' + suffix;
            const bool isOfSheet = (suffix == lightSuffix) == (appearance == Appearance::light);
            if (isOfSheet && folder.exists(name + QStringLiteral(".png"))) {
                names.append(name);
            }
        }
    }
    return names;
}

void drawCell(QPainter& painter, QPoint corner, const QString& name, const QImage& picture, Appearance appearance)
{
    const QImage small =
        picture.convertToFormat(QImage::Format_RGB32).scaled(cell, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    painter.drawImage(corner + QPoint((cell.width() - small.width()) / 2, cell.height() - small.height()), small);
    painter.setPen(Tint::secondary().in(appearance));
    painter.drawText(QRect(corner.x(), corner.y() + cell.height(), cell.width(), captionHeight),
                     Qt::AlignHCenter | Qt::AlignVCenter, name);
}

bool draw(const std::vector<Shot>& shots, const QDir& folder, Appearance appearance, const QString& file)
{
    const QStringList names = picturesOf(shots, folder, appearance);
    const int rows = (static_cast<int>(names.size()) + columns - 1) / columns;
    const QSize step = cell + QSize(margin, captionHeight + margin);
    QImage sheet(margin + columns * step.width(), margin + rows * step.height(), QImage::Format_RGB32);
    sheet.fill(systemColor(SystemColor::windowBackground, appearance));
    QPainter painter(&sheet);
    painter.setFont(style::interfaceFont(style::typeSize::subheadline));
    int index = 0;
    for (const QString& name : names) {
        const QPoint corner(margin + index % columns * step.width(), margin + index / columns * step.height());
        drawCell(painter, corner, name, QImage(folder.filePath(name + QStringLiteral(".png"))), appearance);
        ++index;
    }
    painter.end();
    return saveSmall(sheet, folder.filePath(file));
}

} // namespace

bool drawContactSheets(const std::vector<Shot>& shots, const QDir& folder)
{
    return draw(shots, folder, Appearance::dark, QStringLiteral("contact_sheet_dark.png")) &&
           draw(shots, folder, Appearance::light, QStringLiteral("contact_sheet_light.png"));
}

} // namespace kelm::screenshots
