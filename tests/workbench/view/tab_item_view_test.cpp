#include "support/painted.h"
#include "support/test_program.h"
#include "workbench/view/controls.h"
#include "workbench/view/tab_bar_view.h"
#include "workbench/view/tab_item_view.h"
#include "workbench/view/window_fixture.h"

#include <QEnterEvent>
#include <QKeyEvent>

namespace tab_item_view_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

QColor system(SystemColor color, double opacity)
{
    QColor shade = systemColor(color, Appearance::dark);
    shade.setAlphaF(shade.alphaF() * static_cast<float>(opacity));
    return shade;
}

/// A window with two files of a language with a colour, the second being current.
struct Fixture : WindowFixture
{
    TabBarView& strip = window.tabBar();

    Fixture()
    {
        state.openFile(write(u"a.swift"_s, "a"));
        state.openFile(write(u"b.swift"_s, "b"));
        settle();
    }

    TabItemView& tab(qsizetype index) { return *strip.tabs().at(index); }
    /// Lets the animations come to their ends.
    void settle()
    {
        turnQueue();
        for (const TabItemView* tab : strip.tabs()) {
            QTRY_COMPARE(tab->hoverAnimation().state(), QAbstractAnimation::Stopped);
            QTRY_COMPARE(tab->selectionAnimation().state(), QAbstractAnimation::Stopped);
        }
    }
    void enter(TabItemView& tab)
    {
        QEnterEvent event({5, 5}, {5, 5}, {5, 5});
        QCoreApplication::sendEvent(&tab, &event);
    }
    void leave(TabItemView& tab)
    {
        QEvent event(QEvent::Leave);
        QCoreApplication::sendEvent(&tab, &event);
    }
    /// A pixel of the strip, at a place in a tab.
    QColor colorAt(TabItemView& tab, QPoint place)
    {
        return strip.grab().toImage().pixelColor(tab.mapTo(&strip, place));
    }

    const EditorTheme& theme() const { return themes.currentTheme(); }
    QColor stripGround() const
    {
        QColor ground = theme().backgroundColor.toColor();
        ground.setAlphaF(0.95F);
        return over(strip.palette().color(QPalette::Window), ground);
    }
    QColor selectedGround() const { return over(stripGround(), theme().currentLineColor.toColor()); }
};

/// A place in a tab between its edge and its chip.
constexpr QPoint besideChip(8, 16);
/// A place in the chip beside its symbol.
constexpr QPoint inChip(14, 16);

} // namespace

class TabItemViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void theStripHasAGroundAndALine_data();
    void theStripHasAGroundAndALine();
    void theSelectedTabHasAGroundAndAnEdge();
    void aHoveredTabHasAFaintGround();
    void aHoveredSelectedTabHasItsOwnGroundAlone();
    void theChipIsStrongerOnTheSelectedTab();
    void theChipIsASquareOfTwenty();
    void theTitleOfTheSelectedTabStandsOut();
    void theDotIsSixWide();
    void theCloseButtonStandsOutUnderTheMouse();
    void theNewTabButtonHasAFaintGround();
    void hoverAndSelectionEaseInAndOut();
    void eachChangeRunsItsAnimation();
    void aKeyThatIsHeldFromElsewhereDoesNothing();
    void aHeldKeyClosesOneTab();
};

void TabItemViewTest::theStripHasAGroundAndALine_data()
{
    QTest::addColumn<int>("theme");
    for (int theme = 0; theme < EditorTheme::allThemes().size(); ++theme) {
        QTest::addRow("%s", qPrintable(EditorTheme::allThemes().at(theme).name)) << theme;
    }
}

void TabItemViewTest::theStripHasAGroundAndALine()
{
    QFETCH(int, theme);
    Fixture fixture;
    fixture.themes.setCurrentTheme(EditorTheme::allThemes().at(theme));
    // Otherwise than the theme's own ground, so that it is seen how much of what lies behind shines through.
    QPalette behind = fixture.strip.palette();
    behind.setColor(QPalette::Window, QColor(100, 0, 0));
    fixture.strip.setPalette(behind);
    const QImage image = fixture.strip.grab().toImage();
    QCOMPARE(image.height(), 40);
    const int right = image.width() - 5;
    QVERIFY(distance(image.pixelColor(right, 1), fixture.stripGround()) <= 1);
    QVERIFY(distance(image.pixelColor(right, 38), fixture.stripGround()) <= 1);
    const QColor line = over(fixture.stripGround(), system(SystemColor::primaryLabel, 0.15));
    for (const int x : {0, image.width() / 2, image.width() - 1}) {
        QVERIFY(distance(image.pixelColor(x, 39), line) <= 1);
    }
}

void TabItemViewTest::theSelectedTabHasAGroundAndAnEdge()
{
    Fixture fixture;
    TabItemView& selected = fixture.tab(1);
    QVERIFY(distance(fixture.selectedGround(), fixture.stripGround()) > 3);
    QVERIFY(distance(fixture.colorAt(selected, besideChip), fixture.selectedGround()) <= 1);
    const int middle = selected.width() / 2;
    const QColor edge = over(fixture.selectedGround(), system(SystemColor::primaryLabel, 0.2));
    QVERIFY(distance(fixture.colorAt(selected, {middle, 31}), edge) <= 1);
    QVERIFY(distance(fixture.colorAt(selected, {middle, 30}), fixture.selectedGround()) <= 1);
    QVERIFY(distance(fixture.colorAt(fixture.tab(0), besideChip), fixture.stripGround()) <= 1);
    QVERIFY(distance(fixture.colorAt(fixture.tab(0), {middle, 31}), fixture.stripGround()) <= 1);
}

void TabItemViewTest::aHoveredTabHasAFaintGround()
{
    Fixture fixture;
    TabItemView& idle = fixture.tab(0);
    fixture.enter(idle);
    fixture.settle();
    const QColor hovered = over(fixture.stripGround(), system(SystemColor::primaryLabel, 0.05));
    QVERIFY(distance(fixture.colorAt(idle, besideChip), hovered) <= 1);
    fixture.leave(idle);
    fixture.settle();
    QVERIFY(distance(fixture.colorAt(idle, besideChip), fixture.stripGround()) <= 1);
}

void TabItemViewTest::aHoveredSelectedTabHasItsOwnGroundAlone()
{
    Fixture fixture;
    fixture.enter(fixture.tab(1));
    fixture.settle();
    QVERIFY(distance(fixture.colorAt(fixture.tab(1), besideChip), fixture.selectedGround()) <= 1);
}

void TabItemViewTest::theChipIsStrongerOnTheSelectedTab()
{
    Fixture fixture;
    const QColor idle = over(fixture.stripGround(), system(SystemColor::orange, 0.1));
    QVERIFY(distance(fixture.colorAt(fixture.tab(0), inChip), idle) <= 1);
    const QColor selected = over(fixture.selectedGround(), system(SystemColor::orange, 0.2));
    QVERIFY(distance(fixture.colorAt(fixture.tab(1), inChip), selected) <= 1);
    fixture.state.setCurrentDocumentIndex(0);
    fixture.settle();
    QVERIFY(distance(fixture.colorAt(fixture.tab(0), inChip), selected) <= 1);
    QVERIFY(distance(fixture.colorAt(fixture.tab(1), inChip), idle) <= 1);
}

void TabItemViewTest::theChipIsASquareOfTwenty()
{
    Fixture fixture;
    TabItemView& selected = fixture.tab(1);
    const QColor ground = fixture.selectedGround();
    const QColor chip = over(ground, system(SystemColor::orange, 0.2));
    for (const QPoint place : {QPoint(12, 16), QPoint(31, 16), QPoint(22, 6), QPoint(22, 25)}) {
        QVERIFY(distance(fixture.colorAt(selected, place), chip) <= 1);
    }
    for (const QPoint place : {QPoint(11, 16), QPoint(32, 16), QPoint(22, 5), QPoint(22, 26)}) {
        QVERIFY(distance(fixture.colorAt(selected, place), ground) <= 1);
    }
    // Its corners are round.
    QVERIFY(distance(fixture.colorAt(selected, {12, 6}), chip) > 1);
}

void TabItemViewTest::theTitleOfTheSelectedTabStandsOut()
{
    Fixture fixture;
    const auto isTitled = [&](TabItemView& tab, QFont::Weight weight, SystemColor color, const QColor& ground) {
        const QRect place(40, 1, tab.closeButton().x() - 8 - 40, tab.height() - 3);
        const QImage shown =
            fixture.strip.grab(QRect(tab.mapTo(&fixture.strip, place.topLeft()), place.size())).toImage();
        QImage expected(place.size(), QImage::Format_RGB32);
        expected.fill(ground);
        QPainter painter(&expected);
        painter.setFont(style::interfaceFont(12, weight));
        painter.setPen(systemColor(color, Appearance::dark));
        painter.drawText(QRect(0, -1, place.width() + 1, tab.height()), Qt::AlignVCenter | Qt::TextSingleLine,
                         tab.document()->title());
        painter.end();
        return isSame(shown, expected);
    };
    QVERIFY(isTitled(fixture.tab(1), QFont::Medium, SystemColor::primaryLabel, fixture.selectedGround()));
    QVERIFY(isTitled(fixture.tab(0), QFont::Normal, SystemColor::secondaryLabel, fixture.stripGround()));
    QVERIFY(!isTitled(fixture.tab(0), QFont::Medium, SystemColor::primaryLabel, fixture.stripGround()));
}

void TabItemViewTest::theDotIsSixWide()
{
    Fixture fixture;
    fixture.state.documents().last()->setContent(u"changed"_s);
    fixture.settle();
    TabItemView& tab = fixture.tab(1);
    const QColor orange = systemColor(SystemColor::orange, Appearance::dark);
    const auto at = [&](int x, int y) { return fixture.colorAt(tab, {x, y}); };
    // At a distance of 8 before the close button, in the middle of the height.
    const int right = tab.closeButton().x() - 8 - 1;
    const int middle = tab.height() / 2;
    QVERIFY(distance(at(right - 3, middle), orange) <= 1);
    QVERIFY(distance(at(right - 3, middle - 3), orange) < 60 && distance(at(right - 3, middle + 2), orange) < 60);
    QVERIFY(distance(at(right, middle), orange) < 60 && distance(at(right - 5, middle), orange) < 60);
    for (const QPoint beside : {QPoint(right + 1, middle), QPoint(right - 6, middle), QPoint(right - 3, middle - 4),
                                QPoint(right - 3, middle + 3)}) {
        QVERIFY(distance(at(beside.x(), beside.y()), fixture.selectedGround()) <= 1);
    }
}

void TabItemViewTest::theCloseButtonStandsOutUnderTheMouse()
{
    Fixture fixture;
    const ButtonLook& look = fixture.tab(1).closeButton().look();
    QCOMPARE(look.symbol, u"xmark"_s);
    QCOMPARE(look.symbolSize, 9);
    QCOMPARE(look.tint, Tint::secondary());
    QCOMPARE(look.hoveredTint, std::optional(Tint::primary()));
    QCOMPARE(look.hoverOpacity, 0.1);
}

void TabItemViewTest::theNewTabButtonHasAFaintGround()
{
    Fixture fixture;
    PlainButton& button = fixture.strip.newTabButton();
    QCOMPARE(button.look().symbol, u"plus"_s);
    QCOMPARE(button.look().symbolSize, 11);
    QCOMPARE(button.look().tint, Tint::secondary());
    const QColor ground = over(fixture.stripGround(), system(SystemColor::primaryLabel, 0.05));
    const QImage image = fixture.strip.grab().toImage();
    QVERIFY(distance(image.pixelColor(button.mapTo(&fixture.strip, QPoint(5, 14))), ground) <= 1);
}

void TabItemViewTest::hoverAndSelectionEaseInAndOut()
{
    Fixture fixture;
    for (const TabItemView* tab : fixture.strip.tabs()) {
        QCOMPARE(tab->hoverAnimation().duration(), 100);
        QCOMPARE(tab->selectionAnimation().duration(), 150);
        for (const auto* animation : {&tab->hoverAnimation(), &tab->selectionAnimation()}) {
            const QEasingCurve curve = animation->easingCurve();
            // Slow at both ends, and as slow at the one as at the other.
            QVERIFY(curve.valueForProgress(0.1) < 0.09);
            QVERIFY(curve.valueForProgress(0.9) > 0.91);
            QVERIFY(qFuzzyCompare(curve.valueForProgress(0.5), 0.5));
            QCOMPARE(animation->startValue().toReal(), 0.0);
            QCOMPARE(animation->endValue().toReal(), 1.0);
        }
    }
    QCOMPARE(fixture.tab(0).selectionAnimation().currentValue().toReal(), 0.0);
    QCOMPARE(fixture.tab(1).selectionAnimation().currentValue().toReal(), 1.0);
}

void TabItemViewTest::eachChangeRunsItsAnimation()
{
    Fixture fixture;
    TabItemView& tab = fixture.tab(0);
    fixture.enter(tab);
    QCOMPARE(tab.hoverAnimation().state(), QAbstractAnimation::Running);
    QCOMPARE(tab.hoverAnimation().direction(), QAbstractAnimation::Forward);
    QCOMPARE(tab.selectionAnimation().state(), QAbstractAnimation::Stopped);
    fixture.settle();
    fixture.leave(tab);
    QCOMPARE(tab.hoverAnimation().direction(), QAbstractAnimation::Backward);
    QCOMPARE(tab.hoverAnimation().state(), QAbstractAnimation::Running);
    fixture.settle();
    QCOMPARE(tab.hoverAnimation().currentValue().toReal(), 0.0);
    fixture.state.setCurrentDocumentIndex(0);
    QCOMPARE(tab.selectionAnimation().state(), QAbstractAnimation::Running);
    QCOMPARE(fixture.tab(1).selectionAnimation().direction(), QAbstractAnimation::Backward);
    fixture.settle();
    QCOMPARE(tab.selectionAnimation().currentValue().toReal(), 1.0);
    QCOMPARE(fixture.tab(1).selectionAnimation().currentValue().toReal(), 0.0);
}

void TabItemViewTest::aKeyThatIsHeldFromElsewhereDoesNothing()
{
    Fixture fixture;
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter, Qt::Key_Delete, Qt::Key_Backspace}) {
        QKeyEvent repeated(QEvent::KeyPress, key, Qt::NoModifier, {}, true);
        QCoreApplication::sendEvent(&fixture.tab(0), &repeated);
        QVERIFY(repeated.isAccepted());
    }
    QCOMPARE(fixture.state.documents().size(), 2);
    QCOMPARE(fixture.state.currentDocumentIndex(), 1);
}

void TabItemViewTest::aHeldKeyClosesOneTab()
{
    Fixture fixture;
    fixture.tab(1).setFocus(Qt::TabFocusReason);
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Delete, Qt::NoModifier);
    QCoreApplication::sendEvent(&fixture.tab(1), &press);
    fixture.turnQueue();
    QCOMPARE(fixture.state.documents().size(), 1);
    QTRY_VERIFY(fixture.text().hasFocus());
    fixture.text().setSelectedRange({0, 0});
    for (int count = 0; count < 3; ++count) {
        QKeyEvent repeated(QEvent::KeyPress, Qt::Key_Delete, Qt::NoModifier, {}, true);
        QCoreApplication::sendEvent(&fixture.text(), &repeated);
    }
    QCOMPARE(fixture.text().text(), u"a"_s);
    QCOMPARE(fixture.state.documents().size(), 1);
}

const kelm::test::Registered<TabItemViewTest> registered(kelm::test::Toolkit::widgets);

} // namespace tab_item_view_test

#include "tab_item_view_test.moc"
