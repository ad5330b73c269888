// Sockets that are files of this machine, reached by no one but their user.
#pragma once

#include "platform/files/open_file.h"

#include <QString>

/// All sockets are of the stream kind, never block, and are inherited by no child. A path of any length will do. What
/// fails gives a closed file and sets `errno`. From any thread.
namespace kelm::localSocket {

/// Listens at `path`, in the place of whatever socket stands there. Only the user can connect.
OpenFile listenAt(const QString& path, int mostWaiting);

/// Connects to who listens at `path`. Fails with EAGAIN when too many wait there already, and with EACCES when who
/// listens is another user.
OpenFile connectTo(const QString& path);

/// Takes the next connection of the same user. Fails with EAGAIN when none waits, and with EACCES when it was of
/// another user and has been closed.
OpenFile acceptFrom(const OpenFile& listening);

/// Writes as much as goes without waiting; the count, or -1.
qsizetype send(const OpenFile& socket, QByteArrayView bytes);

} // namespace kelm::localSocket
