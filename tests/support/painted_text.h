// Looking for text in what was painted.
#pragma once

#include "platform/style/view/ink.h"
#include "support/painted.h"

#include <QFont>
#include <QFontMetrics>
#include <QImage>
#include <QPainter>

namespace kelm::test {

/// A colour of the dark appearance over what is painted already.
inline QColor over(const QColor& ground, const Tint& tint)
{
    return over(ground, tint.in(Appearance::dark));
}

/// Letters in a colour of the dark appearance over what is painted already.
inline QColor inkOver(const QColor& ground, const Tint& tint)
{
    return over(ground, style::ink(tint, Appearance::dark));
}

/// The smallest rectangle within `place` that holds all that is drawn on the ground; empty when that is nothing.
inline QRect inkRect(const QImage& picture, const QRect& place, const QColor& ground)
{
    QRect ink;
    for (int y = place.top(); y <= place.bottom(); ++y) {
        for (int x = place.left(); x <= place.right(); ++x) {
            if (!isNear(picture.pixelColor(x, y), ground)) {
                ink |= QRect(x, y, 1, 1);
            }
        }
    }
    return ink;
}

/// What is drawn on the ground within `place`, without the room around it.
inline QImage ink(const QImage& picture, const QRect& place, const QColor& ground)
{
    const QRect found = inkRect(picture, place, ground);
    return found.isEmpty() ? QImage() : picture.copy(found);
}

/// A text as it has to be drawn, without the room around it. `fraction` is the part of a pixel at which it starts.
inline QImage inkOf(const QString& text, const QFont& font, const Tint& tint, const QColor& ground, qreal fraction = 0)
{
    constexpr int room = 20;
    const QFontMetrics metrics(font);
    QImage picture(metrics.horizontalAdvance(text) + 2 * room, metrics.height() + 2 * room, QImage::Format_RGB32);
    picture.fill(ground);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(font);
    painter.setPen(style::ink(tint, Appearance::dark));
    painter.drawText(QPointF(room + fraction, room + metrics.ascent()), text);
    painter.end();
    return ink(picture, picture.rect(), ground);
}

/// Whether `drawn`, without the room around it, is a text that may start at any part of a pixel, as one does that is
/// centred or ends at the right.
inline bool isText(const QImage& drawn, const QString& text, const QFont& font, const Tint& tint, const QColor& ground)
{
    constexpr int parts = 64;
    for (int part = 0; part < parts; ++part) {
        if (isSame(drawn, inkOf(text, font, tint, ground, qreal(part) / parts))) {
            return true;
        }
    }
    return false;
}

} // namespace kelm::test
