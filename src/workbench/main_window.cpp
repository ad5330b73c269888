#include "workbench/main_window.h"

#include "workbench/document_strip.h"
#include "workbench/editor_area.h"
#include "workbench/menu_bar.h"

#include <QDragEnterEvent>
#include <QFileInfo>
#include <QMimeData>
#include <QVBoxLayout>

namespace kelm {

namespace {

constexpr QSize smallestSize(900, 600);
constexpr QSize firstSize(1200, 800);

} // namespace

MainWindow::MainWindow(AppState& appState, ThemeManager& themeManager, QWidget* parent)
    : QMainWindow(parent), appState_(appState)
{
    setWindowTitle(QStringLiteral("KelmWright"));
    setMinimumSize(smallestSize);
    resize(firstSize);
    setAcceptDrops(true);
    setMenuBar(makeMenuBar(appState, this));

    auto* content = new QWidget(this);
    documentStrip_ = new DocumentStrip(appState, themeManager, content);
    editorArea_ = new EditorArea(appState, themeManager, content);
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(documentStrip_);
    column->addWidget(editorArea_, 1);
    setCentralWidget(content);
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasUrls()) {
        event->acceptProposedAction();
    }
}

void MainWindow::dropEvent(QDropEvent* event)
{
    for (const QUrl& url : event->mimeData()->urls()) {
        if (url.isLocalFile() && QFileInfo(url.toLocalFile()).isDir()) {
            appState_.setCurrentProject(url);
        } else {
            appState_.openFile(url);
        }
    }
    event->acceptProposedAction();
}

} // namespace kelm
