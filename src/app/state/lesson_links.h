// What a lesson link does.
#pragma once

#include "platform/events/scheduler.h"
#include "platform/process/log.h"

#include <QString>

#include <functional>

namespace kelm {

class AppState;

/// Opens the snippet of a lesson link in a new tab, brings the application to the front before that by `activate`, and
/// runs the snippet if the link says so, 0.15 seconds later: the tab is the current document by then. A bad link is
/// logged and does nothing else. Main thread only; what is given outlives the delay.
void handleKelmPaneURL(const QString& urlText, AppState& appState, Scheduler& scheduler, Log& log,
                       std::function<void()> activate);

} // namespace kelm
