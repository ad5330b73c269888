#include "git/panel/view/source_control_tab_bar.h"
#include "platform/style/view/style.h"
#include "support/painted_text.h"
#include "support/test_program.h"

#include <QApplication>
#include <QtTest>

namespace source_control_tab_bar_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

namespace {

/// A bar that is wide enough for all labels, away from the mouse.
struct ShownBar
{
    ShownBar()
    {
        for (const SourceControlTab tab : allSourceControlTabs) {
            bar.setBadge(tab, 8);
        }
        bar.resize(900, bar.heightForWidth(900));
        bar.show();
        QTest::mouseMove(&bar, QPoint(1, 1));
    }

    QImage picture(SourceControlTab tab)
    {
        const QRect place = bar.button(tab).geometry();
        return bar.grab().toImage().copy(place);
    }
    QColor window() const { return bar.palette().color(QPalette::Window); }

    SourceControlTabBar bar;
};

/// The part of a tab's picture that holds its label: from the symbol to the badge.
QRect labelPlace(const QImage& picture, const QString& label)
{
    constexpr int left = 5 + 12 + 2;
    const QFontMetrics metrics(style::interfaceFont(11));
    return {left, 2, metrics.horizontalAdvance(label) + 2, picture.height() - 4};
}

} // namespace

class SourceControlTabBarTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qobject_cast<QApplication*>(QCoreApplication::instance())); }

    void theSelectedTabStandsInTheAccentColour();
    void theOthersStandOnNothing();
    void theMouseChangesNothing();
    void eachTabHasItsSymbol_data();
    void eachTabHasItsSymbol();
    void badgesStandOnTheAccentColour();
};

void SourceControlTabBarTest::theSelectedTabStandsInTheAccentColour()
{
    ShownBar shown;
    for (const SourceControlTab tab : allSourceControlTabs) {
        shown.bar.select(tab);
        const QImage picture = shown.picture(tab);
        const QColor ground = over(shown.window(), Tint::accent().at(0.18));
        QVERIFY(isNear(picture.pixelColor(picture.width() / 2, 1), ground));
        QVERIFY(isNear(picture.pixelColor(1, picture.height() / 2), ground));
        // Its corners are quarter circles of 5 points.
        QVERIFY(isNear(picture.pixelColor(0, 0), shown.window()));
        QVERIFY(isNear(picture.pixelColor(1, 0), shown.window()));
        QVERIFY(isNear(picture.pixelColor(4, 0), ground));
        QVERIFY(isNear(picture.pixelColor(0, 1), shown.window()));
        QVERIFY(isNear(picture.pixelColor(0, 4), ground));
        QVERIFY(isSame(ink(picture, labelPlace(picture, label(tab)), ground),
                       inkOf(label(tab), style::interfaceFont(11), Tint::accent(), ground)));
    }
}

void SourceControlTabBarTest::theOthersStandOnNothing()
{
    ShownBar shown;
    for (const SourceControlTab tab : allSourceControlTabs) {
        shown.bar.select(tab == SourceControlTab::tags ? SourceControlTab::changes : SourceControlTab::tags);
        const QImage picture = shown.picture(tab);
        const QColor ground = shown.window();
        QVERIFY(isNear(picture.pixelColor(picture.width() / 2, 1), ground));
        QVERIFY(isSame(ink(picture, labelPlace(picture, label(tab)), ground),
                       inkOf(label(tab), style::interfaceFont(11), Tint::primary().at(0.85), ground)));
    }
}

void SourceControlTabBarTest::theMouseChangesNothing()
{
    ShownBar shown;
    QVERIFY(QTest::qWaitForWindowActive(&shown.bar));
    shown.bar.select(SourceControlTab::history);
    for (const SourceControlTab tab : {SourceControlTab::changes, SourceControlTab::history}) {
        SourceControlTabButton& button = shown.bar.button(tab);
        const QImage before = shown.picture(tab);
        QTest::mouseMove(&button, QPoint(4, 4));
        QTest::mouseMove(&button, QPoint(6, 6));
        QTRY_VERIFY(button.underMouse());
        QVERIFY(isSame(shown.picture(tab), before));
        QTest::mousePress(&button, Qt::LeftButton);
        QVERIFY(button.isDown());
        QVERIFY(isSame(shown.picture(tab), before));
        // Let go elsewhere, so that it is not chosen.
        QTest::mouseRelease(&button, Qt::LeftButton, {}, QPoint(-50, -50));
        QCOMPARE(int(shown.bar.selectedTab()), int(SourceControlTab::history));
    }
}

void SourceControlTabBarTest::eachTabHasItsSymbol_data()
{
    QTest::addColumn<SourceControlTab>("tab");
    QTest::addColumn<QString>("symbol");
    QTest::newRow("changes") << SourceControlTab::changes << u"doc.text"_s;
    QTest::newRow("history") << SourceControlTab::history << u"clock"_s;
    QTest::newRow("branches") << SourceControlTab::branches << u"arrow.triangle.branch"_s;
    QTest::newRow("stashes") << SourceControlTab::stashes << u"tray.full"_s;
    QTest::newRow("tags") << SourceControlTab::tags << u"tag"_s;
    QTest::newRow("remotes") << SourceControlTab::remotes << u"network"_s;
}

void SourceControlTabBarTest::eachTabHasItsSymbol()
{
    QFETCH(SourceControlTab, tab);
    QFETCH(QString, symbol);
    ShownBar shown;
    for (const bool isSelected : {false, true}) {
        const SourceControlTab other =
            tab == SourceControlTab::tags ? SourceControlTab::changes : SourceControlTab::tags;
        shown.bar.select(isSelected ? tab : other);
        const QImage picture = shown.picture(tab);
        const QColor ground = isSelected ? over(shown.window(), Tint::accent().at(0.18)) : shown.window();
        const QColor color = style::ink(isSelected ? Tint::accent() : Tint::primary().at(0.85), Appearance::dark);
        const QRect square(5, (picture.height() - 12) / 2, 12, 12);
        QVERIFY(isSame(picture.copy(square), symbolOn(ground, symbol, 12, color)));
    }
}

void SourceControlTabBarTest::badgesStandOnTheAccentColour()
{
    ShownBar shown;
    shown.bar.select(SourceControlTab::changes);
    for (const SourceControlTab tab : {SourceControlTab::changes, SourceControlTab::branches}) {
        const QImage picture = shown.picture(tab);
        const QColor ground =
            tab == SourceControlTab::changes ? over(shown.window(), Tint::accent().at(0.18)) : shown.window();
        // Above its digit, in the middle.
        const QRect place = labelPlace(picture, label(tab));
        const QPoint badge(place.right() + 3 + 7, (picture.height() - 14) / 2 + 1);
        QVERIFY(isNear(picture.pixelColor(badge), over(ground, Tint::accent().at(0.25))));
        shown.bar.setBadge(tab, 0);
        QVERIFY(isNear(shown.picture(tab).pixelColor(badge), ground));
    }
}

const kelm::test::Registered<SourceControlTabBarTest> registered(kelm::test::Toolkit::widgets);

} // namespace source_control_tab_bar_test

#include "source_control_tab_bar_test.moc"
