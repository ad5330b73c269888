// The tree of the open project.
#pragma once

#include "files/view/file_tree_model.h"
#include "platform/desktop/file_panels.h"

#include <QWidget>

class QListView;
class QStackedWidget;

namespace kelm {

class AppState;
class FileItemRow;
class TextLabel;
struct AccessibleItem;

/// The project's folder, level by level, with the changes that git knows of; without a project, a way to open one. The
/// list is read when the tree appears, on the refresh button and when a folder is opened here: nothing watches the
/// disk. A folder that is dropped becomes the project, and files open.
class FileTreeView final : public QWidget
{
    Q_OBJECT

public:
    /// State and panels outlive the view.
    FileTreeView(AppState& appState, FilePanels& filePanels, QWidget* parent = nullptr);

    FileTreeModel& model() { return *model_; }
    QListView& list() { return *list_; }
    /// Reads the top level of the project; what cannot be read leaves the list as it was.
    void loadFiles();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* makeTree();
    QWidget* makeEmptyState();
    void refreshProject();
    /// What a screen reader is told of a row.
    AccessibleItem accessibleItem(int row);
    void refreshStatus();
    /// Has the badges found anew, once for all that changes in one turn of the event loop.
    void refreshStatusSoon();
    void openFolder();
    void select(int row);
    bool handleKey(const QKeyEvent& event);
    void setIsByKey(bool isByKey);

    AppState& appState_;
    FilePanels& filePanels_;
    FileTreeModel* model_;
    QStackedWidget* pages_;
    TextLabel* title_ = nullptr;
    QListView* list_ = nullptr;
    FileItemRow* rowLook_ = nullptr;
    bool isStatusStale_ = false;
};

} // namespace kelm
