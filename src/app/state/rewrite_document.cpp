#include "app/state/rewrite_document.h"

#include "app/state/app_state.h"

namespace kelm {

void rewriteCurrentDocument(AppState& appState, const std::function<QString(const QString&)>& transform)
{
    if (const std::shared_ptr<Document> document = appState.currentDocument()) {
        document->setContent(transform(document->content()));
    }
}

} // namespace kelm
