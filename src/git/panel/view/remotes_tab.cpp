#include "git/panel/view/remotes_tab.h"

#include "git/panel/view/remote_row.h"
#include "git/service/git_service.h"
#include "platform/view/panel_controls.h"
#include "platform/view/row_list.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

constexpr int rowHeight = 42;

/// Two readings of the same remotes differ in their identities.
bool sameRemotes(const QList<GitRemote>& a, const QList<GitRemote>& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const GitRemote& x, const GitRemote& y) { return x.name == y.name && x.url == y.url; });
}

} // namespace

RemotesTab::RemotesTab(GitService& git, QWidget* parent)
    : PanelTab(parent),
      git_(git),
      remoteName_(makePanelField(tr("Name (e.g. origin)"), this)),
      remoteURL_(makePanelField(tr("URL"), this)),
      addButton_(makePanelButton(tr("Add"), this)),
      list_(new RowList(rowHeight, this))
{
    addButton_->setEnabled(false);
    connect(addButton_, &QAbstractButton::clicked, this, &RemotesTab::add);
    for (QLineEdit* field : {remoteName_, remoteURL_}) {
        connect(field, &QLineEdit::textChanged, addButton_,
                [this] { addButton_->setEnabled(!remoteName_->text().isEmpty() && !remoteURL_->text().isEmpty()); });
        connect(field, &QLineEdit::returnPressed, addButton_, [this] { addButton_->click(); });
    }
    list_->setAccessibleName(tr("Remotes"));
    list_->setPlaceholder(tr("No remotes configured"));
    list_->setHasEditors(true);
    arrange({remoteName_, besideButton(remoteURL_, addButton_)}, list_);
    connect(&git_, &GitService::remotesChanged, this, &RemotesTab::refresh);
}

void RemotesTab::refreshState()
{
    // The same again leaves an address that is edited, and the caret in it, alone.
    const bool isSameRepository = repository_ == git_.repoURL();
    if (isSameRepository && sameRemotes(shown_, git_.remotes())) {
        return;
    }
    if (!isSameRepository) {
        repository_ = git_.repoURL();
        editingURLs_.clear();
    }
    shown_ = git_.remotes();
    editingURLs_.removeIf([this](const std::pair<const QString&, QString&>& entry) {
        return std::none_of(shown_.begin(), shown_.end(),
                            [&](const GitRemote& remote) { return remote.name == entry.first; });
    });
    showRows();
}

void RemotesTab::showRows()
{
    list_->setSections({{.title = {},
                         .count = shown_.size(),
                         .row =
                             [this, remotes = shown_](qsizetype i) {
                                 const QString& name = remotes[i].name;
                                 const auto edited = editingURLs_.constFind(name);
                                 return RemoteRow{
                                     .remote = remotes[i],
                                     .onRemove = [this, name] { git_.removeRemote(name); },
                                     .onSetURL = [this, name](const QString& url) { setURL(name, url); },
                                     .editingURL =
                                         edited == editingURLs_.constEnd() ? std::nullopt : std::optional(*edited),
                                     .onEdit = [this, name](const std::optional<QString>& url) { edit(name, url); }}
                                     .content();
                             },
                         .key = [remotes = shown_](qsizetype i) { return remotes[i].name; }}});
}

void RemotesTab::edit(const QString& name, const std::optional<QString>& url)
{
    const bool wasEdited = editingURLs_.contains(name);
    if (url) {
        editingURLs_.insert(name, *url);
    } else {
        editingURLs_.remove(name);
    }
    if (wasEdited == url.has_value()) {
        return;
    }
    showRows();
    if (!url) {
        list_->setFocus(Qt::OtherFocusReason);
        return;
    }
    const auto row =
        std::find_if(shown_.begin(), shown_.end(), [&](const auto& remote) { return remote.name == name; });
    if (row != shown_.end()) {
        if (QWidget* editor = list_->indexWidget(list_->rows().index(static_cast<int>(row - shown_.begin())))) {
            editor->setFocus(Qt::OtherFocusReason);
            // All of it is selected, and its beginning shows.
            QLineEdit& field = static_cast<RemoteURLEditor*>(editor)->field();
            field.end(false);
            field.home(true);
        }
    }
}

void RemotesTab::setURL(const QString& name, const QString& url)
{
    if (repository_ == git_.repoURL()) {
        git_.setRemoteURL(name, url);
    }
}

void RemotesTab::add()
{
    git_.addRemote(remoteName_->text(), remoteURL_->text());
    remoteName_->clear();
    remoteURL_->clear();
}

} // namespace kelm
