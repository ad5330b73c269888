#include "search/view/overlay_card.h"

#include "platform/style/view/tint.h"
#include "platform/view/accessible_role.h"

#include <QPainter>

namespace kelm {

namespace {

constexpr qreal cornerRadius = 12;
constexpr double shadowOpacity = 0.33;

/// Rings of falling opacity, which add up to a soft edge.
void paintShadow(QPainter& painter, const QRectF& box, int radius)
{
    painter.setPen(Qt::NoPen);
    for (int step = radius; step > 0; --step) {
        const double rest = 1.0 - double(step) / (radius + 1);
        QColor color(Qt::black);
        // The sum over all rings is the shadow's opacity, most of it near the card.
        color.setAlphaF(static_cast<float>(shadowOpacity * 2 * rest / radius));
        painter.setBrush(color);
        painter.drawRoundedRect(box.adjusted(-step, -step, step, step), cornerRadius + step, cornerRadius + step);
    }
}

} // namespace

OverlayCard::OverlayCard(int width, int shadowRadius, QWidget* parent) : QWidget(parent), shadowRadius_(shadowRadius)
{
    setAccessibleRole(*this, QAccessible::Dialog);
    QAccessible::State state;
    state.modal = true;
    setAccessibleState(*this, state);
    setContentsMargins(shadowRadius, shadowRadius, shadowRadius, shadowRadius);
    setFixedWidth(width + 2 * shadowRadius);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void OverlayCard::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF box(contentsRect());
    paintShadow(painter, box, shadowRadius_);
    painter.setBrush(Tint(SystemColor::windowBackground).on(*this));
    painter.drawRoundedRect(box, cornerRadius, cornerRadius);
    painter.setPen(QPen(Tint::primary().at(0.12).on(*this), 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(box.adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius, cornerRadius);
}

} // namespace kelm
