#include "app/commands/command_table.h"

#include "app/state/app_state.h"
#include "app/state/rewrite_document.h"
#include "editor/transforms/json_formatter.h"
#include "editor/transforms/text_transformer.h"
#include "editor/transforms/xml_formatter.h"
#include "maintenance/auto_update_service.h"
#include "platform/files/file_url.h"
#include "platform/text/shown_name.h"

#include <utility>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

#ifdef Q_OS_MACOS
/// The toolkit maps Command to `CTRL` and Control to `META` there.
constexpr Qt::KeyboardModifier controlModifier = Qt::MetaModifier;
#else
constexpr Qt::KeyboardModifier controlModifier = Qt::ControlModifier;
#endif

constexpr Qt::KeyboardModifiers commandKey = Qt::ControlModifier;
constexpr Qt::KeyboardModifiers commandShift = Qt::ControlModifier | Qt::ShiftModifier;
constexpr Qt::KeyboardModifiers commandOption = Qt::ControlModifier | Qt::AltModifier;

/// Blanks to a level of formatted JSON.
constexpr int jsonIndent = 2;

/// What most commands are: something that the state does.
using Action = std::function<void(AppState&)>;

std::function<void(const CommandTargets&)> onState(Action action)
{
    return [action = std::move(action)](const CommandTargets& targets) { action(targets.appState); };
}

MenuItem item(Command command, QString label, std::optional<QKeyCombination> key, Action action)
{
    return {MenuItem::Kind::command, command, std::move(label), key, onState(std::move(action))};
}

MenuItem item(Command command, QString label, Action action)
{
    return item(command, std::move(label), std::nullopt, std::move(action));
}

/// A line for the moment, which nothing else looks up.
MenuItem passingItem(QString label, Action action)
{
    return {MenuItem::Kind::command, std::nullopt, std::move(label), std::nullopt, onState(std::move(action))};
}

MenuItem separator()
{
    return {MenuItem::Kind::separator};
}

MenuItem submenu(QString label, std::vector<MenuItem> items)
{
    MenuItem menu{MenuItem::Kind::submenu, std::nullopt, std::move(label)};
    menu.items = std::move(items);
    return menu;
}

MenuItem submenu(QString label, std::function<std::vector<MenuItem>(const AppState&)> makeItems)
{
    MenuItem menu{MenuItem::Kind::submenu, std::nullopt, std::move(label)};
    menu.makeItems = std::move(makeItems);
    return menu;
}

Action showSearch(SearchMode mode)
{
    return [mode](AppState& state) {
        state.setShowSearch(true);
        state.setSearchMode(mode);
    };
}

/// `notice` is shown while it takes its time.
Action rewrite(const QString& notice, DocumentRewriter::Transform transform)
{
    return [notice, transform = std::move(transform)](AppState& state) {
        rewriteCurrentDocument(state, notice, transform);
    };
}

Action changeCase(DocumentRewriter::Transform transform)
{
    return rewrite(u"Changing case…"_s, std::move(transform));
}

void doNothing(AppState&) {}

MenuItem checkForUpdatesItem()
{
    return {
        .command = Command::checkForUpdates,
        .label = u"Check for Updates…"_s,
        .action = [](const CommandTargets& targets) { targets.updateService.updaterController().checkForUpdates(); },
        .isEnabled = [](const CommandTargets& targets) { return targets.updateService.canCheckForUpdates(); },
    };
}

MenuItem uninstallItem()
{
    return {
        .command = Command::uninstall,
        .label = u"Uninstall KelmWright…"_s,
        .action = [](const CommandTargets& targets) { targets.uninstall(); },
    };
}

const MenuItem* findCommand(Command command, const std::vector<MenuItem>& items)
{
    for (const MenuItem& item : items) {
        if (item.command == command) {
            return &item;
        }
        if (const MenuItem* found = findCommand(command, item.items)) {
            return found;
        }
    }
    return nullptr;
}

std::vector<MenuGroup> makeCommandTable()
{
    return {
        {u"File"_s,
         MenuPlacement::replacingNewItems,
         {
             item(Command::newFile, u"New File"_s, commandKey | Qt::Key_N, &AppState::createNewTab),
             item(Command::newWindow, u"New Window"_s, commandShift | Qt::Key_N, doNothing),
             separator(),
             item(Command::open, u"Open..."_s, commandKey | Qt::Key_O, &AppState::showOpenPanel),
             submenu(u"Open Recent"_s, makeOpenRecentItems),
             separator(),
             item(Command::cloneRepository, u"Clone Repository…"_s, commandShift | Qt::Key_K,
                  [](AppState& state) { state.setShowCloneDialog(true); }),
         }},
        {u"File"_s,
         MenuPlacement::replacingSaveItems,
         {
             item(Command::save, u"Save"_s, commandKey | Qt::Key_S, &AppState::saveCurrentDocument),
             item(Command::saveAs, u"Save As..."_s, commandShift | Qt::Key_S, &AppState::saveCurrentDocumentAs),
             item(Command::saveAll, u"Save All"_s, commandOption | Qt::Key_S, &AppState::saveAllDocuments),
         }},
        {u"Edit"_s,
         MenuPlacement::afterTextEditing,
         {
             submenu(u"Format"_s,
                     std::vector{
                         item(Command::formatJson, u"Format JSON"_s, commandShift | Qt::Key_J,
                              rewrite(u"Formatting JSON…"_s,
                                      [](const QString& text) { return JSONFormatter::format(text, jsonIndent); })),
                         item(Command::formatXml, u"Format XML"_s, commandShift | Qt::Key_X,
                              rewrite(u"Formatting XML…"_s, formatXml)),
                         separator(),
                         item(Command::sortLinesAscending, u"Sort Lines Ascending"_s,
                              [](AppState& state) { state.sortLines(true); }),
                         item(Command::sortLinesDescending, u"Sort Lines Descending"_s,
                              [](AppState& state) { state.sortLines(false); }),
                     }),
             submenu(u"Transform"_s,
                     std::vector{
                         item(Command::toUpperCase, u"UPPERCASE"_s, changeCase(TextTransformer::toUpperCase)),
                         item(Command::toLowerCase, u"lowercase"_s, changeCase(TextTransformer::toLowerCase)),
                         item(Command::toTitleCase, u"Title Case"_s, changeCase(TextTransformer::toCapitalized)),
                         item(Command::toCamelCase, u"camelCase"_s, changeCase(TextTransformer::toCamelCase)),
                         item(Command::toSnakeCase, u"snake_case"_s, changeCase(TextTransformer::toSnakeCase)),
                     }),
         }},
        {u"View"_s,
         MenuPlacement::afterToolbar,
         {
             item(Command::toggleSidebar, u"Toggle Sidebar"_s, commandKey | Qt::Key_B,
                  [](AppState& state) { state.setShowSidebar(!state.showSidebar()); }),
             item(Command::toggleBottomPanel, u"Toggle Bottom Panel"_s, controlModifier | Qt::Key_QuoteLeft,
                  [](AppState& state) { state.setShowBottomPanel(!state.showBottomPanel()); }),
             item(Command::toggleMinimap, u"Toggle Minimap"_s, commandShift | Qt::Key_M,
                  [](AppState& state) { state.setShowMinimap(!state.showMinimap()); }),
         }},
        {u"Run"_s,
         MenuPlacement::ownMenu,
         {
             item(Command::run, u"Run"_s, commandKey | Qt::Key_R, &AppState::runCurrentFile),
             item(Command::runInTerminal, u"Run in Terminal"_s, commandShift | Qt::Key_R,
                  [](AppState& state) { state.setShowBottomPanel(true); }),
         }},
        {u"KelmWright"_s,
         MenuPlacement::afterAbout,
         {
             checkForUpdatesItem(),
             separator(),
             uninstallItem(),
         }},
        {u"Find"_s,
         MenuPlacement::ownMenu,
         {
             item(Command::find, u"Find..."_s, commandKey | Qt::Key_F, showSearch(SearchMode::find)),
             item(Command::findAndReplace, u"Find and Replace..."_s, commandKey | Qt::Key_H,
                  showSearch(SearchMode::replace)),
             item(Command::findInProject, u"Find in Project..."_s, commandShift | Qt::Key_F,
                  showSearch(SearchMode::project)),
             separator(),
             item(Command::goToFile, u"Go to File..."_s, commandKey | Qt::Key_P,
                  [](AppState& state) { state.setShowQuickOpen(true); }),
             item(Command::goToLine, u"Go to Line..."_s, commandKey | Qt::Key_G,
                  [](AppState& state) { state.setShowGoToLine(true); }),
         }},
    };
}

} // namespace

const std::vector<MenuGroup>& commandTable()
{
    static const std::vector<MenuGroup> table = makeCommandTable();
    return table;
}

const MenuItem& commandItem(Command command, const std::vector<MenuGroup>& table)
{
    for (const MenuGroup& group : table) {
        if (const MenuItem* found = findCommand(command, group.items)) {
            return *found;
        }
    }
    qFatal("a command has no line in the table");
}

std::vector<MenuItem> makeOpenRecentItems(const AppState& appState)
{
    std::vector<MenuItem> items;
    for (const QUrl& url : appState.recentFiles()) {
        items.push_back(
            passingItem(shownName(lastPathComponent(url)), [url](AppState& state) { state.openFile(url); }));
    }
    if (!items.empty()) {
        items.push_back(separator());
        items.push_back(passingItem(u"Clear Menu"_s, [](AppState& state) {
            state.setRecentFiles({});
            state.saveRecentFiles();
        }));
    }
    return items;
}

} // namespace kelm
