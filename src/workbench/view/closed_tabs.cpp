#include "workbench/view/closed_tabs.h"

#include "app/state/unsaved_texts.h"

#include <QSet>

#include <algorithm>
#include <utility>

namespace kelm {

ClosedTabs::ClosedTabs(AppState& appState, QObject* parent)
    : QObject(parent), appState_(appState), before_(appState.documents()), currentBefore_(appState.currentDocument())
{
    connect(&appState_, &AppState::documentsChanged, this, &ClosedTabs::followDocuments);
    connect(&appState_, &AppState::currentDocumentChanged, this,
            [this] { currentBefore_ = appState_.currentDocument(); });
}

void ClosedTabs::followDocuments()
{
    const AppState::Documents& open = appState_.documents();
    const AppState::Documents before = std::exchange(before_, open);
    const QSet<std::shared_ptr<Document>> isOpen(open.begin(), open.end());
    QList<QUuid> order;
    AppState::Documents gone;
    for (const std::shared_ptr<Document>& document : before) {
        order.append(document->id());
        if (!isOpen.contains(document)) {
            gone.append(document);
        }
    }
    if (gone.removeOne(currentBefore_)) {
        // The one that was seen comes back first.
        gone.append(currentBefore_);
    }
    for (const std::shared_ptr<Document>& document : gone) {
        remember(document, order);
    }
    forgetOldest();
    Q_EMIT changed();
}

void ClosedTabs::remember(const std::shared_ptr<Document>& document, const QList<QUuid>& order)
{
    const std::optional<QUrl> file = document->fileURL();
    const bool keepsText = document->isModified() || !file;
    if (!file && document->text().isEmpty()) {
        return;
    }
    closed_.push_back({keepsText ? document : nullptr, file, order});
}

void ClosedTabs::forgetOldest()
{
    if (closed_.size() > mostTabs) {
        closed_.erase(closed_.begin(), closed_.end() - mostTabs);
    }
    const auto hasText = [](const Closed& closed) { return closed.document != nullptr; };
    while (std::count_if(closed_.begin(), closed_.end(), hasText) > mostTexts) {
        closed_.erase(std::find_if(closed_.begin(), closed_.end(), hasText));
    }
}

bool ClosedTabs::isOpen(const Closed& closed) const
{
    const AppState::Documents& open = appState_.documents();
    return std::any_of(open.begin(), open.end(), [&closed](const auto& document) {
        // Two unsaved texts of one file are two texts.
        return closed.document ? document == closed.document : document->fileURL() == closed.file;
    });
}

void ClosedTabs::reopen()
{
    while (!closed_.empty() && isOpen(closed_.back())) {
        closed_.pop_back();
    }
    if (!closed_.empty()) {
        const Closed last = std::move(closed_.back());
        closed_.pop_back();
        if (last.document) {
            appState_.unsavedTexts().reopen(last.document, last.order);
        } else {
            appState_.openFile(*last.file);
        }
    }
    Q_EMIT changed();
}

} // namespace kelm
