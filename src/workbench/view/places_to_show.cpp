#include "workbench/view/places_to_show.h"

#include "app/state/app_state.h"
#include "app/state/large_files.h"
#include "editor/view/editor_container_view.h"
#include "platform/events/main_queue.h"
#include "workbench/view/editor_area.h"

#include <algorithm>

namespace kelm {

PlacesToShow::PlacesToShow(AppState& appState, EditorArea& editorArea) : appState_(appState), editorArea_(editorArea)
{
    connect(&appState_, &AppState::currentDocumentChanged, this, &PlacesToShow::showSoon);
}

void PlacesToShow::add(const QUrl& file, LineAndColumn place)
{
    places_.insert(file, place);
    showSoon();
}

void PlacesToShow::showSoon()
{
    if (!places_.isEmpty()) {
        onMainQueue(this, [this] {
            show();
            forgetClosed();
        });
    }
}

void PlacesToShow::show()
{
    const std::shared_ptr<Document> document = appState_.currentDocument();
    EditorContainerView* editor = editorArea_.currentEditor();
    if (!document || !document->fileURL() || editor == nullptr) {
        return;
    }
    if (const auto place = places_.constFind(*document->fileURL()); place != places_.cend()) {
        editor->showPlace(*place);
        places_.erase(place);
    }
}

void PlacesToShow::forgetClosed()
{
    places_.removeIf([this](const auto& place) {
        const QUrl& file = place.key();
        const AppState::Documents& documents = appState_.documents();
        return !appState_.largeFiles().contains(file) &&
               std::none_of(documents.begin(), documents.end(),
                            [&file](const auto& document) { return document->fileURL() == file; });
    });
}

} // namespace kelm
