// The dialog that asks where to save.
#pragma once

#include "platform/desktop/file_panels.h"

#include <QFileDialog>

class QLabel;

namespace kelm {

/// Asks for the file to save to. It is the desktop's own where there is one (that goes by the class's name, as with
/// `FileAndFolderDialog`). Drawn by the toolkit it begins with the name selected up to its extension, and stays, with a
/// sentence that says why, where nothing can be saved.
class SaveDialog final : public QFileDialog
{
public:
    SaveDialog(QWidget* parent, const SavePanelOptions& options, const QString& folder);

    void accept() override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    void makeWords();
    void tell(const QString& why);

    /// Made when there is something to tell.
    QLabel* words_ = nullptr;
};

} // namespace kelm
