// What failed in a sheet, said in that sheet.
#pragma once

#include <QPointer>
#include <QStringList>
#include <QWidget>

namespace kelm {

class GitService;
class PlainButton;
class TextLabel;

/// One line that is there while the last failure is that of one of the sheet's own commands: git's reason, with a
/// button that shows all of its words. Its room in the sheet is there always.
class SheetFailureLine final : public QWidget
{
    Q_OBJECT

public:
    /// `commands` are the first words of the sheet's commands, such as "diff". What failed before is no matter of the
    /// sheet.
    SheetFailureLine(GitService& git, QStringList commands, QWidget* parent);

    /// What is said; empty while nothing is.
    QString sentence() const;
    /// The person has gone on.
    void clear();

private:
    void refresh();
    void showDetails();

    QPointer<GitService> git_;
    QStringList commands_;
    TextLabel* sentence_;
    PlainButton* details_;
};

} // namespace kelm
