#include "workbench/view/menu_bar.h"

#include "app/commands/command_table.h"
#include "platform/view/mnemonics.h"
#include "workbench/view/responder.h"

#include <QCoreApplication>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>

#include <array>
#include <optional>

namespace kelm {

namespace {

/// An item of the standard editing group: it goes to whatever has the keyboard, by the name of its slot.
struct StandardItem
{
    Command command;
    const char* label;
    QKeySequence::StandardKey key;
    const char* slot;
};

constexpr std::array<StandardItem, 6> editingItems{{
    {Command::undo, QT_TRANSLATE_NOOP("kelm", "Undo"), QKeySequence::Undo, "undo"},
    {Command::redo, QT_TRANSLATE_NOOP("kelm", "Redo"), QKeySequence::Redo, "redo"},
    {Command::cut, QT_TRANSLATE_NOOP("kelm", "Cut"), QKeySequence::Cut, "cut"},
    {Command::copy, QT_TRANSLATE_NOOP("kelm", "Copy"), QKeySequence::Copy, "copy"},
    {Command::paste, QT_TRANSLATE_NOOP("kelm", "Paste"), QKeySequence::Paste, "paste"},
    {Command::selectAll, QT_TRANSLATE_NOOP("kelm", "Select All"), QKeySequence::SelectAll, "selectAll"},
}};

/// The text view's find bar, on keys that the command table leaves free.
struct FindItem
{
    Command command;
    const char* label;
    QKeyCombination key;
    /// One that no common desktop takes for itself, where some take the first.
    std::optional<QKeyCombination> second;
    const char* slot;
};

constexpr std::array<FindItem, 5> findItems{{
    // Xfce's file manager has the first of these, and some desktops switch to their third workspace by Ctrl+F3.
    {Command::showFindBar, QT_TRANSLATE_NOOP("kelm", "Find in Text…"), Qt::CTRL | Qt::ALT | Qt::Key_F,
     Qt::CTRL | Qt::Key_I, "showFindBar"},
    {Command::showReplaceBar, QT_TRANSLATE_NOOP("kelm", "Replace in Text…"), Qt::CTRL | Qt::ALT | Qt::Key_R,
     Qt::CTRL | Qt::SHIFT | Qt::Key_I, "showReplaceBar"},
    {Command::findNext, QT_TRANSLATE_NOOP("kelm", "Find Next"), QKeyCombination(Qt::Key_F3), std::nullopt, "findNext"},
    {Command::findPrevious, QT_TRANSLATE_NOOP("kelm", "Find Previous"), Qt::SHIFT | Qt::Key_F3, std::nullopt,
     "findPrevious"},
    {Command::useSelectionForFind, QT_TRANSLATE_NOOP("kelm", "Use Selection for Find"), Qt::CTRL | Qt::Key_F3,
     Qt::CTRL | Qt::SHIFT | Qt::Key_F3, "useSelectionForFind"},
}};

/// Some window managers roll a window up by Ctrl+Alt+S.
constexpr QKeyCombination secondKeyOfSaveAll = Qt::CTRL | Qt::SHIFT | Qt::Key_A;

void identify(QAction& action, Command command)
{
    action.setData(int(command));
}

void setKeys(QAction& action, QKeyCombination key, std::optional<QKeyCombination> second)
{
    QList<QKeySequence> keys{QKeySequence(key)};
    if (second) {
        keys.append(QKeySequence(*second));
    }
    action.setShortcuts(keys);
}

/// The menus of the bar, by the letter that opens each with Alt; no two have the same.
constexpr std::array barTitles{"&KelmWright", "&File", "&Edit", "&View", "&Run", "F&ind"};

QMenu* addBarMenu(QMenuBar& bar, const QString& title)
{
    for (const char* marked : barTitles) {
        if (const QString label = QString::fromLatin1(marked); withoutMnemonicMarks(label) == title) {
            return bar.addMenu(label);
        }
    }
    return bar.addMenu(withoutMnemonic(title));
}

void addItems(QMenu& menu, const std::vector<MenuItem>& items, const CommandTargets& targets);

void addSubmenu(QMenu& menu, const MenuItem& item, const CommandTargets& targets)
{
    QMenu* submenu = menu.addMenu(item.label);
    if (!item.makeItems) {
        addItems(*submenu, item.items, targets);
        return;
    }
    const auto refill = [submenu, makeItems = item.makeItems, targets] {
        submenu->clear();
        addItems(*submenu, makeItems(targets.appState), targets);
    };
    refill();
    QObject::connect(submenu, &QMenu::aboutToShow, submenu, refill);
}

void addItems(QMenu& menu, const std::vector<MenuItem>& items, const CommandTargets& targets)
{
    for (const MenuItem& item : items) {
        switch (item.kind) {
        case MenuItem::Kind::separator:
            menu.addSeparator();
            break;
        case MenuItem::Kind::submenu:
            addSubmenu(menu, item, targets);
            break;
        case MenuItem::Kind::command: {
            QAction* action = menu.addAction(withoutMnemonic(item.label));
            // One press does one thing: a run, say, that a link asks for comes up under a key that is held down.
            action->setAutoRepeat(false);
            if (item.command) {
                identify(*action, *item.command);
            }
            if (item.isEnabled) {
                const auto update = [action, isEnabled = item.isEnabled, targets] {
                    action->setEnabled(isEnabled(targets));
                };
                update();
                QObject::connect(&menu, &QMenu::aboutToShow, action, update);
            }
            if (item.key) {
                setKeys(*action, *item.key,
                        item.command == Command::saveAll ? std::optional(secondKeyOfSaveAll) : std::nullopt);
            }
            QObject::connect(action, &QAction::triggered, &menu, [run = item.action, targets] {
                commitCompositionInFocus();
                run(targets);
            });
            break;
        }
        }
    }
}

void addGroups(QMenu& menu, MenuPlacement placement, const CommandTargets& targets)
{
    for (const MenuGroup& group : commandTable()) {
        if (group.placement == placement && group.menu == withoutMnemonicMarks(menu.title())) {
            if (!menu.isEmpty()) {
                menu.addSeparator();
            }
            addItems(menu, group.items, targets);
        }
    }
}

void addApplicationMenu(QMenuBar& bar, const CommandTargets& targets, const std::function<void()>& openSettings)
{
    QMenu* menu = addBarMenu(bar, QStringLiteral("KelmWright"));
    QAction* about = menu->addAction(QObject::tr("About KelmWright"));
    identify(*about, Command::about);
    about->setMenuRole(QAction::AboutRole);
    QObject::connect(about, &QAction::triggered, &bar, [&bar] {
        QMessageBox::about(bar.window(), QObject::tr("About KelmWright"),
                           QObject::tr("KelmWright %1\n\nA code editor for writing and learning.")
                               .arg(QCoreApplication::applicationVersion()));
    });
    addGroups(*menu, MenuPlacement::afterAbout, targets);
    menu->addSeparator();
    QAction* settings = menu->addAction(QObject::tr("Settings…"), &bar, openSettings);
    identify(*settings, Command::settings);
    settings->setMenuRole(QAction::PreferencesRole);
    settings->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Comma));
    menu->addSeparator();
    QAction* quit = menu->addAction(QObject::tr("Quit KelmWright"), &QCoreApplication::quit);
    identify(*quit, Command::quit);
    quit->setMenuRole(QAction::QuitRole);
    quit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
}

/// The platform's keys. Redo has the one that the toolbar names, too, and shows it, and the one that most hands know.
QList<QKeySequence> keysOf(QKeySequence::StandardKey key)
{
    QList<QKeySequence> keys = QKeySequence::keyBindings(key);
    if (key == QKeySequence::Redo) {
        const QKeySequence named(Qt::CTRL | Qt::SHIFT | Qt::Key_Z);
        const QKeySequence known(Qt::CTRL | Qt::Key_Y);
        keys.removeAll(named);
        keys.removeAll(known);
        keys.prepend(named);
        keys.append(known);
    }
    return keys;
}

void addEditingItems(QMenu& menu)
{
    for (const StandardItem& item : editingItems) {
        if (item.command == Command::cut) {
            menu.addSeparator();
        }
        QAction* action = menu.addAction(QCoreApplication::translate("kelm", item.label));
        identify(*action, item.command);
        action->setShortcuts(keysOf(item.key));
        QObject::connect(action, &QAction::triggered, &menu, [slot = item.slot] { sendActionToFirstResponder(slot); });
    }
    menu.addSeparator();
    QMenu* find = menu.addMenu(QCoreApplication::translate("kelm", "Find"));
    for (const FindItem& item : findItems) {
        QAction* action = find->addAction(QCoreApplication::translate("kelm", item.label));
        identify(*action, item.command);
        setKeys(*action, item.key, item.second);
        QObject::connect(action, &QAction::triggered, find, [slot = item.slot] { sendActionToFirstResponder(slot); });
    }
}

} // namespace

QAction* menuAction(const QMenuBar& bar, Command command)
{
    for (QAction* action : bar.findChildren<QAction*>()) {
        if (action->menu() == nullptr && action->data() == int(command)) {
            return action;
        }
    }
    return nullptr;
}

QMenuBar* makeMenuBar(const CommandTargets& targets, const std::function<void()>& openSettings, QWidget* parent)
{
    auto* bar = new QMenuBar(parent);
    addApplicationMenu(*bar, targets, openSettings);
    QMenu* file = addBarMenu(*bar, QStringLiteral("File"));
    addGroups(*file, MenuPlacement::replacingNewItems, targets);
    addGroups(*file, MenuPlacement::replacingSaveItems, targets);
    QMenu* edit = addBarMenu(*bar, QStringLiteral("Edit"));
    addEditingItems(*edit);
    addGroups(*edit, MenuPlacement::afterTextEditing, targets);
    QMenu* view = addBarMenu(*bar, QStringLiteral("View"));
    addGroups(*view, MenuPlacement::afterToolbar, targets);
    for (const MenuGroup& group : commandTable()) {
        if (group.placement == MenuPlacement::ownMenu) {
            addItems(*addBarMenu(*bar, group.menu), group.items, targets);
        }
    }
    return bar;
}

} // namespace kelm
