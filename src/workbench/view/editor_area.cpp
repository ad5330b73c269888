#include "workbench/view/editor_area.h"

#include "editor/view/kelm_editor_view.h"
#include "workbench/view/welcome_view.h"

#include <QSet>
#include <QStackedLayout>

namespace kelm {

EditorArea::EditorArea(AppState& appState, ThemeManager& themeManager, QWidget* parent)
    : QWidget(parent),
      appState_(appState),
      themeManager_(themeManager),
      pages_(new QStackedLayout(this)),
      welcome_(new WelcomeView(appState, themeManager, this))
{
    setAutoFillBackground(true);
    pages_->addWidget(welcome_);
    connect(&appState_, &AppState::documentsChanged, this, &EditorArea::dropClosedDocuments);
    connect(&appState_, &AppState::currentDocumentChanged, this, &EditorArea::showCurrentDocument);
    connect(&appState_, &AppState::showMinimapChanged, this, &EditorArea::updateShownParts);
    connect(&themeManager_, &ThemeManager::currentThemeChanged, this, &EditorArea::refreshThemeBackground);
    refreshThemeBackground();
    showCurrentDocument();
}

EditorArea::~EditorArea() = default;

EditorContainerView* EditorArea::currentEditor() const
{
    const std::shared_ptr<Document> document = appState_.currentDocument();
    const auto editor = document ? editors_.value(document->id()) : nullptr;
    return editor ? editor->view() : nullptr;
}

void EditorArea::focusCurrentEditor()
{
    if (EditorContainerView* editor = currentEditor()) {
        editor->setFocus();
    } else {
        welcome_->setFocus();
    }
}

void EditorArea::dropClosedDocuments()
{
    QSet<QUuid> open;
    for (const std::shared_ptr<Document>& document : appState_.documents()) {
        open.insert(document->id());
    }
    for (auto editor = editors_.begin(); editor != editors_.end();) {
        if (open.contains(editor.key())) {
            ++editor;
            continue;
        }
        // An event of the editor itself may be what closes it.
        if (QWidget* view = (*editor)->view()) {
            view->hide();
            view->deleteLater();
        }
        editor = editors_.erase(editor);
    }
}

void EditorArea::showCurrentDocument()
{
    const std::shared_ptr<Document> document = appState_.currentDocument();
    if (!document) {
        const bool isNew = pages_->currentWidget() != welcome_;
        pages_->setCurrentWidget(welcome_);
        if (isNew) {
            // Else the keyboard would go on to the first button of the window.
            welcome_->setFocus();
        }
        return;
    }
    std::shared_ptr<KelmEditorView>& editor = editors_[document->id()];
    if (!editor) {
        editor = std::make_shared<KelmEditorView>(document, themeManager_);
        editor->setShowMinimap(appState_.showMinimap());
        pages_->addWidget(editor->makeView(appState_.scheduler(), appState_.notificationCenter(), this));
    }
    pages_->setCurrentWidget(editor->view());
    editor->view()->setFocus();
}

void EditorArea::updateShownParts()
{
    for (const auto& editor : std::as_const(editors_)) {
        editor->setShowMinimap(appState_.showMinimap());
    }
}

void EditorArea::refreshThemeBackground()
{
    QPalette colors = palette();
    colors.setColor(QPalette::Window, themeManager_.currentTheme().backgroundColor.toColor());
    setPalette(colors);
}

} // namespace kelm
