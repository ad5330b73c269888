#include "workbench/view/main_window.h"

#include "app/state/dropped_data.h"
#include "app/state/lesson_links.h"
#include "platform/events/main_queue.h"
#include "platform/process/orderly_end.h"
#include "platform/view/file_drop.h"
#include "platform/view/splitter.h"
#include "run/view/stop_run_key.h"
#include "settings/view/settings_view.h"
#include "workbench/status/view/status_bar_view.h"
#include "workbench/view/compositions.h"
#include "workbench/view/editor_area.h"
#include "workbench/view/field_keys.h"
#include "workbench/view/focus_in_sight.h"
#include "workbench/view/focus_order.h"
#include "workbench/view/held_keys.h"
#include "workbench/view/keyboard_place.h"
#include "workbench/view/lesson_place.h"
#include "workbench/view/link_run_place.h"
#include "workbench/view/menu_bar.h"
#include "workbench/view/notice_bar.h"
#include "workbench/view/overlay_layer.h"
#include "workbench/view/settings_line.h"
#include "workbench/view/tab_bar_view.h"
#include "workbench/view/tool_bar_view.h"
#include "workbench/view/ways_out.h"
#include "workbench/view/window_commands.h"
#include "workbench/view/window_menu.h"
#include "workbench/view/window_notices.h"
#include "workbench/view/window_overlays.h"
#include "workbench/view/window_panels.h"
#include "workbench/view/window_panes.h"

#include <QDragEnterEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QShortcut>
#include <QSplitter>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace kelm {

namespace {

constexpr QSize smallestSize(900, 600);
constexpr QSize firstSize(1200, 800);

template <typename Layout>
Layout* makeTightLayout(QWidget* parent)
{
    auto* layout = new Layout(parent);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    return layout;
}

} // namespace

MainWindow::MainWindow(const Services& services, QWidget* parent)
    : QMainWindow(parent),
      appState_(services.appState),
      themeManager_(services.themeManager),
      workspace_(services.workspace),
      userDefaults_(services.userDefaults),
      commandTargets_{services.appState, services.updateService, services.uninstall}
{
    setObjectName(QStringLiteral("main"));
    setWindowRole(objectName());
    setWindowTitle(QStringLiteral("KelmWright"));
    resize(firstSize);
    setAcceptDrops(true);
    setMenuBar(makeMenuBar(
        commandTargets_, [this] { openSettings(); }, this));
    buildStack();
    connectState();
    refreshSidebar();
    refreshBottomPanel();
    refreshTheme();
    addWindowKeys();
    keepKeyboardInSight();
    auto* compositions = new Compositions(this);
    // Before the texts are brought to safety.
    onOrderlyEnd(this, [compositions](std::chrono::steady_clock::time_point) { compositions->end(); });
    new WindowNotices(appState_, *noticeBar_, *this);
    installStopRunKey(appState_.codeRunner(), *this);
}

MainWindow::~MainWindow()
{
    // The parts of the window go one after the other now, each with the keyboard if it has it.
    delete std::exchange(keyboardPlace_, nullptr);
}

void MainWindow::addWindowKeys()
{
    addWindowMenu(*menuBar(), *new WindowCommands(appState_, *makePaneWalk(*this), this));
    auto* menus = new QShortcut(Qt::Key_F10, this);
    connect(menus, &QShortcut::activated, this, [this] {
        QAction* const first = menuBar()->actions().first();
        menuBar()->setActiveAction(first);
        first->menu()->setActiveAction(first->menu()->actions().first());
    });
    new FieldKeys(this);
    new HeldKeys(this);
}

void MainWindow::keepKeyboardInSight()
{
    new FocusInSight(this);
    auto* waysOut =
        new WaysOut(appState_, userDefaults_, *editorArea_, menuAction(*menuBar(), Command::findNext), this);
    overlays_ = new WindowOverlays(appState_, *waysOut, *this);
    keyboardPlace_ = new KeyboardPlace(
        *this, [this] { editorArea_->focusCurrentEditor(); }, [this]() -> QWidget* { return overlays_->top(); },
        noticeBar_);
}

void MainWindow::openSettings()
{
    if (!settings_) {
        settings_ = std::make_unique<SettingsView>(userDefaults_, themeManager_);
        new SettingsLine(appState_.notices(), settings_.get());
        settings_->move(frameGeometry().center() - settings_->rect().center());
    }
    settings_->show();
    settings_->raise();
    settings_->activateWindow();
}

void MainWindow::buildStack()
{
    auto* stack = new QWidget(this);
    // A menu bar that stands in the window comes on top of it.
    stack->setMinimumSize(smallestSize);
    toolbar_ = new ToolbarView(
        commandTargets_, themeManager_, [this] { openSettings(); }, stack);
    columns_ = new Splitter(Qt::Horizontal, stack);
    rows_ = new Splitter(Qt::Vertical, columns_);
    auto* upper = new QWidget(rows_);
    tabBar_ = new TabBarView(appState_, themeManager_, workspace_, upper);
    auto* editors = new QWidget(upper);
    editorArea_ = new EditorArea(appState_, themeManager_, editors);
    noticeBar_ = new NoticeBar(themeManager_, stack);
    statusBar_ = new StatusBarView(appState_, themeManager_, stack);

    lessonPlace_ = new LessonPlace(appState_, workspace_, userDefaults_, editors);
    linkRunPlace_ = new LinkRunPlace(appState_, themeManager_, upper);
    auto* editorRow = makeTightLayout<QHBoxLayout>(editors);
    editorRow->addWidget(editorArea_, 1);
    editorRow->addWidget(lessonPlace_);
    auto* upperColumn = makeTightLayout<QVBoxLayout>(upper);
    upperColumn->addWidget(tabBar_);
    upperColumn->addWidget(linkRunPlace_);
    upperColumn->addWidget(editors, 1);
    rows_->addWidget(upper);
    rows_->setStretchFactor(0, 1);
    columns_->addWidget(rows_);
    columns_->setStretchFactor(0, 1);

    auto* column = makeTightLayout<QVBoxLayout>(stack);
    column->addWidget(toolbar_);
    column->addWidget(columns_, 1);
    column->addWidget(noticeBar_);
    column->addWidget(statusBar_);
    setCentralWidget(stack);
}

void MainWindow::connectState()
{
    connect(&appState_, &AppState::showSidebarChanged, this, &MainWindow::refreshSidebar);
    connect(&appState_, &AppState::showBottomPanelChanged, this, &MainWindow::refreshBottomPanel);
    connect(&themeManager_, &ThemeManager::currentThemeChanged, this, &MainWindow::refreshTheme);
}

void MainWindow::refreshSidebar()
{
    if (appState_.showSidebar() == (sidebar_ != nullptr)) {
        return;
    }
    if (sidebar_ != nullptr) {
        // It may be one of its own controls that hides it.
        sidebar_->hide();
        sidebar_->setParent(nullptr);
        sidebar_->deleteLater();
        sidebar_ = nullptr;
        return;
    }
    const auto makeContent = [this](SidebarTab tab, QWidget* parent) {
        return makeSidebarContent(tab, appState_, themeManager_, workspace_, parent);
    };
    sidebar_ = new SidebarView(themeManager_, makeContent, columns_);
    columns_->insertWidget(0, sidebar_);
    columns_->setStretchFactor(0, 0);
    columns_->setStretchFactor(1, 1);
    columns_->setSizes({sidebar_->sizeHint().width(), columns_->width() - sidebar_->sizeHint().width()});
    sidebar_->show();
}

void MainWindow::refreshBottomPanel()
{
    if (bottomPanel_ == nullptr && appState_.showBottomPanel()) {
        bottomPanel_ = new BottomPanel(appState_, themeManager_, bottomPanelPages(appState_, themeManager_), rows_);
        rows_->addWidget(bottomPanel_);
        rows_->setStretchFactor(0, 1);
        rows_->setStretchFactor(1, 0);
        rows_->setSizes({rows_->height() - bottomPanel_->sizeHint().height(), bottomPanel_->sizeHint().height()});
    }
    if (bottomPanel_ == nullptr) {
        return;
    }
    const bool hadKeyboard = bottomPanel_->isAncestorOf(focusWidget());
    bottomPanel_->setVisible(appState_.showBottomPanel());
    if (appState_.showBottomPanel()) {
        // Who shows the panel for a run's output selects that page only afterwards.
        onMainQueue(this, [this] { bottomPanel_->focusTerminal(); });
    } else if (hadKeyboard) {
        editorArea_->focusCurrentEditor();
    }
}

QWidget* MainWindow::lessonPanel() const
{
    return lessonPlace_->isHidden() ? nullptr : lessonPlace_;
}

void MainWindow::refreshTheme()
{
    QPalette colors = menuBar()->palette();
    colors.setColor(QPalette::Window, themeManager_.currentTheme().backgroundColor.toColor());
    menuBar()->setPalette(colors);
    centralWidget()->setPalette(colors);
    centralWidget()->setAutoFillBackground(true);
}

QList<QWidget*> MainWindow::regions() const
{
    return {toolbar_,     sidebar_,     tabBar_,    linkRunPlace_, editorArea_,
            lessonPlace_, bottomPanel_, noticeBar_, statusBar_};
}

void MainWindow::keyPressEvent(QKeyEvent* event)
{
    const bool isEscape = event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier;
    if (isEscape && !editorArea_->isAncestorOf(focusWidget())) {
        editorArea_->focusCurrentEditor();
    } else {
        QMainWindow::keyPressEvent(event);
    }
}

bool MainWindow::focusNextPrevChild(bool next)
{
    const auto inSight = [this](const QWidget& hidden) {
        const QList<QWidget*> all = regions();
        return std::any_of(all.begin(), all.end(), [&](const QWidget* region) {
            return region != nullptr && region->isVisible() && region->isAncestorOf(&hidden);
        });
    };
    if (keyboardPlace_ != nullptr && keyboardPlace_->takeFromHidden(inSight)) {
        return true;
    }
    if (OverlayLayer* const overlay = overlays_ != nullptr ? overlays_->top() : nullptr) {
        overlay->stepFocus(next);
        return true;
    }
    QWidget* const stop = nextFocusStop(regions(), focusWidget(), next);
    if (stop != nullptr) {
        stop->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    }
    return stop != nullptr;
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (canOpenDropped(*event->mimeData())) {
        acceptAsCopy(*event);
    }
}

void MainWindow::dragMoveEvent(QDragMoveEvent* event)
{
    acceptAsCopy(*event);
}

void MainWindow::dropEvent(QDropEvent* event)
{
    if (!links_) {
        links_ = std::make_unique<LessonLinks>(appState_, [this] { activateWindow(); });
    }
    openDropped(*event->mimeData(), appState_, [this](const QString& urlText) { links_->handleKelmPaneURL(urlText); });
    acceptAsCopy(*event);
}

} // namespace kelm
