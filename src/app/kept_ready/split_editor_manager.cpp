#include "app/kept_ready/split_editor_manager.h"

#include <utility>

namespace kelm {

EditorPane::EditorPane(std::shared_ptr<Document> document) : document_(std::move(document)) {}

void EditorPane::setDocument(std::shared_ptr<Document> document)
{
    if (document != document_) {
        document_ = std::move(document);
        Q_EMIT documentChanged();
    }
}

void SplitEditorManager::setEditors(const QList<std::shared_ptr<EditorPane>>& editors)
{
    if (editors != editors_) {
        editors_ = editors;
        Q_EMIT editorsChanged();
    }
}

void SplitEditorManager::setActiveEditor(const std::shared_ptr<EditorPane>& activeEditor)
{
    if (activeEditor != activeEditor_) {
        activeEditor_ = activeEditor;
        Q_EMIT activeEditorChanged();
    }
}

void SplitEditorManager::setLayout(SplitLayout layout)
{
    if (layout != layout_) {
        layout_ = layout;
        Q_EMIT layoutChanged();
    }
}

void SplitEditorManager::splitHorizontally(const std::shared_ptr<EditorPane>& from)
{
    split(from, SplitLayout::horizontal);
}

void SplitEditorManager::splitVertically(const std::shared_ptr<EditorPane>& from)
{
    split(from, SplitLayout::vertical);
}

void SplitEditorManager::closePane(const std::shared_ptr<EditorPane>& pane)
{
    const qsizetype index = editors_.indexOf(pane);
    if (editors_.size() < 2 || index < 0) {
        return;
    }
    QList<std::shared_ptr<EditorPane>> rest = editors_;
    rest.removeAt(index);
    const bool wasActive = pane == activeEditor_;
    setEditors(rest);
    if (wasActive) {
        setActiveEditor(rest.front());
    }
    if (rest.size() == 1) {
        setLayout(SplitLayout::single);
    }
}

void SplitEditorManager::split(const std::shared_ptr<EditorPane>& from, SplitLayout layout)
{
    std::shared_ptr<EditorPane> source = from != nullptr ? from : activeEditor_;
    if (source == nullptr && !editors_.isEmpty()) {
        source = editors_.front();
    }
    if (source == nullptr) {
        return;
    }
    const Document& original = *source->document();
    const auto pane = std::make_shared<EditorPane>(
        std::make_shared<Document>(original.content(), original.fileURL(), std::nullopt, std::nullopt));
    QList<std::shared_ptr<EditorPane>> panes = editors_;
    const qsizetype index = panes.indexOf(source);
    panes.insert(index >= 0 ? index + 1 : panes.size(), pane);
    setEditors(panes);
    setActiveEditor(pane);
    setLayout(layout);
}

} // namespace kelm
