// A named set of colours for the editor.
#pragma once

#include "editor/themes/codable_color.h"

#include <QByteArray>
#include <QJsonObject>
#include <QLatin1String>
#include <QList>
#include <QString>

#include <array>
#include <optional>

namespace kelm {

/// A theme: a name, which is its identity, a dark flag and 17 colours.
struct EditorTheme
{
    QString name;
    bool isDark = false;
    CodableColor backgroundColor;
    /// Plain text; what the highlighter resets to.
    CodableColor textColor;
    CodableColor cursorColor;
    CodableColor selectionColor;
    CodableColor lineNumberColor;
    /// Background of the caret's line.
    CodableColor currentLineColor;
    CodableColor gutterColor;
    CodableColor keywordColor;
    CodableColor stringColor;
    CodableColor commentColor;
    CodableColor numberColor;
    CodableColor typeColor;
    CodableColor functionColor;
    CodableColor variableColor;
    CodableColor operatorColor;
    CodableColor preprocessorColor;
    CodableColor attributeColor;

    /// One of the 17 colours, with the key under which it is stored.
    struct ColorField
    {
        QLatin1String key;
        CodableColor EditorTheme::*member;
    };

    /// The 17 colours in the order of the fields.
    static const std::array<ColorField, 17>& colorFields();

    /// The built-in themes, each made once on first use.
    static const EditorTheme& monokai();
    static const EditorTheme& dracula();
    static const EditorTheme& solarizedDark();
    static const EditorTheme& oneDark();
    static const EditorTheme& githubLight();
    static const EditorTheme& neonKelm();

    /// The built-in themes in the order above.
    static const QList<EditorTheme>& allThemes();

    /// Reads a theme from a JSON object of all 19 keys. Absent when the text is no such object, lacks a key or holds a
    /// value of another type: a Boolean is not a number, and a number no text. Other keys are ignored.
    static std::optional<EditorTheme> decode(const QByteArray& json);
    QJsonObject encode() const;

    friend bool operator==(const EditorTheme&, const EditorTheme&) = default;
};

size_t qHash(const EditorTheme& theme, size_t seed = 0) noexcept;

} // namespace kelm
