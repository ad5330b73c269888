// What the clone dialog holds and does, without its window.
#pragma once

#include "git/service/git_service.h"
#include "platform/desktop/file_panels.h"
#include "platform/events/scheduler.h"

#include <QObject>
#include <QString>
#include <QUrl>

#include <chrono>
#include <optional>

namespace kelm {

/// The name of the folder that a clone of `remoteURL` goes to: its last piece between slashes without any ".git" in it,
/// wherever that stands. Empty when there is no piece.
QString derivedFolderName(const QString& remoteURL);

/// One presentation of the clone dialog: what was typed, and how the clone goes. Main thread only; the clone runs on
/// the thread pool. What it is given outlives it.
class CloneForm final : public QObject
{
    Q_OBJECT

public:
    /// How long the line that tells of success stands before the dialog closes.
    static constexpr std::chrono::milliseconds closingDelay{800};

    CloneForm(GitService& git, FilePanels& filePanels, Scheduler& scheduler, QObject* parent = nullptr);

    /// False once the dialog is to go; never true again.
    bool isPresented() const { return isPresented_; }
    const QString& remoteURL() const { return remoteURL_; }
    const std::optional<QUrl>& destinationParent() const { return destinationParent_; }
    const QString& destinationName() const { return destinationName_; }
    bool inProgress() const { return inProgress_; }
    const std::optional<QString>& errorMessage() const { return errorMessage_; }
    bool didSucceed() const { return didSucceed_; }
    /// Whether there is an address, a folder and a name.
    bool canStart() const;

    /// A change also names the folder, for as long as it has no name.
    void setRemoteURL(const QString& url);
    void setDestinationParent(const std::optional<QUrl>& folder);
    void setDestinationName(const QString& name);

    /// Lets the person choose the folder in which the clone is made.
    void pickDestination();
    /// Clones unless the folder is there and holds something; an existing empty folder is left to git.
    void startClone();
    void dismiss();

Q_SIGNALS:
    /// Any of the members has changed.
    void changed();
    void dismissed();

private:
    void finish(const GitOpResult& result);

    GitService& git_;
    FilePanels& filePanels_;
    Scheduler& scheduler_;
    bool isPresented_ = true;
    QString remoteURL_;
    std::optional<QUrl> destinationParent_;
    QString destinationName_;
    bool inProgress_ = false;
    std::optional<QString> errorMessage_;
    bool didSucceed_ = false;
};

} // namespace kelm
