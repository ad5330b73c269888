// What the commands do that make another text of a document's.
#pragma once

#include "app/state/document_rewriter.h"

namespace kelm {

class AppState;

/// Puts another text in the place of the current document's whole content; nothing without a document. What takes long
/// is done on a worker, behind a notice with this text (see `DocumentRewriter`).
void rewriteCurrentDocument(AppState& appState, const QString& notice, DocumentRewriter::Transform transform);

} // namespace kelm
