// Who made a commit, what for, and what it changed.
#pragma once

#include "git/diff/diff.h"

#include <QWidget>

#include <functional>

class QPlainTextEdit;

namespace kelm {

class RowList;
class TextLabel;

/// The head of a commit above its changes: author, date, the whole message and a row for each file. A click on a file
/// goes to its changes. What is longer than a few lines scrolls.
class CommitDetails final : public QWidget
{
    Q_OBJECT

public:
    /// `showFile` gets the place of a file among those that are shown.
    explicit CommitDetails(std::function<void(qsizetype file)> showFile, QWidget* parent);

    /// Takes what git printed. Nothing is shown for an empty text.
    void setContent(const QString& content);
    /// `labelOf` tells what is special about a file, and how many hunks it has.
    void setFiles(const QList<DiffFile>& files, const std::function<QString(qsizetype file)>& labelOf);

    QString author() const;
    QString date() const;
    QString message() const;
    RowList& files() { return *files_; }

private:
    std::function<void(qsizetype file)> showFile_;
    TextLabel* author_;
    TextLabel* date_;
    QPlainTextEdit* message_;
    RowList* files_;
};

} // namespace kelm
