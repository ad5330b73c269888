// Looking at what is painted.
#pragma once

#include "platform/style/view/icons.h"

#include <QColor>
#include <QImage>
#include <QPainter>
#include <QWidget>

#include <algorithm>

namespace kelm::test {

/// The largest difference of two colours in any of red, green and blue, from 0 to 255.
inline int distance(const QColor& a, const QColor& b)
{
    return std::max({std::abs(a.red() - b.red()), std::abs(a.green() - b.green()), std::abs(a.blue() - b.blue())});
}

/// What is seen where a colour lies over an opaque one.
inline QColor over(const QColor& below, const QColor& color)
{
    const auto mix = [&](float from, float to) { return from + (to - from) * color.alphaF(); };
    return QColor::fromRgbF(mix(below.redF(), color.redF()), mix(below.greenF(), color.greenF()),
                            mix(below.blueF(), color.blueF()));
}

/// How far a colour may be from what it should be where several are laid over each other, each of them rounded.
inline constexpr int roundingTolerance = 3;

inline bool isNear(const QColor& a, const QColor& b)
{
    return distance(a, b) <= roundingTolerance;
}

/// Whether two pictures are of one size and the same, but for the rounding of colours that lie over each other; one of
/// nothing is like no other.
inline bool isSame(const QImage& a, const QImage& b)
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

/// Whether a picture is of one colour.
inline bool isPlain(const QImage& image, const QColor& color)
{
    QImage plain(image.size(), QImage::Format_RGB32);
    plain.fill(color);
    return isSame(image, plain);
}

/// A symbol on a ground. It is an error when there is no such symbol.
inline QImage symbolOn(const QColor& ground, const QString& name, int size, const QColor& tint)
{
    if (!icons::has(name)) {
        qFatal("no symbol '%s'", qPrintable(name));
    }
    QImage image(size, size, QImage::Format_RGB32);
    image.fill(ground);
    QPainter painter(&image);
    icons::paint(painter, name, QRectF(0, 0, size, size), tint);
    return image;
}

/// Whether a widget shows what another shows that takes its extents.
inline bool looksLike(QWidget& shown, QWidget& expected)
{
    expected.resize(shown.size());
    return isSame(shown.grab().toImage(), expected.grab().toImage());
}

} // namespace kelm::test
