#include "platform/style/view/icons.h"

#include "platform/style/view/symbol_drawing.h"
#include "platform/style/view/symbol_icon_engine.h"

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

QString pathOf(const QString& name)
{
    return QStringLiteral(":/icons/%1.svg").arg(name);
}

void logOnce(const QString& name)
{
    static QSet<QString> logged;
    if (!logged.contains(name)) {
        logged.insert(name);
        qWarning("There is no symbol named \"%s\"", qUtf8Printable(name));
    }
}

QByteArray readDrawing(const QString& name)
{
    QFile file(pathOf(name));
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
}

/// The shape of a symbol in a square of `extent` device pixels, in black. It is kept as well as the tinted ones, since
/// finding its place takes longer than tinting, and the same symbol comes in several tints.
QPixmap shape(const QString& name, qreal pointSize, int extent)
{
    const QString key = QStringLiteral("kelm-shape/%1/%2/%3").arg(name).arg(extent).arg(pointSize);
    QPixmap shape;
    if (!QPixmapCache::find(key, &shape)) {
        shape = QPixmap::fromImage(drawSymbol(readDrawing(name), pointSize, extent));
        if (shape.isNull()) {
            logOnce(name);
            return {};
        }
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

QIcon icon(const QString& name, SystemColor hue)
{
    return QIcon(new SymbolIconEngine(name, hue));
}

QIcon application()
{
    constexpr std::array extents{16, 22, 24, 32, 48, 64, 128, 256};
    QSvgRenderer renderer(QStringLiteral(":/icons/app/kelmwright.svg"));
    QIcon icon;
    for (const int extent : extents) {
        QPixmap pixmap(extent, extent);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        renderer.render(&painter);
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

} // namespace kelm::icons
