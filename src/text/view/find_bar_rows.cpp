// The fields and buttons of a find bar, and the way of the keyboard round them.
#include "platform/view/accessible_news.h"
#include "text/view/find_bar.h"

#include <QApplication>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace kelm {

namespace {

constexpr int margin = 6;
constexpr int spacing = 4;
constexpr int widestField = 260;
constexpr int narrowestField = 110;
constexpr int widestStatus = 180;
/// Room for the count of some hundred matches.
constexpr int narrowestStatus = 76;
constexpr int buttonHeight = 22;
/// Of the line between the bar and the text.
constexpr float lineOpacity = 0.15F;

} // namespace

QToolButton* FindBar::makeButton(const QString& text, const QString& help)
{
    auto* button = new QToolButton(this);
    button->setText(text);
    button->setToolTip(help);
    button->setAccessibleName(help);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::TabFocus);
    button->setFixedHeight(buttonHeight);
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
    replaceField_->setPlaceholderText(tr("Replace"));
    replaceField_->setAccessibleName(tr("Replace"));
    QSizePolicy keepsItsPlace = status_->sizePolicy();
    keepsItsPlace.setRetainSizeWhenHidden(true);
    status_->setSizePolicy(keepsItsPlace);
    status_->setTextFormat(Qt::PlainText);

    QToolButton* previous = makeButton(QStringLiteral("‹"), tr("Previous match"));
    QToolButton* next = makeButton(QStringLiteral("›"), tr("Next match"));
    auto* options = new QHBoxLayout(options_);
    options->setContentsMargins(0, 0, 0, 0);
    options->setSpacing(spacing);
    for (QWidget* widget :
         std::initializer_list<QWidget*>{caseToggle_, wordToggle_, patternToggle_, previous, next, status_}) {
        options->addWidget(widget);
    }
    done_ = makeButton(tr("Done"), tr("Close the find bar"));

    QToolButton* replaceOne = makeButton(tr("Replace"), tr("Replace this match"));
    QToolButton* replaceEach = makeButton(tr("Replace All"), tr("Replace all matches"));
    auto* buttons = new QHBoxLayout(replaceButtons_);
    buttons->setContentsMargins(0, 0, 0, 0);
    buttons->setSpacing(spacing);
    buttons->addWidget(replaceOne);
    buttons->addWidget(replaceEach);

    findRow_ = new QGridLayout;
    findRow_->setSpacing(spacing);
    replaceGrid_ = new QGridLayout(replaceRow_);
    replaceGrid_->setContentsMargins(0, 0, 0, 0);
    replaceGrid_->setSpacing(spacing);
    setNarrow(false);

    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(margin, margin, margin, margin);
    rows->setSpacing(spacing);
    rows->addLayout(findRow_);
    rows->addWidget(replaceRow_);

    connect(previous, &QToolButton::clicked, this, &FindBar::findPrevious);
    connect(next, &QToolButton::clicked, this, &FindBar::findNext);
    connect(done_, &QToolButton::clicked, this, &FindBar::close);
    connect(replaceOne, &QToolButton::clicked, this, &FindBar::replaceCurrent);
    connect(replaceEach, &QToolButton::clicked, this, &FindBar::replaceAll);
}

void FindBar::setNarrow(bool isNarrow)
{
    isNarrow_ = isNarrow;
    findRow_->addWidget(findField_, 0, 0);
    findRow_->addWidget(options_, isNarrow ? 1 : 0, isNarrow ? 0 : 1, 1, isNarrow ? 3 : 1, Qt::AlignLeft);
    findRow_->addWidget(done_, 0, 2, Qt::AlignRight);
    // What is left over stands before the button that closes.
    findRow_->setColumnStretch(2, 1);
    replaceGrid_->addWidget(replaceField_, 0, 0);
    replaceGrid_->addWidget(replaceButtons_, isNarrow ? 1 : 0, isNarrow ? 0 : 1, 1, isNarrow ? 2 : 1, Qt::AlignLeft);
    replaceGrid_->setColumnStretch(1, 1);
}

void FindBar::fitRows(int width)
{
    if (width == std::exchange(fittedWidth_, width)) {
        return;
    }
    const int inner = width - 2 * margin;
    status_->setFixedWidth(0);
    const int options = options_->sizeHint().width();
    const int done = done_->sizeHint().width();
    const int rest = inner - options - done - 2 * spacing;
    const bool isNarrow = rest < narrowestField + narrowestStatus;
    if (isNarrow != isNarrow_) {
        setNarrow(isNarrow);
    }
    const int status = isNarrow ? inner - options : rest - widestField;
    status_->setFixedWidth(std::clamp(status, isNarrow ? 0 : narrowestStatus, widestStatus));
    const int field = isNarrow ? inner - done - spacing : rest - status_->maximumWidth();
    findField_->setFixedWidth(std::clamp(field, 0, widestField));
    replaceField_->setFixedWidth(findField_->maximumWidth());
    showStatus(status_->toolTip());
    // The bar's height is asked for next, and the rows have to know it by then.
    for (QLayout* changed : std::initializer_list<QLayout*>{options_->layout(), replaceGrid_, layout()}) {
        changed->invalidate();
        changed->activate();
    }
}

void FindBar::showStatus(const QString& text)
{
    status_->setText(status_->fontMetrics().elidedText(text, Qt::ElideRight, status_->maximumWidth()));
    status_->setToolTip(text);
    // Nothing is a label without a name.
    status_->setHidden(text.isEmpty());
    if (status_->accessibleName() != text) {
        status_->setAccessibleName(text);
        announce(*status_);
    }
}

void FindBar::paintEvent(QPaintEvent* event)
{
    QFrame::paintEvent(event);
    QColor line = palette().color(QPalette::WindowText);
    line.setAlphaF(lineOpacity);
    QPainter(this).fillRect(QRect(0, height() - 1, width(), 1), line);
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
