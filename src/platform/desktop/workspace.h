// What the desktop does for the program.
#pragma once

#include "platform/files/file_error.h"

#include <QString>
#include <QUrl>

#include <optional>

namespace kelm {

/// The desktop's services, behind an interface so that their users can be tested without one. Main thread only.
class Workspace
{
public:
    virtual ~Workspace() = default;

    /// Moves a file or a folder to the Trash. Returns what went wrong, or nothing.
    virtual std::optional<FileError> moveToTrash(const QUrl& url) = 0;

    /// Shows a file or a folder, selected, in the file manager. Does not wait for it.
    virtual void reveal(const QUrl& url) = 0;

    /// Opens a URL with the application that is meant for it. False when there is none.
    virtual bool openURL(const QUrl& url) = 0;

    /// The application that opens URLs of `scheme` (such as "tutorbay"), under the name that the system has for it;
    /// absent when none is registered. From any thread, and better from a worker: the system may take seconds for it.
    virtual std::optional<QString> applicationForScheme(const QString& scheme) = 0;

    /// The desktop that the program runs on.
    static Workspace& system();
};

} // namespace kelm
