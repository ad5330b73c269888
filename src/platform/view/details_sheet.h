// All the words behind a short line.
#pragma once

#include <QDialog>

class QPlainTextEdit;

namespace kelm {

/// Shows a text whole and as it stands, to be selected and copied, below the line that stood for it. Modal to its
/// window; it goes when it is closed.
class DetailsSheet final : public QDialog
{
    Q_OBJECT

public:
    DetailsSheet(const QString& line, const QString& text, QWidget* parent);

    QString text() const;

private:
    QWidget* makeButtons();
    /// Puts all of the text on the clipboard.
    void copy() const;

    QPlainTextEdit* text_;
};

} // namespace kelm
