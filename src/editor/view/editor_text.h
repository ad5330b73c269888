// What the text of every editing surface has in common.
#pragma once

#include "platform/desktop/appearance.h"

#include <QSizeF>

namespace kelm {

class TextView;
struct EditorTheme;

/// The height of a row of an editing surface, in points, that places on the page are reckoned with. It does not come
/// from the font.
inline constexpr double editorLineHeight = 17;

/// Gives a text view the editor's font and the colours that it has before a theme is set. `inset` in points.
void setUpEditorText(TextView& view, QSizeF inset);

/// Gives selected text its ground, which goes with the appearance and not with the theme.
void applySelectionColor(TextView& view, Appearance appearance);

/// Gives a text view the colours of a theme.
void applyThemeColors(TextView& view, const EditorTheme& theme);

} // namespace kelm
