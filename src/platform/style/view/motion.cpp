#include "platform/style/view/motion.h"

#include "platform/desktop/motion_wishes.h"

#include <QApplication>
#include <QVariantAnimation>

namespace kelm::style {

namespace {

/// As long as nobody has set it, the platform says how fast a caret blinks.
constexpr int flashTimeOfPlatform = -1;

bool& animated()
{
    static bool isAnimated = true;
    return isAnimated;
}

void apply(const MotionWishes& wishes)
{
    setAnimated(wishes.wantsAnimations());
    QApplication::setCursorFlashTime(wishes.wantsBlinking() ? flashTimeOfPlatform : 0);
}

} // namespace

void followMotionWishes(QObject& owner)
{
    auto* wishes = new MotionWishes(&owner);
    QObject::connect(wishes, &MotionWishes::changed, wishes, [wishes] { apply(*wishes); });
    apply(*wishes);
}

void setAnimated(bool isAnimated)
{
    animated() = isAnimated;
    if (!isAnimated) {
        for (const Qt::UIEffect effect : {Qt::UI_AnimateMenu, Qt::UI_FadeMenu, Qt::UI_AnimateCombo,
                                          Qt::UI_AnimateTooltip, Qt::UI_FadeTooltip, Qt::UI_AnimateToolBox}) {
            QApplication::setEffectEnabled(effect, false);
        }
    }
}

bool isAnimated()
{
    return animated();
}

void run(QVariantAnimation& animation)
{
    if (!isAnimated()) {
        // An animation that has come to its end, and says so.
        if (animation.state() != QAbstractAnimation::Running) {
            animation.start();
        }
        animation.setCurrentTime(animation.direction() == QAbstractAnimation::Forward ? animation.duration() : 0);
    } else if (animation.state() != QAbstractAnimation::Running) {
        animation.start();
    }
}

} // namespace kelm::style
