// A question over the window, with named answers.
#pragma once

#include <QDialog>
#include <QList>

#include <functional>

namespace kelm {

/// Asks a question in plain text. Each answer runs its work and closes the dialog; "Cancel", which comes last, and
/// Escape only close it. Return is the first answer. The dialog is modal to its window and goes when it is closed.
class ConfirmationDialog final : public QDialog
{
    Q_OBJECT

public:
    struct Answer
    {
        QString name;
        std::function<void()> run;
        /// Whether it does what cannot be taken back.
        bool isDestructive = false;
    };

    ConfirmationDialog(const QString& title, const QList<Answer>& answers, QWidget* parent);
};

} // namespace kelm
