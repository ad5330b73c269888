// Writing a commit.
#pragma once

#include <QPlainTextEdit>
#include <QWidget>

class QCheckBox;

namespace kelm {

class GitService;
class PlainButton;

/// A text field of two to four lines that grows with its text. Ctrl-Return submits; Tab goes on to the next control.
class CommitMessageField final : public QPlainTextEdit
{
    Q_OBJECT

public:
    explicit CommitMessageField(QWidget* parent = nullptr);

    /// The text as typed: no-break spaces stay what they are.
    QString message() const;
    void setMessage(const QString& message);
    /// Empties the field as an edit that can be undone.
    void clearMessage();

Q_SIGNALS:
    void submitted();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void fitHeight();
};

/// The message, "Commit" or "Amend", "Amend last" and "Stage All".
class CommitComposer final : public QWidget
{
    Q_OBJECT

public:
    explicit CommitComposer(GitService& git, QWidget* parent = nullptr);

    QString message() const { return field_->message(); }
    void setMessage(const QString& message) { field_->setMessage(message); }
    bool amend() const;
    /// The next commit is a new one. The message stays.
    void forgetAmend();

private:
    void refreshState();
    void commit();

    GitService& git_;
    CommitMessageField* field_;
    PlainButton* commitButton_;
    QCheckBox* amendBox_;
};

} // namespace kelm
