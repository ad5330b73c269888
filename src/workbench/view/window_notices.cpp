#include "workbench/view/window_notices.h"

#include "app/state/notices.h"
#include "workbench/view/held_input.h"
#include "workbench/view/notice_bar.h"

#include <chrono>

namespace kelm {

namespace {

constexpr std::chrono::milliseconds appearanceDelay{150};

} // namespace

WindowNotices::WindowNotices(AppState& appState, NoticeBar& bar, QWidget& window)
    : QObject(&window),
      appState_(appState),
      bar_(bar),
      appearance_(appState.scheduler(), appearanceDelay, [this] { show(); })
{
    const auto escapeIsTaken = [&appState] {
        return appState.showQuickOpen() || appState.showSearch() || appState.showGoToLine();
    };
    new HeldInput(appState_.notices(), window, escapeIsTaken);
    connect(&appState_.notices(), &Notices::currentChanged, this, &WindowNotices::follow);
    connect(&appState_.notices(), &Notices::progressChanged, this, [this] {
        if (!bar_.isHidden()) {
            const Notice& notice = *appState_.notices().current();
            bar_.setProgress(notice.progress, notice.time);
        }
    });
    connect(&bar_, &NoticeBar::accepted, &appState_.notices(), &Notices::accept);
    connect(&bar_, &NoticeBar::putAway, &appState_.notices(), &Notices::putAway);
    bar_.setVisible(false);
    follow();
}

void WindowNotices::follow()
{
    if (appState_.notices().current() == nullptr) {
        appearance_.cancel();
        bar_.setVisible(false);
    } else if (bar_.isHidden() && !appState_.notices().stopsAll()) {
        appearance_.restart();
    } else {
        show();
    }
}

void WindowNotices::show()
{
    if (const Notice* notice = appState_.notices().current()) {
        bar_.show(*notice);
    }
}

} // namespace kelm
