// Colours that are given and stay, however well they are read.
#pragma once

#include "editor/themes/editor_theme.h"
#include "platform/style/view/tint.h"
#include "support/ink_recorder.h"

#include <QString>

#include <array>

namespace kelm::test {

/// A colour of a theme by its name, and all of those that letters are drawn in.
struct ThemeInk
{
    const char* name;
    CodableColor EditorTheme::*color;
};

inline constexpr std::array themeInks{
    ThemeInk{"text", &EditorTheme::textColor},
    ThemeInk{"lineNumber", &EditorTheme::lineNumberColor},
    ThemeInk{"keyword", &EditorTheme::keywordColor},
    ThemeInk{"string", &EditorTheme::stringColor},
    ThemeInk{"comment", &EditorTheme::commentColor},
    ThemeInk{"number", &EditorTheme::numberColor},
    ThemeInk{"type", &EditorTheme::typeColor},
    ThemeInk{"function", &EditorTheme::functionColor},
    ThemeInk{"variable", &EditorTheme::variableColor},
    ThemeInk{"operator", &EditorTheme::operatorColor},
    ThemeInk{"preprocessor", &EditorTheme::preprocessorColor},
    ThemeInk{"attribute", &EditorTheme::attributeColor},
};

/// What is read worse than it should be, with its contrast as it was measured: all of it is given.
struct FixedInk
{
    const char* theme;
    const char* name;
    double contrast;
};

inline constexpr std::array fixedInks{
    FixedInk{"Monokai", "lineNumber", 3.03},
    FixedInk{"Monokai", "keyword", 3.93},
    FixedInk{"Monokai", "comment", 3.03},
    FixedInk{"Monokai", "operator", 3.93},
    FixedInk{"Monokai", "preprocessor", 3.93},
    FixedInk{"Dracula", "lineNumber", 3.03},
    FixedInk{"Dracula", "comment", 3.03},
    FixedInk{"Solarized Dark", "lineNumber", 2.79},
    FixedInk{"Solarized Dark", "comment", 2.79},
    FixedInk{"Solarized Dark", "number", 3.30},
    FixedInk{"Solarized Dark", "function", 4.08},
    FixedInk{"Solarized Dark", "variable", 3.26},
    FixedInk{"Solarized Dark", "preprocessor", 3.26},
    FixedInk{"Solarized Dark", "attribute", 4.08},
    FixedInk{"One Dark", "lineNumber", 1.79},
    FixedInk{"One Dark", "comment", 2.32},
    FixedInk{"One Dark", "variable", 4.38},
    FixedInk{"GitHub Light", "lineNumber", 2.65},
    FixedInk{"GitHub Light", "variable", 3.49},
    FixedInk{"Neon Kelm", "lineNumber", 3.48},
    FixedInk{"Neon Kelm", "comment", 3.76},
    // The blue of a selection, at 0.4 over the ground.
    FixedInk{"Solarized Dark", "text, selected", 2.70},
    FixedInk{"One Dark", "text, selected", 3.92},
    // White at 0.5 over the minimap's ground, which is the theme's with 0.04 of black or white.
    FixedInk{"GitHub Light", "plain line of the minimap", 1.05},
    // White on green.
    FixedInk{"Monokai", "button that runs", 1.92},
    FixedInk{"Dracula", "button that runs", 1.92},
    FixedInk{"Solarized Dark", "button that runs", 1.92},
    FixedInk{"One Dark", "button that runs", 1.92},
    FixedInk{"GitHub Light", "button that runs", 2.12},
    FixedInk{"Neon Kelm", "button that runs", 1.92},
    // Blue on 0.1 of it over the gutter.
    FixedInk{"Monokai", "line number of a lesson", 3.65},
    FixedInk{"Dracula", "line number of a lesson", 3.49},
    FixedInk{"Solarized Dark", "line number of a lesson", 3.62},
    FixedInk{"One Dark", "line number of a lesson", 3.43},
    FixedInk{"GitHub Light", "line number of a lesson", 3.41},
};

inline bool isOfTheme(const QColor& color, const EditorTheme& theme)
{
    return std::any_of(themeInks.begin(), themeInks.end(),
                       [&](const ThemeInk& ink) { return (theme.*ink.color).toColor().rgb() == color.rgb(); });
}

/// Whether a text or symbol has a colour and a ground that are both given. `path` tells the classes of its widget and
/// of what that stands in.
inline bool isFixed(const QString& path, const Ink& ink, const EditorTheme& theme)
{
    // A line of the region of a lesson has a blue number on a band of the same blue.
    const Appearance appearance = theme.isDark ? Appearance::dark : Appearance::light;
    if (path.startsWith(QLatin1String("SimpleLineNumberView"))) {
        return ink.color == systemColor(SystemColor::blue, appearance) || isOfTheme(ink.color, theme);
    }
    // Of the editor below an overlay's card, too.
    if (path.contains(QLatin1String("OverlayLayer")) && isOfTheme(ink.color, theme)) {
        return true;
    }
    // The colours of the editor and of its preview are those of the theme.
    if (path.contains(QLatin1String("EditorContainerView")) || path.startsWith(QLatin1String("ThemePreview"))) {
        return isOfTheme(ink.color, theme);
    }
    // What tells that there is nothing stands back: its symbol at 0.6 of the secondary colour, its caption at 0.7.
    for (const char* empty : {"SourceControlEmptyState", "FileTreeView"}) {
        if (path.contains(QLatin1String(empty))) {
            const auto isAt = [&](double opacity) {
                return isNear(ink.color, over(ink.ground, Tint::secondary().at(opacity).in(appearance)));
            };
            return isAt(ink.kind == Ink::Kind::symbol ? 0.6 : 0.7);
        }
    }
    // The button that runs is white on green.
    if (path.startsWith(QLatin1String("PlainButton/ToolbarView"))) {
        return ink.color == QColor(Qt::white) && isNear(ink.ground, systemColor(SystemColor::green, appearance));
    }
    return false;
}

} // namespace kelm::test
