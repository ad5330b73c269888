// The settings that the settings window shows, as data.
#pragma once

#include "platform/files/user_defaults.h"

#include <QString>
#include <QStringList>
#include <QVariant>

#include <vector>

namespace kelm {

/// One setting: where it is stored, what holds while it is not, and the control that edits it. Nothing but the settings
/// window reads it.
struct Setting
{
    enum class Control { toggle, stepper, slider, picker };

    QString key;
    /// Its type, a boolean, an integer, a real or a text, is that of the stored value.
    QVariant defaultValue;
    Control control = Control::toggle;
    /// The text of the control; a stepper and a slider show their value behind it.
    QString label;
    /// The tab and the section that it stands in.
    QString tab;
    QString section;
    /// The bounds of a number, both within them, and the step between its values.
    double minimum = 0;
    double maximum = 0;
    double step = 1;
    /// The digits behind the point of the shown value.
    int decimals = 0;
    /// What follows the shown value.
    QString suffix = {};
    /// The values of a picker.
    QStringList choices = {};
    /// The key of the toggle without which the control is hidden.
    QString shownWhile = {};
};

/// All settings, in the order in which their sections list them.
const std::vector<Setting>& settingsTable();

/// The setting of a key in the table.
const Setting& settingOf(const QString& key);

/// What a setting holds: its stored value, or its default while that is missing or of another type. A stored number
/// outside of the bounds counts as the nearer bound.
QVariant settingValue(const UserDefaults& store, const Setting& setting);

/// Stores a value of the setting's type.
void setSettingValue(UserDefaults& store, const Setting& setting, const QVariant& value);

/// The text of a stepper or a slider at a value, such as "Font size: 13".
QString settingText(const Setting& setting, const QVariant& value);

} // namespace kelm
