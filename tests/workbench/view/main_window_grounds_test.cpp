#include "learning/view/learning_mode_side_panel.h"
#include "platform/view/divider.h"
#include "support/painted.h"
#include "support/test_program.h"
#include "workbench/status/view/status_bar_view.h"
#include "workbench/view/bottom_panel.h"
#include "workbench/view/controls.h"
#include "workbench/view/lesson_place.h"
#include "workbench/view/sidebar_view.h"
#include "workbench/view/tab_bar_view.h"
#include "workbench/view/tool_bar_view.h"
#include "workbench/view/window_fixture.h"

#include <QSplitter>

namespace main_window_grounds_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

/// A window in one of the themes, and in the appearance that goes with it.
struct Fixture : WindowFixture
{
    explicit Fixture(int theme = 0)
    {
        themes.setCurrentTheme(EditorTheme::allThemes().at(theme));
        QApplication::setPalette(style::palette(appearance()));
        turnQueue();
    }
    ~Fixture() { QApplication::setPalette(style::palette(Appearance::dark)); }

    Appearance appearance() const { return themes.currentTheme().isDark ? Appearance::dark : Appearance::light; }
    QColor ground() const { return themes.currentTheme().backgroundColor.toColor(); }
    QColor onGround(const Tint& tint) const { return over(ground(), tint.in(appearance())); }
    /// Where a part of the window stands in its content.
    QRect placeOf(const QWidget& part) const { return {part.mapTo(window.centralWidget(), QPoint()), part.size()}; }
};

bool isAsGiven(const QColor& seen, const QColor& given)
{
    return distance(seen, given) <= 1;
}

void addThemes()
{
    QTest::addColumn<int>("theme");
    for (int theme = 0; theme < EditorTheme::allThemes().size(); ++theme) {
        QTest::addRow("%s", qPrintable(EditorTheme::allThemes().at(theme).name)) << theme;
    }
}

} // namespace

class MainWindowGroundsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void theToolbarFadesAndEndsInALine_data() { addThemes(); }
    void theToolbarFadesAndEndsInALine();
    void theStatusBarHasAGroundAndALine_data() { addThemes(); }
    void theStatusBarHasAGroundAndALine();
    void theSidebarsTabsStandOnAFaintStrip_data() { addThemes(); }
    void theSidebarsTabsStandOnAFaintStrip();
    void theBottomTabsStandOnAFaintStrip_data() { addThemes(); }
    void theBottomTabsStandOnAFaintStrip();
    void rowsAndColumnsTouch();
    void theLessonStandsAtTheRightBehindALine();
};

void MainWindowGroundsTest::theToolbarFadesAndEndsInALine()
{
    QFETCH(int, theme);
    Fixture fixture(theme);
    const QImage image = fixture.window.toolbar().grab().toImage();
    const int bottom = image.height() - 1;
    // Where no button stands.
    for (const int x : {0, 35}) {
        QVERIFY(isAsGiven(image.pixelColor(x, 0), fixture.onGround(Tint::primary().at(0.02))));
        QVERIFY(isAsGiven(image.pixelColor(x, bottom / 2), fixture.onGround(Tint::primary().at(0.01))));
        QVERIFY(isAsGiven(image.pixelColor(x, bottom - 1), fixture.ground()));
        QVERIFY(isAsGiven(image.pixelColor(x, bottom), fixture.onGround(Tint::primary().at(0.15))));
    }
    QVERIFY(distance(image.pixelColor(0, 0), fixture.ground()) >= 2);
}

void MainWindowGroundsTest::theStatusBarHasAGroundAndALine()
{
    QFETCH(int, theme);
    Fixture fixture(theme);
    QWidget& bar = fixture.window.statusBarView();
    // Otherwise than the theme's own ground, so that it is seen how much of what lies behind shines through.
    QPalette behind = bar.palette();
    behind.setColor(QPalette::Window, QColor(100, 0, 0));
    bar.setPalette(behind);
    QColor ground = fixture.ground();
    ground.setAlphaF(0.95F);
    const QColor seen = over(QColor(100, 0, 0), ground);
    const QImage image = bar.grab().toImage();
    QCOMPARE(image.height(), 26);
    QVERIFY(isAsGiven(image.pixelColor(2, 0), over(seen, Tint::primary().at(0.05).on(bar))));
    QVERIFY(isAsGiven(image.pixelColor(2, 1), seen));
    QVERIFY(isAsGiven(image.pixelColor(2, 25), seen));
}

void MainWindowGroundsTest::theSidebarsTabsStandOnAFaintStrip()
{
    QFETCH(int, theme);
    Fixture fixture(theme);
    SidebarView& sidebar = *fixture.window.sidebar();
    const QImage image = sidebar.grab().toImage();
    const int beside = image.width() - 3;
    const QColor strip = fixture.onGround(Tint::secondary().at(0.05));
    QVERIFY(isAsGiven(image.pixelColor(beside, 0), strip));
    const auto dividers = sidebar.findChildren<Divider*>(Qt::FindDirectChildrenOnly);
    QCOMPARE(dividers.size(), 1);
    const int line = dividers.first()->y();
    QVERIFY(isAsGiven(image.pixelColor(beside, line - 1), strip));
    QVERIFY(isAsGiven(image.pixelColor(beside, line), fixture.onGround(Tint::primary().at(0.15))));
    QVERIFY(isAsGiven(image.pixelColor(beside, line + 1), fixture.ground()));
    // The selected tab, beside its symbol, and another one.
    const auto groundOf = [&](SidebarTab tab) {
        return image.pixelColor(sidebar.tabButton(tab).mapTo(&sidebar, QPoint(6, 15)));
    };
    QVERIFY(isAsGiven(groundOf(SidebarTab::files), over(strip, Tint::accent().at(0.2).in(fixture.appearance()))));
    QVERIFY(isAsGiven(groundOf(SidebarTab::search), strip));
}

void MainWindowGroundsTest::theBottomTabsStandOnAFaintStrip()
{
    QFETCH(int, theme);
    Fixture fixture(theme);
    fixture.state.setBottomPanelTab(BottomPanelTab::problems);
    fixture.state.setShowBottomPanel(true);
    fixture.turnQueue();
    BottomPanel& panel = *fixture.window.bottomPanel();
    const QImage image = panel.grab().toImage();
    const QColor strip = fixture.onGround(Tint::secondary().at(0.1));
    const int height = panel.closeButton().parentWidget()->height();
    for (const int y : {0, height - 1}) {
        QVERIFY(isAsGiven(image.pixelColor(image.width() / 2, y), strip));
    }
    QVERIFY(isAsGiven(image.pixelColor(image.width() / 2, height), fixture.ground()));
    const auto groundOf = [&](BottomPanelTab tab) {
        return image.pixelColor(panel.tabButton(tab).mapTo(&panel, QPoint(5, height / 2)));
    };
    QVERIFY(
        isAsGiven(groundOf(BottomPanelTab::problems), over(strip, Tint::accent().at(0.2).in(fixture.appearance()))));
    QVERIFY(isAsGiven(groundOf(BottomPanelTab::output), strip));
}

void MainWindowGroundsTest::rowsAndColumnsTouch()
{
    Fixture fixture;
    fixture.state.createNewTab();
    fixture.state.setShowBottomPanel(true);
    fixture.turnQueue();
    MainWindow& window = fixture.window;
    const QRect all = window.centralWidget()->rect();
    const QRect toolbar = fixture.placeOf(window.toolbar());
    const QRect status = fixture.placeOf(window.statusBarView());
    QCOMPARE(toolbar.topLeft(), QPoint(0, 0));
    QCOMPARE(toolbar.width(), all.width());
    QCOMPARE(status.bottomRight(), all.bottomRight());
    QCOMPARE(status.width(), all.width());
    const QRect sidebar = fixture.placeOf(*window.sidebar());
    QCOMPARE(sidebar.topLeft(), QPoint(0, toolbar.bottom() + 1));
    QCOMPARE(sidebar.bottom(), status.top() - 1);
    const QRect tabs = fixture.placeOf(window.tabBar());
    const QRect editor = fixture.placeOf(window.editorArea());
    const QRect panel = fixture.placeOf(*window.bottomPanel());
    // A line of one point stands behind the sidebar and before the panel.
    QCOMPARE(tabs.topLeft(), QPoint(sidebar.right() + 2, sidebar.top()));
    QCOMPARE(tabs.right(), all.right());
    QCOMPARE(editor.topLeft(), QPoint(tabs.left(), tabs.bottom() + 1));
    QCOMPARE(editor.right(), all.right());
    QCOMPARE(panel.topLeft(), QPoint(tabs.left(), editor.bottom() + 2));
    QCOMPARE(panel.bottomRight(), QPoint(all.right(), status.top() - 1));
    fixture.state.setShowSidebar(false);
    fixture.state.setShowBottomPanel(false);
    fixture.turnQueue();
    QCOMPARE(fixture.placeOf(window.tabBar()).left(), 0);
    QCOMPARE(fixture.placeOf(window.editorArea()).bottomRight(), QPoint(all.right(), status.top() - 1));
}

void MainWindowGroundsTest::theLessonStandsAtTheRightBehindALine()
{
    Fixture fixture;
    fixture.state.openSnippet(u"1"_s, Language::python, LessonInfo{.slug = u"intro"_s});
    fixture.turnQueue();
    auto& place = *fixture.window.findChild<LessonPlace*>();
    const QRect editor = fixture.placeOf(fixture.window.editorArea());
    const QRect panel = fixture.placeOf(*place.panel());
    const auto dividers = place.findChildren<Divider*>(Qt::FindDirectChildrenOnly);
    QCOMPARE(dividers.size(), 1);
    QCOMPARE(fixture.placeOf(*dividers.first()), QRect(editor.right() + 1, editor.top(), 1, editor.height()));
    QCOMPARE(panel, QRect(editor.right() + 2, editor.top(), 280, editor.height()));
    QCOMPARE(panel.right(), fixture.window.centralWidget()->rect().right());
}

const kelm::test::Registered<MainWindowGroundsTest> registered(kelm::test::Toolkit::widgets);

} // namespace main_window_grounds_test

#include "main_window_grounds_test.moc"
