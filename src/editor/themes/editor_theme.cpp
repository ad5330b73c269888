#include "editor/themes/editor_theme.h"

#include "platform/text/strict_json.h"

#include <QJsonDocument>

namespace kelm {

namespace {

constexpr QLatin1String nameKey("name");
constexpr QLatin1String isDarkKey("isDark");

} // namespace

const std::array<EditorTheme::ColorField, 17>& EditorTheme::colorFields()
{
    static constexpr std::array<ColorField, 17> fields = {{
        {QLatin1String("backgroundColor"), &EditorTheme::backgroundColor},
        {QLatin1String("textColor"), &EditorTheme::textColor},
        {QLatin1String("cursorColor"), &EditorTheme::cursorColor},
        {QLatin1String("selectionColor"), &EditorTheme::selectionColor},
        {QLatin1String("lineNumberColor"), &EditorTheme::lineNumberColor},
        {QLatin1String("currentLineColor"), &EditorTheme::currentLineColor},
        {QLatin1String("gutterColor"), &EditorTheme::gutterColor},
        {QLatin1String("keywordColor"), &EditorTheme::keywordColor},
        {QLatin1String("stringColor"), &EditorTheme::stringColor},
        {QLatin1String("commentColor"), &EditorTheme::commentColor},
        {QLatin1String("numberColor"), &EditorTheme::numberColor},
        {QLatin1String("typeColor"), &EditorTheme::typeColor},
        {QLatin1String("functionColor"), &EditorTheme::functionColor},
        {QLatin1String("variableColor"), &EditorTheme::variableColor},
        {QLatin1String("operatorColor"), &EditorTheme::operatorColor},
        {QLatin1String("preprocessorColor"), &EditorTheme::preprocessorColor},
        {QLatin1String("attributeColor"), &EditorTheme::attributeColor},
    }};
    return fields;
}

std::optional<EditorTheme> EditorTheme::decode(const QByteArray& json)
{
    const std::optional<QJsonDocument> document = parseStrictJson(json);
    if (!document || !document->isObject()) {
        return std::nullopt;
    }
    const QJsonObject object = document->object();
    const QJsonValue name = object.value(nameKey);
    const QJsonValue isDark = object.value(isDarkKey);
    if (!name.isString() || !isDark.isBool()) {
        return std::nullopt;
    }
    EditorTheme theme;
    theme.name = name.toString();
    theme.isDark = isDark.toBool();
    for (const ColorField& field : colorFields()) {
        const std::optional<CodableColor> color = CodableColor::decode(object.value(field.key));
        if (!color) {
            return std::nullopt;
        }
        theme.*field.member = *color;
    }
    return theme;
}

QJsonObject EditorTheme::encode() const
{
    QJsonObject object{{nameKey, name}, {isDarkKey, isDark}};
    for (const ColorField& field : colorFields()) {
        object.insert(field.key, (this->*field.member).encode());
    }
    return object;
}

size_t qHash(const EditorTheme& theme, size_t seed) noexcept
{
    size_t hash = qHashMulti(seed, theme.name, theme.isDark);
    for (const EditorTheme::ColorField& field : EditorTheme::colorFields()) {
        hash = qHashMulti(hash, theme.*field.member);
    }
    return hash;
}

} // namespace kelm
