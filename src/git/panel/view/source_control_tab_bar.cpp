#include "git/panel/view/source_control_tab_bar.h"

#include "platform/style/view/icons.h"
#include "platform/style/view/ink.h"
#include "platform/style/view/style.h"
#include "platform/style/view/tint.h"

#include <QFocusEvent>
#include <QPainter>

#include <algorithm>

namespace kelm {

namespace {

constexpr qreal cornerRadius = 5;
constexpr double selectedOpacity = 0.18;
constexpr double labelOpacity = 0.85;
constexpr double badgeOpacity = 0.25;

constexpr int symbolSize = 12;
constexpr int padding = 5;
constexpr int spacing = 3;
constexpr int badgePadding = 4;
constexpr int badgeHeight = 14;
constexpr int buttonHeight = 24;
constexpr int margin = 4;
constexpr int gap = 2;

QFont labelFont()
{
    return style::interfaceFont(style::typeSize::subheadline);
}

QFont badgeFont()
{
    return style::interfaceFont(style::typeSize::caption, QFont::Medium);
}

} // namespace

SourceControlTabButton::SourceControlTabButton(SourceControlTab tab, QWidget* parent)
    : QAbstractButton(parent), tab_(tab)
{
    setText(label(tab));
    setAccessibleName(label(tab));
    setCheckable(true);
    setAutoExclusive(true);
    setFocusPolicy(Qt::TabFocus);
}

void SourceControlTabButton::setBadge(std::optional<qsizetype> count)
{
    const QString badge = count.value_or(0) > 0 ? QString::number(*count) : QString();
    if (badge == badge_) {
        return;
    }
    badge_ = badge;
    setAccessibleName(badge.isEmpty() ? text() : text() + QStringLiteral(", ") + badge);
    updateGeometry();
    update();
}

int SourceControlTabButton::badgeWidth() const
{
    return std::max(badgeHeight, QFontMetrics(badgeFont()).horizontalAdvance(badge_) + 2 * badgePadding);
}

QSize SourceControlTabButton::sizeHint() const
{
    int width = padding + symbolSize + spacing + QFontMetrics(labelFont()).horizontalAdvance(text()) + 1 + padding;
    if (!badge_.isEmpty()) {
        width += spacing + badgeWidth();
    }
    return {width, buttonHeight};
}

void SourceControlTabButton::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    // The others stand on nothing, also under the mouse.
    if (isChecked()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(Tint::accent().at(selectedOpacity).on(*this));
        painter.drawRoundedRect(QRectF(rect()), cornerRadius, cornerRadius);
    }

    const QColor color = style::ink(isChecked() ? Tint::accent() : Tint::primary().at(labelOpacity), *this);
    icons::paint(painter, symbol(tab_), QRectF(padding, (height() - symbolSize) / 2.0, symbolSize, symbolSize), color);
    const int badgeSpace = badge_.isEmpty() ? 0 : spacing + badgeWidth();
    const QFontMetrics metrics(labelFont());
    const int left = padding + symbolSize + spacing;
    const int room = std::max(0, width() - left - padding - badgeSpace);
    const int labelWidth = std::min(room, metrics.horizontalAdvance(text()) + 1);
    painter.setFont(labelFont());
    painter.setPen(color);
    painter.drawText(QRect(left, 0, labelWidth, height()), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                     metrics.elidedText(text(), Qt::ElideRight, labelWidth));
    if (!badge_.isEmpty()) {
        const QRectF box(left + labelWidth + spacing, (height() - badgeHeight) / 2.0, badgeWidth(), badgeHeight);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Tint::accent().at(badgeOpacity).on(*this));
        painter.drawRoundedRect(box, badgeHeight / 2.0, badgeHeight / 2.0);
        painter.setFont(badgeFont());
        painter.setPen(Tint::primary().on(*this));
        painter.drawText(box, Qt::AlignCenter, badge_);
    }
    if (focusSign_.isShown()) {
        style::drawFocusRing(painter, QRectF(rect()), cornerRadius, *this);
    }
}

void SourceControlTabButton::focusInEvent(QFocusEvent* event)
{
    focusSign_.follow(*event);
    QAbstractButton::focusInEvent(event);
}

void SourceControlTabButton::focusOutEvent(QFocusEvent* event)
{
    focusSign_.follow(*event);
    QAbstractButton::focusOutEvent(event);
}

SourceControlTabBar::SourceControlTabBar(QWidget* parent) : QWidget(parent)
{
    for (const SourceControlTab tab : allSourceControlTabs) {
        auto* button = new SourceControlTabButton(tab, this);
        buttons_[static_cast<std::size_t>(tab)] = button;
        group_.addButton(button);
        connect(button, &QAbstractButton::toggled, this, [this, tab](bool isChecked) {
            if (isChecked) {
                selectedTab_ = tab;
                Q_EMIT selectedTabChanged(tab);
            }
        });
    }
    button(selectedTab_).setChecked(true);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void SourceControlTabBar::select(SourceControlTab tab)
{
    button(tab).setChecked(true);
}

void SourceControlTabBar::setBadge(SourceControlTab tab, std::optional<qsizetype> count)
{
    button(tab).setBadge(count);
    updateGeometry();
    place();
}

int SourceControlTabBar::columnsFor(int width) const
{
    int widest = 0;
    for (const SourceControlTabButton* button : buttons_) {
        widest = std::max(widest, button->sizeHint().width());
    }
    for (const int columns : {6, 3}) {
        if (2 * margin + columns * widest + (columns - 1) * gap <= width) {
            return columns;
        }
    }
    return 2;
}

int SourceControlTabBar::heightForWidth(int width) const
{
    const int lines = static_cast<int>(buttons_.size()) / columnsFor(width);
    return 2 * margin + lines * buttonHeight + (lines - 1) * gap;
}

QSize SourceControlTabBar::sizeHint() const
{
    constexpr int usualWidth = 260;
    return {usualWidth, heightForWidth(usualWidth)};
}

QSize SourceControlTabBar::minimumSizeHint() const
{
    constexpr int leastWidth = 160;
    return {leastWidth, buttonHeight + 2 * margin};
}

void SourceControlTabBar::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    place();
}

void SourceControlTabBar::place()
{
    const int columns = columnsFor(width());
    const int room = width() - 2 * margin - (columns - 1) * gap;
    for (int i = 0; i < static_cast<int>(buttons_.size()); ++i) {
        const int column = i % columns;
        const int left = margin + column * gap + room * column / columns;
        const int right = margin + column * gap + room * (column + 1) / columns;
        const int top = margin + i / columns * (buttonHeight + gap);
        buttons_[static_cast<std::size_t>(i)]->setGeometry(left, top, right - left, buttonHeight);
    }
}

} // namespace kelm
