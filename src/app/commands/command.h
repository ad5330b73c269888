// The names by which the program knows its commands.
#pragma once

namespace kelm {

/// A command of the menus. Menu bar, toolbar and whatever else gives it find it by this; its label is only what people
/// read.
enum class Command {
    // Of the command table, in its order.
    newFile,
    newWindow,
    open,
    cloneRepository,
    save,
    saveAs,
    saveAll,
    formatJson,
    formatXml,
    sortLinesAscending,
    sortLinesDescending,
    toUpperCase,
    toLowerCase,
    toTitleCase,
    toCamelCase,
    toSnakeCase,
    toggleSidebar,
    toggleBottomPanel,
    toggleMinimap,
    run,
    runInTerminal,
    checkForUpdates,
    uninstall,
    find,
    findAndReplace,
    findInProject,
    goToFile,
    goToLine,
    // Of the standard menus.
    about,
    settings,
    quit,
    undo,
    redo,
    cut,
    copy,
    paste,
    selectAll,
    showFindBar,
    showReplaceBar,
    findNext,
    findPrevious,
    useSelectionForFind,
    nextRecentTab,
    previousRecentTab,
    nextTab,
    previousTab,
    goToTab1,
    goToTab2,
    goToTab3,
    goToTab4,
    goToTab5,
    goToTab6,
    goToTab7,
    goToTab8,
    goToLastTab,
    closeTab,
    reopenTab,
    nextPane,
    previousPane,
};
inline constexpr Command lastTableCommand = Command::goToLine;
inline constexpr Command lastCommand = Command::previousPane;

} // namespace kelm
