// The full record of settings.
#pragma once

#include <QObject>
#include <QProperty>
#include <QString>

namespace kelm {

/// Every setting as an observable field that starts with its default: assigning to a field tells its observers. Kept
/// ready: the program reads none of them, and the settings window binds its controls to the store itself. Sizes are in
/// points, the delay in seconds, the line height a multiple of the font's. Main thread only.
class PreferencesService : public QObject
{
    Q_OBJECT

public:
    PreferencesService();
    ~PreferencesService() override;

Q_SIGNALS:
    void fontSizeChanged();
    void fontFamilyChanged();
    void lineHeightChanged();
    void tabSizeChanged();
    void insertSpacesChanged();
    void wordWrapChanged();
    void showLineNumbersChanged();
    void showMinimapChanged();
    void highlightCurrentLineChanged();
    void showIndentGuidesChanged();
    void showWhitespaceChanged();
    void autoSaveChanged();
    void autoSaveDelayChanged();
    void matchBracketsChanged();
    void autoCloseBracketsChanged();
    void autoIndentChanged();
    void selectedThemeChanged();
    void showWelcomeChanged();
    void reopenFilesChanged();
    void confirmCloseChanged();
    void terminalShellChanged();
    void terminalFontSizeChanged();

public:
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(PreferencesService, double, fontSize, 13.0,
                                         &PreferencesService::fontSizeChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(PreferencesService, QString, fontFamily, QStringLiteral("SF Mono"),
                                         &PreferencesService::fontFamilyChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(PreferencesService, double, lineHeight, 1.4,
                                         &PreferencesService::lineHeightChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(PreferencesService, int, tabSize, 4, &PreferencesService::tabSizeChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(PreferencesService, bool, insertSpaces, true,
                                         &PreferencesService::insertSpacesChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(PreferencesService, bool, wordWrap, false,
                                         &PreferencesService::wordWrapChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(PreferencesService, bool, showLineNumbers, true,
                                         &PreferencesService::showLineNumbersChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(PreferencesService, bool, showMinimap, true,
                                         &PreferencesService::showMinimapChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(PreferencesService, bool, highlightCurrentLine, true,
                                         &PreferencesService::highlightCurrentLineChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(PreferencesService, bool, showIndentGuides, true,
                                         &PreferencesService::showIndentGuidesChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(PreferencesService, bool, showWhitespace, false,
                                         &PreferencesService::showWhitespaceChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(PreferencesService, bool, autoSave, true, &PreferencesService::autoSaveChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(PreferencesService, int, autoSaveDelay, 5,
                                         &PreferencesService::autoSaveDelayChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(PreferencesService, bool, matchBrackets, true,
                                         &PreferencesService::matchBracketsChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(PreferencesService, bool, autoCloseBrackets, true,
                                         &PreferencesService::autoCloseBracketsChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(PreferencesService, bool, autoIndent, true,
                                         &PreferencesService::autoIndentChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(PreferencesService, QString, selectedTheme, QStringLiteral("Monokai"),
                                         &PreferencesService::selectedThemeChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(PreferencesService, bool, showWelcome, true,
                                         &PreferencesService::showWelcomeChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(PreferencesService, bool, reopenFiles, true,
                                         &PreferencesService::reopenFilesChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(PreferencesService, bool, confirmClose, true,
                                         &PreferencesService::confirmCloseChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(PreferencesService, QString, terminalShell, QStringLiteral("/bin/zsh"),
                                         &PreferencesService::terminalShellChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(PreferencesService, double, terminalFontSize, 13.0,
                                         &PreferencesService::terminalFontSizeChanged)
};

} // namespace kelm
