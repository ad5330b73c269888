// Custom theme files for tests.
#pragma once

#include "editor/themes/editor_theme.h"

#include <QByteArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace kelm {

/// The JSON object of a theme file: the colours of Monokai under another name.
inline QJsonObject themeObject(const QString& name)
{
    QJsonObject object = EditorTheme::monokai().encode();
    object.insert(QStringLiteral("name"), name);
    return object;
}

inline QByteArray themeJson(const QString& name)
{
    return QJsonDocument(themeObject(name)).toJson();
}

} // namespace kelm
