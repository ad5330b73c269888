// A desktop that only takes notes.
#pragma once

#include "platform/desktop/workspace.h"

#include <QHash>
#include <QList>
#include <QThread>

#include <atomic>

namespace kelm {

class FakeWorkspace final : public Workspace
{
public:
    std::optional<FileError> moveToTrash(const QUrl& url) override
    {
        trashed << url;
        return trashError;
    }
    void reveal(const QUrl& url) override { revealed << url; }
    bool openURL(const QUrl& url) override
    {
        opened << url;
        return opensUrls;
    }
    std::optional<QString> applicationForScheme(const QString& scheme) override
    {
        askedFrom = QThread::currentThread();
        const auto found = applications.constFind(scheme);
        return found == applications.cend() ? std::nullopt : std::optional(*found);
    }

    std::optional<FileError> trashError;
    bool opensUrls = true;
    QHash<QString, QString> applications;
    /// The thread that asked last for an application.
    std::atomic<QThread*> askedFrom = nullptr;

    QList<QUrl> trashed;
    QList<QUrl> revealed;
    QList<QUrl> opened;
};

} // namespace kelm
