#include "app/state/rewrite_document.h"

#include "app/state/app_state.h"

#include <utility>

namespace kelm {

void rewriteCurrentDocument(AppState& appState, const QString& notice, DocumentRewriter::Transform transform)
{
    appState.rewriter().rewrite(appState.currentDocument(), notice, std::move(transform));
}

} // namespace kelm
