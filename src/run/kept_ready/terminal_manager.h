// Several terminal sessions, of which one is active.
#pragma once

#include "run/terminal_session.h"

#include <QObject>

#include <functional>
#include <memory>
#include <vector>

namespace kelm {

/// The sessions of a terminal with tabs, in the order in which they were made. It has none before the first
/// `createNewSession`, and from then on always one. Main thread only.
class TerminalManager final : public QObject
{
    Q_OBJECT

public:
    /// Each session is made by `makeSession`.
    explicit TerminalManager(std::function<std::unique_ptr<TerminalSession>()> makeSession, QObject* parent = nullptr);
    ~TerminalManager() override;

    const std::vector<std::unique_ptr<TerminalSession>>& sessions() const { return sessions_; }
    /// Null while there is none.
    TerminalSession* activeSession() const { return activeSession_; }

    /// Makes a session, titles it by its place in the list ("Terminal 1"), so that titles can repeat, and activates it.
    void createNewSession();

    /// Ends the session with the same `id` as `session`; one that is not in the list is passed over. When it was the
    /// active one, the first of those left becomes active, and when it was the last one, a new one is made.
    void closeSession(const TerminalSession& session);

Q_SIGNALS:
    void sessionsChanged();
    void activeSessionChanged();

private:
    void setActiveSession(TerminalSession* session);

    std::function<std::unique_ptr<TerminalSession>()> makeSession_;
    std::vector<std::unique_ptr<TerminalSession>> sessions_;
    TerminalSession* activeSession_ = nullptr;
};

} // namespace kelm
