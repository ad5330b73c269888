// What the window tells of git while it runs.
#pragma once

#include "app/state/notices.h"
#include "platform/process/patient_runner.h"

#include <QObject>

#include <map>

namespace kelm {

class GitTransfers;

/// One notice for each git that takes its time: "git commit, 3 s", which holds all input and is stopped by Escape,
/// while the main thread waits for it; and "git fetch, 12 s" with a button that stops it for what goes over the
/// network. Those leave Escape alone: in a window that goes on it has other meanings, and a push is not ended by the
/// way.
///
/// Main thread only; what it is given outlives it.
class GitNotices final : public QObject
{
    Q_OBJECT

public:
    GitNotices(Notices& notices, Scheduler& scheduler);

    /// What a runner tells of its waits; good for as long as this lives.
    PatientRunner::Signs signs();
    /// From now on tells of these.
    void follow(GitTransfers& transfers);

Q_SIGNALS:
    /// The window's input waits for git from now on, and the program's other work with it.
    void waitBegins();

private:
    void beginTransfer(quint64 transfer);
    void endTransfer(quint64 transfer);
    /// Tells how long each transfer lasts, and does so again in a second while there is one.
    void tellTimes();

    Notices& notices_;
    Scheduler& scheduler_;
    GitTransfers* transfers_ = nullptr;
    Notices::Id wait_ = 0;
    /// The notice of each transfer.
    std::map<quint64, Notices::Id> shown_;
    bool isTelling_ = false;
};

} // namespace kelm
