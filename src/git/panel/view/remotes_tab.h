// The tab of remotes.
#pragma once

#include "git/panel/view/panel_tab.h"
#include "git/service/git_records.h"

#include <QHash>
#include <QUrl>

#include <optional>

class QLineEdit;

namespace kelm {

class GitService;
class PlainButton;
class RowList;

/// A form that adds a remote, and the remotes, whose addresses are edited in their place. What is typed there stays
/// when the repository is read anew; an edited address goes when another one is opened.
class RemotesTab final : public PanelTab
{
    Q_OBJECT

public:
    explicit RemotesTab(GitService& git, QWidget* parent = nullptr);

    RowList& list() { return *list_; }

protected:
    void refreshState() override;

private:
    void add();
    void edit(const QString& name, const std::optional<QString>& url);
    void showRows();
    void setURL(const QString& name, const QString& url);

    GitService& git_;
    QLineEdit* remoteName_;
    QLineEdit* remoteURL_;
    PlainButton* addButton_;
    RowList* list_;
    QList<GitRemote> shown_;
    /// The address that is typed for a remote that is edited, by the remote's name.
    QHash<QString, QString> editingURLs_;
    /// The repository whose remotes those are.
    std::optional<QUrl> repository_;
};

} // namespace kelm
