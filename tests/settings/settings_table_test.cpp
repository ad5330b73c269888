#include "app/kept_ready/preferences_service.h"
#include "settings/settings_table.h"
#include "support/test_program.h"

#include <QFile>
#include <QMetaMethod>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <functional>
#include <limits>
#include <memory>
#include <type_traits>
#include <vector>

namespace settings_table_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Fixture
{
    QTemporaryDir folder;
    QString file = folder.filePath(u"store.conf"_s);
    UserDefaults store{file};

    QVariant value(const QString& key) const { return settingValue(store, settingOf(key)); }
};

/// A field of the full record.
struct Preference
{
    QString name;
    std::function<QVariant()> value;
    /// Stores another value than it starts with, always the same, and gives that.
    std::function<QVariant()> change;
};

template <typename Field>
Preference preference(const QString& name, Field& field)
{
    const auto value = [&field] { return QVariant::fromValue(field.value()); };
    using Value = std::decay_t<decltype(field.value())>;
    Value other{};
    if constexpr (std::is_same_v<Value, bool>) {
        other = !field.value();
    } else if constexpr (std::is_same_v<Value, QString>) {
        other = field.value() + u" too"_s;
    } else {
        other = field.value() + 1;
    }
    return {name, value, [&field, value, other] {
                field = other;
                return value();
            }};
}

/// All of them, in their order.
std::vector<Preference> preferencesOf(PreferencesService& service)
{
    return {
        preference(u"fontSize"_s, service.fontSize),
        preference(u"fontFamily"_s, service.fontFamily),
        preference(u"lineHeight"_s, service.lineHeight),
        preference(u"tabSize"_s, service.tabSize),
        preference(u"insertSpaces"_s, service.insertSpaces),
        preference(u"wordWrap"_s, service.wordWrap),
        preference(u"showLineNumbers"_s, service.showLineNumbers),
        preference(u"showMinimap"_s, service.showMinimap),
        preference(u"highlightCurrentLine"_s, service.highlightCurrentLine),
        preference(u"showIndentGuides"_s, service.showIndentGuides),
        preference(u"showWhitespace"_s, service.showWhitespace),
        preference(u"autoSave"_s, service.autoSave),
        preference(u"autoSaveDelay"_s, service.autoSaveDelay),
        preference(u"matchBrackets"_s, service.matchBrackets),
        preference(u"autoCloseBrackets"_s, service.autoCloseBrackets),
        preference(u"autoIndent"_s, service.autoIndent),
        preference(u"selectedTheme"_s, service.selectedTheme),
        preference(u"showWelcome"_s, service.showWelcome),
        preference(u"reopenFiles"_s, service.reopenFiles),
        preference(u"confirmClose"_s, service.confirmClose),
        preference(u"terminalShell"_s, service.terminalShell),
        preference(u"terminalFontSize"_s, service.terminalFontSize),
    };
}

} // namespace

class SettingsTableTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFreshStoreGivesTheDefaults_data();
    void aFreshStoreGivesTheDefaults();
    void theTableHasSeventeenSettings();
    void everyRowIsAsItIsShown();
    void readingWritesNothing();
    void aStoredValueComesBack_data();
    void aStoredValueComesBack();
    void whatIsOfAnotherTypeCountsAsMissing();
    void numbersOutsideTheBoundsAreClamped();
    void textsShowTheValue();
    void thePreferencesRecordHasItsFieldsInTheirOrder();
    void thePreferencesRecordStartsWithTheTablesDefaults();
    void eachPreferenceTellsOfItsOwnChangeOnce();
};

void SettingsTableTest::aFreshStoreGivesTheDefaults_data()
{
    QTest::addColumn<QVariant>("expected");
    const auto row = [](const char* key, const QVariant& value) { QTest::newRow(key) << value; };
    row("autoSave", true);
    row("autoSaveDelay", 5);
    row("showWelcome", true);
    row("reopenFiles", true);
    row("confirmClose", true);
    row("fontFamily", u"SF Mono"_s);
    row("fontSize", 13.0);
    row("lineHeight", 1.4);
    row("tabSize", 4);
    row("insertSpaces", true);
    row("showLineNumbers", true);
    row("showMinimap", true);
    row("highlightCurrentLine", true);
    row("showIndentGuides", true);
    row("wordWrap", false);
    row("matchBrackets", true);
    row("autoCloseBrackets", true);
}

void SettingsTableTest::aFreshStoreGivesTheDefaults()
{
    QFETCH(QVariant, expected);
    const Fixture fixture;
    const QVariant value = fixture.value(QString::fromLatin1(QTest::currentDataTag()));
    QCOMPARE(value, expected);
    QCOMPARE(value.typeId(), expected.typeId());
}

void SettingsTableTest::theTableHasSeventeenSettings()
{
    QCOMPARE(settingsTable().size(), 17U);
    QSet<QString> keys;
    for (const Setting& setting : settingsTable()) {
        keys.insert(setting.key);
        QVERIFY(!setting.label.isEmpty() && !setting.section.isEmpty());
        const bool isNumber =
            setting.control == Setting::Control::slider || setting.control == Setting::Control::stepper;
        QCOMPARE(isNumber, setting.maximum > setting.minimum);
    }
    QCOMPARE(keys.size(), 17);
}

void SettingsTableTest::everyRowIsAsItIsShown()
{
    const QStringList expected{
        u"autoSave|toggle|Auto save files|General|Saving"_s,
        u"autoSaveDelay|stepper|Auto save delay: 5 seconds|General|Saving|1..60 by 1|while autoSave"_s,
        u"showWelcome|toggle|Show welcome screen on startup|General|Startup"_s,
        u"reopenFiles|toggle|Reopen files from previous session|General|Startup"_s,
        u"confirmClose|toggle|Confirm before closing modified files|General|Closing"_s,
        u"fontFamily|picker|Font family|Editor|Font"_s,
        u"fontSize|slider|Font size: 13|Editor|Font|10..24 by 1"_s,
        u"lineHeight|slider|Line height: 1.4|Editor|Font|1..2 by 0.1"_s,
        u"tabSize|stepper|Tab size: 4|Editor|Indentation|2..8 by 1"_s,
        u"insertSpaces|toggle|Insert spaces instead of tabs|Editor|Indentation"_s,
        u"showLineNumbers|toggle|Show line numbers|Editor|Display"_s,
        u"showMinimap|toggle|Show minimap|Editor|Display"_s,
        u"highlightCurrentLine|toggle|Highlight current line|Editor|Display"_s,
        u"showIndentGuides|toggle|Show indent guides|Editor|Display"_s,
        u"wordWrap|toggle|Word wrap|Editor|Display"_s,
        u"matchBrackets|toggle|Match brackets|Editor|Editing"_s,
        u"autoCloseBrackets|toggle|Auto-close brackets|Editor|Editing"_s,
    };
    const QStringList controls{u"toggle"_s, u"stepper"_s, u"slider"_s, u"picker"_s};
    QStringList rows;
    for (const Setting& setting : settingsTable()) {
        const bool isNumber =
            setting.control == Setting::Control::stepper || setting.control == Setting::Control::slider;
        QStringList row{setting.key, controls[static_cast<int>(setting.control)],
                        isNumber ? settingText(setting, setting.defaultValue) : setting.label, setting.tab,
                        setting.section};
        if (isNumber) {
            row << u"%1..%2 by %3"_s.arg(setting.minimum).arg(setting.maximum).arg(setting.step);
        }
        if (!setting.shownWhile.isEmpty()) {
            row << u"while "_s + setting.shownWhile;
        }
        rows << row.join(u'|');
    }
    QCOMPARE(rows, expected);
}

void SettingsTableTest::readingWritesNothing()
{
    Fixture fixture;
    for (const Setting& setting : settingsTable()) {
        settingValue(fixture.store, setting);
        QVERIFY(!fixture.store.contains(setting.key));
    }
    fixture.store.synchronize();
    QVERIFY(!QFile::exists(fixture.file));
}

void SettingsTableTest::aStoredValueComesBack_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::newRow("autoSave") << QVariant(false);
    QTest::newRow("autoSaveDelay") << QVariant(60);
    QTest::newRow("fontFamily") << QVariant(u"Fira Code"_s);
    QTest::newRow("fontSize") << QVariant(24.0);
    QTest::newRow("lineHeight") << QVariant(1.7);
}

void SettingsTableTest::aStoredValueComesBack()
{
    QFETCH(QVariant, value);
    const QString key = QString::fromLatin1(QTest::currentDataTag());
    Fixture fixture;
    setSettingValue(fixture.store, settingOf(key), value);
    fixture.store.synchronize();
    const UserDefaults other(fixture.file);
    QCOMPARE(settingValue(other, settingOf(key)), value);
    for (const Setting& setting : settingsTable()) {
        QCOMPARE(other.contains(setting.key), setting.key == key);
    }
}

void SettingsTableTest::whatIsOfAnotherTypeCountsAsMissing()
{
    Fixture fixture;
    fixture.store.setString(u"fontSize"_s, u"large"_s);
    fixture.store.setString(u"autoSave"_s, u"perhaps"_s);
    fixture.store.setString(u"tabSize"_s, u"4.5"_s);
    QCOMPARE(fixture.value(u"fontSize"_s), QVariant(13.0));
    QCOMPARE(fixture.value(u"autoSave"_s), QVariant(true));
    QCOMPARE(fixture.value(u"tabSize"_s), QVariant(4));
}

void SettingsTableTest::numbersOutsideTheBoundsAreClamped()
{
    Fixture fixture;
    fixture.store.setInteger(u"tabSize"_s, 1'000'000'000'000);
    QCOMPARE(fixture.value(u"tabSize"_s), QVariant(8));
    fixture.store.setInteger(u"tabSize"_s, -3);
    QCOMPARE(fixture.value(u"tabSize"_s), QVariant(2));
    fixture.store.setReal(u"fontSize"_s, 1e300);
    QCOMPARE(fixture.value(u"fontSize"_s), QVariant(24.0));
    fixture.store.setReal(u"fontSize"_s, -1);
    QCOMPARE(fixture.value(u"fontSize"_s), QVariant(10.0));
    fixture.store.setReal(u"fontSize"_s, std::numeric_limits<double>::quiet_NaN());
    QCOMPARE(fixture.value(u"fontSize"_s), QVariant(13.0));
}

void SettingsTableTest::textsShowTheValue()
{
    QCOMPARE(settingText(settingOf(u"fontSize"_s), 13.0), u"Font size: 13"_s);
    QCOMPARE(settingText(settingOf(u"lineHeight"_s), 1.4), u"Line height: 1.4"_s);
    QCOMPARE(settingText(settingOf(u"tabSize"_s), 8), u"Tab size: 8"_s);
    QCOMPARE(settingText(settingOf(u"autoSaveDelay"_s), 5), u"Auto save delay: 5 seconds"_s);
}

void SettingsTableTest::thePreferencesRecordHasItsFieldsInTheirOrder()
{
    const QMetaObject& meta = PreferencesService::staticMetaObject;
    QStringList changes;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        QCOMPARE(meta.method(i).methodType(), QMetaMethod::Signal);
        changes << QString::fromLatin1(meta.method(i).name());
    }
    QStringList expected;
    PreferencesService service;
    for (const Preference& preference : preferencesOf(service)) {
        expected << preference.name + u"Changed"_s;
    }
    QCOMPARE(changes, expected);
    QCOMPARE(changes.size(), 22);
}

void SettingsTableTest::thePreferencesRecordStartsWithTheTablesDefaults()
{
    PreferencesService service;
    QStringList others;
    for (const Preference& preference : preferencesOf(service)) {
        const auto& table = settingsTable();
        const auto row = std::find_if(table.begin(), table.end(),
                                      [&](const Setting& setting) { return setting.key == preference.name; });
        if (row == table.end()) {
            others << preference.name;
            continue;
        }
        QCOMPARE(preference.value(), row->defaultValue);
        QCOMPARE(preference.value().typeId(), row->defaultValue.typeId());
    }
    // What no control edits.
    QCOMPARE(others, (QStringList{u"showWhitespace"_s, u"autoIndent"_s, u"selectedTheme"_s, u"terminalShell"_s,
                                  u"terminalFontSize"_s}));
}

void SettingsTableTest::eachPreferenceTellsOfItsOwnChangeOnce()
{
    PreferencesService service;
    std::vector<std::unique_ptr<QSignalSpy>> spies;
    const std::vector<Preference> preferences = preferencesOf(service);
    for (const Preference& preference : preferences) {
        const QByteArray change = '2' + preference.name.toLatin1() + "Changed()";
        spies.push_back(std::make_unique<QSignalSpy>(&service, change.constData()));
        QVERIFY(spies.back()->isValid());
    }
    for (std::size_t changed = 0; changed < preferences.size(); ++changed) {
        // The same value once more is no change.
        const QVariant other = preferences[changed].change();
        QCOMPARE(preferences[changed].change(), other);
        QCOMPARE(preferences[changed].value(), other);
        for (std::size_t told = 0; told < spies.size(); ++told) {
            QCOMPARE(spies[told]->count(), told <= changed ? 1 : 0);
        }
    }
}

const kelm::test::Registered<SettingsTableTest> registered;

} // namespace settings_table_test

#include "settings_table_test.moc"
