// The control of one setting.
#pragma once

#include "platform/files/user_defaults.h"
#include "settings/settings_table.h"

#include <QWidget>

namespace kelm {

/// Edits one setting in the store: a change of the control is written at once, and a change of the store, by whatever
/// makes it, is shown. Showing a value writes nothing.
class SettingControl final : public QWidget
{
    Q_OBJECT

public:
    SettingControl(const Setting& setting, UserDefaults& store, QWidget* parent = nullptr);

    const Setting& setting() const { return setting_; }

private:
    void addToggle();
    void addStepper();
    void addSlider();
    void addPicker();
    void store(const QVariant& value);
    QVariant value() const { return settingValue(store_, setting_); }
    /// Calls `show` with the value now and whenever it changes.
    void follow(const std::function<void(const QVariant&)>& show);

    const Setting& setting_;
    UserDefaults& store_;
};

} // namespace kelm
