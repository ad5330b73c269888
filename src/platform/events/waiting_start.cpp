#include "platform/events/waiting_start.h"

#include "platform/events/local_socket.h"

#include <algorithm>

namespace kelm {

WaitingStart::~WaitingStart()
{
    const char said = static_cast<char>(worst_);
    for (const OpenFile& connection : connections_) {
        localSocket::send(connection, QByteArrayView(&said, 1));
    }
}

void WaitingStart::note(openRequest::Outcome outcome)
{
    worst_ = std::max(worst_, outcome);
}

} // namespace kelm
