#include "workbench/view/rounded_group.h"

#include "platform/style/view/style.h"
#include "platform/style/view/tint.h"

#include <QPainter>

namespace kelm {

namespace {

constexpr double groupOpacity = 0.1;

} // namespace

void RoundedGroup::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Tint::secondary().at(groupOpacity).on(*this));
    painter.drawRoundedRect(rect(), style::radius::card, style::radius::card);
}

} // namespace kelm
