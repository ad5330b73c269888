#include "files/view/file_tree_view.h"

#include "app/state/app_state.h"
#include "app/state/dropped_data.h"
#include "app/state/panel_start.h"
#include "files/view/file_item_row.h"
#include "git/service/git_service.h"
#include "git/service/repository_follower.h"
#include "platform/events/main_queue.h"
#include "platform/files/file_url.h"
#include "platform/files/native_path.h"
#include "platform/text/shown_name.h"
#include "platform/view/accessible_list.h"
#include "platform/view/divider.h"
#include "platform/view/file_drop.h"
#include "platform/view/labels.h"
#include "platform/view/plain_button.h"

#include <QDropEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QListView>
#include <QMimeData>
#include <QStackedWidget>

#include <algorithm>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

constexpr int padding = 12;
constexpr int emptyIconSize = 28;

} // namespace

FileTreeView::FileTreeView(AppState& appState, FilePanels& filePanels, QWidget* parent)
    : QWidget(parent),
      appState_(appState),
      filePanels_(filePanels),
      model_(new FileTreeModel(this)),
      pages_(new QStackedWidget(this))
{
    setAcceptDrops(true);
    pages_->addWidget(makeEmptyState());
    pages_->addWidget(makeTree());
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(pages_);
    connect(&appState_, &AppState::currentProjectChanged, this, &FileTreeView::refreshProject);
    connect(&appState_.git(), &GitService::statusChanged, this, &FileTreeView::refreshStatusSoon);
    connect(&appState_, &AppState::projectCloned, this, [this] {
        // What was listed is of the project before.
        if (isVisible()) {
            loadFiles();
        }
    });
    refreshProject();
    refreshStatus();
}

QWidget* FileTreeView::makeTree()
{
    auto* tree = new QWidget(pages_);
    title_ = new TextLabel({}, style::headlineFont(), Tint::primary(), tree);
    title_->setElideMode(Qt::ElideMiddle);
    auto* refresh = new PlainButton({.symbol = u"arrow.clockwise"_s, .symbolSize = 13, .fixedSize = {24, 24}}, tree);
    refresh->setHelp(tr("Refresh"));
    connect(refresh, &PlainButton::clicked, this, &FileTreeView::loadFiles);
    list_ = new QListView(tree);
    list_->setModel(model_);
    setAccessibleItems(*list_, [this](int row) { return accessibleItem(row); });
    rowLook_ = new FileItemRow(list_);
    list_->setItemDelegate(rowLook_);
    list_->setUniformItemSizes(true);
    list_->setFrameShape(QFrame::NoFrame);
    list_->setMouseTracking(true);
    list_->setDragDropMode(QAbstractItemView::DragOnly);
    list_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    list_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list_->setAccessibleName(tr("Files"));
    list_->viewport()->setAutoFillBackground(false);
    list_->installEventFilter(this);
    list_->viewport()->installEventFilter(this);
    connect(list_, &QListView::clicked, this, [this](const QModelIndex& index) { select(index.row()); });

    auto* header = new QHBoxLayout;
    header->setContentsMargins(padding, 7, padding - 4, 7);
    header->addWidget(title_, 1);
    header->addWidget(refresh);
    auto* column = new QVBoxLayout(tree);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addLayout(header);
    column->addWidget(new Divider(Qt::Horizontal, tree));
    column->addSpacing(4);
    column->addWidget(list_, 1);
    return tree;
}

QWidget* FileTreeView::makeEmptyState()
{
    auto* empty = new QWidget(pages_);
    auto* open = new PlainButton(borderedLook(), empty);
    open->setText(u"Open Folder…"_s);
    connect(open, &PlainButton::clicked, this, &FileTreeView::openFolder);
    auto* column = new QVBoxLayout(empty);
    column->setSpacing(10);
    column->addStretch(1);
    const std::initializer_list<QWidget*> parts{
        new SymbolLabel(u"folder.badge.questionmark"_s, emptyIconSize, Tint::secondary().at(0.6), empty),
        new TextLabel(u"No folder opened"_s, style::interfaceFont(style::typeSize::body), Tint::secondary(), empty),
        open,
        new TextLabel(u"or drag a folder into the sidebar"_s, style::interfaceFont(style::typeSize::caption),
                      Tint::secondary().at(0.7), empty),
    };
    for (QWidget* part : parts) {
        column->addWidget(part, 0, Qt::AlignHCenter);
    }
    column->addStretch(1);
    return empty;
}

AccessibleItem FileTreeView::accessibleItem(int row)
{
    const QModelIndex index = model_->index(row);
    const int level = index.data(FileTreeModel::depthRole).toInt() + 1;
    return {.name = index.data(Qt::AccessibleTextRole).toString(),
            .description = level > 1 ? tr("level %1").arg(level) : QString(),
            .isExpandable = model_->item(row).isDirectory,
            .isExpanded = model_->isExpanded(row),
            .press = [this, row] { select(row); }};
}

void FileTreeView::refreshProject()
{
    const std::optional<QUrl>& project = appState_.currentProject();
    const bool appears = project && pages_->currentIndex() == 0;
    pages_->setCurrentIndex(project ? 1 : 0);
    if (project) {
        title_->setText(shownName(lastPathComponent(*project)));
    }
    if (appears && isVisible()) {
        loadFiles();
    }
}

void FileTreeView::refreshStatusSoon()
{
    if (!std::exchange(isStatusStale_, true)) {
        onMainQueue(this, [this] { refreshStatus(); });
    }
}

void FileTreeView::refreshStatus()
{
    isStatusStale_ = false;
    model_->setBadges(GitBadges(appState_.git().status(), appState_.git().repoURL()));
}

void FileTreeView::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    // A window that comes back from the dock has been here all the time.
    if (!event->spontaneous()) {
        model_->collapseAll();
        loadFiles();
        appState_.repositoryFollower().setIsShownBy(*this, true);
        appState_.repositoryFollower().noteChange();
    }
}

void FileTreeView::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    if (!event->spontaneous()) {
        appState_.repositoryFollower().setIsShownBy(*this, false);
    }
}

void FileTreeView::loadFiles()
{
    if (!appState_.currentProject()) {
        return;
    }
    const auto listed = listFolder(*appState_.currentProject());
    if (const auto* files = std::get_if<QList<FileItem>>(&listed)) {
        model_->setFiles(*files);
    } else {
        appState_.log().print(u"Error loading files: "_s + std::get<FileError>(listed).message);
    }
}

void FileTreeView::openFolder()
{
    if (chooseProject(appState_, filePanels_)) {
        loadFiles();
    }
}

void FileTreeView::select(int row)
{
    const FileItem item = model_->item(row);
    if (item.isDirectory) {
        model_->toggleExpand(row);
    } else {
        appState_.openFile(item.url);
    }
}

bool FileTreeView::handleKey(const QKeyEvent& event)
{
    const int row = list_->currentIndex().row();
    if (row < 0) {
        return false;
    }
    const bool isFolder = model_->item(row).isDirectory;
    switch (event.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        // A key that is held down opens one file, and a folder once.
        if (!event.isAutoRepeat()) {
            select(row);
        }
        return true;
    case Qt::Key_Right:
        if (isFolder && !model_->isExpanded(row)) {
            model_->toggleExpand(row);
        }
        return true;
    case Qt::Key_Left:
        if (isFolder && model_->isExpanded(row)) {
            model_->toggleExpand(row);
        } else if (const int parent = model_->parentRow(row); parent >= 0) {
            list_->setCurrentIndex(model_->index(parent));
        }
        return true;
    default:
        return false;
    }
}

void FileTreeView::setIsByKey(bool isByKey)
{
    rowLook_->setMarksCurrent(isByKey);
    list_->viewport()->update();
}

bool FileTreeView::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == list_->viewport() && event->type() == QEvent::MouseButtonPress) {
        setIsByKey(false);
    } else if (watched == list_ && event->type() == QEvent::FocusIn) {
        const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
        if (reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason || reason == Qt::ShortcutFocusReason) {
            setIsByKey(true);
        }
    } else if (watched == list_ && event->type() == QEvent::KeyPress) {
        setIsByKey(true);
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->modifiers() == Qt::NoModifier && handleKey(*key)) {
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void FileTreeView::dragEnterEvent(QDragEnterEvent* event)
{
    const QList<QUrl> urls = event->mimeData()->urls();
    // Links and texts are the window's, which hears of what is turned away here.
    if (!urls.isEmpty() && std::all_of(urls.begin(), urls.end(), [](const QUrl& url) { return url.isLocalFile(); })) {
        acceptAsCopy(*event);
    }
}

void FileTreeView::dragMoveEvent(QDragMoveEvent* event)
{
    if (event->source() == list_) {
        // A row that is let go of where it comes from.
        event->ignore();
        return;
    }
    acceptAsCopy(*event);
}

void FileTreeView::dropEvent(QDropEvent* event)
{
    openDropped(*event->mimeData(), appState_, {});
    const QList<QUrl> urls = event->mimeData()->urls();
    if (std::any_of(urls.begin(), urls.end(), [](const QUrl& url) { return isFolder(filePath(url)); })) {
        loadFiles();
    }
    acceptAsCopy(*event);
}

} // namespace kelm
