#include "app/state/notices.h"
#include "platform/style/view/style.h"
#include "run/view/terminal_text_view.h"
#include "settings/settings_table.h"
#include "support/test_program.h"
#include "workbench/view/window_fixture.h"

namespace main_window_settings_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

/// Everything that a setting names: brackets, indents, tabs, and a line that is longer than the window is wide.
const QString content = u"struct View {\n    var one = [1, (2)]\n\tlet two = \"text\"\n    "_s +
                        u"// a long line goes on "_s.repeated(20) + u"\n}\n"_s;

/// A value that a setting does not start with.
QVariant otherValue(const Setting& setting)
{
    switch (setting.control) {
    case Setting::Control::toggle:
        return !setting.defaultValue.toBool();
    case Setting::Control::stepper:
        return int(setting.maximum);
    case Setting::Control::slider:
        return setting.maximum;
    case Setting::Control::picker:
        return setting.choices.last();
    }
    return {};
}

/// A window over a store that holds something already.
struct Window
{
    QTemporaryDir home;
    UserDefaults defaults{home.filePath(u"defaults.conf"_s)};
    CapturedLog log;
    FakeFilePanels panels;
    NotificationCenter notifications;
    AppState state;
    ThemeManager themes;
    FakeWorkspace workspace;
    AutoUpdateService updates{UpdaterController::makeForPlatform()};
    MainWindow window;

    explicit Window(const Setting* stored)
        : state({panels, filled(defaults, stored), Scheduler::system(), notifications, log,
                 ProcessRunner::sharedSystem(), ExecutableSearch(ProcessRunner::system())}),
          themes({defaults, log, home.path(), [](Appearance) {}}),
          window({state, themes, workspace, defaults, updates, [] {}})
    {
        window.show();
    }

    static UserDefaults& filled(UserDefaults& defaults, const Setting* stored)
    {
        if (stored != nullptr) {
            setSettingValue(defaults, *stored, otherValue(*stored));
        }
        return defaults;
    }
    TextView& text() { return window.editorArea().currentEditor()->textView(); }
    QImage picture() { return window.grab().toImage(); }
    /// Whether the text stands there in its colours.
    bool isColored()
    {
        const QRgb keyword = themes.currentTheme().keywordColor.toColor().rgb();
        const QImage image = text().viewport()->grab().toImage();
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (image.pixel(x, y) == keyword) {
                    return true;
                }
            }
        }
        return false;
    }
    bool hasTerminal()
    {
        const auto* terminal = window.findChild<TerminalTextView*>();
        return terminal != nullptr && !terminal->text().isEmpty();
    }
    /// What comes of typing behind the first brace.
    QString typed()
    {
        window.activateWindow();
        if (!QTest::qWaitForWindowActive(&window)) {
            qFatal("no window");
        }
        text().setFocus();
        text().setSelectedRange({13, 0});
        QTest::keyClicks(&text(), u"([{\"'"_s);
        QTest::keyClick(&text(), Qt::Key_Tab);
        QTest::keyClick(&text(), Qt::Key_Return);
        QTest::keyClicks(&text(), u"x"_s);
        return text().text();
    }
};

} // namespace

/// The settings of the settings window are stored and shown there, and nothing else knows them.
class MainWindowSettingsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void noSettingChangesTheWindow_data();
    void noSettingChangesTheWindow();
    void noSettingChangesWhatKeysDo_data() { noSettingChangesTheWindow_data(); }
    void noSettingChangesWhatKeysDo();
    void theFlagOfTheMinimapIsAnother();
    void theThemeHasAnEffect();
};

void MainWindowSettingsTest::initTestCase()
{
    style::installOn(*qApp);
    // A caret that comes and goes is no effect of a setting.
    QApplication::setCursorFlashTime(0);
}

void MainWindowSettingsTest::noSettingChangesTheWindow_data()
{
    QTest::addColumn<QString>("key");
    for (const Setting& setting : settingsTable()) {
        QTest::newRow(qPrintable(setting.key)) << setting.key;
    }
}

void MainWindowSettingsTest::noSettingChangesTheWindow()
{
    QFETCH(QString, key);
    const Setting& setting = settingOf(key);
    Window plain(nullptr);
    Window stored(&setting);
    // Neither of them is active, and so they look the same.
    QWidget other;
    other.show();
    other.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    QTRY_VERIFY(plain.picture() == stored.picture());
    QVERIFY(stored.state.documents().isEmpty());
    for (Window* window : {&plain, &stored}) {
        window->state.createNewTab();
        window->state.currentDocument()->setExplicitLanguage(Language(Language::swift));
        window->state.currentDocument()->setContent(content);
        window->state.setShowBottomPanel(true);
        QTRY_VERIFY(window->isColored());
        QTRY_VERIFY(window->hasTerminal());
    }
    QTRY_VERIFY(plain.picture() == stored.picture());
    // Nor does it when it changes, but that this is told.
    setSettingValue(plain.defaults, setting, otherValue(setting));
    QTRY_VERIFY(plain.state.notices().current() != nullptr);
    QCOMPARE(plain.state.notices().current()->text, u"Stored. This version does not use it yet."_s);
    plain.state.notices().putAway();
    QCoreApplication::processEvents();
    QTRY_VERIFY(plain.picture() == stored.picture());
}

void MainWindowSettingsTest::noSettingChangesWhatKeysDo()
{
    QFETCH(QString, key);
    Window window(&settingOf(key));
    window.state.createNewTab();
    window.state.currentDocument()->setContent(content);
    QCoreApplication::processEvents();
    QCOMPARE(window.typed(), QString(content).insert(13, u"([{\"'\t\nx"_s));
    // Closing asks nothing.
    QTest::keyClick(&window.text(), Qt::Key_W, Qt::ControlModifier);
    QVERIFY(QApplication::activeModalWidget() == nullptr);
    QVERIFY(window.state.documents().isEmpty());
}

void MainWindowSettingsTest::theFlagOfTheMinimapIsAnother()
{
    Window window(&settingOf(u"showMinimap"_s));
    QVERIFY(window.state.showMinimap());
    window.state.setShowMinimap(false);
    QCOMPARE(window.defaults.boolean(u"showMinimap"_s), std::optional(false));
    window.defaults.setBoolean(u"showMinimap"_s, true);
    QVERIFY(!window.state.showMinimap());
    window.state.setShowMinimap(true);
    window.state.setShowMinimap(false);
    QCOMPARE(window.defaults.boolean(u"showMinimap"_s), std::optional(true));
}

void MainWindowSettingsTest::theThemeHasAnEffect()
{
    Window plain(nullptr);
    Window other(nullptr);
    other.themes.setCurrentTheme(EditorTheme::githubLight());
    QTRY_VERIFY(plain.picture() != other.picture());
    QVERIFY(other.picture().pixelColor(700, 400) == EditorTheme::githubLight().backgroundColor.toColor());
}

const kelm::test::Registered<MainWindowSettingsTest> registered(kelm::test::Toolkit::widgets);

} // namespace main_window_settings_test

#include "main_window_settings_test.moc"
