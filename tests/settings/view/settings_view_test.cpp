#include "platform/style/view/icons.h"
#include "platform/view/plain_button.h"
#include "settings/view/keybindings_view.h"
#include "settings/view/setting_control.h"
#include "settings/view/settings_form.h"
#include "settings/view/settings_view.h"
#include "settings/view/theme_preview.h"
#include "settings/view/theme_settings_view.h"
#include "support/captured_log.h"
#include "support/test_program.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QLayout>
#include <QListWidget>
#include <QSignalSpy>
#include <QSlider>
#include <QTemporaryDir>
#include <QtTest>

namespace settings_view_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Fixture
{
    QTemporaryDir home;
    QString file = home.filePath(u"store.conf"_s);
    UserDefaults store{file};
    CapturedLog log;
    QList<Appearance> appearances;
    ThemeManager themes{{store, log, home.path(), [this](Appearance appearance) { appearances << appearance; }}};
    SettingsView view{store, themes};

    Fixture()
    {
        view.show();
        if (!QTest::qWaitForWindowActive(&view)) {
            qFatal("no window");
        }
        appearances.clear();
    }

    SettingControl& control(const QString& key)
    {
        for (auto* control : view.findChildren<SettingControl*>()) {
            if (control->setting().key == key) {
                return *control;
            }
        }
        qFatal("no control");
    }
    template <typename Part>
    Part& part(const QString& key)
    {
        return *control(key).findChild<Part*>();
    }
    QString shownText(const QString& key)
    {
        // The label's name is what it shows.
        for (auto* widget : control(key).findChildren<QWidget*>()) {
            if (widget->accessibleName().contains(u": ")) {
                return widget->accessibleName();
            }
        }
        return {};
    }
    void click(const QString& key, const QString& name)
    {
        for (auto* button : control(key).findChildren<PlainButton*>()) {
            if (button->accessibleName() == name) {
                QTest::mouseClick(button, Qt::LeftButton);
            }
        }
    }
    PlainButton& button(const QString& text)
    {
        for (auto* button : view.findChildren<PlainButton*>()) {
            if (button->text() == text) {
                return *button;
            }
        }
        qFatal("no button");
    }
    ThemeSettingsView& themeView() { return *view.findChild<ThemeSettingsView*>(); }
};

} // namespace

class SettingsViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void theTabsStandInTheirOrder();
    void everyPageHasRoomForItsRows();
    void openingWritesNothing();
    void aFreshStoreShowsTheDefaults();
    void aToggleIsWrittenAtOnce();
    void theDelayIsHiddenWithoutAutoSaveAndKeepsItsValue();
    void steppersStopAtTheirBounds_data();
    void steppersStopAtTheirBounds();
    void slidersGiveNoFraction();
    void theFontPickerShowsEachFamilyInItself();
    void aChangeOfTheStoreIsShown();
    void whatIsShownIsNotWritten();
    void aDamagedFileIsLeftUntilAControlChanges();
    void sectionsStandInTheirOrder();
    void controlsStandInTheirSections();
    void eachControlWritesItsKeyAlone_data();
    void eachControlWritesItsKeyAlone();
    void selectingAThemeChangesThePreviewAlone();
    void theKeyboardAloneSelectsNoTheme();
    void applyingSetsSavesAndApplies();
    void importAndLearnMoreDoNothing();
    void theListOfKeysIsAsItStands();
    void escapeClosesTheWindow();
};

void SettingsViewTest::theTabsStandInTheirOrder()
{
    Fixture fixture;
    QStringList labels;
    QStringList symbols;
    for (int tab = 0; tab < SettingsView::tabCount; ++tab) {
        PlainButton& button = fixture.view.tabButton(static_cast<SettingsView::Tab>(tab));
        labels.append(button.text());
        symbols.append(button.look().symbol);
        QVERIFY(icons::has(symbols.last()));
        QTest::mouseClick(&button, Qt::LeftButton);
        QVERIFY(button.isChecked());
        QVERIFY(fixture.view.page(static_cast<SettingsView::Tab>(tab))->isVisible());
    }
    QCOMPARE(labels, (QStringList{u"General"_s, u"Editor"_s, u"Themes"_s, u"Keybindings"_s, u"Extensions"_s}));
    QCOMPARE(symbols,
             (QStringList{u"gear"_s, u"doc.text"_s, u"paintpalette"_s, u"keyboard"_s, u"puzzlepiece.extension"_s}));
}

void SettingsViewTest::everyPageHasRoomForItsRows()
{
    Fixture fixture;
    for (const SettingsView::Tab tab : {SettingsView::general, SettingsView::editor, SettingsView::themes,
                                        SettingsView::keybindings, SettingsView::extensions}) {
        fixture.view.select(tab);
        QWidget& page = *fixture.view.page(tab);
        QVERIFY(page.height() >= page.minimumSizeHint().height());
        for (auto* box : page.findChildren<QComboBox*>()) {
            QCOMPARE(box->height(), box->sizeHint().height());
        }
        for (auto* button : page.findChildren<PlainButton*>()) {
            QVERIFY(!button->isVisible() || button->height() >= button->sizeHint().height());
        }
    }
}

void SettingsViewTest::openingWritesNothing()
{
    Fixture fixture;
    for (int tab = 0; tab < SettingsView::tabCount; ++tab) {
        fixture.view.select(static_cast<SettingsView::Tab>(tab));
    }
    fixture.store.synchronize();
    QVERIFY(!QFile::exists(fixture.file));
}

void SettingsViewTest::aFreshStoreShowsTheDefaults()
{
    Fixture fixture;
    QCOMPARE(fixture.shownText(u"fontSize"_s), u"Font size: 13"_s);
    QCOMPARE(fixture.shownText(u"lineHeight"_s), u"Line height: 1.4"_s);
    QCOMPARE(fixture.shownText(u"tabSize"_s), u"Tab size: 4"_s);
    QCOMPARE(fixture.part<QComboBox>(u"fontFamily"_s).currentText(), u"SF Mono"_s);
    QVERIFY(fixture.part<QCheckBox>(u"insertSpaces"_s).isChecked());
    QVERIFY(!fixture.part<QCheckBox>(u"wordWrap"_s).isChecked());
}

void SettingsViewTest::aToggleIsWrittenAtOnce()
{
    Fixture fixture;
    QCheckBox& box = fixture.part<QCheckBox>(u"showWelcome"_s);
    QCOMPARE(box.text(), u"Show welcome screen on startup"_s);
    QTest::mouseClick(&box, Qt::LeftButton, {}, QPoint(8, box.height() / 2));
    QCOMPARE(fixture.store.boolean(u"showWelcome"_s), std::optional(false));
    QVERIFY(!fixture.store.contains(u"reopenFiles"_s));
}

void SettingsViewTest::theDelayIsHiddenWithoutAutoSaveAndKeepsItsValue()
{
    Fixture fixture;
    fixture.click(u"autoSaveDelay"_s, u"More"_s);
    QCOMPARE(fixture.shownText(u"autoSaveDelay"_s), u"Auto save delay: 6 seconds"_s);
    QCheckBox& box = fixture.part<QCheckBox>(u"autoSave"_s);
    QTest::mouseClick(&box, Qt::LeftButton, {}, QPoint(8, box.height() / 2));
    QVERIFY(!fixture.control(u"autoSaveDelay"_s).isVisible());
    QCOMPARE(fixture.store.integer(u"autoSaveDelay"_s), std::optional<qint64>(6));
    QTest::mouseClick(&box, Qt::LeftButton, {}, QPoint(8, box.height() / 2));
    QVERIFY(fixture.control(u"autoSaveDelay"_s).isVisible());
    QCOMPARE(fixture.shownText(u"autoSaveDelay"_s), u"Auto save delay: 6 seconds"_s);
}

void SettingsViewTest::steppersStopAtTheirBounds_data()
{
    QTest::addColumn<qint64>("least");
    QTest::addColumn<qint64>("most");
    QTest::addColumn<SettingsView::Tab>("tab");
    QTest::newRow("autoSaveDelay") << qint64(1) << qint64(60) << SettingsView::general;
    QTest::newRow("tabSize") << qint64(2) << qint64(8) << SettingsView::editor;
}

void SettingsViewTest::steppersStopAtTheirBounds()
{
    QFETCH(qint64, least);
    QFETCH(qint64, most);
    QFETCH(SettingsView::Tab, tab);
    const QString key = QString::fromLatin1(QTest::currentDataTag());
    Fixture fixture;
    fixture.view.select(tab);
    for (int press = 0; press < 70; ++press) {
        fixture.click(key, u"More"_s);
    }
    QCOMPARE(fixture.store.integer(key), std::optional(most));
    for (int press = 0; press < 70; ++press) {
        fixture.click(key, u"Less"_s);
    }
    QCOMPARE(fixture.store.integer(key), std::optional(least));
}

void SettingsViewTest::slidersGiveNoFraction()
{
    Fixture fixture;
    fixture.view.select(SettingsView::editor);
    QSlider& size = fixture.part<QSlider>(u"fontSize"_s);
    size.setFocus();
    QTest::keyClick(&size, Qt::Key_Right);
    QCOMPARE(fixture.store.real(u"fontSize"_s), std::optional(14.0));
    QTest::keyClick(&size, Qt::Key_End);
    QCOMPARE(fixture.store.real(u"fontSize"_s), std::optional(24.0));
    QTest::keyClick(&size, Qt::Key_Home);
    QCOMPARE(fixture.store.real(u"fontSize"_s), std::optional(10.0));
    QSlider& height = fixture.part<QSlider>(u"lineHeight"_s);
    height.setFocus();
    QTest::keyClick(&height, Qt::Key_Home);
    QTest::keyClick(&height, Qt::Key_Right);
    QTest::keyClick(&height, Qt::Key_Right);
    QTest::keyClick(&height, Qt::Key_Right);
    QCOMPARE(fixture.store.real(u"lineHeight"_s), std::optional(1.3));
    QCOMPARE(fixture.shownText(u"lineHeight"_s), u"Line height: 1.3"_s);
}

void SettingsViewTest::theFontPickerShowsEachFamilyInItself()
{
    Fixture fixture;
    QComboBox& box = fixture.part<QComboBox>(u"fontFamily"_s);
    QStringList families;
    for (int index = 0; index < box.count(); ++index) {
        families.append(box.itemText(index));
        const QFont font = box.itemData(index, Qt::FontRole).value<QFont>();
        QCOMPARE(font.family(), box.itemText(index));
        QCOMPARE(font.pixelSize(), 13);
    }
    QCOMPARE(families, (QStringList{u"SF Mono"_s, u"Menlo"_s, u"Monaco"_s, u"Courier New"_s, u"JetBrains Mono"_s,
                                    u"Fira Code"_s}));
    QCOMPARE(EditorSettingsView::fontFamilies(), families);
    fixture.view.select(SettingsView::editor);
    box.setFocus();
    // To choose what stands there already changes nothing.
    Q_EMIT box.activated(box.currentIndex());
    QVERIFY(!fixture.store.contains(u"fontFamily"_s));
    QTest::keyClick(&box, Qt::Key_Down);
    QCOMPARE(fixture.store.string(u"fontFamily"_s), std::optional(u"Menlo"_s));
}

void SettingsViewTest::aChangeOfTheStoreIsShown()
{
    Fixture fixture;
    fixture.store.setReal(u"fontSize"_s, 20);
    fixture.store.setBoolean(u"wordWrap"_s, true);
    fixture.store.setString(u"fontFamily"_s, u"Monaco"_s);
    QCOMPARE(fixture.shownText(u"fontSize"_s), u"Font size: 20"_s);
    QCOMPARE(fixture.part<QSlider>(u"fontSize"_s).value(), 10);
    QVERIFY(fixture.part<QCheckBox>(u"wordWrap"_s).isChecked());
    QCOMPARE(fixture.part<QComboBox>(u"fontFamily"_s).currentText(), u"Monaco"_s);
}

void SettingsViewTest::whatIsShownIsNotWritten()
{
    Fixture fixture;
    // Of another type, out of bounds, between two steps, and of no choice.
    fixture.store.setBoolean(u"wordWrap"_s, true);
    fixture.store.setString(u"wordWrap"_s, u"perhaps"_s);
    fixture.store.setInteger(u"tabSize"_s, 100);
    fixture.store.setReal(u"fontSize"_s, 13.6);
    fixture.store.setString(u"fontFamily"_s, u"Another"_s);
    QVERIFY(!fixture.part<QCheckBox>(u"wordWrap"_s).isChecked());
    QCOMPARE(fixture.shownText(u"tabSize"_s), u"Tab size: 8"_s);
    QCOMPARE(fixture.part<QSlider>(u"fontSize"_s).value(), 4);
    QCOMPARE(fixture.store.string(u"wordWrap"_s), std::optional(u"perhaps"_s));
    QCOMPARE(fixture.store.integer(u"tabSize"_s), std::optional<qint64>(100));
    QCOMPARE(fixture.store.real(u"fontSize"_s), std::optional(13.6));
    QCOMPARE(fixture.store.string(u"fontFamily"_s), std::optional(u"Another"_s));
}

void SettingsViewTest::aDamagedFileIsLeftUntilAControlChanges()
{
    const QTemporaryDir home;
    const QString path = home.filePath(u"store.conf"_s);
    const QByteArray damage = QByteArrayLiteral("\0\xff\xfe[General\nfontSize=@Invalid(\ntabSize");
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(damage);
    file.close();
    UserDefaults store(path);
    CapturedLog log;
    ThemeManager themes({store, log, home.path(), [](Appearance) {}});
    SettingsView view(store, themes);
    view.show();
    store.synchronize();
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), damage);
    file.close();
    store.setBoolean(u"wordWrap"_s, true);
    store.synchronize();
    const UserDefaults again(path);
    QCOMPARE(again.boolean(u"wordWrap"_s), std::optional(true));
}

void SettingsViewTest::sectionsStandInTheirOrder()
{
    Fixture fixture;
    const auto headings = [&fixture](SettingsView::Tab tab) {
        QStringList titles;
        for (auto* widget : fixture.view.page(tab)->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
            if (qobject_cast<SettingControl*>(widget) == nullptr && !widget->accessibleName().isEmpty()) {
                titles.append(widget->accessibleName());
            }
        }
        return titles;
    };
    QCOMPARE(headings(SettingsView::general), (QStringList{u"Startup"_s, u"Saving"_s, u"Closing"_s}));
    QCOMPARE(headings(SettingsView::editor), (QStringList{u"Font"_s, u"Indentation"_s, u"Display"_s, u"Editing"_s}));
}

void SettingsViewTest::controlsStandInTheirSections()
{
    Fixture fixture;
    // Headings and the keys of controls, from top to bottom.
    const auto rows = [&fixture](SettingsView::Tab tab) {
        QStringList shown;
        const QLayout& column = *fixture.view.page(tab)->layout();
        for (int at = 0; at < column.count(); ++at) {
            QWidget* const widget = column.itemAt(at)->widget();
            if (const auto* control = qobject_cast<SettingControl*>(widget)) {
                shown << control->setting().key;
            } else if (widget != nullptr) {
                shown << u"# "_s + widget->accessibleName();
            }
        }
        return shown.join(u' ');
    };
    QCOMPARE(rows(SettingsView::general),
             u"# Startup showWelcome reopenFiles # Saving autoSave autoSaveDelay # Closing confirmClose"_s);
    QCOMPARE(rows(SettingsView::editor),
             u"# Font fontFamily fontSize lineHeight # Indentation tabSize insertSpaces # Display showLineNumbers "
             u"showMinimap highlightCurrentLine showIndentGuides wordWrap # Editing matchBrackets autoCloseBrackets"_s);
}

void SettingsViewTest::eachControlWritesItsKeyAlone_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVariant>("written");
    const auto row = [](const char* key, const QString& text, const QVariant& written) {
        QTest::newRow(key) << text << written;
    };
    row("autoSave", u"Auto save files"_s, false);
    row("autoSaveDelay", u"Auto save delay: 6 seconds"_s, 6);
    row("showWelcome", u"Show welcome screen on startup"_s, false);
    row("reopenFiles", u"Reopen files from previous session"_s, false);
    row("confirmClose", u"Confirm before closing modified files"_s, false);
    row("fontFamily", u"Font family"_s, u"Menlo"_s);
    row("fontSize", u"Font size: 14"_s, 14.0);
    row("lineHeight", u"Line height: 1.5"_s, 1.5);
    row("tabSize", u"Tab size: 5"_s, 5);
    row("insertSpaces", u"Insert spaces instead of tabs"_s, false);
    row("showLineNumbers", u"Show line numbers"_s, false);
    row("showMinimap", u"Show minimap"_s, false);
    row("highlightCurrentLine", u"Highlight current line"_s, false);
    row("showIndentGuides", u"Show indent guides"_s, false);
    row("wordWrap", u"Word wrap"_s, true);
    row("matchBrackets", u"Match brackets"_s, false);
    row("autoCloseBrackets", u"Auto-close brackets"_s, false);
}

void SettingsViewTest::eachControlWritesItsKeyAlone()
{
    QFETCH(QString, text);
    QFETCH(QVariant, written);
    const QString key = QString::fromLatin1(QTest::currentDataTag());
    Fixture fixture;
    SettingControl& control = fixture.control(key);
    fixture.view.select(control.setting().tab == u"General"_s ? SettingsView::general : SettingsView::editor);
    QSignalSpy changes(&fixture.store, &UserDefaults::valueChanged);
    QString shown;
    if (auto* box = control.findChild<QCheckBox*>()) {
        QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(8, box->height() / 2));
        shown = box->text();
        QCOMPARE(box->isChecked(), written.toBool());
    } else if (auto* slider = control.findChild<QSlider*>()) {
        QTest::keyClick(slider, Qt::Key_Right);
        shown = fixture.shownText(key);
    } else if (auto* picker = control.findChild<QComboBox*>()) {
        QTest::keyClick(picker, Qt::Key_Down);
        shown = picker->accessibleName();
        QCOMPARE(picker->currentText(), written.toString());
    } else {
        fixture.click(key, u"More"_s);
        shown = fixture.shownText(key);
    }
    QCOMPARE(shown, text);
    QCOMPARE(changes.count(), 1);
    QCOMPARE(settingValue(fixture.store, control.setting()), written);
    for (const Setting& setting : settingsTable()) {
        QCOMPARE(fixture.store.contains(setting.key), setting.key == key);
    }
}

void SettingsViewTest::selectingAThemeChangesThePreviewAlone()
{
    Fixture fixture;
    fixture.view.select(SettingsView::themes);
    ThemeSettingsView& themes = fixture.themeView();
    const QString before = fixture.themes.currentTheme().name;
    QCOMPARE(themes.preview().theme().name, before);
    QCOMPARE(themes.list().count(), fixture.themes.availableThemes().size());
    QTest::mouseClick(themes.list().viewport(), Qt::LeftButton, {},
                      themes.list().visualItemRect(themes.list().item(4)).center());
    QCOMPARE(themes.preview().theme().name, fixture.themes.availableThemes().at(4).name);
    QCOMPARE(fixture.themes.currentTheme().name, before);
    QVERIFY(!fixture.store.contains(u"selectedTheme"_s));
    QVERIFY(fixture.appearances.isEmpty());
}

void SettingsViewTest::theKeyboardAloneSelectsNoTheme()
{
    Fixture fixture;
    fixture.view.select(SettingsView::themes);
    ThemeSettingsView& themes = fixture.themeView();
    themes.window()->activateWindow();
    themes.list().setFocus(Qt::TabFocusReason);
    QCOMPARE(themes.selectedTheme(), std::nullopt);
    QCOMPARE(themes.preview().theme().name, fixture.themes.currentTheme().name);
    themes.list().setCurrentRow(4);
    QCOMPARE(themes.preview().theme().name, u"GitHub Light"_s);
    // What is selected no more is not previewed any more.
    QTest::mouseClick(themes.list().viewport(), Qt::LeftButton, Qt::ControlModifier,
                      themes.list().visualItemRect(themes.list().item(4)).center());
    QCOMPARE(themes.selectedTheme(), std::nullopt);
    QCOMPARE(themes.preview().theme().name, fixture.themes.currentTheme().name);
}

void SettingsViewTest::applyingSetsSavesAndApplies()
{
    Fixture fixture;
    fixture.view.select(SettingsView::themes);
    // Without a selection there is nothing to apply.
    QTest::mouseClick(&fixture.button(u"Apply Theme"_s), Qt::LeftButton);
    QVERIFY(fixture.appearances.isEmpty());
    ThemeSettingsView& themes = fixture.themeView();
    themes.list().setCurrentRow(4);
    QTest::mouseClick(&fixture.button(u"Apply Theme"_s), Qt::LeftButton);
    QCOMPARE(fixture.themes.currentTheme().name, u"GitHub Light"_s);
    QCOMPARE(fixture.store.string(u"selectedTheme"_s), std::optional(u"GitHub Light"_s));
    QTRY_COMPARE(fixture.appearances, QList<Appearance>{Appearance::light});
    // It stays selected.
    QCOMPARE(themes.list().currentRow(), 4);
    QCOMPARE(themes.selectedTheme()->name, u"GitHub Light"_s);
    QCOMPARE(themes.preview().theme().name, u"GitHub Light"_s);
}

void SettingsViewTest::importAndLearnMoreDoNothing()
{
    Fixture fixture;
    fixture.view.select(SettingsView::themes);
    QTest::mouseClick(&fixture.button(u"Import Theme..."_s), Qt::LeftButton);
    fixture.view.select(SettingsView::extensions);
    QTest::mouseClick(&fixture.button(u"Learn More"_s), Qt::LeftButton);
    fixture.store.synchronize();
    QVERIFY(!QFile::exists(fixture.file));
    QCOMPARE(fixture.themes.availableThemes().size(), 6);
}

void SettingsViewTest::theListOfKeysIsAsItStands()
{
    QStringList lines;
    for (const KeybindingSection& section : keybindingSections()) {
        for (const KeybindingRow& row : section.rows) {
            lines.append(section.title + u'|' + row.action + u'|' + row.shortcut);
        }
    }
    QCOMPARE(
        lines,
        (QStringList{u"File|New File|⌘N"_s, u"File|Open File|⌘O"_s, u"File|Save|⌘S"_s, u"File|Save As|⇧⌘S"_s,
                     u"Edit|Undo|⌘Z"_s, u"Edit|Redo|⇧⌘Z"_s, u"Edit|Find|⌘F"_s, u"Edit|Find and Replace|⌘H"_s,
                     u"Edit|Toggle Comment|⌘/"_s, u"View|Toggle Sidebar|⌘B"_s, u"View|Toggle Terminal|⌃`"_s,
                     u"View|Toggle Minimap|⇧⌘M"_s, u"View|Quick Open|⌘P"_s, u"View|Go to Line|⌘G"_s,
                     u"Run|Run File|⌘R"_s, u"Run|Stop|⌘."_s, u"Format|Format JSON|⇧⌘J"_s, u"Format|Format XML|⇧⌘X"_s}));
}

void SettingsViewTest::escapeClosesTheWindow()
{
    Fixture fixture;
    QTest::keyClick(&fixture.view, Qt::Key_Escape);
    QVERIFY(!fixture.view.isVisible());
}

const kelm::test::Registered<SettingsViewTest> registered(kelm::test::Toolkit::widgets);

} // namespace settings_view_test

#include "settings_view_test.moc"
