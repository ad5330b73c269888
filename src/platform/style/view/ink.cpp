#include "platform/style/view/ink.h"

#include "platform/style/view/style.h"

namespace kelm::style {

namespace {

struct InkRow
{
    SystemColor hue;
    QColor onDark;
    QColor onLight;
};

/// Each is read on the window's ground and on that of fields, and on thin layers of its own hue over them; red and
/// green also on the thick layers that mark the words of a changed line.
constexpr InkRow inkRows[] = {
    {SystemColor::red, {255, 156, 148}, {161, 0, 12}},      {SystemColor::orange, {255, 159, 10}, {150, 72, 0}},
    {SystemColor::yellow, {255, 214, 10}, {122, 88, 0}},    {SystemColor::green, {120, 240, 135}, {0, 104, 30}},
    {SystemColor::cyan, {90, 200, 245}, {0, 98, 138}},      {SystemColor::blue, {96, 172, 255}, {0, 84, 184}},
    {SystemColor::purple, {214, 150, 255}, {128, 44, 178}}, {SystemColor::gray, {168, 168, 173}, {92, 92, 97}},
};

} // namespace

QColor ink(const Tint& tint, Appearance appearance)
{
    QColor color = tint.in(appearance);
    for (const InkRow& row : inkRows) {
        if (systemColor(row.hue, appearance).rgb() == color.rgb()) {
            const float opacity = color.alphaF();
            color = appearance == Appearance::dark ? row.onDark : row.onLight;
            color.setAlphaF(opacity);
            return color;
        }
    }
    return color;
}

QColor ink(const Tint& tint, const QWidget& widget)
{
    return ink(tint, appearanceOf(widget));
}

} // namespace kelm::style
