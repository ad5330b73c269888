// What the commands do that make another text of a document's.
#pragma once

#include <QString>

#include <functional>

namespace kelm {

class AppState;

/// Puts another text in the place of the current document's whole content; nothing without a document.
void rewriteCurrentDocument(AppState& appState, const std::function<QString(const QString&)>& transform);

} // namespace kelm
