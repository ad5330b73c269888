// Writing a commit.
#pragma once

#include <QPlainTextEdit>
#include <QWidget>

#include <functional>

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
    /// Called when git has refused a commit and its message has gone from the field all the same: with git's reason,
    /// and what puts message and "Amend last" back, before what has been typed since.
    std::function<void(const QString& refusal, const std::function<void()>& putBack)> onRefused;
    bool amend() const;
    /// The next commit is a new one. The message stays.
    void forgetAmend();

private:
    void refreshState();
    void commit();
    /// Tells of a refusal that emptied the field.
    void tellOfRefusal(const QString& message, bool amends);
    void putBack(const QString& message, bool amends);

    GitService& git_;
    CommitMessageField* field_;
    PlainButton* commitButton_;
    QCheckBox* amendBox_;
};

} // namespace kelm
