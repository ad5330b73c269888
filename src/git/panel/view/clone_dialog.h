// The sheet that clones a repository.
#pragma once

#include "git/panel/clone_form.h"

#include <QDialog>

class QLineEdit;
class QScrollArea;

namespace kelm {

class BreakingLabel;
class CredentialStatusRow;
class PlainButton;
class TextLabel;

/// Asks for an address, a folder and a name, clones, and closes 0.8 seconds after a success. While the clone runs it
/// cannot be closed. Modal to its window; each presentation is a new, empty dialog, which deletes itself when it is
/// closed.
class CloneDialog final : public QDialog
{
    Q_OBJECT

public:
    /// What it is given outlives it.
    CloneDialog(GitService& git, FilePanels& filePanels, Scheduler& scheduler, QWidget* parent);

    CloneForm& form() { return form_; }

    /// Closes unless a clone runs.
    void reject() override;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void buildRows(GitService& git);
    QWidget* makeDestinationRow();
    QWidget* makeNameRow();
    QWidget* makeErrorBox();
    QWidget* makeButtonRow();
    void refreshForm();

    CloneForm form_;
    QLineEdit* remoteURL_ = nullptr;
    CredentialStatusRow* credentials_ = nullptr;
    TextLabel* destination_ = nullptr;
    QLineEdit* destinationName_ = nullptr;
    QScrollArea* errorBox_ = nullptr;
    BreakingLabel* error_ = nullptr;
    TextLabel* success_ = nullptr;
    PlainButton* cancelButton_ = nullptr;
    PlainButton* cloneButton_ = nullptr;
};

} // namespace kelm
