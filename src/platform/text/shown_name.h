// Names that other people chose, as they are shown.
#pragma once

#include <QString>
#include <QStringView>

namespace kelm {

/// A name with a visible sign for each character that is not seen, its number in angle brackets: "⟨U+000A⟩" for a line
/// feed. So stand control characters, blanks at the start and the end, what has no width, turns the direction of a text
/// or only looks like a blank; a byte that is not UTF-8, in the form of `pathOfNative`, as "⟨E9⟩". The opening bracket
/// itself stands so too: two names never look the same because of a character that cannot be seen, and none poses as
/// another kind of file by turning its own direction. What shapes the characters beside it, as Persian and Indic words
/// and composed pictographs have it, is seen in them and stays (see `isScriptJoiner`). The signs for control characters
/// that a font may have are not used, since many have not.
///
/// For every border to the screen: lists, titles, tool tips, notices, menus, dialogs. What works with the name has the
/// name itself.
QString shownName(QStringView name);

} // namespace kelm
