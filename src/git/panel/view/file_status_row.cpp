#include "git/panel/view/file_status_row.h"

#include "git/service/file_status_mark.h"
#include "git/service/git_names.h"

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

/// The path and what happened to it.
QString inWords(const GitFileStatus& file, bool staged)
{
    const std::optional<GitFileChange>& own = staged ? file.staged : file.unstaged;
    const std::optional<GitFileChange> change = own ? own : staged ? file.unstaged : file.staged;
    const QString names = shownNames(file);
    return change ? names + u" ("_s + rawValue(*change) + u')' : names;
}

} // namespace

Row FileStatusRow::content() const
{
    constexpr int letterWidth = 12;
    const RowFonts& fonts = RowFonts::standard();
    const FileStatusMark mark = fileStatusMark(file, staged);
    Row row;
    row.firstLine = {
        {.text = mark.letter, .font = fonts.mark, .tint = mark.color, .givesWay = false, .leastWidth = letterWidth},
        {.text = shownNames(file), .font = fonts.monospaced, .elideMode = Qt::ElideMiddle}};
    row.help = inWords(file, staged);
    row.onClick = onClickDiff;
    row.clickName = u"Show Diff"_s;
    const bool isThere = file.staged != GitFileChange::deleted || file.unstaged != GitFileChange::deleted;
    if (isUnmerged(file) && isThere && onOpen) {
        row.onClick = onOpen;
        row.clickName = u"Open File"_s;
        row.menu.append({u"Show Diff"_s, {}, onClickDiff});
    }
    if (staged) {
        row.actions.append({u"Unstage"_s, u"minus.circle"_s, onUnstage});
    } else {
        row.actions.append({u"Stage"_s, u"plus.circle"_s, onStage});
        if (onDiscard) {
            row.actions.append({u"Discard"_s, u"arrow.uturn.backward.circle"_s, onDiscard});
        }
    }
    for (const RowAction& action : menu) {
        if (action.help != row.clickName) {
            row.menu.append(action);
        }
    }
    return row;
}

} // namespace kelm
