#include "run/kept_ready/terminal_manager.h"

#include <algorithm>
#include <utility>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

TerminalManager::TerminalManager(std::function<std::unique_ptr<TerminalSession>()> makeSession, QObject* parent)
    : QObject(parent), makeSession_(std::move(makeSession))
{}

TerminalManager::~TerminalManager() = default;

void TerminalManager::createNewSession()
{
    std::unique_ptr<TerminalSession> session = makeSession_();
    session->setTitle(u"Terminal %1"_s.arg(sessions_.size() + 1));
    TerminalSession* const made = session.get();
    sessions_.push_back(std::move(session));
    Q_EMIT sessionsChanged();
    setActiveSession(made);
}

void TerminalManager::closeSession(const TerminalSession& session)
{
    const auto found = std::find_if(sessions_.begin(), sessions_.end(),
                                    [&session](const auto& each) { return each->id() == session.id(); });
    if (found == sessions_.end()) {
        return;
    }
    // It goes when all who look at the list and at the active session have been told.
    const std::unique_ptr<TerminalSession> closed = std::move(*found);
    sessions_.erase(found);
    Q_EMIT sessionsChanged();
    if (activeSession_ == closed.get()) {
        setActiveSession(sessions_.empty() ? nullptr : sessions_.front().get());
    }
    if (sessions_.empty()) {
        createNewSession();
    }
}

void TerminalManager::setActiveSession(TerminalSession* session)
{
    if (std::exchange(activeSession_, session) != session) {
        Q_EMIT activeSessionChanged();
    }
}

} // namespace kelm
