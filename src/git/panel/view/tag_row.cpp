#include "git/panel/view/tag_row.h"

#include "git/panel/view/row_menu.h"
#include "platform/text/shown_name.h"

using namespace Qt::Literals::StringLiterals;

namespace kelm {

Row TagRow::content() const
{
    constexpr int shortHash = 7;
    const RowFonts& fonts = RowFonts::standard();
    Row row;
    row.symbol = u"tag.fill"_s;
    row.firstLine = {{.text = shownName(tag.name), .font = fonts.body, .elideMode = Qt::ElideMiddle}};
    row.help = shownName(tag.name);
    if (tag.sha) {
        row.firstLine.append({.text = tag.sha->left(shortHash),
                              .font = fonts.smallMonospaced,
                              .tint = Tint::secondary(),
                              .givesWay = false});
        row.help += u", "_s + tag.sha->left(shortHash);
    }
    if (tag.annotation) {
        row.secondLine = {{.text = shownName(*tag.annotation), .font = fonts.caption, .tint = Tint::secondary()}};
        row.help += u'\n' + shownName(*tag.annotation);
    }
    row.actions = {{u"Push tag"_s, u"arrow.up.circle"_s, onPush}, {u"Delete tag"_s, u"trash"_s, onDelete}};
    row.menu = {copyAction(u"Copy Name"_s, tag.name)};
    if (tag.sha) {
        row.menu.append(copyAction(u"Copy SHA"_s, *tag.sha));
    }
    return row;
}

} // namespace kelm
