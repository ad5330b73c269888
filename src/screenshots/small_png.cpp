#include "screenshots/small_png.h"

#include <QHash>

#include <algorithm>
#include <climits>
#include <cmath>
#include <vector>

namespace kelm::screenshots {

namespace {

constexpr qsizetype mostColors = 96;

struct Counted
{
    QRgb color;
    int pixels;
};

/// All colours, the most frequent first.
std::vector<Counted> colorsOf(const QImage& image)
{
    QHash<QRgb, int> counts;
    for (int y = 0; y < image.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            ++counts[line[x]];
        }
    }
    std::vector<Counted> colors;
    colors.reserve(static_cast<std::size_t>(counts.size()));
    for (auto each = counts.cbegin(); each != counts.cend(); ++each) {
        colors.push_back({each.key(), each.value()});
    }
    std::sort(colors.begin(), colors.end(), [](const Counted& left, const Counted& right) {
        return left.pixels != right.pixels ? left.pixels > right.pixels : left.color < right.color;
    });
    return colors;
}

int channel(QRgb color, int index)
{
    return static_cast<int>(color >> (8 * index) & 0xff);
}

int distance(QRgb left, QRgb right)
{
    int sum = 0;
    for (int index = 0; index < 3; ++index) {
        const int apart = channel(left, index) - channel(right, index);
        sum += apart * apart;
    }
    return sum;
}

/// The most frequent colour, and again and again the one that would be farthest from those before it, by how far it is
/// and how many pixels have it: a colour of a few letters stays as well as that of a large ground.
QList<QRgb> tableOf(const std::vector<Counted>& colors)
{
    QList<QRgb> table{colors.front().color};
    std::vector<int> distances(colors.size(), INT_MAX);
    while (table.size() < mostColors) {
        double worst = 0;
        std::size_t next = 0;
        for (std::size_t index = 0; index < colors.size(); ++index) {
            distances[index] = std::min(distances[index], distance(colors[index].color, table.constLast()));
            const double error = distances[index] * std::sqrt(colors[index].pixels);
            if (error > worst) {
                worst = error;
                next = index;
            }
        }
        if (worst == 0) {
            break;
        }
        table.append(colors[next].color);
    }
    return table;
}

uchar nearest(const QList<QRgb>& table, QRgb color)
{
    const auto found = std::min_element(table.begin(), table.end(), [color](QRgb left, QRgb right) {
        return distance(left, color) < distance(right, color);
    });
    return static_cast<uchar>(found - table.begin());
}

} // namespace

QImage withColorTable(const QImage& image)
{
    const QImage source = image.convertToFormat(QImage::Format_RGB32);
    const std::vector<Counted> colors = colorsOf(source);
    const QList<QRgb> table = tableOf(colors);
    QHash<QRgb, uchar> entries;
    for (const Counted& each : colors) {
        entries.insert(each.color, nearest(table, each.color));
    }
    QImage result(source.size(), QImage::Format_Indexed8);
    result.setColorTable(table);
    for (int y = 0; y < source.height(); ++y) {
        const auto* from = reinterpret_cast<const QRgb*>(source.constScanLine(y));
        uchar* to = result.scanLine(y);
        for (int x = 0; x < source.width(); ++x) {
            to[x] = entries.value(from[x]);
        }
    }
    return result;
}

bool saveSmall(const QImage& image, const QString& file)
{
    return withColorTable(image).save(file, "PNG", 0);
}

} // namespace kelm::screenshots
