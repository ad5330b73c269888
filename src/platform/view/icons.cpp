#include "platform/view/icons.h"

#include <QDir>
#include <QFile>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

namespace kelm::icons {

namespace {

QString pathOf(const QString& name)
{
    return QStringLiteral(":/icons/%1.svg").arg(name);
}

QPixmap draw(const QString& name, const QSize& size, const QColor& tint)
{
    QPixmap pixmap(size);
    pixmap.fill(Qt::transparent);
    QSvgRenderer renderer(pathOf(name));
    QPainter painter(&pixmap);
    renderer.render(&painter);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(pixmap.rect(), tint);
    return pixmap;
}

} // namespace

QStringList names()
{
    QStringList names = QDir(QStringLiteral(":/icons")).entryList({QStringLiteral("*.svg")}, QDir::Files, QDir::Name);
    for (QString& name : names) {
        name.chop(4);
    }
    return names;
}

bool has(const QString& name)
{
    return QFile::exists(pathOf(name));
}

void paint(QPainter& painter, const QString& name, const QRectF& rectangle, const QColor& tint)
{
    if (name.isEmpty() || !has(name)) {
        return;
    }
    const qreal ratio = painter.device()->devicePixelRatioF();
    const QSize size = (rectangle.size() * ratio).toSize();
    const QString key =
        QStringLiteral("kelm-icon/%1/%2x%3/%4").arg(name).arg(size.width()).arg(size.height()).arg(tint.rgba(), 8, 16);
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        pixmap = draw(name, size, tint);
        pixmap.setDevicePixelRatio(ratio);
        QPixmapCache::insert(key, pixmap);
    }
    // On whole device pixels: a symbol that lies between them is blurred.
    const QPointF place(qRound(rectangle.x() * ratio) / ratio, qRound(rectangle.y() * ratio) / ratio);
    painter.drawPixmap(place, pixmap);
}

} // namespace kelm::icons
