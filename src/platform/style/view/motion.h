// Whether things move on the screen.
#pragma once

class QObject;
class QVariantAnimation;
class QWidget;

namespace kelm::style {

/// Lets the application's widgets move and carets blink as the desktop asks for, now and when it changes its mind.
/// What is looked after goes with `owner`.
void followMotionWishes(QObject& owner);

/// Lets everything move, or nothing. Main thread only.
void setAnimated(bool isAnimated);

/// What was set so; everything moves at first.
bool isAnimated();

/// Runs an animation in its direction, or takes it to its end at once where nothing is to move.
void run(QVariantAnimation& animation);

} // namespace kelm::style
