#include "app/kept_ready/keyboard_shortcut.h"

#include "platform/text/strict_json.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <array>

namespace kelm {

namespace {

constexpr std::array<const char*, 4> modifierNames{"command", "option", "control", "shift"};

const QString keyMember = QStringLiteral("key");
const QString modifiersMember = QStringLiteral("modifiers");

} // namespace

QString rawValue(Modifier modifier)
{
    return QString::fromLatin1(modifierNames.at(static_cast<std::size_t>(modifier)));
}

std::optional<Modifier> modifierFromRawValue(QStringView rawValue)
{
    const auto found = std::find_if(modifierNames.begin(), modifierNames.end(),
                                    [rawValue](const char* name) { return rawValue == QLatin1String(name); });
    if (found == modifierNames.end()) {
        return std::nullopt;
    }
    return static_cast<Modifier>(found - modifierNames.begin());
}

QByteArray KeyboardShortcut::encoded() const
{
    QJsonArray names;
    for (const Modifier modifier : modifiers) {
        names.append(rawValue(modifier));
    }
    return QJsonDocument(QJsonObject{{keyMember, key}, {modifiersMember, names}}).toJson(QJsonDocument::Compact);
}

std::optional<KeyboardShortcut> KeyboardShortcut::decoded(const QByteArray& json)
{
    const auto document = parseStrictJson(json);
    const QJsonObject object = document ? document->object() : QJsonObject();
    const QJsonValue key = object.value(keyMember);
    const QJsonValue modifiers = object.value(modifiersMember);
    if (!key.isString() || !modifiers.isArray()) {
        return std::nullopt;
    }
    KeyboardShortcut shortcut{key.toString(), {}};
    for (const auto& name : modifiers.toArray()) {
        const auto modifier = modifierFromRawValue(name.toString());
        if (!modifier) {
            return std::nullopt;
        }
        shortcut.modifiers.append(*modifier);
    }
    return shortcut;
}

} // namespace kelm
