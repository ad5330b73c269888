#include "app/state/awaited_tabs.h"

#include "app/state/app_state.h"
#include "app/state/large_files.h"
#include "platform/events/waiting_start.h"

#include <algorithm>
#include <utility>

namespace kelm {

namespace {

openRequest::Outcome outcomeOf(const Document& document)
{
    return document.isModified() ? openRequest::Outcome::unsaved : openRequest::Outcome::saved;
}

} // namespace

AwaitedTabs::AwaitedTabs(AppState& appState) : appState_(appState)
{
    connect(&appState_, &AppState::documentsChanged, this, &AwaitedTabs::noteTabs);
    appState_.largeFiles().onEnded([this](const QUrl& file) { noteRead(file); });
}

AwaitedTabs::~AwaitedTabs()
{
    appState_.largeFiles().onEnded({});
    for (const Tab& tab : tabs_) {
        tab.waiting->note(outcomeOf(*tab.document));
    }
    for (const Reading& reading : readings_) {
        reading.waiting->note(openRequest::Outcome::failed);
    }
}

void AwaitedTabs::add(const QUrl& file, const std::shared_ptr<WaitingStart>& waiting)
{
    if (appState_.largeFiles().contains(file)) {
        readings_.push_back({file, waiting});
    } else {
        add(documentOf(file), waiting);
    }
}

void AwaitedTabs::add(const std::shared_ptr<Document>& document, const std::shared_ptr<WaitingStart>& waiting)
{
    if (document) {
        tabs_.push_back({document, waiting});
    } else {
        waiting->note(openRequest::Outcome::failed);
    }
}

std::shared_ptr<Document> AwaitedTabs::documentOf(const QUrl& file) const
{
    const AppState::Documents& documents = appState_.documents();
    const auto found = std::find_if(documents.begin(), documents.end(),
                                    [&file](const auto& document) { return document->fileURL() == file; });
    return found != documents.end() ? *found : nullptr;
}

void AwaitedTabs::noteRead(const QUrl& file)
{
    std::erase_if(readings_, [&](const Reading& reading) {
        if (reading.file != file) {
            return false;
        }
        add(documentOf(file), reading.waiting);
        return true;
    });
}

void AwaitedTabs::noteTabs()
{
    std::erase_if(tabs_, [this](const Tab& tab) {
        if (appState_.documents().contains(tab.document)) {
            return false;
        }
        tab.waiting->note(outcomeOf(*tab.document));
        return true;
    });
}

} // namespace kelm
