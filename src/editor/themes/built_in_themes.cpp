#include "editor/themes/editor_theme.h"

#include <QString>

namespace kelm {

namespace {

struct BuiltInTheme
{
    QLatin1String name;
    bool isDark;
    /// Hexadecimal RGB, in the order of `EditorTheme::colorFields`.
    std::array<QLatin1String, 17> colors;
};

// clang-format off
constexpr BuiltInTheme builtInThemes[] = {
    {
        QLatin1String("Monokai"), true,
        {{
            QLatin1String("#272822"), // backgroundColor
            QLatin1String("#F8F8F2"), // textColor
            QLatin1String("#F8F8F0"), // cursorColor
            QLatin1String("#49483E"), // selectionColor
            QLatin1String("#75715E"), // lineNumberColor
            QLatin1String("#3E3D32"), // currentLineColor
            QLatin1String("#272822"), // gutterColor
            QLatin1String("#F92672"), // keywordColor
            QLatin1String("#E6DB74"), // stringColor
            QLatin1String("#75715E"), // commentColor
            QLatin1String("#AE81FF"), // numberColor
            QLatin1String("#66D9EF"), // typeColor
            QLatin1String("#A6E22E"), // functionColor
            QLatin1String("#FD971F"), // variableColor
            QLatin1String("#F92672"), // operatorColor
            QLatin1String("#F92672"), // preprocessorColor
            QLatin1String("#A6E22E"), // attributeColor
        }},
    },
    {
        QLatin1String("Dracula"), true,
        {{
            QLatin1String("#282A36"), // backgroundColor
            QLatin1String("#F8F8F2"), // textColor
            QLatin1String("#F8F8F2"), // cursorColor
            QLatin1String("#44475A"), // selectionColor
            QLatin1String("#6272A4"), // lineNumberColor
            QLatin1String("#44475A"), // currentLineColor
            QLatin1String("#282A36"), // gutterColor
            QLatin1String("#FF79C6"), // keywordColor
            QLatin1String("#F1FA8C"), // stringColor
            QLatin1String("#6272A4"), // commentColor
            QLatin1String("#BD93F9"), // numberColor
            QLatin1String("#8BE9FD"), // typeColor
            QLatin1String("#50FA7B"), // functionColor
            QLatin1String("#FFB86C"), // variableColor
            QLatin1String("#FF79C6"), // operatorColor
            QLatin1String("#FF79C6"), // preprocessorColor
            QLatin1String("#50FA7B"), // attributeColor
        }},
    },
    {
        QLatin1String("Solarized Dark"), true,
        {{
            QLatin1String("#002B36"), // backgroundColor
            QLatin1String("#839496"), // textColor
            QLatin1String("#839496"), // cursorColor
            QLatin1String("#073642"), // selectionColor
            QLatin1String("#586E75"), // lineNumberColor
            QLatin1String("#073642"), // currentLineColor
            QLatin1String("#002B36"), // gutterColor
            QLatin1String("#859900"), // keywordColor
            QLatin1String("#2AA198"), // stringColor
            QLatin1String("#586E75"), // commentColor
            QLatin1String("#D33682"), // numberColor
            QLatin1String("#B58900"), // typeColor
            QLatin1String("#268BD2"), // functionColor
            QLatin1String("#CB4B16"), // variableColor
            QLatin1String("#859900"), // operatorColor
            QLatin1String("#CB4B16"), // preprocessorColor
            QLatin1String("#268BD2"), // attributeColor
        }},
    },
    {
        QLatin1String("One Dark"), true,
        {{
            QLatin1String("#282C34"), // backgroundColor
            QLatin1String("#ABB2BF"), // textColor
            QLatin1String("#528BFF"), // cursorColor
            QLatin1String("#3E4451"), // selectionColor
            QLatin1String("#4B5263"), // lineNumberColor
            QLatin1String("#2C313C"), // currentLineColor
            QLatin1String("#282C34"), // gutterColor
            QLatin1String("#C678DD"), // keywordColor
            QLatin1String("#98C379"), // stringColor
            QLatin1String("#5C6370"), // commentColor
            QLatin1String("#D19A66"), // numberColor
            QLatin1String("#E5C07B"), // typeColor
            QLatin1String("#61AFEF"), // functionColor
            QLatin1String("#E06C75"), // variableColor
            QLatin1String("#56B6C2"), // operatorColor
            QLatin1String("#C678DD"), // preprocessorColor
            QLatin1String("#D19A66"), // attributeColor
        }},
    },
    {
        QLatin1String("GitHub Light"), false,
        {{
            QLatin1String("#FFFFFF"), // backgroundColor
            QLatin1String("#24292E"), // textColor
            QLatin1String("#24292E"), // cursorColor
            QLatin1String("#C8C8FA"), // selectionColor
            QLatin1String("#959DA5"), // lineNumberColor
            QLatin1String("#FFFBDD"), // currentLineColor
            QLatin1String("#FAFBFC"), // gutterColor
            QLatin1String("#D73A49"), // keywordColor
            QLatin1String("#032F62"), // stringColor
            QLatin1String("#6A737D"), // commentColor
            QLatin1String("#005CC5"), // numberColor
            QLatin1String("#6F42C1"), // typeColor
            QLatin1String("#6F42C1"), // functionColor
            QLatin1String("#E36209"), // variableColor
            QLatin1String("#D73A49"), // operatorColor
            QLatin1String("#D73A49"), // preprocessorColor
            QLatin1String("#6F42C1"), // attributeColor
        }},
    },
    {
        QLatin1String("Neon Kelm"), true,
        {{
            QLatin1String("#090611"), // backgroundColor
            QLatin1String("#F7F4FF"), // textColor
            QLatin1String("#D61CFF"), // cursorColor
            QLatin1String("#8B1EFF"), // selectionColor
            QLatin1String("#6C6788"), // lineNumberColor
            QLatin1String("#131122"), // currentLineColor
            QLatin1String("#131122"), // gutterColor
            QLatin1String("#D61CFF"), // keywordColor
            QLatin1String("#FF7BE5"), // stringColor
            QLatin1String("#6C6788"), // commentColor
            QLatin1String("#00CFFF"), // numberColor
            QLatin1String("#B8FF35"), // typeColor
            QLatin1String("#33F5FF"), // functionColor
            QLatin1String("#FF4FCF"), // variableColor
            QLatin1String("#F03DFF"), // operatorColor
            QLatin1String("#FF3FA8"), // preprocessorColor
            QLatin1String("#D7FF70"), // attributeColor
        }},
    },
};
// clang-format on

EditorTheme makeTheme(const BuiltInTheme& builtIn)
{
    EditorTheme theme;
    theme.name = builtIn.name;
    theme.isDark = builtIn.isDark;
    for (std::size_t i = 0; i < builtIn.colors.size(); ++i) {
        theme.*EditorTheme::colorFields()[i].member = CodableColor::fromHexadecimal(QString(builtIn.colors[i]));
    }
    return theme;
}

} // namespace

const QList<EditorTheme>& EditorTheme::allThemes()
{
    static const QList<EditorTheme> themes = [] {
        QList<EditorTheme> all;
        for (const BuiltInTheme& builtIn : builtInThemes) {
            all.append(makeTheme(builtIn));
        }
        return all;
    }();
    return themes;
}

const EditorTheme& EditorTheme::monokai()
{
    return allThemes().at(0);
}

const EditorTheme& EditorTheme::dracula()
{
    return allThemes().at(1);
}

const EditorTheme& EditorTheme::solarizedDark()
{
    return allThemes().at(2);
}

const EditorTheme& EditorTheme::oneDark()
{
    return allThemes().at(3);
}

const EditorTheme& EditorTheme::githubLight()
{
    return allThemes().at(4);
}

const EditorTheme& EditorTheme::neonKelm()
{
    return allThemes().at(5);
}

} // namespace kelm
