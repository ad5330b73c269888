// The fields and buttons of a find bar, and the way of the keyboard round them.
#include "text/view/find_bar.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>
#include <QVBoxLayout>

namespace kelm {

namespace {

constexpr int margin = 6;
constexpr int spacing = 4;
constexpr int fieldWidth = 260;

} // namespace

QToolButton* FindBar::makeButton(const QString& text, const QString& help)
{
    auto* button = new QToolButton(this);
    button->setText(text);
    button->setToolTip(help);
    button->setAccessibleName(help);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

QToolButton* FindBar::makeToggle(const QString& text, const QString& help)
{
    QToolButton* button = makeButton(text, help);
    button->setCheckable(true);
    connect(button, &QToolButton::toggled, this, [this] { restart(); });
    return button;
}

void FindBar::buildRows()
{
    findField_->setPlaceholderText(tr("Find"));
    findField_->setAccessibleName(tr("Find"));
    findField_->setFixedWidth(fieldWidth);
    replaceField_->setPlaceholderText(tr("Replace"));
    replaceField_->setAccessibleName(tr("Replace"));
    replaceField_->setFixedWidth(fieldWidth);
    status_->setFixedWidth(statusWidth);
    QSizePolicy keepsItsPlace = status_->sizePolicy();
    keepsItsPlace.setRetainSizeWhenHidden(true);
    status_->setSizePolicy(keepsItsPlace);
    status_->setTextFormat(Qt::PlainText);

    auto* findRow = new QHBoxLayout;
    findRow->setSpacing(spacing);
    QToolButton* previous = makeButton(QStringLiteral("‹"), tr("Previous match"));
    QToolButton* next = makeButton(QStringLiteral("›"), tr("Next match"));
    QToolButton* done = makeButton(tr("Done"), tr("Close the find bar"));
    for (QWidget* widget : std::initializer_list<QWidget*>{findField_, caseToggle_, wordToggle_, patternToggle_,
                                                           previous, next, status_}) {
        findRow->addWidget(widget);
    }
    findRow->addStretch();
    findRow->addWidget(done);

    auto* replaceLayout = new QHBoxLayout(replaceRow_);
    replaceLayout->setContentsMargins(0, 0, 0, 0);
    replaceLayout->setSpacing(spacing);
    QToolButton* replaceOne = makeButton(tr("Replace"), tr("Replace this match"));
    QToolButton* replaceEach = makeButton(tr("Replace All"), tr("Replace all matches"));
    replaceLayout->addWidget(replaceField_);
    replaceLayout->addWidget(replaceOne);
    replaceLayout->addWidget(replaceEach);
    replaceLayout->addStretch();

    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(margin, margin, margin, margin);
    rows->setSpacing(spacing);
    rows->addLayout(findRow);
    rows->addWidget(replaceRow_);

    connect(previous, &QToolButton::clicked, this, &FindBar::findPrevious);
    connect(next, &QToolButton::clicked, this, &FindBar::findNext);
    connect(done, &QToolButton::clicked, this, &FindBar::close);
    connect(replaceOne, &QToolButton::clicked, this, &FindBar::replaceCurrent);
    connect(replaceEach, &QToolButton::clicked, this, &FindBar::replaceAll);
}

bool FindBar::focusNextPrevChild(bool next)
{
    QWidget* const start = isAncestorOf(QApplication::focusWidget()) ? QApplication::focusWidget() : this;
    QWidget* candidate = start;
    do {
        candidate = next ? candidate->nextInFocusChain() : candidate->previousInFocusChain();
        const bool isStop = isAncestorOf(candidate) && candidate->isVisible() && candidate->isEnabled() &&
                            (candidate->focusPolicy() & Qt::TabFocus) != 0;
        if (isStop) {
            candidate->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
            return true;
        }
    } while (candidate != start);
    return true;
}

} // namespace kelm
