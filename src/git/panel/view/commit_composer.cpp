#include "git/panel/view/commit_composer.h"

#include "git/service/git_service.h"
#include "platform/text/character_sets.h"
#include "platform/view/panel_controls.h"
#include "platform/view/wrapping_row.h"

#include <QKeyEvent>
#include <QPointer>
#include <QTextBlock>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

constexpr int fewestLines = 2;
constexpr int mostLines = 4;

} // namespace

CommitMessageField::CommitMessageField(QWidget* parent) : QPlainTextEdit(parent)
{
    setPlaceholderText(tr("Commit message"));
    setAccessibleName(tr("Commit message"));
    setFont(style::interfaceFont(12));
    setTabChangesFocus(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setMinimumWidth(60);
    connect(this, &QPlainTextEdit::textChanged, this, &CommitMessageField::fitHeight);
    fitHeight();
}

QString CommitMessageField::message() const
{
    QStringList lines;
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        lines.append(block.text().replace(QChar::LineSeparator, u'\n'));
    }
    return lines.join(u'\n');
}

void CommitMessageField::setMessage(const QString& message)
{
    if (message != this->message()) {
        setPlainText(message);
    }
}

void CommitMessageField::clearMessage()
{
    QTextCursor cursor(document());
    cursor.select(QTextCursor::Document);
    cursor.removeSelectedText();
}

void CommitMessageField::keyPressEvent(QKeyEvent* event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isReturn && event->modifiers().testFlag(Qt::ControlModifier)) {
        Q_EMIT submitted();
        return;
    }
    QPlainTextEdit::keyPressEvent(event);
}

void CommitMessageField::resizeEvent(QResizeEvent* event)
{
    QPlainTextEdit::resizeEvent(event);
    fitHeight();
}

void CommitMessageField::fitHeight()
{
    // A plain text document measures its height in lines.
    const int lines = std::clamp(static_cast<int>(document()->size().height()), fewestLines, mostLines);
    const int margin = static_cast<int>(document()->documentMargin()) + frameWidth();
    setFixedHeight(lines * fontMetrics().lineSpacing() + 2 * margin + 1);
}

CommitComposer::CommitComposer(GitService& git, QWidget* parent)
    : QWidget(parent),
      git_(git),
      field_(new CommitMessageField(this)),
      commitButton_(makePanelButton(tr("Commit"), this, true)),
      amendBox_(makePanelCheckBox(tr("Amend last"), this))
{
    PlainButton* stageAll = makePanelButton(tr("Stage All"), this);
    connect(field_, &QPlainTextEdit::textChanged, this, &CommitComposer::refreshState);
    connect(field_, &CommitMessageField::submitted, commitButton_, [this] { commitButton_->click(); });
    connect(amendBox_, &QCheckBox::toggled, this, &CommitComposer::refreshState);
    connect(commitButton_, &QAbstractButton::clicked, this, &CommitComposer::commit);
    connect(stageAll, &QAbstractButton::clicked, &git_, &GitService::stageAll);

    auto* row = new WrappingRow;
    row->addWidget(commitButton_);
    row->addWidget(amendBox_);
    row->alignRestRight();
    row->addWidget(stageAll);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(8, 8, 8, 8);
    column->setSpacing(6);
    column->addWidget(field_);
    column->addLayout(row);
    refreshState();
}

bool CommitComposer::amend() const
{
    return amendBox_->isChecked();
}

void CommitComposer::forgetAmend()
{
    amendBox_->setChecked(false);
}

void CommitComposer::refreshState()
{
    commitButton_->setText(amend() ? tr("Amend") : tr("Commit"));
    commitButton_->updateGeometry();
    const bool isBlank = trimmed(message(), isWhitespaceOrNewline).isEmpty();
    commitButton_->setEnabled(amend() || !isBlank);
}

void CommitComposer::commit()
{
    const QString text = message();
    const bool amends = amend();
    const bool isMade =
        amends ? git_.amendCommit(text.isEmpty() ? std::nullopt : std::optional(text)) : git_.commit(text);
    if (isMade) {
        field_->clearMessage();
        amendBox_->setChecked(false);
        tellOfRefusal(text, amends);
    }
}

void CommitComposer::tellOfRefusal(const QString& message, bool amends)
{
    if (const std::optional<GitFailure>& refusal = git_.commitRefusal(); refusal && onRefused) {
        onRefused(refusal->sentence(), [composer = QPointer<CommitComposer>(this), message, amends] {
            if (composer) {
                composer->putBack(message, amends);
            }
        });
    }
}

void CommitComposer::putBack(const QString& message, bool amends)
{
    const QString since = field_->message();
    field_->setMessage(since.isEmpty() || message.isEmpty() ? message + since : message + u"\n\n"_s + since);
    amendBox_->setChecked(amends || amend());
    field_->setFocus(Qt::OtherFocusReason);
}

} // namespace kelm
