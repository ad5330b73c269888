#include "git/panel/view/stash_row.h"

#include "git/panel/view/row_menu.h"
#include "platform/text/shown_name.h"

using namespace Qt::Literals::StringLiterals;

namespace kelm {

Row StashRow::content() const
{
    const RowFonts& fonts = RowFonts::standard();
    Row row;
    row.firstLine = {{.text = shownName(stash.message), .font = fonts.body}};
    row.secondLine = {{.text = stash.label, .font = fonts.smallMonospaced, .tint = Tint::secondary()}};
    row.help = stash.label + u": "_s + shownName(stash.message);
    row.actions = {{u"Apply (keep stash)"_s, u"arrow.down.right.circle"_s, onApply},
                   {u"Pop (apply + drop)"_s, u"tray.and.arrow.up"_s, onPop},
                   {u"Drop"_s, u"trash"_s, onDrop}};
    row.menu = {copyAction(u"Copy Name"_s, stash.label), copyAction(u"Copy Message"_s, stash.message)};
    return row;
}

} // namespace kelm
