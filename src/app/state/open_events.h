// Files, folders and links that come from outside.
#pragma once

#include <QString>
#include <QStringList>

#include <functional>

namespace kelm {

class AppState;

/// Takes the text of a URL of the scheme "kelmpane".
using LinkHandler = std::function<void(const QString& urlText)>;

/// Opens what the texts of absolute URLs name, in their order: a link of the scheme "kelmpane", compared letter case
/// and all, goes to `handleLink`; a folder becomes the project; anything else is opened as a file. Texts and not
/// parsed URLs, since parsing puts a scheme into lower case. Without a handler a link is opened as anything else, and
/// fails so.
void openURLs(const QStringList& urlTexts, AppState& appState, const LinkHandler& handleLink);

} // namespace kelm
