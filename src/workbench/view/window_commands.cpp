#include "workbench/view/window_commands.h"

#include "workbench/view/closed_tabs.h"
#include "workbench/view/pane_walk.h"
#include "workbench/view/tab_use.h"

namespace kelm {

namespace {

/// The key that holds a walk through the tabs. With Command, macOS goes through its programs.
#ifdef Q_OS_MACOS
constexpr Qt::Key holder = Qt::Key_Meta;
constexpr Qt::KeyboardModifier heldAs = Qt::MetaModifier;
#else
constexpr Qt::Key holder = Qt::Key_Control;
constexpr Qt::KeyboardModifier heldAs = Qt::ControlModifier;
#endif

constexpr int tabNumber(Command command)
{
    return int(command) - int(Command::goToTab1);
}

} // namespace

QKeyCombination windowKey(Command command)
{
    switch (command) {
    case Command::nextRecentTab:
        return heldAs | Qt::Key_Tab;
    case Command::previousRecentTab:
        return QKeyCombination(heldAs | Qt::ShiftModifier, Qt::Key_Tab);
    case Command::nextTab:
        return Qt::CTRL | Qt::Key_PageDown;
    case Command::previousTab:
        return Qt::CTRL | Qt::Key_PageUp;
    case Command::closeTab:
        return Qt::CTRL | Qt::Key_W;
    case Command::reopenTab:
        return Qt::CTRL | Qt::SHIFT | Qt::Key_T;
    case Command::nextPane:
        return QKeyCombination(Qt::Key_F6);
    case Command::previousPane:
        return Qt::SHIFT | Qt::Key_F6;
    default:
        return Qt::ALT | Qt::Key(Qt::Key_1 + tabNumber(command));
    }
}

WindowCommands::WindowCommands(AppState& appState, PaneWalk& panes, QObject* parent)
    : QObject(parent),
      appState_(appState),
      panes_(panes),
      tabUse_(new TabUse(appState, this)),
      closedTabs_(new ClosedTabs(appState, this))
{
    for (const auto changes : {&AppState::showQuickOpenChanged, &AppState::showSearchChanged,
                               &AppState::showGoToLineChanged, &AppState::documentsChanged}) {
        connect(&appState_, changes, this, &WindowCommands::changed);
    }
    connect(closedTabs_, &ClosedTabs::changed, this, &WindowCommands::changed);
}

bool WindowCommands::canRun(Command command) const
{
    if (appState_.showQuickOpen() || appState_.showSearch() || appState_.showGoToLine()) {
        return false;
    }
    const qsizetype tabs = appState_.documents().size();
    switch (command) {
    case Command::nextRecentTab:
    case Command::previousRecentTab:
    case Command::nextTab:
    case Command::previousTab:
        return tabs > 1;
    case Command::closeTab:
        return appState_.currentDocument() != nullptr;
    case Command::goToLastTab:
        return tabs > 0;
    case Command::reopenTab:
        return !closedTabs_->isEmpty();
    case Command::nextPane:
    case Command::previousPane:
        return true;
    default:
        return tabNumber(command) < tabs;
    }
}

void WindowCommands::run(Command command)
{
    if (!canRun(command)) {
        return;
    }
    switch (command) {
    case Command::nextRecentTab:
    case Command::previousRecentTab:
        tabUse_->walk(command == Command::previousRecentTab, holder, heldAs);
        break;
    case Command::nextTab:
    case Command::previousTab:
        stepTab(command == Command::nextTab ? 1 : -1);
        break;
    case Command::closeTab:
        appState_.closeTab(appState_.currentDocumentIndex());
        break;
    case Command::reopenTab:
        closedTabs_->reopen();
        break;
    case Command::nextPane:
    case Command::previousPane:
        panes_.go(command == Command::nextPane);
        break;
    case Command::goToLastTab:
        goToTab(appState_.documents().size() - 1);
        break;
    default:
        goToTab(tabNumber(command));
    }
}

void WindowCommands::goToTab(qsizetype index)
{
    appState_.setCurrentDocumentIndex(index);
}

void WindowCommands::stepTab(qsizetype step)
{
    const qsizetype count = appState_.documents().size();
    goToTab((appState_.currentDocumentIndex() + count + step) % count);
}

} // namespace kelm
