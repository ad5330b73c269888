#include "platform/desktop/view/file_dialogs.h"

#include "platform/desktop/view/toolkit_words.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QFileSystemModel>
#include <QPushButton>

#include <algorithm>

namespace kelm {

namespace {

QString filterFor(ContentType type)
{
    switch (type) {
    case ContentType::plainText:
        return QObject::tr("Plain Text (*.txt *)");
    case ContentType::sourceCode:
        return QObject::tr("Source Code (*)");
    case ContentType::json:
        return QObject::tr("JSON (*.json)");
    case ContentType::xml:
        return QObject::tr("XML (*.xml *.plist)");
    }
    return {};
}

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

QList<ChosenURL> FileDialogs::showOpenPanel(const OpenPanelOptions& options)
{
    FileAndFolderDialog dialog(QApplication::activeWindow(), options);
    return dialog.exec() == QDialog::Accepted ? dialog.chosenURLs() : QList<ChosenURL>();
}

std::optional<QUrl> FileDialogs::showSavePanel(const QList<ContentType>& allowedTypes)
{
    QStringList filters;
    std::transform(allowedTypes.begin(), allowedTypes.end(), std::back_inserter(filters), filterFor);
    const QUrl url = QFileDialog::getSaveFileUrl(QApplication::activeWindow(), QObject::tr("Save As"), {},
                                                 filters.join(QStringLiteral(";;")));
    return url.isValid() ? std::optional(url) : std::nullopt;
}

FileAndFolderDialog::FileAndFolderDialog(QWidget* parent, const OpenPanelOptions& options)
    : QFileDialog(parent, tr("Open")), canChooseDirectories_(options.canChooseDirectories)
{
    setOption(QFileDialog::DontUseNativeDialog);
    setLayoutDirection(directionOfToolkitWords());
    setAcceptMode(QFileDialog::AcceptOpen);
    const bool onlyFolders = options.canChooseDirectories && !options.canChooseFiles;
    setFileMode(onlyFolders                       ? QFileDialog::Directory
                : options.allowsMultipleSelection ? QFileDialog::ExistingFiles
                                                  : QFileDialog::ExistingFile);
    setOption(QFileDialog::ShowDirsOnly, onlyFolders);
    setLabelText(QFileDialog::Accept, options.prompt.isEmpty() ? tr("Open") : options.prompt);
    if (!options.canChooseDirectories || onlyFolders) {
        return;
    }
    for (const QAbstractItemView* list : fileLists(*this)) {
        // The dialog takes the button away from folders right after the selection has changed.
        connect(list->selectionModel(), &QItemSelectionModel::selectionChanged, this,
                &FileAndFolderDialog::enableOpenButton, Qt::QueuedConnection);
    }
}

void FileAndFolderDialog::accept()
{
    const QStringList selected = selectedPaths();
    const bool hasFolder =
        std::any_of(selected.begin(), selected.end(), [](const QString& path) { return QFileInfo(path).isDir(); });
    if (hasFolder && canChooseDirectories_ && testOption(QFileDialog::DontUseNativeDialog)) {
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
