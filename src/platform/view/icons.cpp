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
    if (!file.open(QFile::ReadOnly)) {
        return {};
    }
    return file.readAll().replace("stroke-width=\"1.75\"", "stroke-width=\"" + QByteArray::number(stroke) + '"');
}

QImage drawIn(QSvgRenderer& renderer, int extent, const QRectF& box)
{
    QImage image(extent, extent, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.render(&painter, box);
    return image;
}

/// How much of the ink lies in pixels that are covered whole, from 0 to 1: what has edges between pixels has less.
qreal sharpnessOf(const QImage& image)
{
    qint64 ink = 0;
    qint64 squares = 0;
    for (int y = 0; y < image.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            ink += qAlpha(line[x]);
            squares += qAlpha(line[x]) * qAlpha(line[x]);
        }
    }
    return ink == 0 ? 0 : static_cast<qreal>(squares) / static_cast<qreal>(ink * 255);
}

/// The part of its square that a drawing needs, with the square's side as the unit.
QRectF boundsOf(QSvgRenderer& renderer)
{
    constexpr int extent = 72;
    const QImage image = drawIn(renderer, extent, QRectF(0, 0, extent, extent));
    QRect bounds;
    for (int y = 0; y < extent; ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < extent; ++x) {
            if (qAlpha(line[x]) > 0) {
                bounds |= QRect(x, y, 1, 1);
            }
        }
    }
    return QTransform::fromScale(1.0 / extent, 1.0 / extent).mapRect(QRectF(bounds));
}

/// Draws at the place and in the size at which the edges fall on those of pixels best: in the middle or half a pixel
/// aside, and up to a pixel smaller or larger.
QImage drawSharpest(QSvgRenderer& renderer, int extent)
{
    // Where strokes are wide, an edge between pixels does not show.
    constexpr int largestFitted = 20;
    constexpr std::array steps{0.0, -1 / 3.0, 1 / 3.0, -2 / 3.0, 2 / 3.0, 4 / 3.0};
    constexpr std::array shifts{QPointF(0, 0), QPointF(0.5, 0.5), QPointF(0.5, 0), QPointF(0, 0.5)};
    // What is not as it was drawn has to be worth it.
    constexpr qreal gainOfShift = 1.02;
    constexpr qreal gainOfStep = 1.05;
    const QRectF paper(0, 0, extent, extent);
    QImage best = drawIn(renderer, extent, paper);
    if (extent > largestFitted) {
        return best;
    }
    const QRectF bounds = boundsOf(renderer);
    qreal sharpest = sharpnessOf(best);
    for (const qreal step : steps) {
        const qreal size = extent + step;
        qreal least = sharpest * (step == 0 ? gainOfShift : gainOfStep);
        for (const QPointF& shift : shifts) {
            const QRectF box(QPointF(-step / 2, -step / 2) + shift, QSizeF(size, size));
            const QRectF ink(box.topLeft() + bounds.topLeft() * size, bounds.size() * size);
            if (!paper.contains(ink)) {
                continue;
            }
            QImage image = drawIn(renderer, extent, box);
            if (const qreal sharpness = sharpnessOf(image); sharpness > least) {
                least = sharpness;
                sharpest = sharpness;
                best = std::move(image);
            }
        }
    }
    return best;
}

/// The shape of a symbol in a square of `extent` device pixels, in black. It is kept as well as the tinted ones, since
/// finding its place takes longer than tinting, and the same symbol comes in several tints.
QPixmap shape(const QString& name, qreal pointSize, int extent)
{
    const QString key = QStringLiteral("kelm-shape/%1/%2/%3").arg(name).arg(extent).arg(pointSize);
    QPixmap shape;
    if (!QPixmapCache::find(key, &shape)) {
        QSvgRenderer renderer(readDrawing(name, strokeWidth(pointSize, extent)));
        if (!renderer.isValid()) {
            logOnce(name);
            return {};
        }
        shape = QPixmap::fromImage(drawSharpest(renderer, extent));
        QPixmapCache::insert(key, shape);
    }
    return shape;
}

QPixmap tinted(QPixmap shape, const QColor& tint)
{
    if (!shape.isNull()) {
        QPainter painter(&shape);
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(shape.rect(), tint);
    }
    return shape;
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
    if (name.isEmpty() || extent <= 0) {
        return {};
    }
    const QString key =
        QStringLiteral("kelm-symbol/%1/%2/%3/%4").arg(name).arg(extent).arg(devicePixelRatio).arg(tint.rgba(), 8, 16);
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        pixmap = tinted(shape(name, pointSize, extent), tint);
        if (pixmap.isNull()) {
            return {};
        }
        pixmap.setDevicePixelRatio(devicePixelRatio);
        QPixmapCache::insert(key, pixmap);
    }
    return pixmap;
}

void paint(QPainter& painter, const QString& name, const QRectF& rectangle, const QColor& tint)
{
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
        icon.addPixmap(QPixmap::fromImage(drawIn(renderer, extent, QRectF(0, 0, extent, extent))));
    }
    return icon;
}

} // namespace kelm::icons
