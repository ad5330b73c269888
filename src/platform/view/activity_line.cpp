#include "platform/view/activity_line.h"

#include "platform/style/view/motion.h"
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
    if (isActive == isActive_) {
        return;
    }
    isActive_ = isActive;
    step_ = 0;
    if (isActive && style::isAnimated()) {
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
    if (!isActive_) {
        return;
    }
    // Where nothing is to move, the whole line says so.
    const double piece = timer_.isActive() ? width() * pieceShare : width();
    const double left = timer_.isActive() ? (width() + piece) * step_ / stepsAcross - piece : 0;
    QPainter(this).fillRect(QRectF(left, 0, piece, height()), Tint::accent().on(*this));
}

} // namespace kelm
