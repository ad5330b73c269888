#include "workbench/view/tool_bar_buttons.h"

#include "platform/text/platform_words.h"

#include <QPainter>

#include <utility>

namespace kelm {

namespace {

constexpr QSize squareSize(28, 28);
constexpr int symbolSize = 16;
constexpr double activeOpacity = 0.15;
constexpr double lineOpacity = 0.15;

} // namespace

ToolbarButton::ToolbarButton(const QString& icon, const QString& help, std::function<void()> action, QWidget* parent)
    : PlainButton({.symbol = icon, .symbolSize = symbolSize, .fixedSize = squareSize}, parent)
{
    setHelp(inPlatformWords(help));
    if (action) {
        connect(this, &PlainButton::clicked, this, std::move(action));
    }
}

ToolbarToggleButton::ToolbarToggleButton(const QString& icon, const QString& help, bool isActive,
                                         std::function<void()> action, QWidget* parent)
    : PlainButton({.symbol = icon,
                   .symbolSize = symbolSize,
                   .checkedTint = Tint::accent(),
                   .checkedGround = Tint::accent().at(activeOpacity),
                   .fixedSize = squareSize},
                  parent),
      isActive_(isActive)
{
    setHelp(inPlatformWords(help));
    setCheckable(true);
    setChecked(isActive);
    // Screen readers toggle without a click.
    connect(this, &PlainButton::toggled, this, [this, action = std::move(action)](bool on) {
        if (on != isActive_) {
            action();
        }
    });
}

void ToolbarToggleButton::setIsActive(bool isActive)
{
    isActive_ = isActive;
    setChecked(isActive);
}

ToolbarDivider::ToolbarDivider(QWidget* parent) : QWidget(parent)
{
    constexpr QSize size(9, 16);
    setFixedSize(size);
}

void ToolbarDivider::paintEvent(QPaintEvent* /*event*/)
{
    QPainter(this).fillRect(QRect(width() / 2, 0, 1, height()), Tint::primary().at(lineOpacity).on(*this));
}

} // namespace kelm
