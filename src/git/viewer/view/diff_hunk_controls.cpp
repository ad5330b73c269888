#include "git/viewer/view/diff_hunk_controls.h"

#include "git/viewer/view/diff_fonts.h"
#include "platform/view/plain_button.h"

#include <algorithm>

namespace kelm {

using namespace diffSizes;

namespace {

constexpr int togglePadding = 4;
constexpr int actionPadding = 5;

ButtonLook toggleLook()
{
    return {.symbol = QStringLiteral("chevron.down"),
            .symbolSize = toggleSymbol,
            .tint = Tint::primary(),
            .padding = {togglePadding, togglePadding, togglePadding, togglePadding},
            .cornerRadius = style::radius::chip};
}

ButtonLook actionLook()
{
    return {.symbol = QStringLiteral("plus.circle"),
            .symbolSize = 10,
            .textSize = style::typeSize::caption,
            .tint = Tint::primary(),
            .padding = {actionPadding, 2, actionPadding, 2},
            .spacing = 4,
            .cornerRadius = style::radius::chip};
}

} // namespace

void HunkControls::reset()
{
    for (const auto& row : rows_) {
        row->isAssigned = false;
    }
}

void HunkControls::release(const std::vector<PlacedHunk>& hunks)
{
    for (const auto& row : rows_) {
        const bool stays = std::any_of(hunks.begin(), hunks.end(), [&row](const PlacedHunk& hunk) {
            return hunk.file == row->file && hunk.hunk == row->hunk;
        });
        if (!stays && row->file >= 0) {
            *row = {-1, -1, false, row->toggle, row->action, {}, {}};
            row->toggle->hide();
            row->action->hide();
        }
    }
}

HunkControls::Row& HunkControls::rowOf(const PlacedHunk& hunk)
{
    Row* unused = nullptr;
    for (const auto& row : rows_) {
        if (row->file == hunk.file && row->hunk == hunk.hunk) {
            return *row;
        }
        if (row->file < 0) {
            unused = row.get();
        }
    }
    if (unused == nullptr) {
        rows_.push_back(makeRow());
        unused = rows_.back().get();
    }
    unused->file = hunk.file;
    unused->hunk = hunk.hunk;
    return *unused;
}

std::unique_ptr<HunkControls::Row> HunkControls::makeRow()
{
    auto row = std::make_unique<Row>();
    row->toggle = new PlainButton(toggleLook(), &viewport_);
    row->action = new PlainButton(actionLook(), &viewport_);
    // What the click does may give the button to another hunk.
    QObject::connect(row->toggle, &PlainButton::clicked, row->toggle, [row = row.get()] {
        const auto toggle = row->onToggle;
        toggle();
    });
    QObject::connect(row->action, &PlainButton::clicked, row->action, [row = row.get()] {
        const auto act = row->onAction;
        act();
    });
    for (PlainButton* button : {row->toggle, row->action}) {
        // The diff leads Tab from hunk to hunk, also to those that are not on screen.
        button->setFocusPolicy(Qt::ClickFocus);
        // From the last one, Tab goes on to what follows the diff.
        QWidget::setTabOrder(viewport_.parentWidget(), button);
        button->setCursor(Qt::ArrowCursor);
    }
    return row;
}

void HunkControls::assign(Row& row, const PlacedHunk& hunk, const std::pair<HunkBlock, QString>& blockAndPath)
{
    const auto& [block, path] = blockAndPath;
    const QString place = QObject::tr("%1 of %2").arg(block.hunk.header, path);
    row.file = hunk.file;
    row.hunk = hunk.hunk;
    row.isAssigned = true;
    row.onToggle = block.onToggle;
    row.onAction = block.onAction;
    row.toggle->setSymbol(block.collapsed ? QStringLiteral("chevron.right") : QStringLiteral("chevron.down"));
    row.toggle->setAccessibleName(
        (block.collapsed ? QObject::tr("Expand hunk %1") : QObject::tr("Collapse hunk %1")).arg(place));
    row.action->setText(block.actionLabel);
    const auto& [reason, caution] = block.hindrance;
    const QString help = QObject::tr("Apply just this hunk to the index");
    row.action->setEnabled(reason.isEmpty());
    row.action->setHelp(!reason.isEmpty() ? reason : caution.isEmpty() ? help : help + u'\n' + caution);
    row.action->setAccessibleName(block.actionLabel + u' ' + place);
    row.action->setAccessibleDescription(reason.isEmpty() ? caution : reason);
    row.action->resize(row.action->sizeHint());
    row.toggle->resize(row.toggle->sizeHint());
    row.toggle->show();
    row.action->setVisible(block.onAction != nullptr);
}

void HunkControls::move(const Row& row, const QRect& header)
{
    const int middle = header.top() + header.height() / 2;
    row.toggle->move(header.left() + hunkHeaderHorizontal - togglePadding, middle - row.toggle->height() / 2);
    row.action->move(header.left() + header.width() - hunkHeaderHorizontal + actionPadding - row.action->width(),
                     middle - row.action->height() / 2);
}

PlainButton* HunkControls::button(const HunkControl& control) const
{
    for (const auto& row : rows_) {
        if (row->file == control.file && row->hunk == control.hunk) {
            PlainButton* button = control.role == HunkControl::Role::toggle ? row->toggle : row->action;
            return button->isHidden() ? nullptr : button;
        }
    }
    return nullptr;
}

std::optional<HunkControl> HunkControls::focused() const
{
    for (const auto& row : rows_) {
        if (row->file >= 0 && row->toggle->hasFocus()) {
            return HunkControl{row->file, row->hunk, HunkControl::Role::toggle};
        }
        if (row->file >= 0 && row->action->hasFocus()) {
            return HunkControl{row->file, row->hunk, HunkControl::Role::action};
        }
    }
    return std::nullopt;
}

int HunkControls::actionWidth(const QString& label) const
{
    PlainButton sample(actionLook());
    sample.setText(label);
    return sample.sizeHint().width() - actionPadding + hunkHeaderHorizontal;
}

} // namespace kelm
