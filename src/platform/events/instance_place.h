// Where the starts of the program find each other.
#pragma once

#include <QString>

#include <functional>

namespace kelm {

/// The two files by which the starts of one user, in one session, on one machine find each other.
struct InstancePlace
{
    /// Locked by the program that runs, for as long as its process lives. The file stays.
    QString lockPath;
    /// The socket at which it listens.
    QString socketPath;

    bool operator==(const InstancePlace&) const = default;
};

/// Gives the value of a variable of the environment, empty when there is none.
using VariableSource = std::function<QString(const QString& name)>;

/// The session that windows of the program belong to, by what names it: the socket of the Wayland display, or else the
/// X display, of which all names of its first screen count as one (":0", ":0.0", "unix:0"); empty without a display.
/// One that is forwarded from elsewhere ("localhost:10.0") is a session of its own.
QString sessionName(const VariableSource& variable);

/// The files in `folder`, which may be shared with other machines. Their names hold the user, and of session and
/// machine a number that is as good as they are, since those may be of any length.
InstancePlace instancePlace(const QString& folder, const QString& session, const QString& machine);

/// The place of this process, in the folder that the system gives for such files.
InstancePlace defaultInstancePlace();

} // namespace kelm
