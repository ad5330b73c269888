#include "editor/minimap/view/minimap_painter.h"

#include "platform/style/view/hairline.h"

#include <QPainter>
#include <QWidget>

namespace kelm {

namespace {

/// How far the strip's colour is taken from the text's background.
constexpr qreal tintFraction = 0.04;

QColor blended(const QColor& color, qreal fraction, const QColor& with)
{
    const auto mix = [fraction](float from, float to) { return static_cast<float>(from + (to - from) * fraction); };
    return QColor::fromRgbF(mix(color.redF(), with.redF()), mix(color.greenF(), with.greenF()),
                            mix(color.blueF(), with.blueF()), mix(color.alphaF(), with.alphaF()));
}

QColor withAlpha(QColor color, float alpha)
{
    color.setAlphaF(alpha);
    return color;
}

} // namespace

void paintMinimapBars(QPainter& painter, const std::vector<MinimapBar>& bars, const MinimapGeometry& geometry)
{
    const bool wasSmooth = painter.testRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::Antialiasing);
    for (const MinimapBar& bar : bars) {
        painter.fillRect(QRectF(MinimapGeometry::barLeft + bar.hiddenWidth, bar.y, bar.width - bar.hiddenWidth,
                                geometry.barHeight()),
                         bar.color);
    }
    painter.setRenderHint(QPainter::Antialiasing, wasSmooth);
}

MinimapGeometry minimapGeometry(const QWidget& map, const TextStorage* storage)
{
    const qsizetype lines = storage != nullptr ? minimapLineCount(*storage) : 0;
    return {static_cast<qreal>(map.width()), static_cast<qreal>(map.height()), lines};
}

bool paintMinimap(QPainter& painter, const QWidget& map, const MinimapPicture& picture)
{
    const EditorTheme& theme = picture.theme;
    const QRectF leftEdge(0, 0, hairlineWidth(painter), map.height());
    painter.fillRect(map.rect(),
                     blended(theme.backgroundColor.toColor(), tintFraction, theme.isDark ? Qt::white : Qt::black));
    painter.fillRect(leftEdge, withAlpha(theme.lineNumberColor.toColor(), 0.4F));
    const MinimapGeometry geometry = minimapGeometry(map, picture.storage);
    if (geometry.isDrawable()) {
        const QColor box = theme.isDark ? QColor::fromRgbF(1, 1, 1, 0.1F) : QColor::fromRgbF(0, 0, 0, 0.08F);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.fillRect(geometry.viewportBox(picture.visibleRect), box);
        painter.drawImage(QPointF(), picture.bars.image(*picture.storage, geometry, theme, map.devicePixelRatioF()));
        if (picture.cursorLine && *picture.cursorLine >= 1 && *picture.cursorLine <= geometry.lineCount) {
            const QRectF mark(0, geometry.barY(*picture.cursorLine - 1), geometry.width, geometry.barHeight());
            painter.fillRect(mark, withAlpha(theme.cursorColor.toColor(), 0.5F));
        }
        painter.fillRect(leftEdge, withAlpha(QColor(128, 128, 128), 0.3F));
    }
    // The layer's border lies over everything.
    painter.setRenderHint(QPainter::Antialiasing, false);
    const Hairline border = hairline(painter, QRectF(map.rect()));
    painter.setPen(QPen(QColor::fromRgbF(0.5F, 0.5F, 0.5F, 0.3F), border.width));
    painter.drawRect(border.box);
    return !geometry.isDrawable() || picture.bars.isWhole();
}

void applyMinimapBackground(QWidget& map, const EditorTheme& theme)
{
    QPalette colors = map.palette();
    colors.setColor(QPalette::Window, theme.backgroundColor.toColor());
    map.setPalette(colors);
}

} // namespace kelm
