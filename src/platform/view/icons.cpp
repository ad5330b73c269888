#include "platform/view/icons.h"

#include "platform/log.h"
#include "platform/view/symbol_icon_engine.h"

#include <QDir>
#include <QFile>
#include <QPainter>
#include <QPixmapCache>
#include <QSet>
#include <QSvgRenderer>

#include <algorithm>
#include <array>
#include <cmath>

namespace kelm::icons {

namespace {

/// The files are drawn on a square of so many units a side, with strokes so wide.
constexpr qreal grid = 24;
constexpr qreal designedStroke = 1.75;

QString pathOf(const QString& name)
{
    return QStringLiteral(":/icons/%1.svg").arg(name);
}

void logOnce(const QString& name)
{
    static QSet<QString> logged;
    if (!logged.contains(name)) {
        logged.insert(name);
        Log::system().write(QStringLiteral("There is no symbol named \"%1\"").arg(name));
    }
}

/// How wide to draw strokes, in units of the grid. A small symbol would be pale with the strokes of the design, as they
/// do not fill a pixel there, and a large one heavy beside the text that it stands with.
qreal strokeWidth(qreal pointSize, int extent)
{
    constexpr qreal widest = 2.25;
    constexpr qreal narrowest = 1.25;
    constexpr qreal largestAsDesigned = 24;
    constexpr qreal sizeOfNarrowest = 60;
    const qreal growth =
        std::clamp((pointSize - largestAsDesigned) / (sizeOfNarrowest - largestAsDesigned), qreal(0), qreal(1));
    const qreal stroke = designedStroke - growth * (designedStroke - narrowest);
    return std::max(stroke, std::min(grid / extent, widest));
}

QByteArray readDrawing(const QString& name, qreal stroke)
{
    QFile file(pathOf(name));
    if (name.isEmpty() || !file.open(QFile::ReadOnly)) {
        return {};
    }
    return file.readAll().replace("stroke-width=\"1.75\"", "stroke-width=\"" + QByteArray::number(stroke) + '"');
}

QImage drawAt(QSvgRenderer& renderer, int extent, QPointF shift)
{
    QImage image(extent, extent, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.render(&painter, QRectF(shift, QSizeF(extent, extent)));
    return image;
}

/// The sum of the squares of the coverage: of two drawings with as much ink, that with the clearer edges has more.
qint64 sharpness(const QImage& image)
{
    qint64 sum = 0;
    for (int y = 0; y < image.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            sum += qAlpha(line[x]) * qAlpha(line[x]);
        }
    }
    return sum;
}

/// Draws at the place where the edges fall on those of pixels best: as it is, or half a pixel aside. Where strokes are
/// wide, half a pixel does not show.
QImage drawSharpest(QSvgRenderer& renderer, int extent)
{
    constexpr int largestShifted = 24;
    constexpr std::array<QPointF, 3> shifts{QPointF(0.5, 0.5), QPointF(0.5, 0), QPointF(0, 0.5)};
    QImage best = drawAt(renderer, extent, {});
    if (extent > largestShifted) {
        return best;
    }
    // A place off the middle has to be worth it.
    qint64 most = sharpness(best) * 21 / 20;
    for (const QPointF& shift : shifts) {
        QImage shifted = drawAt(renderer, extent, shift);
        if (const qint64 sum = sharpness(shifted); sum > most) {
            most = sum;
            best = std::move(shifted);
        }
    }
    return best;
}

/// A symbol in a square of `extent` device pixels.
QPixmap draw(const QString& name, qreal pointSize, int extent, const QColor& tint)
{
    const QByteArray drawing = readDrawing(name, strokeWidth(pointSize, extent));
    QSvgRenderer renderer(drawing);
    if (!renderer.isValid()) {
        logOnce(name);
        return {};
    }
    QImage image = drawSharpest(renderer, extent);
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), tint);
    painter.end();
    return QPixmap::fromImage(std::move(image));
}

/// The part of a transformation that changes sizes.
qreal scaleOf(const QTransform& transform)
{
    return std::sqrt(std::abs(transform.determinant()));
}

} // namespace

QStringList names()
{
    QStringList names = QDir(QStringLiteral(":/icons")).entryList({QStringLiteral("*.svg")}, QDir::Files);
    for (QString& name : names) {
        name.chop(4);
    }
    names.sort();
    return names;
}

bool has(const QString& name)
{
    return !name.isEmpty() && QFile::exists(pathOf(name));
}

QPixmap pixmap(const QString& name, qreal pointSize, const QColor& tint, qreal devicePixelRatio)
{
    const int extent = qRound(pointSize * devicePixelRatio);
    if (extent <= 0) {
        return {};
    }
    const QString key =
        QStringLiteral("kelm-symbol/%1/%2/%3/%4").arg(name).arg(extent).arg(devicePixelRatio).arg(tint.rgba(), 8, 16);
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        pixmap = draw(name, pointSize, extent, tint);
        pixmap.setDevicePixelRatio(devicePixelRatio);
        QPixmapCache::insert(key, pixmap);
    }
    return pixmap;
}

void paint(QPainter& painter, const QString& name, const QRectF& rectangle, const QColor& tint)
{
    if (name.isEmpty()) {
        return;
    }
    const QTransform toDevice = painter.deviceTransform();
    const qreal pointSize = std::min(rectangle.width(), rectangle.height());
    const QPixmap symbol = pixmap(name, pointSize, tint, scaleOf(toDevice));
    if (symbol.isNull()) {
        return;
    }
    const QSizeF size = symbol.deviceIndependentSize();
    QPointF place = rectangle.center() - QPointF(size.width(), size.height()) / 2;
    if (toDevice.type() <= QTransform::TxScale) {
        // On whole device pixels: a symbol that lies between them is blurred.
        place = toDevice.inverted().map(QPointF(toDevice.map(place).toPoint()));
    }
    painter.drawPixmap(place, symbol);
}

QIcon icon(const QString& name)
{
    return QIcon(new SymbolIconEngine(name, std::nullopt));
}

QIcon icon(const QString& name, const QColor& tint)
{
    return QIcon(new SymbolIconEngine(name, tint));
}

QIcon application()
{
    constexpr std::array extents{16, 22, 24, 32, 48, 64, 128, 256};
    QSvgRenderer renderer(QStringLiteral(":/icons/app/kelmwright.svg"));
    QIcon icon;
    for (const int extent : extents) {
        icon.addPixmap(QPixmap::fromImage(drawAt(renderer, extent, {})));
    }
    return icon;
}

} // namespace kelm::icons
