// The vocabulary of what a key can be bound to.
#pragma once

#include <QHash>
#include <QString>

#include <array>
#include <optional>

namespace kelm {

/// An action that a person can bind a key to, in the order in which lists show them.
enum class ShortcutAction : quint8 {
    // File
    newFile,
    newWindow,
    openFile,
    openFolder,
    save,
    saveAs,
    saveAll,
    closeTab,
    closeWindow,
    // Edit
    undo,
    redo,
    cut,
    copy,
    paste,
    selectAll,
    // Lines
    duplicateLine,
    deleteLine,
    moveLineUp,
    moveLineDown,
    copyLineUp,
    copyLineDown,
    indentLine,
    outdentLine,
    toggleComment,
    blockComment,
    // Selection
    expandSelection,
    shrinkSelection,
    selectWord,
    selectLine,
    addCursorAbove,
    addCursorBelow,
    addCursorToLineEnds,
    // Find
    find,
    findAndReplace,
    findInFiles,
    findNext,
    findPrevious,
    replaceNext,
    replaceAll,
    // Navigate
    goToFile,
    goToLine,
    goToSymbol,
    goToDefinition,
    goBack,
    goForward,
    // Tabs
    nextTab,
    previousTab,
    switchTab1,
    switchTab2,
    switchTab3,
    switchTab4,
    switchTab5,
    // View
    toggleSidebar,
    toggleTerminal,
    toggleMinimap,
    toggleLineNumbers,
    toggleWordWrap,
    zoomIn,
    zoomOut,
    resetZoom,
    splitHorizontal,
    splitVertical,
    // Focus
    focusEditor,
    focusSidebar,
    focusTerminal,
    // Format
    formatDocument,
    formatJSON,
    formatXML,
    sortLines,
    // Folding
    foldAll,
    unfoldAll,
    foldLevel1,
    foldLevel2,
    foldLevel3,
    toggleFold,
    // Run
    run,
    runInTerminal,
    stop,
    debug,
    // Bookmarks
    toggleBookmark,
    nextBookmark,
    previousBookmark,
    clearBookmarks,
    // Snippets
    insertSnippet,
    surroundWith,
};

inline constexpr std::size_t shortcutActionCount = 85;

/// All actions in their order.
const std::array<ShortcutAction, shortcutActionCount>& allShortcutActions();

/// The stored form, which is the case's own name.
QString rawValue(ShortcutAction action);

/// The action of a stored form, in exactly its letters; absent for any other text.
std::optional<ShortcutAction> shortcutActionFromRawValue(QStringView rawValue);

inline size_t qHash(ShortcutAction action, size_t seed = 0) noexcept
{
    return ::qHash(static_cast<int>(action), seed);
}

} // namespace kelm
