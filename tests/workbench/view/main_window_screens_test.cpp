#include "platform/style/view/style.h"
#include "support/test_program.h"
#include "workbench/view/window_fixture.h"

#include <QPixmapCache>
#include <QProcess>
#include <QScreen>
#include <QWindow>

namespace main_window_screens_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

/// Two screens side by side, of one and of two pixels to a point.
constexpr auto twoScreens = R"({"synchronousWindowSystemEvents": false, "windowFrameMargins": true, "screens": [
    {"name": "one", "x": 0, "y": 0, "width": 1600, "height": 1200, "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1},
    {"name": "two", "x": 1600, "y": 0, "width": 1600, "height": 1200, "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 2}
]})";

QImage pictureOf(WindowFixture& fixture)
{
    fixture.turnQueue();
    return fixture.window.grab().toImage();
}

} // namespace

/// A window that goes to a screen of another scale. It takes a program of its own, since this one has one screen.
class MainWindowScreensTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void inAProgramWithTwoScreens();
    void allIsDrawnAnew();
};

void MainWindowScreensTest::inAProgramWithTwoScreens()
{
    if (QGuiApplication::screens().size() > 1) {
        return;
    }
    QTemporaryDir folder;
    QFile screens(folder.filePath(u"screens.json"_s));
    QVERIFY(screens.open(QIODevice::WriteOnly) && screens.write(twoScreens) > 0);
    screens.close();
    QProcess program;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen:configfile="_s + screens.fileName());
    environment.remove(u"QT_SCALE_FACTOR"_s);
    program.setProcessEnvironment(environment);
    program.setProcessChannelMode(QProcess::ForwardedChannels);
    program.start(QCoreApplication::applicationFilePath(), {u"main_window_screens_test"_s, u"allIsDrawnAnew"_s});
    QVERIFY(program.waitForFinished(60000));
    QCOMPARE(program.exitCode(), 0);
}

void MainWindowScreensTest::allIsDrawnAnew()
{
    if (QGuiApplication::screens().size() < 2) {
        return;
    }
    WindowFixture fixture;
    // A caret that blinks is in one picture and not in the next.
    QApplication::setCursorFlashTime(0);
    fixture.window.resize(1000, 700);
    fixture.state.setBottomPanelTab(BottomPanelTab::problems);
    fixture.state.setShowBottomPanel(true);
    fixture.openSnippet(u"func answer() -> Int {\n    return 42 // 한글\n}\n"_s, Language::swift);
    QCOMPARE(fixture.window.devicePixelRatio(), 1.0);
    QCOMPARE(pictureOf(fixture).size(), QSize(1000, 700));

    fixture.window.windowHandle()->setScreen(QGuiApplication::screens().at(1));
    fixture.window.move(1700, 100);
    QTRY_COMPARE(fixture.window.devicePixelRatio(), 2.0);
    QTRY_COMPARE(pictureOf(fixture).size(), QSize(2000, 1400));
    const QImage moved = pictureOf(fixture);
    // Nothing that was drawn for the other screen is shown: all of it made again is the same.
    QPixmapCache::clear();
    const EditorTheme theme = fixture.themes.currentTheme();
    fixture.themes.setCurrentTheme(EditorTheme::allThemes().back());
    pictureOf(fixture);
    fixture.themes.setCurrentTheme(theme);
    QTRY_VERIFY(pictureOf(fixture) == moved);
    // And it has pixels of its own between those of the other.
    const QImage coarse = moved.scaled(1000, 700, Qt::IgnoreAspectRatio, Qt::FastTransformation)
                              .scaled(2000, 1400, Qt::IgnoreAspectRatio, Qt::FastTransformation);
    QVERIFY(coarse.convertToFormat(QImage::Format_RGB32) != moved.convertToFormat(QImage::Format_RGB32));
}

const kelm::test::Registered<MainWindowScreensTest> registered(kelm::test::Toolkit::widgets);

} // namespace main_window_screens_test

#include "main_window_screens_test.moc"
