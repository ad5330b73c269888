#include "platform/view/activity_line.h"

#include "platform/style/view/tint.h"
#include "platform/view/accessible_role.h"

#include <QPainter>

namespace kelm {

namespace {

constexpr int lineHeight = 2;
constexpr int frameMilliseconds = 33;
constexpr int stepsAcross = 40;
constexpr double pieceShare = 0.3;

} // namespace

ActivityLine::ActivityLine(QWidget* parent) : QWidget(parent)
{
    setFixedHeight(lineHeight);
    setAccessibleRole(*this, QAccessible::ProgressBar);
    setAccessibleName(tr("Working"));
    tellState();
    setAttribute(Qt::WA_TransparentForMouseEvents);
    timer_.setInterval(frameMilliseconds);
    connect(&timer_, &QTimer::timeout, this, [this] {
        step_ = (step_ + 1) % stepsAcross;
        update();
    });
}

void ActivityLine::setActive(bool isActive)
{
    if (isActive == timer_.isActive()) {
        return;
    }
    if (isActive) {
        step_ = 0;
        timer_.start();
    } else {
        timer_.stop();
    }
    tellState();
    update();
}

void ActivityLine::tellState()
{
    QAccessible::State state;
    state.busy = isActive();
    state.invisible = !isActive();
    setAccessibleState(*this, state);
}

void ActivityLine::paintEvent(QPaintEvent*)
{
    if (!timer_.isActive()) {
        return;
    }
    const double piece = width() * pieceShare;
    const double left = (width() + piece) * step_ / stepsAcross - piece;
    QPainter(this).fillRect(QRectF(left, 0, piece, height()), Tint::accent().on(*this));
}

} // namespace kelm
