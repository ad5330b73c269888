// The sheet with one commit.
#pragma once

#include "git/service/git_service.h"

#include <QPointer>
#include <QWidget>

#include <functional>
#include <optional>

namespace kelm {

class CommitDetails;
class DiffViewer;

/// What a sheet with one commit holds: its head, and its changes, which are only shown. git is asked when it appears.
class CommitDetailView final : public QWidget
{
    Q_OBJECT

public:
    CommitDetailView(GitService& git, QString sha, QWidget* parent);
    ~CommitDetailView() override;

    /// Called by the button "Close".
    std::function<void()> onClose;

    const QString& sha() const { return sha_; }
    /// What git printed; empty on any failure.
    const QString& content() const { return content_; }

    DiffViewer& viewer() { return *viewer_; }
    CommitDetails& details() { return *details_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    QWidget* makeHeader();
    void copySha() const;

    QPointer<GitService> git_;
    QString sha_;
    QString content_;
    bool hasAppeared_ = false;
    CommitDetails* details_ = nullptr;
    DiffViewer* viewer_ = nullptr;
};

} // namespace kelm
