// The dialog in which files are opened.
#pragma once

#include "platform/desktop/file_panels.h"

#include <QFileDialog>

namespace kelm {

/// Lets a person choose files, folders or both. A folder is entered with a double click, and chosen by selecting it and
/// pressing "Open". For both at once it is drawn by the toolkit, since no desktop has a dialog that takes both; for one
/// of them it is the desktop's own where there is one. (That goes by the class's name: the toolkit leaves only what it
/// takes for its own class to the desktop.)
class FileAndFolderDialog final : public QFileDialog
{
public:
    /// Begins in `folder`; where the program runs when it is empty.
    FileAndFolderDialog(QWidget* parent, const OpenPanelOptions& options, const QString& folder = {});

    /// What has been chosen, in the order in which the list shows it.
    QList<ChosenURL> chosenURLs() const { return chosen_; }

    void accept() override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    bool takesBoth() const { return canChooseFiles_ && canChooseDirectories_; }
    QStringList selectedPaths() const;
    void enableOpenButton();

    bool canChooseFiles_;
    bool canChooseDirectories_;
    QList<ChosenURL> chosen_;
};

} // namespace kelm
