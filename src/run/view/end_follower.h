// Keeping the end of a growing text in sight.
#pragma once

#include "text/editing/selection.h"

#include <QObject>

#include <functional>
#include <optional>

namespace kelm {

class TextView;

/// Scrolls to the end of a text view's text each time text has been added there, but for as long as the person has
/// scrolled back: what they read stays in sight while more text comes, until they scroll to the end again or `resume`
/// says that they are done. Nothing scrolls while the left mouse button is down in the text. Scrolling by the program
/// does not count as scrolling back. A selection that reached the old end does not take in what comes behind it.
class EndFollower final : public QObject
{
    Q_OBJECT

public:
    /// `scrollToEnd` scrolls `view`, which owns the follower or outlives it; by default at once.
    explicit EndFollower(TextView& view, std::function<void()> scrollToEnd = {});

    /// To be called right before text is added and right after.
    void willAppend();
    void didAppend();

    /// Whether the end is being followed, unless the mouse button is down.
    bool isFollowing() const { return isFollowing_ && !isMouseDown_; }
    /// Follows the end again, beginning with the next text.
    void resume() { isFollowing_ = true; }

    /// Scrolls to the end of the text now, and again when its last rows have got their true heights, before they are
    /// painted.
    void scrollToEnd();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool isAtEnd() const;
    void settleAtEnd();
    void pressMouse();
    void releaseMouse();
    void endPress();

    TextView& view_;
    std::function<void()> scroll_;
    std::optional<SelectionSet> keptSelections_;
    bool isFollowing_ = true;
    bool isMouseDown_ = false;
    int valueAtMouseDown_ = 0;
    bool isSettling_ = false;
};

} // namespace kelm
