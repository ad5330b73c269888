// The desktop hears of the files that are worked on.
#pragma once

#include "platform/desktop/recently_used.h"
#include "platform/events/serial_worker.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QUrl>

#include <chrono>
#include <functional>

namespace kelm {

class AppState;

/// Tells the desktop's list of recent files what is opened and saved, all of one turn of the event loop at once and on
/// a thread of its own. Main thread only.
class DesktopRecents final : public QObject
{
public:
    /// Says of which files the desktop is told.
    using Filter = std::function<bool(const QUrl& file)>;

    /// The state outlives the object. `listPath` is the list's; `filter` is asked on the thread of its own.
    DesktopRecents(AppState& appState, QString listPath, Filter filter = isToldToDesktop);

    /// Waits until all that is known is told, but not longer than `longest`. False when something is left.
    bool finish(std::chrono::milliseconds longest);

private:
    void note(const QUrl& file);
    void tell();

    const QString listPath_;
    const Filter filter_;
    QList<QUrl> waiting_;
    SerialWorker worker_;
};

} // namespace kelm
