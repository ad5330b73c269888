// The buttons of the network and the error line, below the source control panel.
#pragma once

#include "platform/view/labels.h"

#include <QWidget>

class QBoxLayout;

namespace kelm {

class GitService;
class PlainButton;

/// The last failure in one sentence on one line; git's words as they stand are its help text.
class ErrorLine final : public TextLabel
{
    Q_OBJECT

public:
    explicit ErrorLine(QWidget* parent = nullptr);

    void setError(const QString& sentence, const QString& error);
    const QString& error() const { return error_; }

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    QString error_;
};

/// "Fetch", "Pull" and "Push", which rest while one of them runs; what runs, with a button that stops it; and what was
/// asked for and failed last, with buttons that show all of git's words and take it away. In a narrow panel these stand
/// above each other, the buttons lowest: what is told moves no button and nothing at the top of the tab.
class SourceControlBottomBar final : public QWidget
{
    Q_OBJECT

public:
    explicit SourceControlBottomBar(GitService& git, QWidget* parent = nullptr);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    PlainButton* makeTransferButton(const QString& symbol, const QString& label);
    void refreshBusy();
    void refreshError();
    void showDetails();
    void push();

    GitService& git_;
    QList<PlainButton*> transferButtons_;
    QBoxLayout* column_;
    /// The bar's height where all stands in one row.
    int rowHeight_ = 0;
    QWidget* errorRow_;
    ErrorLine* errorLine_;
    PlainButton* details_;
};

} // namespace kelm
