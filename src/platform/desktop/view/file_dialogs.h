// The file panels as dialogs.
#pragma once

#include "platform/desktop/file_panels.h"

#include <QFileDialog>

namespace kelm {

/// Dialogs over whichever window is active. For files and folders at once there is a dialog of our own, since no
/// platform has one that takes both.
class FileDialogs final : public FilePanels
{
public:
    QList<ChosenURL> showOpenPanel(const OpenPanelOptions& options) override;
    std::optional<QUrl> showSavePanel(const QList<ContentType>& allowedTypes) override;
};

/// Lets a person choose files, folders or both. A folder is entered with a double click, and chosen by selecting it and
/// pressing "Open".
class FileAndFolderDialog final : public QFileDialog
{
    Q_OBJECT

public:
    explicit FileAndFolderDialog(QWidget* parent, const OpenPanelOptions& options);

    /// What has been chosen, in the order in which the list shows it.
    QList<ChosenURL> chosenURLs() const { return chosen_; }

    void accept() override;

private:
    QStringList selectedPaths() const;
    void enableOpenButton();

    bool canChooseDirectories_;
    QList<ChosenURL> chosen_;
};

} // namespace kelm
