#include "run/view/end_follower.h"

#include "platform/events/main_queue.h"
#include "text/view/text_view.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QWheelEvent>

#include <utility>

namespace kelm {

namespace {

bool scrollsBack(const QWheelEvent& event)
{
    return event.pixelDelta().y() > 0 || event.angleDelta().y() > 0;
}

bool scrollsBack(const QKeyEvent& event)
{
    return event.matches(QKeySequence::MoveToPreviousPage) || event.matches(QKeySequence::SelectPreviousPage) ||
           event.matches(QKeySequence::MoveToPreviousLine) || event.matches(QKeySequence::SelectPreviousLine) ||
           event.matches(QKeySequence::MoveToStartOfDocument) || event.matches(QKeySequence::SelectStartOfDocument);
}

} // namespace

EndFollower::EndFollower(TextView& view, std::function<void()> scrollToEnd)
    : QObject(&view), view_(view), scroll_(std::move(scrollToEnd))
{
    if (!scroll_) {
        scroll_ = [this] { this->scrollToEnd(); };
    }
    view.installEventFilter(this);
    view.viewport()->installEventFilter(this);
    const QScrollBar* bar = view.verticalScrollBar();
    connect(bar, &QScrollBar::actionTriggered, this,
            [this, bar] { isFollowing_ = bar->sliderPosition() >= bar->maximum(); });
}

void EndFollower::willAppend()
{
    isFollowing_ = isFollowing_ || isAtEnd();
    if (view_.editor().selections().hasText()) {
        keptSelections_ = view_.editor().selections();
    }
}

void EndFollower::didAppend()
{
    if (const auto kept = std::exchange(keptSelections_, {})) {
        view_.editor().setSelections(*kept);
    }
    if (isFollowing()) {
        scroll_();
    }
}

void EndFollower::scrollToEnd()
{
    view_.scrollToY(view_.pageHeight());
    if (!std::exchange(isSettling_, true)) {
        onMainQueue(this, [this] { settleAtEnd(); });
    }
}

void EndFollower::settleAtEnd()
{
    isSettling_ = false;
    if (isFollowing()) {
        // Rows that come into sight may be more than was estimated, and push the end down.
        for (qreal height = -1; height != view_.pageHeight(); view_.visibleRows()) {
            height = view_.pageHeight();
            view_.scrollToY(height);
        }
    }
}

bool EndFollower::isAtEnd() const
{
    return view_.verticalScrollBar()->value() >= view_.verticalScrollBar()->maximum();
}

bool EndFollower::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::Wheel:
        if (scrollsBack(*static_cast<QWheelEvent*>(event))) {
            isFollowing_ = false;
        }
        break;
    case QEvent::KeyPress:
        if (watched == &view_ && scrollsBack(*static_cast<QKeyEvent*>(event))) {
            isFollowing_ = false;
        }
        break;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        // The others drag nothing, and a menu takes the release of the one that opens it.
        if (static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton) {
            pressMouse();
        }
        break;
    case QEvent::MouseMove:
    case QEvent::MouseButtonRelease:
        // A drag of the text to elsewhere, and whoever else takes the mouse, takes the release as well.
        if (!static_cast<QMouseEvent*>(event)->buttons().testFlag(Qt::LeftButton)) {
            releaseMouse();
        }
        break;
    case QEvent::Hide:
        endPress();
        break;
    case QEvent::Resize:
        if (watched == view_.viewport() && isFollowing() && !std::exchange(isSettling_, true)) {
            onMainQueue(this, [this] { settleAtEnd(); });
        }
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

void EndFollower::pressMouse()
{
    isMouseDown_ = true;
    valueAtMouseDown_ = view_.verticalScrollBar()->value();
}

void EndFollower::releaseMouse()
{
    if (isMouseDown_) {
        endPress();
        didAppend();
    }
}

void EndFollower::endPress()
{
    if (std::exchange(isMouseDown_, false)) {
        // A drag that scrolled the text is a look back; a click or a selection on screen is none.
        isFollowing_ = isFollowing_ && view_.verticalScrollBar()->value() == valueAtMouseDown_;
    }
}

} // namespace kelm
