#include "app/kept_ready/keyboard_shortcut_manager.h"
#include "support/test_program.h"

#include <QSignalSpy>
#include <QtTest>

namespace keyboard_shortcut_manager_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

/// All actions by name, in their order.
const QStringList names =
    QStringLiteral(
        "newFile newWindow openFile openFolder save saveAs saveAll closeTab closeWindow "
        "undo redo cut copy paste selectAll "
        "duplicateLine deleteLine moveLineUp moveLineDown copyLineUp copyLineDown indentLine outdentLine toggleComment "
        "blockComment "
        "expandSelection shrinkSelection selectWord selectLine addCursorAbove addCursorBelow addCursorToLineEnds "
        "find findAndReplace findInFiles findNext findPrevious replaceNext replaceAll "
        "goToFile goToLine goToSymbol goToDefinition goBack goForward "
        "nextTab previousTab switchTab1 switchTab2 switchTab3 switchTab4 switchTab5 "
        "toggleSidebar toggleTerminal toggleMinimap toggleLineNumbers toggleWordWrap zoomIn zoomOut resetZoom "
        "splitHorizontal splitVertical "
        "focusEditor focusSidebar focusTerminal "
        "formatDocument formatJSON formatXML sortLines "
        "foldAll unfoldAll foldLevel1 foldLevel2 foldLevel3 toggleFold "
        "run runInTerminal stop debug "
        "toggleBookmark nextBookmark previousBookmark clearBookmarks "
        "insertSnippet surroundWith")
        .split(u' ');

} // namespace

class KeyboardShortcutManagerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void thereAre85ActionsInTheirOrder();
    void anUnknownNameIsNoAction_data();
    void anUnknownNameIsNoAction();
    void theEnumerationAndTheNamesAgree();
    void theOrderOfModifiersMatters();
    void aShortcutComesBackFromItsStoredForm_data();
    void aShortcutComesBackFromItsStoredForm();
    void theStoredFormIsAnObjectOfTwoMembers();
    void whatIsNoShortcutDoesNotDecode_data();
    void whatIsNoShortcutDoesNotDecode();
    void theDefaultsAreTheKeysOfMenusAndText();
    void theTableInForceIsTheDefaultsWithTheOverrides();
    void anOverrideThatChangesNothingTellsNothing();
};

void KeyboardShortcutManagerTest::thereAre85ActionsInTheirOrder()
{
    QStringList all;
    for (const ShortcutAction action : allShortcutActions()) {
        all.append(rawValue(action));
        QCOMPARE(shortcutActionFromRawValue(rawValue(action)), std::optional(action));
    }
    QCOMPARE(all.size(), 85);
    QCOMPARE(all, names);
}

void KeyboardShortcutManagerTest::anUnknownNameIsNoAction_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name : {"", "new", "NewFile", "newfile", "newFile ", "run in terminal"}) {
        QTest::addRow("'%s'", name) << QString::fromLatin1(name);
    }
}

void KeyboardShortcutManagerTest::anUnknownNameIsNoAction()
{
    QFETCH(QString, name);
    QCOMPARE(shortcutActionFromRawValue(name), std::nullopt);
}

void KeyboardShortcutManagerTest::theEnumerationAndTheNamesAgree()
{
    using enum ShortcutAction;
    const QList<ShortcutAction> cases{newFile,
                                      newWindow,
                                      openFile,
                                      openFolder,
                                      save,
                                      saveAs,
                                      saveAll,
                                      closeTab,
                                      closeWindow,
                                      undo,
                                      redo,
                                      cut,
                                      copy,
                                      paste,
                                      selectAll,
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
                                      expandSelection,
                                      shrinkSelection,
                                      selectWord,
                                      selectLine,
                                      addCursorAbove,
                                      addCursorBelow,
                                      addCursorToLineEnds,
                                      find,
                                      findAndReplace,
                                      findInFiles,
                                      findNext,
                                      findPrevious,
                                      replaceNext,
                                      replaceAll,
                                      goToFile,
                                      goToLine,
                                      goToSymbol,
                                      goToDefinition,
                                      goBack,
                                      goForward,
                                      nextTab,
                                      previousTab,
                                      switchTab1,
                                      switchTab2,
                                      switchTab3,
                                      switchTab4,
                                      switchTab5,
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
                                      focusEditor,
                                      focusSidebar,
                                      focusTerminal,
                                      formatDocument,
                                      formatJSON,
                                      formatXML,
                                      sortLines,
                                      foldAll,
                                      unfoldAll,
                                      foldLevel1,
                                      foldLevel2,
                                      foldLevel3,
                                      toggleFold,
                                      run,
                                      runInTerminal,
                                      stop,
                                      debug,
                                      toggleBookmark,
                                      nextBookmark,
                                      previousBookmark,
                                      clearBookmarks,
                                      insertSnippet,
                                      surroundWith};
    QCOMPARE(cases.size(), names.size());
    for (qsizetype at = 0; at < cases.size(); ++at) {
        QCOMPARE(rawValue(cases[at]), names[at]);
    }
    QCOMPARE(rawValue(Modifier::command), u"command"_s);
    QCOMPARE(rawValue(Modifier::option), u"option"_s);
    QCOMPARE(rawValue(Modifier::control), u"control"_s);
    QCOMPARE(rawValue(Modifier::shift), u"shift"_s);
}

void KeyboardShortcutManagerTest::theOrderOfModifiersMatters()
{
    const KeyboardShortcut one{u"s"_s, {Modifier::command, Modifier::shift}};
    const KeyboardShortcut other{u"s"_s, {Modifier::shift, Modifier::command}};
    QVERIFY(one != other);
    QVERIFY(one == KeyboardShortcut(one));
    QVERIFY((one != KeyboardShortcut{u"S"_s, one.modifiers}));
}

void KeyboardShortcutManagerTest::aShortcutComesBackFromItsStoredForm_data()
{
    QTest::addColumn<KeyboardShortcut>("shortcut");
    QTest::newRow("two modifiers") << KeyboardShortcut{u"s"_s, {Modifier::command, Modifier::shift}};
    QTest::newRow("all modifiers") << KeyboardShortcut{
        u"down"_s, {Modifier::shift, Modifier::control, Modifier::option, Modifier::command}};
    QTest::newRow("none") << KeyboardShortcut{u"`"_s, {}};
    QTest::newRow("odd keys") << KeyboardShortcut{u"\"\\한\u0001"_s, {Modifier::command}};
    QTest::newRow("empty") << KeyboardShortcut{};
}

void KeyboardShortcutManagerTest::aShortcutComesBackFromItsStoredForm()
{
    QFETCH(KeyboardShortcut, shortcut);
    QCOMPARE(KeyboardShortcut::decoded(shortcut.encoded()), std::optional(shortcut));
}

void KeyboardShortcutManagerTest::theStoredFormIsAnObjectOfTwoMembers()
{
    const KeyboardShortcut shortcut{u"s"_s, {Modifier::command, Modifier::shift}};
    QCOMPARE(shortcut.encoded(), QByteArray(R"({"key":"s","modifiers":["command","shift"]})"));
}

void KeyboardShortcutManagerTest::whatIsNoShortcutDoesNotDecode_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::newRow("unknown modifier") << QByteArray(R"({"key":"s","modifiers":["command","hyper"]})");
    QTest::newRow("other case") << QByteArray(R"({"key":"s","modifiers":["Command"]})");
    QTest::newRow("modifier of another type") << QByteArray(R"({"key":"s","modifiers":[1]})");
    QTest::newRow("no key") << QByteArray(R"({"modifiers":["command"]})");
    QTest::newRow("no modifiers") << QByteArray(R"({"key":"s"})");
    QTest::newRow("key of another type") << QByteArray(R"({"key":1,"modifiers":[]})");
    QTest::newRow("modifiers of another type") << QByteArray(R"({"key":"s","modifiers":"command"})");
    QTest::newRow("an array") << QByteArray("[]");
    QTest::newRow("a control character") << QByteArray("{\"key\":\"\n\",\"modifiers\":[]}");
    QTest::newRow("no JSON") << QByteArray("{");
    QTest::newRow("empty") << QByteArray();
}

void KeyboardShortcutManagerTest::whatIsNoShortcutDoesNotDecode()
{
    QFETCH(QByteArray, json);
    QCOMPARE(KeyboardShortcut::decoded(json), std::nullopt);
}

void KeyboardShortcutManagerTest::theDefaultsAreTheKeysOfMenusAndText()
{
    const QStringList expected{u"newFile: command n"_s,
                               u"newWindow: command shift n"_s,
                               u"openFile: command o"_s,
                               u"save: command s"_s,
                               u"saveAs: command shift s"_s,
                               u"saveAll: command option s"_s,
                               u"undo: command z"_s,
                               u"redo: command shift z"_s,
                               u"duplicateLine: command d"_s,
                               u"indentLine: command ]"_s,
                               u"outdentLine: command ["_s,
                               u"toggleComment: command /"_s,
                               u"selectLine: command l"_s,
                               u"addCursorAbove: command option up"_s,
                               u"addCursorBelow: command option down"_s,
                               u"find: command f"_s,
                               u"findAndReplace: command h"_s,
                               u"findInFiles: command shift f"_s,
                               u"goToFile: command p"_s,
                               u"goToLine: command g"_s,
                               u"toggleSidebar: command b"_s,
                               u"toggleTerminal: control `"_s,
                               u"toggleMinimap: command shift m"_s,
                               u"formatJSON: command shift j"_s,
                               u"formatXML: command shift x"_s,
                               u"run: command r"_s,
                               u"runInTerminal: command shift r"_s,
                               u"stop: command ."_s};
    QStringList rows;
    for (const ShortcutAction action : allShortcutActions()) {
        if (const auto found = defaultShortcuts().constFind(action); found != defaultShortcuts().cend()) {
            QStringList words;
            for (const Modifier modifier : found->modifiers) {
                words << rawValue(modifier);
            }
            rows << rawValue(action) + u": "_s + (words << found->key).join(u' ');
        }
    }
    QCOMPARE(rows, expected);
    QCOMPARE(defaultShortcuts().size(), 28);
}

void KeyboardShortcutManagerTest::theTableInForceIsTheDefaultsWithTheOverrides()
{
    KeyboardShortcutManager manager;
    QCOMPARE(manager.shortcuts(), defaultShortcuts());
    QCOMPARE(manager.shortcuts().value(ShortcutAction::saveAll),
             (KeyboardShortcut{u"s"_s, {Modifier::command, Modifier::option}}));
    QVERIFY(manager.customShortcuts().isEmpty());
    const QSignalSpy changes(&manager, &KeyboardShortcutManager::shortcutsChanged);
    const KeyboardShortcut own{u"k"_s, {Modifier::control}};
    manager.setCustomShortcuts({{ShortcutAction::save, own}, {ShortcutAction::debug, own}});
    QCOMPARE(manager.shortcuts().value(ShortcutAction::save), own);
    QCOMPARE(manager.shortcuts().value(ShortcutAction::debug), own);
    QCOMPARE(manager.shortcuts().value(ShortcutAction::newFile), defaultShortcuts().value(ShortcutAction::newFile));
    QCOMPARE(changes.count(), 1);
    manager.setCustomShortcuts({});
    QCOMPARE(manager.shortcuts(), defaultShortcuts());
    QCOMPARE(changes.count(), 2);
}

void KeyboardShortcutManagerTest::anOverrideThatChangesNothingTellsNothing()
{
    KeyboardShortcutManager manager;
    const QSignalSpy changes(&manager, &KeyboardShortcutManager::shortcutsChanged);
    const QSignalSpy customChanges(&manager, &KeyboardShortcutManager::customShortcutsChanged);
    manager.setCustomShortcuts({{ShortcutAction::save, defaultShortcuts().value(ShortcutAction::save)}});
    QCOMPARE(customChanges.count(), 1);
    QCOMPARE(changes.count(), 0);
}

const kelm::test::Registered<KeyboardShortcutManagerTest> registered;

} // namespace keyboard_shortcut_manager_test

#include "keyboard_shortcut_manager_test.moc"
