#include "platform/view/confirmation_dialog.h"

#include "platform/view/breaking_label.h"
#include "platform/view/plain_button.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace kelm {

namespace {

constexpr int margin = 20;
constexpr int leastWidth = 340;

ButtonLook answerLook(bool isFirst, bool isDestructive)
{
    ButtonLook look = isFirst ? prominentLook() : borderedLook();
    if (isDestructive) {
        look.tint = SystemColor::red;
    }
    return look;
}

} // namespace

ConfirmationDialog::ConfirmationDialog(const QString& title, const QList<Answer>& answers, QWidget* parent)
    : QDialog(parent)
{
    setWindowModality(Qt::WindowModal);
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(title);
    setMinimumWidth(leastWidth);

    auto* question = new BreakingLabel(style::headlineFont(), Tint::primary(), this);
    question->setText(title);
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    buttons->addStretch();
    const auto addButton = [&](const QString& name, const ButtonLook& look) {
        auto* button = new PlainButton(look, this);
        button->setText(name);
        // The answers stand from right to left, "Cancel" at the far end.
        buttons->insertWidget(1, button);
        return button;
    };
    for (const Answer& answer : answers) {
        PlainButton* button = addButton(answer.name, answerLook(&answer == &answers.first(), answer.isDestructive));
        connect(button, &QAbstractButton::clicked, this, [this, run = answer.run] {
            run();
            accept();
        });
        if (&answer == &answers.first()) {
            button->setFocus(Qt::OtherFocusReason);
        }
    }
    PlainButton* cancel = addButton(tr("Cancel"), borderedLook());
    connect(cancel, &QAbstractButton::clicked, this, &QDialog::reject);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(margin, margin, margin, margin);
    column->setSpacing(margin);
    column->addWidget(question);
    column->addLayout(buttons);
}

} // namespace kelm
