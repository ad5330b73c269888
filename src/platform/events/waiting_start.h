// A start of the program that waits for the tabs that it has asked for.
#pragma once

#include "platform/events/open_request.h"
#include "platform/files/open_file.h"

#include <vector>

namespace kelm {

/// Shared by all that such a start waits for. When the last of them lets it go, the start is told the worst that was
/// noted, and goes on. Should the process die before, the start finds its connection closed. Main thread only.
class WaitingStart
{
public:
    explicit WaitingStart(OpenFile connection) { add(std::move(connection)); }
    /// Tells. A start that has gone meanwhile hears nothing.
    ~WaitingStart();
    WaitingStart(const WaitingStart&) = delete;
    WaitingStart& operator=(const WaitingStart&) = delete;

    /// The same start has asked once more.
    void add(OpenFile connection) { connections_.push_back(std::move(connection)); }
    /// What became of one of the tabs.
    void note(openRequest::Outcome outcome);

private:
    std::vector<OpenFile> connections_;
    openRequest::Outcome worst_ = openRequest::Outcome::saved;
};

} // namespace kelm
