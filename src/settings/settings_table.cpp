#include "settings/settings_table.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

const QString general = u"General"_s;
const QString editor = u"Editor"_s;

Setting toggle(const QString& key, bool defaultValue, const QString& label, const QString& tab, const QString& section)
{
    return {key, defaultValue, Setting::Control::toggle, label, tab, section};
}

std::vector<Setting> makeTable()
{
    std::vector<Setting> table{
        toggle(u"autoSave"_s, true, u"Auto save files"_s, general, u"Saving"_s),
        {.key = u"autoSaveDelay"_s,
         .defaultValue = 5,
         .control = Setting::Control::stepper,
         .label = u"Auto save delay: "_s,
         .tab = general,
         .section = u"Saving"_s,
         .minimum = 1,
         .maximum = 60,
         .suffix = u" seconds"_s,
         .shownWhile = u"autoSave"_s},
        toggle(u"showWelcome"_s, true, u"Show welcome screen on startup"_s, general, u"Startup"_s),
        toggle(u"reopenFiles"_s, true, u"Reopen files from previous session"_s, general, u"Startup"_s),
        toggle(u"confirmClose"_s, true, u"Confirm before closing modified files"_s, general, u"Closing"_s),
        {.key = u"fontFamily"_s,
         .defaultValue = u"SF Mono"_s,
         .control = Setting::Control::picker,
         .label = u"Font family"_s,
         .tab = editor,
         .section = u"Font"_s,
         .choices = {u"SF Mono"_s, u"Menlo"_s, u"Monaco"_s, u"Courier New"_s, u"JetBrains Mono"_s, u"Fira Code"_s}},
        {.key = u"fontSize"_s,
         .defaultValue = 13.0,
         .control = Setting::Control::slider,
         .label = u"Font size: "_s,
         .tab = editor,
         .section = u"Font"_s,
         .minimum = 10,
         .maximum = 24},
        {.key = u"lineHeight"_s,
         .defaultValue = 1.4,
         .control = Setting::Control::slider,
         .label = u"Line height: "_s,
         .tab = editor,
         .section = u"Font"_s,
         .minimum = 1,
         .maximum = 2,
         .step = 0.1,
         .decimals = 1},
        {.key = u"tabSize"_s,
         .defaultValue = 4,
         .control = Setting::Control::stepper,
         .label = u"Tab size: "_s,
         .tab = editor,
         .section = u"Indentation"_s,
         .minimum = 2,
         .maximum = 8},
        toggle(u"insertSpaces"_s, true, u"Insert spaces instead of tabs"_s, editor, u"Indentation"_s),
        toggle(u"showLineNumbers"_s, true, u"Show line numbers"_s, editor, u"Display"_s),
        toggle(u"showMinimap"_s, true, u"Show minimap"_s, editor, u"Display"_s),
        toggle(u"highlightCurrentLine"_s, true, u"Highlight current line"_s, editor, u"Display"_s),
        toggle(u"showIndentGuides"_s, true, u"Show indent guides"_s, editor, u"Display"_s),
        toggle(u"wordWrap"_s, false, u"Word wrap"_s, editor, u"Display"_s),
        toggle(u"matchBrackets"_s, true, u"Match brackets"_s, editor, u"Editing"_s),
        toggle(u"autoCloseBrackets"_s, true, u"Auto-close brackets"_s, editor, u"Editing"_s),
    };
    return table;
}

} // namespace

const std::vector<Setting>& settingsTable()
{
    static const std::vector<Setting> table = makeTable();
    return table;
}

const Setting& settingOf(const QString& key)
{
    const auto& table = settingsTable();
    const auto found = std::find_if(table.begin(), table.end(), [&key](const Setting& row) { return row.key == key; });
    Q_ASSERT(found != table.end());
    return *found;
}

QVariant settingValue(const UserDefaults& store, const Setting& setting)
{
    switch (setting.defaultValue.typeId()) {
    case QMetaType::Bool:
        return store.boolean(setting.key).value_or(setting.defaultValue.toBool());
    case QMetaType::Int: {
        const qint64 value = store.integer(setting.key).value_or(setting.defaultValue.toInt());
        return static_cast<int>(std::clamp<qint64>(value, qRound64(setting.minimum), qRound64(setting.maximum)));
    }
    case QMetaType::Double: {
        const double value = store.real(setting.key).value_or(setting.defaultValue.toDouble());
        // A value that is no number compares with nothing.
        return value >= setting.minimum && value <= setting.maximum ? value
               : value > setting.maximum                            ? setting.maximum
               : value < setting.minimum                            ? setting.minimum
                                                                    : setting.defaultValue.toDouble();
    }
    default:
        return store.string(setting.key).value_or(setting.defaultValue.toString());
    }
}

void setSettingValue(UserDefaults& store, const Setting& setting, const QVariant& value)
{
    switch (setting.defaultValue.typeId()) {
    case QMetaType::Bool:
        store.setBoolean(setting.key, value.toBool());
        break;
    case QMetaType::Int:
        store.setInteger(setting.key, value.toInt());
        break;
    case QMetaType::Double:
        store.setReal(setting.key, value.toDouble());
        break;
    default:
        store.setString(setting.key, value.toString());
    }
}

QString settingText(const Setting& setting, const QVariant& value)
{
    return setting.label + QString::number(value.toDouble(), 'f', setting.decimals) + setting.suffix;
}

} // namespace kelm
