#include "git/panel/view/commit_row.h"

#include "git/panel/view/row_menu.h"
#include "platform/text/shown_name.h"

using namespace Qt::Literals::StringLiterals;

namespace kelm {

Row CommitRow::content() const
{
    constexpr int shortHash = 7;
    const RowFonts& fonts = RowFonts::standard();
    Row row;
    row.firstLine = {{.text = commit.id.left(shortHash),
                      .font = fonts.smallMonospaced,
                      .tint = SystemColor::orange,
                      .givesWay = false},
                     {.text = commit.summary, .font = fonts.body}};
    row.secondLine = {{.text = shownName(commit.author), .font = fonts.caption, .tint = Tint::secondary()},
                      {.text = commit.date, .font = fonts.caption, .tint = Tint::secondary(), .givesWay = false}};
    row.help = commit.summary + u'\n' + shownName(commit.author) + u", "_s + commit.date + u'\n' + commit.id;
    row.onClick = onClick;
    row.clickName = u"Show Commit"_s;
    row.menu = {copyAction(u"Copy SHA"_s, commit.id), copyAction(u"Copy Summary"_s, commit.summary)};
    return row;
}

} // namespace kelm
