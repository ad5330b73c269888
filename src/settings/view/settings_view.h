// The settings window.
#pragma once

#include "editor/themes/theme_manager.h"
#include "platform/files/user_defaults.h"

#include <QWidget>

#include <array>

class QStackedWidget;

namespace kelm {

class PlainButton;

/// Five tabs: two of settings, which are stored and shown, the themes, the list of keys, and the place of extensions.
class SettingsView final : public QWidget
{
    Q_OBJECT

public:
    enum Tab { general, editor, themes, keybindings, extensions };
    static constexpr int tabCount = 5;

    SettingsView(UserDefaults& store, ThemeManager& themeManager, QWidget* parent = nullptr);

    void select(Tab tab);
    PlainButton& tabButton(Tab tab) { return *buttons_.at(tab); }
    QWidget* page(Tab tab) const;

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QStackedWidget* pages_;
    std::array<PlainButton*, tabCount> buttons_{};
};

/// Says that extensions are yet to come. Its button has no action.
class ExtensionSettingsView final : public QWidget
{
    Q_OBJECT

public:
    explicit ExtensionSettingsView(QWidget* parent = nullptr);
};

} // namespace kelm
