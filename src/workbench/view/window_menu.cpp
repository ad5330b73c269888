#include "workbench/view/window_menu.h"

#include "workbench/view/responder.h"
#include "workbench/view/window_commands.h"

#include <QCoreApplication>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>

#include <array>
#include <initializer_list>

namespace kelm {

namespace {

struct WindowItem
{
    Command command;
    const char* label;
};

constexpr std::array walkItems{
    WindowItem{Command::nextRecentTab, QT_TRANSLATE_NOOP("kelm", "Next Recent Tab")},
    WindowItem{Command::previousRecentTab, QT_TRANSLATE_NOOP("kelm", "Previous Recent Tab")},
    WindowItem{Command::nextTab, QT_TRANSLATE_NOOP("kelm", "Next Tab")},
    WindowItem{Command::previousTab, QT_TRANSLATE_NOOP("kelm", "Previous Tab")},
};

constexpr std::array numberItems{
    WindowItem{Command::goToTab1, QT_TRANSLATE_NOOP("kelm", "Tab 1")},
    WindowItem{Command::goToTab2, QT_TRANSLATE_NOOP("kelm", "Tab 2")},
    WindowItem{Command::goToTab3, QT_TRANSLATE_NOOP("kelm", "Tab 3")},
    WindowItem{Command::goToTab4, QT_TRANSLATE_NOOP("kelm", "Tab 4")},
    WindowItem{Command::goToTab5, QT_TRANSLATE_NOOP("kelm", "Tab 5")},
    WindowItem{Command::goToTab6, QT_TRANSLATE_NOOP("kelm", "Tab 6")},
    WindowItem{Command::goToTab7, QT_TRANSLATE_NOOP("kelm", "Tab 7")},
    WindowItem{Command::goToTab8, QT_TRANSLATE_NOOP("kelm", "Tab 8")},
    WindowItem{Command::goToLastTab, QT_TRANSLATE_NOOP("kelm", "Last Tab")},
};

constexpr std::array closingItems{
    WindowItem{Command::closeTab, QT_TRANSLATE_NOOP("kelm", "Close Tab")},
    WindowItem{Command::reopenTab, QT_TRANSLATE_NOOP("kelm", "Reopen Closed Tab")},
};

constexpr std::array paneItems{
    WindowItem{Command::nextPane, QT_TRANSLATE_NOOP("kelm", "Next Pane")},
    WindowItem{Command::previousPane, QT_TRANSLATE_NOOP("kelm", "Previous Pane")},
};

void addItem(QMenu& menu, const WindowItem& item, WindowCommands& commands)
{
    const Command command = item.command;
    QAction* const action = menu.addAction(QCoreApplication::translate("kelm", item.label));
    action->setData(int(command));
    action->setShortcut(QKeySequence(windowKey(command)));
    // A key that is held down closes or opens one tab; it may walk on from one to the next.
    action->setAutoRepeat(command != Command::closeTab && command != Command::reopenTab);
    const auto update = [action, command, &commands] { action->setEnabled(commands.canRun(command)); };
    update();
    QObject::connect(&commands, &WindowCommands::changed, action, update);
    QObject::connect(action, &QAction::triggered, &commands, [command, &commands] {
        commitCompositionInFocus();
        commands.run(command);
    });
}

template <typename Items>
void addItems(QMenu& menu, const Items& items, WindowCommands& commands)
{
    for (const WindowItem& item : items) {
        addItem(menu, item, commands);
    }
}

} // namespace

void addWindowMenu(QMenuBar& bar, WindowCommands& commands)
{
    QMenu& menu = *bar.addMenu(QCoreApplication::translate("kelm", "&Window"));
    addItems(menu, walkItems, commands);
    addItems(*menu.addMenu(QCoreApplication::translate("kelm", "Go to Tab")), numberItems, commands);
    menu.addSeparator();
    addItems(menu, closingItems, commands);
    menu.addSeparator();
    addItems(menu, paneItems, commands);
}

} // namespace kelm
