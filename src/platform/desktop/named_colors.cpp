#include "platform/desktop/named_colors.h"

#include <algorithm>
#include <cmath>

namespace kelm {

namespace {

struct Shade
{
    int red;
    int green;
    int blue;
    double alpha = 1;
};

struct SystemColorRow
{
    SystemColor color;
    Shade dark;
    Shade light;
};

constexpr SystemColorRow systemColorRows[] = {
    {SystemColor::red, {255, 69, 58}, {255, 59, 48}},
    {SystemColor::orange, {255, 159, 10}, {255, 149, 0}},
    {SystemColor::yellow, {255, 214, 10}, {255, 204, 0}},
    {SystemColor::green, {50, 215, 75}, {40, 205, 65}},
    {SystemColor::cyan, {90, 200, 245}, {85, 190, 240}},
    {SystemColor::blue, {10, 132, 255}, {0, 122, 255}},
    {SystemColor::purple, {191, 90, 242}, {175, 82, 222}},
    {SystemColor::gray, {152, 152, 157}, {142, 142, 147}},
    {SystemColor::primaryLabel, {255, 255, 255, 0.85}, {0, 0, 0, 0.85}},
    {SystemColor::secondaryLabel, {255, 255, 255, 0.60}, {0, 0, 0, 0.60}},
    {SystemColor::windowBackground, {50, 50, 50}, {236, 236, 236}},
    {SystemColor::controlBackground, {30, 30, 30}, {255, 255, 255}},
    {SystemColor::accent, {10, 132, 255}, {0, 122, 255}},
};

} // namespace

QColor systemColor(SystemColor color, Appearance appearance)
{
    const auto* row = std::find_if(std::begin(systemColorRows), std::end(systemColorRows),
                                   [color](const SystemColorRow& each) { return each.color == color; });
    if (row == std::end(systemColorRows)) {
        return {};
    }
    const Shade& shade = appearance == Appearance::dark ? row->dark : row->light;
    return {shade.red, shade.green, shade.blue, int(std::lround(shade.alpha * 255))};
}

} // namespace kelm
