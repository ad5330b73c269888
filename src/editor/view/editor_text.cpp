#include "editor/view/editor_text.h"

#include "editor/themes/editor_theme.h"
#include "platform/desktop/named_colors.h"
#include "platform/style/view/style.h"
#include "text/view/text_view.h"

namespace kelm {

namespace {

constexpr int editorFontSize = 14;
constexpr float selectionAlpha = 0.4F;
/// How strongly the matches of a search are marked; the one that it stands at is selected besides, and its letters
/// have to stand out from both.
constexpr float matchAlpha = 0.18F;
constexpr float currentMatchAlpha = 0.08F;

QColor withAlpha(QColor color, float alpha)
{
    color.setAlphaF(alpha);
    return color;
}

} // namespace

void setUpEditorText(TextView& view, QSizeF inset)
{
    view.setTextFont(style::monospaced(editorFontSize), editorLineHeight);
    view.setTextInset(inset);
    TextViewColors colors;
    colors.background = QColor::fromRgbF(0.12F, 0.12F, 0.14F);
    colors.text = Qt::white;
    const Appearance appearance = style::appearanceOf(view);
    colors.insertionPoint = systemColor(SystemColor::yellow, appearance);
    view.setColors(colors);
    applySelectionColor(view, appearance);
}

void applySelectionColor(TextView& view, Appearance appearance)
{
    TextViewColors colors = view.colors();
    colors.selection = withAlpha(systemColor(SystemColor::blue, appearance), selectionAlpha);
    view.setColors(colors);
}

void applyThemeColors(TextView& view, const EditorTheme& theme)
{
    TextViewColors colors = view.colors();
    colors.background = theme.backgroundColor.toColor();
    // What is typed is read at once, before the highlighter has come by.
    colors.text = theme.textColor.toColor();
    colors.insertionPoint = theme.cursorColor.toColor();
    colors.match = withAlpha(theme.cursorColor.toColor(), matchAlpha);
    colors.currentMatch = withAlpha(theme.cursorColor.toColor(), currentMatchAlpha);
    view.setColors(colors);
}

} // namespace kelm
