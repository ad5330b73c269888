// The state's notices in the window.
#pragma once

#include "app/state/app_state.h"
#include "platform/events/scheduler.h"

#include <QObject>

class QWidget;

namespace kelm {

class NoticeBar;

/// Shows the notice that is the current one in its bar, and has the window's input wait where it says so. What ends in
/// a fraction of a second is never shown, or the window would twitch.
class WindowNotices final : public QObject
{
    Q_OBJECT

public:
    /// All of it outlives the object, which is the window's child.
    WindowNotices(AppState& appState, NoticeBar& bar, QWidget& window);

private:
    void follow();
    void show();

    AppState& appState_;
    NoticeBar& bar_;
    Debounce appearance_;
};

} // namespace kelm
