#include "app/kept_ready/shortcut_action.h"

#include <algorithm>

namespace kelm {

namespace {

constexpr std::array<const char*, shortcutActionCount> names{
    // File
    "newFile",
    "newWindow",
    "openFile",
    "openFolder",
    "save",
    "saveAs",
    "saveAll",
    "closeTab",
    "closeWindow",
    // Edit
    "undo",
    "redo",
    "cut",
    "copy",
    "paste",
    "selectAll",
    // Lines
    "duplicateLine",
    "deleteLine",
    "moveLineUp",
    "moveLineDown",
    "copyLineUp",
    "copyLineDown",
    "indentLine",
    "outdentLine",
    "toggleComment",
    "blockComment",
    // Selection
    "expandSelection",
    "shrinkSelection",
    "selectWord",
    "selectLine",
    "addCursorAbove",
    "addCursorBelow",
    "addCursorToLineEnds",
    // Find
    "find",
    "findAndReplace",
    "findInFiles",
    "findNext",
    "findPrevious",
    "replaceNext",
    "replaceAll",
    // Navigate
    "goToFile",
    "goToLine",
    "goToSymbol",
    "goToDefinition",
    "goBack",
    "goForward",
    // Tabs
    "nextTab",
    "previousTab",
    "switchTab1",
    "switchTab2",
    "switchTab3",
    "switchTab4",
    "switchTab5",
    // View
    "toggleSidebar",
    "toggleTerminal",
    "toggleMinimap",
    "toggleLineNumbers",
    "toggleWordWrap",
    "zoomIn",
    "zoomOut",
    "resetZoom",
    "splitHorizontal",
    "splitVertical",
    // Focus
    "focusEditor",
    "focusSidebar",
    "focusTerminal",
    // Format
    "formatDocument",
    "formatJSON",
    "formatXML",
    "sortLines",
    // Folding
    "foldAll",
    "unfoldAll",
    "foldLevel1",
    "foldLevel2",
    "foldLevel3",
    "toggleFold",
    // Run
    "run",
    "runInTerminal",
    "stop",
    "debug",
    // Bookmarks
    "toggleBookmark",
    "nextBookmark",
    "previousBookmark",
    "clearBookmarks",
    // Snippets
    "insertSnippet",
    "surroundWith",
};

} // namespace

const std::array<ShortcutAction, shortcutActionCount>& allShortcutActions()
{
    static const auto actions = [] {
        std::array<ShortcutAction, shortcutActionCount> all{};
        for (std::size_t index = 0; index < all.size(); ++index) {
            all.at(index) = static_cast<ShortcutAction>(index);
        }
        return all;
    }();
    return actions;
}

QString rawValue(ShortcutAction action)
{
    return QString::fromLatin1(names.at(static_cast<std::size_t>(action)));
}

std::optional<ShortcutAction> shortcutActionFromRawValue(QStringView rawValue)
{
    const auto found = std::find_if(names.begin(), names.end(),
                                    [rawValue](const char* name) { return rawValue == QLatin1String(name); });
    if (found == names.end()) {
        return std::nullopt;
    }
    return static_cast<ShortcutAction>(found - names.begin());
}

} // namespace kelm
