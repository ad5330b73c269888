// Looking at what was drawn.
#pragma once

#include "platform/view/tint.h"

#include <QFont>
#include <QFontMetrics>
#include <QImage>
#include <QPainter>

#include <cmath>
#include <cstdlib>

namespace kelm::test {

/// A colour of the dark appearance over what is painted already.
inline QColor over(const QColor& ground, const Tint& tint)
{
    const QColor color = tint.in(Appearance::dark);
    const double alpha = color.alphaF();
    const auto mix = [alpha](double below, double above) { return float(below * (1 - alpha) + above * alpha); };
    return QColor::fromRgbF(mix(ground.redF(), color.redF()), mix(ground.greenF(), color.greenF()),
                            mix(ground.blueF(), color.blueF()));
}

inline bool isNear(const QColor& a, const QColor& b)
{
    constexpr int tolerance = 3;
    return std::abs(a.red() - b.red()) <= tolerance && std::abs(a.green() - b.green()) <= tolerance &&
           std::abs(a.blue() - b.blue()) <= tolerance;
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
    painter.setPen(tint.in(Appearance::dark));
    painter.drawText(QPointF(room + fraction, room + metrics.ascent()), text);
    painter.end();
    return ink(picture, picture.rect(), ground);
}

/// Whether two pictures show the same; one of nothing is like no other.
inline bool areNear(const QImage& a, const QImage& b)
{
    if (a.isNull() || a.size() != b.size()) {
        return false;
    }
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            if (!isNear(a.pixelColor(x, y), b.pixelColor(x, y))) {
                return false;
            }
        }
    }
    return true;
}

} // namespace kelm::test
