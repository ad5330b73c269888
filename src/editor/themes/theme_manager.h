// The registry of themes.
#pragma once

#include "editor/themes/editor_theme.h"
#include "platform/desktop/appearance.h"
#include "platform/files/user_defaults.h"
#include "platform/process/log.h"

#include <QList>
#include <QObject>
#include <QString>

#include <functional>

namespace kelm {

/// Knows all themes, the current one, and the user's choice of earlier runs. Main thread only.
///
/// To choose a theme is always these three: `setCurrentTheme`, `saveTheme`, `applyAppearance`. The first alone neither
/// stores the choice nor changes the application's appearance.
class ThemeManager : public QObject
{
    Q_OBJECT
    Q_PROPERTY(kelm::EditorTheme currentTheme READ currentTheme WRITE setCurrentTheme NOTIFY currentThemeChanged)
    Q_PROPERTY(QList<kelm::EditorTheme> availableThemes READ availableThemes NOTIFY availableThemesChanged)

public:
    /// What the manager reaches beyond itself.
    struct Services
    {
        UserDefaults& userDefaults;
        Log& log;
        /// The folder that holds the support folders of all applications; empty when it cannot be found.
        QString applicationSupportDirectory;
        std::function<void(Appearance)> setAppearance;
    };

    /// Starts with the default theme, then looks the saved one up, then loads the custom themes, then applies the
    /// appearance. In this order a custom theme that was saved is not found, and the default stays.
    explicit ThemeManager(Services services);

    /// Starts as Monokai.
    const EditorTheme& currentTheme() const { return currentTheme_; }
    void setCurrentTheme(const EditorTheme& theme);

    /// The built-in themes in their order, and behind them the custom ones. No two have one name.
    const QList<EditorTheme>& availableThemes() const { return availableThemes_; }

    /// Makes the application look light or dark, as the theme that is current now wants it; with the main queue's next
    /// turn, since the application may not stand yet.
    void applyAppearance();

    /// Stores the current theme's name.
    void saveTheme();

    /// Makes the stored name's theme the current one, if it is among the available themes.
    void loadSavedTheme();

    /// Appends the themes of the files "*.json" in "KelmPane/Themes" of the application support directory, in the order
    /// of the folder's listing. A file that cannot be read, is no theme, or has a name that is taken is passed over.
    void loadCustomThemes();

    /// The manager of the program, made on first use.
    static ThemeManager& shared();

Q_SIGNALS:
    void currentThemeChanged();
    void availableThemesChanged();

private:
    Services services_;
    EditorTheme currentTheme_ = EditorTheme::monokai();
    QList<EditorTheme> availableThemes_ = EditorTheme::allThemes();
};

} // namespace kelm
