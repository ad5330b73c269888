#include "platform/view/divider.h"

#include "platform/style/view/tint.h"

#include <QPainter>

namespace kelm {

namespace {

constexpr double opacity = 0.15;

} // namespace

Divider::Divider(Qt::Orientation orientation, QWidget* parent) : QWidget(parent)
{
    if (orientation == Qt::Horizontal) {
        setFixedHeight(1);
    } else {
        setFixedWidth(1);
    }
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void Divider::paintEvent(QPaintEvent*)
{
    QPainter(this).fillRect(rect(), Tint::primary().at(opacity).on(*this));
}

} // namespace kelm
