#include "app/rewrite_document.h"

#include "app/app_state.h"

namespace kelm {

void rewriteCurrentDocument(AppState& appState, const std::function<QString(const QString&)>& transform)
{
    if (const std::shared_ptr<Document> document = appState.currentDocument()) {
        document->setContent(transform(document->content()));
    }
}

} // namespace kelm
