// The sheet with one commit.
#pragma once

#include "git/git_service.h"

#include <QDialog>
#include <QPointer>

#include <functional>

namespace kelm {

class DiffViewer;

/// Which commit a sheet shows; one hash is one sheet.
struct CommitSheet
{
    QString sha;

    const QString& id() const { return sha; }
    bool operator==(const CommitSheet&) const = default;
};

/// Shows a commit's changes, to be read only. A window-modal dialog: show it with `open`. git is asked when the sheet
/// appears.
class CommitDetailView final : public QDialog
{
    Q_OBJECT

public:
    CommitDetailView(GitService& git, CommitSheet sheet, QWidget* parent);
    ~CommitDetailView() override;

    /// Called once when the sheet has been closed, by its button or otherwise.
    std::function<void()> onClose;

    const QString& sha() const { return sheet_.sha; }
    /// What git printed; empty on any failure.
    const QString& content() const { return content_; }

    DiffViewer& viewer() { return *viewer_; }

protected:
    void showEvent(QShowEvent* event) override;

private:
    QWidget* makeHeader();
    void copySha() const;

    QPointer<GitService> git_;
    CommitSheet sheet_;
    QString content_;
    bool hasAppeared_ = false;
    DiffViewer* viewer_ = nullptr;
};

} // namespace kelm
