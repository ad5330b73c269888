#include "git/panel/view/branch_row.h"

#include "git/panel/view/row_menu.h"
#include "platform/text/shown_name.h"

using namespace Qt::Literals::StringLiterals;

namespace kelm {

Row BranchRow::content() const
{
    const RowFonts& fonts = RowFonts::standard();
    Row row;
    row.symbol = isCurrent ? u"checkmark.circle.fill"_s : u"circle"_s;
    row.symbolTint = isCurrent ? Tint::accent() : Tint::secondary();
    row.firstLine = {{.text = shownName(branch.name), .font = fonts.body, .elideMode = Qt::ElideMiddle}};
    row.help = shownName(branch.name);
    if (isCurrent) {
        row.help += u" (current)"_s;
    }
    if (branch.upstream) {
        row.firstLine.append({.text = shownName(*branch.upstream), .font = fonts.caption, .tint = Tint::secondary()});
        row.help += u", follows "_s + shownName(*branch.upstream);
    }
    if (!isCurrent) {
        row.actions = {{u"Checkout"_s, u"arrow.right.circle"_s, onCheckout},
                       {u"Merge into current"_s, u"arrow.triangle.merge"_s, onMerge},
                       {u"Delete"_s, u"trash"_s, onDelete}};
    }
    row.menu = {copyAction(u"Copy Name"_s, branch.name)};
    return row;
}

Row RemoteBranchRow::content() const
{
    Row row;
    row.symbol = u"cloud"_s;
    row.firstLine = {{.text = shownName(branch.name), .font = RowFonts::standard().body, .elideMode = Qt::ElideMiddle}};
    row.help = shownName(branch.name);
    row.actions = {{u"Checkout (create local tracking branch)"_s, u"arrow.right.circle"_s, onCheckout}};
    row.menu = {copyAction(u"Copy Name"_s, branch.name)};
    return row;
}

} // namespace kelm
