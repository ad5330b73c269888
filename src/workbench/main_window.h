// The program's one window.
#pragma once

#include "app/app_state.h"
#include "editor/themes/theme_manager.h"

#include <QMainWindow>

namespace kelm {

class DocumentStrip;
class EditorArea;

/// Menu bar, the strip of open documents and the editor. Files that are dropped on it open, and a folder becomes the
/// project.
class MainWindow final : public QMainWindow
{
    Q_OBJECT

public:
    MainWindow(AppState& appState, ThemeManager& themeManager, QWidget* parent = nullptr);

    EditorArea& editorArea() { return *editorArea_; }
    DocumentStrip& documentStrip() { return *documentStrip_; }

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    AppState& appState_;
    DocumentStrip* documentStrip_;
    EditorArea* editorArea_;
};

} // namespace kelm
