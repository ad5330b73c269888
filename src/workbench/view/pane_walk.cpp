#include "workbench/view/pane_walk.h"

#include "workbench/view/focus_order.h"

#include <QApplication>
#include <QWidget>

#include <utility>

namespace kelm {

namespace {

bool takesKeyboard(const QWidget* widget, const QWidget& part)
{
    return widget != nullptr && (widget == &part || part.isAncestorOf(widget)) && widget->isVisible() &&
           widget->isEnabled() && widget->focusPolicy() != Qt::NoFocus;
}

} // namespace

PaneWalk::PaneWalk(QWidget& window, std::vector<Pane> panes)
    : QObject(&window), window_(window), panes_(std::move(panes)), last_(panes_.size())
{
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) { follow(now); });
}

std::size_t PaneWalk::paneOf(const QWidget* widget) const
{
    std::size_t index = 0;
    for (; index < panes_.size(); ++index) {
        const QWidget* const part = panes_[index].part();
        if (widget != nullptr && part != nullptr && (part == widget || part->isAncestorOf(widget))) {
            break;
        }
    }
    return index;
}

std::size_t PaneWalk::asking() const
{
    std::size_t index = 0;
    for (; index < panes_.size(); ++index) {
        const QWidget* const part = panes_[index].asks ? panes_[index].part() : nullptr;
        if (part != nullptr && part->isVisible() && part != asked_) {
            break;
        }
    }
    return index;
}

void PaneWalk::follow(QWidget* now)
{
    const std::size_t index = now != nullptr && now->window() == &window_ ? paneOf(now) : panes_.size();
    if (index < panes_.size()) {
        last_[index] = now;
        asked_ = panes_[index].asks ? panes_[index].part() : asked_.data();
    }
}

bool PaneWalk::enter(std::size_t index)
{
    const Pane& pane = panes_[index];
    QWidget* const part = pane.part();
    if (part == nullptr || !part->isVisible()) {
        return false;
    }
    QWidget* target = last_[index];
    if (!takesKeyboard(target, *part)) {
        target = pane.entrance ? pane.entrance() : nullptr;
    }
    if (!takesKeyboard(target, *part)) {
        target = nextFocusStop({part}, nullptr, true);
    }
    if (target != nullptr) {
        // As the Tab key does, so that check boxes show it.
        window_.setAttribute(Qt::WA_KeyboardFocusChange);
        target->setFocus(Qt::ShortcutFocusReason);
    }
    return target != nullptr;
}

void PaneWalk::go(bool forward)
{
    const std::size_t count = panes_.size();
    if (const std::size_t asks = asking(); asks < count) {
        // It may not listen yet, and is waited for.
        enter(asks);
        return;
    }
    const std::size_t start = paneOf(window_.focusWidget());
    const bool isOutside = start == count;
    for (std::size_t step = 1; step <= count; ++step) {
        const std::size_t ahead = isOutside ? step - 1 : start + step;
        const std::size_t back = (isOutside ? count : start) + count - step;
        const std::size_t index = (forward ? ahead : back) % count;
        if (index == start || enter(index)) {
            return;
        }
    }
}

} // namespace kelm
