#include "platform/desktop/view/file_and_folder_dialog.h"

#include "platform/desktop/view/file_dialog_look.h"

#include <QAbstractItemView>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QFileSystemModel>
#include <QPushButton>

#include <algorithm>

namespace kelm {

namespace {

/// The two views of the current folder; the list of places beside them is no list of files.
QList<QAbstractItemView*> fileLists(const QFileDialog& dialog)
{
    QList<QAbstractItemView*> lists;
    for (const QString& name : {QStringLiteral("listView"), QStringLiteral("treeView")}) {
        auto* list = dialog.findChild<QAbstractItemView*>(name);
        if (list != nullptr && list->selectionModel() != nullptr) {
            lists.append(list);
        }
    }
    return lists;
}

} // namespace

FileAndFolderDialog::FileAndFolderDialog(QWidget* parent, const OpenPanelOptions& options, const QString& folder)
    : QFileDialog(parent, QObject::tr("Open"), folder),
      canChooseFiles_(options.canChooseFiles),
      canChooseDirectories_(options.canChooseDirectories)
{
    setOption(QFileDialog::DontUseNativeDialog, takesBoth());
    setAcceptMode(QFileDialog::AcceptOpen);
    const bool onlyFolders = canChooseDirectories_ && !canChooseFiles_;
    setFileMode(onlyFolders                       ? QFileDialog::Directory
                : options.allowsMultipleSelection ? QFileDialog::ExistingFiles
                                                  : QFileDialog::ExistingFile);
    setOption(QFileDialog::ShowDirsOnly, onlyFolders);
    setLabelText(QFileDialog::Accept, options.prompt.isEmpty() ? QObject::tr("Open") : options.prompt);
    if (!takesBoth()) {
        return;
    }
    for (const QAbstractItemView* list : fileLists(*this)) {
        // The dialog takes the button away from folders right after the selection has changed.
        connect(list->selectionModel(), &QItemSelectionModel::selectionChanged, this,
                &FileAndFolderDialog::enableOpenButton, Qt::QueuedConnection);
    }
}

void FileAndFolderDialog::showEvent(QShowEvent* event)
{
    giveOwnLook(*this);
    QFileDialog::showEvent(event);
}

void FileAndFolderDialog::accept()
{
    const QStringList selected = selectedPaths();
    const bool hasFolder =
        std::any_of(selected.begin(), selected.end(), [](const QString& path) { return QFileInfo(path).isDir(); });
    if (hasFolder && takesBoth()) {
        // The dialog itself would enter the folder.
        for (const QString& path : selected) {
            chosen_.append({QUrl::fromLocalFile(path), QFileInfo(path).isDir()});
        }
        done(QDialog::Accepted);
        return;
    }
    QFileDialog::accept();
    if (result() == QDialog::Accepted) {
        for (const QUrl& url : selectedUrls()) {
            chosen_.append({url, QFileInfo(url.toLocalFile()).isDir()});
        }
    }
}

QStringList FileAndFolderDialog::selectedPaths() const
{
    QStringList paths;
    for (const QAbstractItemView* list : fileLists(*this)) {
        if (!list->isVisible()) {
            continue;
        }
        for (const QModelIndex& index : list->selectionModel()->selectedRows()) {
            const QString path = index.data(QFileSystemModel::FilePathRole).toString();
            if (!path.isEmpty() && !paths.contains(path)) {
                paths.append(path);
            }
        }
    }
    return paths;
}

void FileAndFolderDialog::enableOpenButton()
{
    auto* buttons = findChild<QDialogButtonBox*>();
    if (buttons != nullptr && buttons->button(QDialogButtonBox::Open) != nullptr && !selectedPaths().isEmpty()) {
        buttons->button(QDialogButtonBox::Open)->setEnabled(true);
    }
}

} // namespace kelm
