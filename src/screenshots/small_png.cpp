#include "screenshots/small_png.h"

#include <QHash>

#include <algorithm>
#include <vector>

namespace kelm::screenshots {

namespace {

constexpr std::size_t mostColors = 96;
/// How many of the most frequent ones are kept as they are.
constexpr std::size_t keptColors = 64;

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

using Box = std::vector<Counted>;

/// The channel in which the colours of a box are farthest apart, and how far.
std::pair<int, int> widestChannel(const Box& box)
{
    std::pair widest(0, -1);
    for (int index = 0; index < 3; ++index) {
        const auto [least, most] =
            std::minmax_element(box.begin(), box.end(), [index](const Counted& left, const Counted& right) {
                return channel(left.color, index) < channel(right.color, index);
            });
        const int width = channel(most->color, index) - channel(least->color, index);
        if (width > widest.second) {
            widest = {index, width};
        }
    }
    return widest;
}

/// Takes the half of a box's colours that has more of its widest channel away from it.
Box splitOff(Box& box)
{
    const int index = widestChannel(box).first;
    std::sort(box.begin(), box.end(), [index](const Counted& left, const Counted& right) {
        const int first = channel(left.color, index);
        const int second = channel(right.color, index);
        return first != second ? first < second : left.color < right.color;
    });
    const auto middle = box.begin() + static_cast<std::ptrdiff_t>(box.size() / 2);
    Box half(middle, box.end());
    box.erase(middle, box.end());
    return half;
}

QRgb meanOf(const Box& box)
{
    qint64 sums[3] = {};
    qint64 pixels = 0;
    for (const Counted& each : box) {
        for (int index = 0; index < 3; ++index) {
            sums[index] += qint64(channel(each.color, index)) * each.pixels;
        }
        pixels += each.pixels;
    }
    return qRgb(static_cast<int>(sums[2] / pixels), static_cast<int>(sums[1] / pixels),
                static_cast<int>(sums[0] / pixels));
}

QList<QRgb> tableOf(const std::vector<Counted>& colors)
{
    QList<QRgb> table;
    const std::size_t kept = colors.size() <= mostColors ? colors.size() : keptColors;
    for (std::size_t index = 0; index < kept; ++index) {
        table.append(colors[index].color);
    }
    if (kept == colors.size()) {
        return table;
    }
    std::vector<Box> boxes{Box(colors.begin() + keptColors, colors.end())};
    while (boxes.size() < mostColors - keptColors) {
        const auto widest = std::max_element(boxes.begin(), boxes.end(), [](const Box& left, const Box& right) {
            return widestChannel(left).second < widestChannel(right).second;
        });
        if (widest->size() < 2) {
            break;
        }
        Box half = splitOff(*widest);
        boxes.push_back(std::move(half));
    }
    for (const Box& box : boxes) {
        table.append(meanOf(box));
    }
    return table;
}

uchar nearest(const QList<QRgb>& table, QRgb color)
{
    int best = 0;
    int least = INT_MAX;
    for (int entry = 0; entry < table.size() && least > 0; ++entry) {
        int distance = 0;
        for (int index = 0; index < 3; ++index) {
            const int apart = channel(table[entry], index) - channel(color, index);
            distance += apart * apart;
        }
        if (distance < least) {
            least = distance;
            best = entry;
        }
    }
    return static_cast<uchar>(best);
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
