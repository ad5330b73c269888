// The editors of all open documents, one of which is seen.
#pragma once

#include "app/state/app_state.h"
#include "editor/themes/theme_manager.h"

#include <QHash>
#include <QUuid>
#include <QWidget>

#include <memory>

class QStackedLayout;

namespace kelm {

class EditorContainerView;
class KelmEditorView;

/// Shows the current document, or the welcome when there is none. Each document keeps its editor while it is open,
/// so that caret, scroll position, folds and undo survive a change of tab; an editor is made when its document is first
/// seen.
class EditorArea final : public QWidget
{
    Q_OBJECT

public:
    EditorArea(AppState& appState, ThemeManager& themeManager, QWidget* parent = nullptr);
    ~EditorArea() override;

    /// The editor of the current document, or null.
    EditorContainerView* currentEditor() const;
    /// Gives the keyboard to the text of the current document, or to the welcome.
    void focusCurrentEditor();

private:
    void dropClosedDocuments();
    void showCurrentDocument();
    void updateShownParts();
    void refreshThemeBackground();

    AppState& appState_;
    ThemeManager& themeManager_;
    QStackedLayout* pages_;
    QWidget* welcome_;
    QHash<QUuid, std::shared_ptr<KelmEditorView>> editors_;
};

} // namespace kelm
