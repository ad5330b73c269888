#include "platform/view/row_actions.h"

#include "platform/view/accessible_role.h"
#include "platform/view/plain_button.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>

#include <algorithm>

namespace kelm {

namespace {

constexpr int symbolSize = 14;

bool sameNames(const QList<RowAction>& a, const QList<RowAction>& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const RowAction& x, const RowAction& y) { return x.help == y.help && x.symbol == y.symbol; });
}

} // namespace

RowActions::RowActions(bool takesKeyboard, QWidget* parent) : QWidget(parent), takesKeyboard_(takesKeyboard)
{
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    setFocusPolicy(Qt::NoFocus);
    setAccessibleRole(*this, QAccessible::ToolBar);
}

void RowActions::setActions(const QList<RowAction>& actions, const QString& description)
{
    const bool isSame = sameNames(actions, actions_);
    actions_ = actions;
    if (!isSame) {
        for (PlainButton* button : buttons_) {
            // It may be the one whose click leads here.
            button->removeEventFilter(this);
            button->hide();
            layout()->removeWidget(button);
            button->deleteLater();
        }
        buttons_.clear();
        for (const RowAction& action : actions_) {
            auto* button = new PlainButton({.symbol = action.symbol,
                                            .symbolSize = symbolSize,
                                            .hoveredTint = Tint::primary(),
                                            .padding = {4, 3, 4, 3},
                                            .cornerRadius = style::radius::chip},
                                           this);
            button->setHelp(action.help);
            button->setFocusPolicy(takesKeyboard_ ? Qt::TabFocus : Qt::NoFocus);
            button->installEventFilter(this);
            connect(button, &QAbstractButton::clicked, this, [this, place = buttons_.size()] {
                // Running it may set other actions.
                const std::function<void()> run = actions_[place].run;
                run();
            });
            layout()->addWidget(button);
            buttons_.append(button);
            button->show();
        }
    }
    setAccessibleName(description);
    for (PlainButton* button : buttons_) {
        button->setAccessibleDescription(description);
    }
    adjustSize();
}

bool RowActions::hasKeyboard() const
{
    const QWidget* focused = QApplication::focusWidget();
    return focused != nullptr && isAncestorOf(focused);
}

void RowActions::focusFirst()
{
    if (!buttons_.isEmpty()) {
        buttons_.first()->setFocus(Qt::TabFocusReason);
    }
}

void RowActions::cancelPress()
{
    for (PlainButton* button : buttons_) {
        button->setDown(false);
    }
}

bool RowActions::eventFilter(QObject* watched, QEvent* event)
{
    const qsizetype button = buttons_.indexOf(static_cast<PlainButton*>(watched));
    switch (event->type()) {
    case QEvent::FocusIn:
    case QEvent::FocusOut:
        Q_EMIT keyboardChanged();
        return false;
    case QEvent::KeyPress:
        return handleKey(button, static_cast<QKeyEvent&>(*event));
    case QEvent::MouseMove:
    case QEvent::HoverMove:
        Q_EMIT pointerMoved(static_cast<QSinglePointEvent*>(event)->globalPosition().toPoint());
        return false;
    case QEvent::MouseButtonPress:
        return !takesMouse_;
    case QEvent::MouseButtonDblClick:
        // The first of the two has done it, to a row that may be another one now.
        return true;
    default:
        return false;
    }
}

bool RowActions::handleKey(qsizetype button, QKeyEvent& event)
{
    switch (event.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        return event.isAutoRepeat();
    case Qt::Key_Right:
    case Qt::Key_Tab:
        step(button, true);
        return true;
    case Qt::Key_Left:
    case Qt::Key_Backtab:
        step(button, false);
        return true;
    case Qt::Key_Escape:
        Q_EMIT leftBackwards();
        return true;
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
    case Qt::Key_Home:
    case Qt::Key_End:
        Q_EMIT leftBackwards();
        Q_EMIT rowKeyPressed(&event);
        return true;
    default:
        return false;
    }
}

void RowActions::step(qsizetype button, bool forwards)
{
    const qsizetype next = button + (forwards ? 1 : -1);
    if (next < 0) {
        Q_EMIT leftBackwards();
    } else if (next < buttons_.size()) {
        buttons_[next]->setFocus(forwards ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    } else {
        Q_EMIT leftForwards();
    }
}

} // namespace kelm
