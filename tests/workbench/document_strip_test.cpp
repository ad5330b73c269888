#include "platform/view/style.h"
#include "workbench/document_strip.h"
#include "workbench/window_fixture.h"

#include <QPainter>
#include <QStyleOption>

#include <algorithm>

using namespace kelm;
using namespace kelm::test;

namespace {

QStringList titlesOf(const DocumentStrip& strip)
{
    QStringList titles;
    for (int index = 0; index < strip.count(); ++index) {
        titles.append(strip.tabText(index));
    }
    return titles;
}

/// A window with three files, the one in the middle being current.
struct Fixture : WindowFixture
{
    DocumentStrip& strip = window.documentStrip();

    Fixture()
    {
        for (const char* name : {"a.txt", "b.txt", "c.txt"}) {
            state.openFile(write(QString::fromLatin1(name), name));
        }
        state.setCurrentDocumentIndex(1);
        turnQueue();
    }

    /// Presses what stands at the right of a tab.
    void clickCloseButton(int index)
    {
        QWidget* button = strip.tabButton(index, QTabBar::RightSide);
        QVERIFY(button != nullptr && button->isVisible());
        QTest::mouseClick(button, Qt::LeftButton);
        turnQueue();
    }
};

} // namespace

class DocumentStripTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void theCloseButtonClosesItsOwnDocument();
    void closingATabBeforeTheCurrentOneMovesOnToTheNext();
    void closingTheLastTabGoesBackToTheOneBeforeIt();
    void closingTheOnlyTabHidesTheStrip();
    void arrowKeysChooseAmongTabs();
    void anAmpersandInANameIsNoMnemonic();
    void titleAndPathFollowASaveElsewhere();
    void documentsPutInAnotherOrderAreShownSo();
    void theSelectedTabStandsOnTheThemesGround();
    void theOtherTabsStandBack();
    void theCloseCrossGetsAGroundUnderTheMouse();
    void focusShowsAsARing();
};

void DocumentStripTest::theCloseButtonClosesItsOwnDocument()
{
    Fixture fixture;
    fixture.clickCloseButton(2);
    QCOMPARE(titlesOf(fixture.strip), (QStringList{QStringLiteral("a.txt"), QStringLiteral("b.txt")}));
    QCOMPARE(fixture.text().text(), QStringLiteral("b.txt"));
}

void DocumentStripTest::closingATabBeforeTheCurrentOneMovesOnToTheNext()
{
    Fixture fixture;
    fixture.clickCloseButton(0);
    QCOMPARE(titlesOf(fixture.strip), (QStringList{QStringLiteral("b.txt"), QStringLiteral("c.txt")}));
    QCOMPARE(fixture.strip.currentIndex(), 1);
    QCOMPARE(fixture.text().text(), QStringLiteral("c.txt"));
}

void DocumentStripTest::closingTheLastTabGoesBackToTheOneBeforeIt()
{
    Fixture fixture;
    fixture.state.setCurrentDocumentIndex(2);
    fixture.clickCloseButton(2);
    QCOMPARE(fixture.strip.currentIndex(), 1);
    QCOMPARE(fixture.state.currentDocumentIndex(), 1);
    QCOMPARE(fixture.text().text(), QStringLiteral("b.txt"));
}

void DocumentStripTest::closingTheOnlyTabHidesTheStrip()
{
    Fixture fixture;
    fixture.state.closeOtherTabs(1);
    QCOMPARE(titlesOf(fixture.strip), QStringList{QStringLiteral("b.txt")});
    fixture.clickCloseButton(0);
    QVERIFY(!fixture.strip.isVisible());
    QVERIFY(!fixture.state.currentDocument());
}

void DocumentStripTest::arrowKeysChooseAmongTabs()
{
    Fixture fixture;
    fixture.strip.setFocus();
    QTest::keyClick(&fixture.strip, Qt::Key_Left);
    QCOMPARE(fixture.state.currentDocumentIndex(), 0);
}

void DocumentStripTest::anAmpersandInANameIsNoMnemonic()
{
    Fixture fixture;
    fixture.state.openFile(fixture.write(QStringLiteral("a&b.txt"), "text"));
    QCOMPARE(fixture.strip.tabText(3), QStringLiteral("a&&b.txt"));
    fixture.state.documents()[3]->setContent(QStringLiteral("other"));
    QCOMPARE(fixture.strip.tabText(3), QStringLiteral("a&&b.txt *"));
}

void DocumentStripTest::titleAndPathFollowASaveElsewhere()
{
    Fixture fixture;
    fixture.panels.saveAnswer = QUrl::fromLocalFile(fixture.home.filePath(QStringLiteral("new.txt")));
    fixture.state.saveCurrentDocumentAs();
    QCOMPARE(fixture.strip.tabText(1), QStringLiteral("new.txt"));
    QCOMPARE(fixture.strip.tabToolTip(1), fixture.home.filePath(QStringLiteral("new.txt")));
    fixture.state.createNewTab();
    QCOMPARE(fixture.strip.tabToolTip(3), QString());
}

void DocumentStripTest::documentsPutInAnotherOrderAreShownSo()
{
    Fixture fixture;
    AppState::Documents documents = fixture.state.documents();
    std::reverse(documents.begin(), documents.end());
    documents.removeLast();
    fixture.state.setDocuments(documents);
    QCOMPARE(titlesOf(fixture.strip), (QStringList{QStringLiteral("c.txt"), QStringLiteral("b.txt")}));
    documents.last()->setContent(QStringLiteral("other"));
    QCOMPARE(fixture.strip.tabText(1), QStringLiteral("b.txt *"));
}

void DocumentStripTest::theSelectedTabStandsOnTheThemesGround()
{
    Fixture fixture;
    const auto groundOf = [&fixture](int index) {
        const QRect tab = fixture.strip.tabRect(index);
        return fixture.strip.grab().toImage().pixelColor(tab.left() + 3, tab.top() + 3);
    };
    for (const EditorTheme& theme : EditorTheme::allThemes()) {
        fixture.themes.setCurrentTheme(theme);
        QCOMPARE(groundOf(1), theme.backgroundColor.toColor());
        QVERIFY2(groundOf(0) != groundOf(1), qPrintable(theme.name));
    }
}

void DocumentStripTest::theOtherTabsStandBack()
{
    Fixture fixture;
    // The brightest pixel of a label on a dark ground.
    const auto brightest = [&fixture](int index) {
        QRect label = fixture.strip.tabRect(index).adjusted(4, 4, -28, -4);
        const QImage image = fixture.strip.grab(label).toImage();
        int lightness = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                lightness = std::max(lightness, image.pixelColor(x, y).lightness());
            }
        }
        return lightness;
    };
    QVERIFY(brightest(1) > brightest(0) + 20);
    QVERIFY(brightest(0) > 120);
}

void DocumentStripTest::theCloseCrossGetsAGroundUnderTheMouse()
{
    Fixture fixture;
    QWidget* button = fixture.strip.tabButton(0, QTabBar::RightSide);
    const QImage before = button->grab().toImage();
    QStyleOption option;
    option.initFrom(button);
    option.state |= QStyle::State_MouseOver;
    QImage hovered(before.size(), QImage::Format_ARGB32);
    hovered.fill(Qt::transparent);
    QPainter painter(&hovered);
    button->style()->drawPrimitive(QStyle::PE_IndicatorTabClose, &option, &painter, button);
    painter.end();
    const QPoint besideTheCross(option.rect.center().x(), 3);
    const QColor ground = hovered.pixelColor(besideTheCross);
    QVERIFY(ground.alpha() > 0);
    // A shade of the label's colour, and no other hue.
    QCOMPARE(ground.red(), ground.blue());
    hovered.fill(Qt::transparent);
    option.state &= ~QStyle::State_MouseOver;
    QPainter again(&hovered);
    button->style()->drawPrimitive(QStyle::PE_IndicatorTabClose, &option, &again, button);
    again.end();
    QCOMPARE(hovered.pixelColor(besideTheCross).alpha(), 0);
}

void DocumentStripTest::focusShowsAsARing()
{
    Fixture fixture;
    const auto edge = [&fixture] {
        const QRect tab = fixture.strip.tabRect(1);
        return fixture.strip.grab().toImage().pixelColor(tab.center().x(), tab.top());
    };
    const QColor without = edge();
    fixture.strip.setFocus();
    const QColor with = edge();
    QVERIFY(with != without);
    QVERIFY(with.blue() > with.red() + 40);
}

QTEST_MAIN(DocumentStripTest)
#include "document_strip_test.moc"
