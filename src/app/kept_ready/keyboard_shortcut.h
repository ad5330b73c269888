// A combination of keys and its stored form.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

namespace kelm {

/// A key that is held beside another.
enum class Modifier : quint8 { command, option, control, shift };

/// The stored form of a modifier, which is the case's own name.
QString rawValue(Modifier modifier);
/// The modifier of a stored form, in exactly its letters; absent for any other text.
std::optional<Modifier> modifierFromRawValue(QStringView rawValue);

/// A key with its modifiers. Two are equal when their keys are and their modifiers are, one by one: the same modifiers
/// in another order make another shortcut.
struct KeyboardShortcut
{
    /// The key's character, or its name.
    QString key;
    QList<Modifier> modifiers;

    friend bool operator==(const KeyboardShortcut&, const KeyboardShortcut&) = default;

    /// The stored form: a JSON object with the members "key" and "modifiers".
    QByteArray encoded() const;
    /// Reads the stored form. Absent when it is no such object, lacks a member, or names an unknown modifier.
    static std::optional<KeyboardShortcut> decoded(const QByteArray& json);
};

} // namespace kelm
