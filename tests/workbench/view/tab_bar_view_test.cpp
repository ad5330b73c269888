#include "platform/style/view/icons.h"
#include "platform/text/platform_words.h"
#include "support/test_program.h"
#include "workbench/status/view/status_bar_items.h"
#include "workbench/view/controls.h"
#include "workbench/view/tab_bar_view.h"
#include "workbench/view/tab_item_view.h"
#include "workbench/view/window_fixture.h"

#include <QAccessible>
#include <QClipboard>
#include <QScrollArea>
#include <QScrollBar>

#include <algorithm>

namespace tab_bar_view_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

/// A window with three files, the one in the middle being current.
struct Fixture : WindowFixture
{
    TabBarView& strip = window.tabBar();

    Fixture()
    {
        for (const char* name : {"a.txt", "b.swift", "c.txt"}) {
            state.openFile(write(QString::fromLatin1(name), name));
        }
        state.setCurrentDocumentIndex(1);
        turnQueue();
    }

    TabItemView& tab(qsizetype index) { return *strip.tabs().at(index); }
    QStringList titles()
    {
        QStringList titles;
        for (const TabItemView* tab : strip.tabs()) {
            titles.append(tab->document()->title());
        }
        return titles;
    }
    void click(QWidget& widget, Qt::MouseButton button = Qt::LeftButton)
    {
        QTest::mouseClick(&widget, button);
        turnQueue();
    }
    bool shows(TabItemView& tab, const QColor& color)
    {
        const QImage image = tab.grab().toImage();
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (image.pixelColor(x, y).rgb() == color.rgb()) {
                    return true;
                }
            }
        }
        return false;
    }
    void choose(TabItemView& tab, const QString& line)
    {
        QMenu menu;
        tab.fillContextMenu(menu);
        for (QAction* action : menu.actions()) {
            if (action->text() == line) {
                action->trigger();
            }
        }
        turnQueue();
    }
};

} // namespace

class TabBarViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void tabsStandInTheOrderOfTheDocuments();
    void aClickSelects();
    void theCloseButtonClosesItsOwnDocument();
    void theMiddleButtonCloses();
    void theCloseButtonIsSeenOnTheSelectedAndTheHoveredTab();
    void theDotAndTheStarComeAndGoTogether();
    void theContextMenuListsItsItems();
    void pathItemsAreOffForAnUntitledTab();
    void closeInTheMenuClosesItsOwnTab();
    void closeOthersKeepsTheTab();
    void closeAllLeavesTheWelcome();
    void copyPathAndReveal();
    void theNewTabButtonStandsBehindTheLastTab();
    void manyTabsScrollSidewaysAndTheSelectedOneIsSeen();
    void aNarrowerWindowStillShowsTheSelectedTab();
    void aWheelScrollsSideways();
    void aLongTitleIsCutInTheMiddle();
    void theKeyboardSelectsAndCloses();
    void sizesAreThoseOfTheDesign();
    void theChipTakesTheLanguagesColour_data();
    void theChipTakesTheLanguagesColour();
    void aChangeOfDocumentsKeepsTheTabsThatStay();
    void screenReadersGetTabs();
};

void TabBarViewTest::tabsStandInTheOrderOfTheDocuments()
{
    Fixture fixture;
    QCOMPARE(fixture.titles(), (QStringList{u"a.txt"_s, u"b.swift"_s, u"c.txt"_s}));
    QVERIFY(fixture.tab(0).x() < fixture.tab(1).x() && fixture.tab(1).x() < fixture.tab(2).x());
    QVERIFY(fixture.tab(1).isSelected() && !fixture.tab(0).isSelected() && !fixture.tab(2).isSelected());
    auto documents = fixture.state.documents();
    std::swap(documents[0], documents[2]);
    fixture.state.setDocuments(documents);
    fixture.turnQueue();
    QCOMPARE(fixture.titles(), (QStringList{u"c.txt"_s, u"b.swift"_s, u"a.txt"_s}));
    QVERIFY(fixture.tab(0).x() < fixture.tab(1).x() && fixture.tab(1).x() < fixture.tab(2).x());
}

void TabBarViewTest::aClickSelects()
{
    Fixture fixture;
    fixture.click(fixture.tab(2));
    QCOMPARE(fixture.state.currentDocumentIndex(), 2);
    QVERIFY(fixture.tab(2).isSelected() && !fixture.tab(1).isSelected());
}

void TabBarViewTest::theCloseButtonClosesItsOwnDocument()
{
    Fixture fixture;
    fixture.click(fixture.tab(2).closeButton());
    QCOMPARE(fixture.titles(), (QStringList{u"a.txt"_s, u"b.swift"_s}));
    QCOMPARE(fixture.state.currentDocumentIndex(), 1);
}

void TabBarViewTest::theMiddleButtonCloses()
{
    Fixture fixture;
    fixture.click(fixture.tab(0), Qt::MiddleButton);
    QCOMPARE(fixture.titles(), (QStringList{u"b.swift"_s, u"c.txt"_s}));
}

void TabBarViewTest::theCloseButtonIsSeenOnTheSelectedAndTheHoveredTab()
{
    Fixture fixture;
    QVERIFY(fixture.tab(0).closeButton().look().symbol.isEmpty());
    QCOMPARE(fixture.tab(1).closeButton().look().symbol, u"xmark"_s);
    const int width = fixture.tab(0).width();
    QEnterEvent enter({5, 5}, {5, 5}, {5, 5});
    QCoreApplication::sendEvent(&fixture.tab(0), &enter);
    QCOMPARE(fixture.tab(0).closeButton().look().symbol, u"xmark"_s);
    QCOMPARE(fixture.tab(0).sizeHint().width(), width);
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(&fixture.tab(0), &leave);
    QVERIFY(fixture.tab(0).closeButton().look().symbol.isEmpty());
}

void TabBarViewTest::theDotAndTheStarComeAndGoTogether()
{
    Fixture fixture;
    const QColor orange = Tint(SystemColor::orange).on(fixture.tab(0));
    QVERIFY(!fixture.shows(fixture.tab(0), orange));
    fixture.state.documents()[0]->setContent(u"changed"_s);
    fixture.turnQueue();
    QCOMPARE(fixture.tab(0).document()->title(), u"a.txt *"_s);
    QVERIFY(fixture.shows(fixture.tab(0), orange));
    fixture.state.setCurrentDocumentIndex(0);
    fixture.state.saveCurrentDocument();
    fixture.turnQueue();
    QCOMPARE(fixture.tab(0).document()->title(), u"a.txt"_s);
    QVERIFY(!fixture.shows(fixture.tab(0), orange));
}

void TabBarViewTest::theContextMenuListsItsItems()
{
    Fixture fixture;
    QMenu menu;
    fixture.tab(0).fillContextMenu(menu);
    QCOMPARE(linesOf(menu), (QStringList{u"Close"_s, u"Close Others"_s, u"Close All"_s, u"-"_s, u"Copy Path"_s,
                                         inPlatformWords(u"Reveal in Finder"_s)}));
}

void TabBarViewTest::pathItemsAreOffForAnUntitledTab()
{
    Fixture fixture;
    fixture.state.createNewTab();
    fixture.turnQueue();
    QMenu menu;
    fixture.tab(3).fillContextMenu(menu);
    QCOMPARE(linesOf(menu).mid(4),
             (QStringList{u"!Copy Path"_s, QString(u"!"_s + inPlatformWords(u"Reveal in Finder"_s))}));
}

void TabBarViewTest::closeInTheMenuClosesItsOwnTab()
{
    Fixture fixture;
    fixture.choose(fixture.tab(2), u"Close"_s);
    QCOMPARE(fixture.titles(), (QStringList{u"a.txt"_s, u"b.swift"_s}));
    QCOMPARE(fixture.state.currentDocumentIndex(), 1);
}

void TabBarViewTest::closeOthersKeepsTheTab()
{
    Fixture fixture;
    fixture.choose(fixture.tab(2), u"Close Others"_s);
    QCOMPARE(fixture.titles(), QStringList{u"c.txt"_s});
}

void TabBarViewTest::closeAllLeavesTheWelcome()
{
    Fixture fixture;
    fixture.state.documents()[0]->setContent(u"unsaved"_s);
    fixture.choose(fixture.tab(2), u"Close All"_s);
    QVERIFY(fixture.state.documents().isEmpty());
    QCOMPARE(fixture.state.currentDocumentIndex(), 0);
    QVERIFY(fixture.window.editorArea().currentEditor() == nullptr);
    QVERIFY(visibleButton(fixture.window.editorArea(), u"New File"_s) != nullptr);
}

void TabBarViewTest::copyPathAndReveal()
{
    Fixture fixture;
    fixture.choose(fixture.tab(0), u"Copy Path"_s);
    QCOMPARE(QGuiApplication::clipboard()->text(), fixture.home.filePath(u"a.txt"_s));
    fixture.choose(fixture.tab(0), inPlatformWords(u"Reveal in Finder"_s));
    QCOMPARE(fixture.workspace.revealed, QList<QUrl>{QUrl::fromLocalFile(fixture.home.filePath(u"a.txt"_s))});
}

void TabBarViewTest::theNewTabButtonStandsBehindTheLastTab()
{
    Fixture fixture;
    PlainButton& button = fixture.strip.newTabButton();
    QVERIFY(button.x() > fixture.tab(2).geometry().right());
    QCOMPARE(button.size(), QSize(28, 28));
    fixture.click(button);
    QCOMPARE(fixture.titles().last(), u"Untitled"_s);
    QVERIFY(button.x() > fixture.tab(3).geometry().right());
}

void TabBarViewTest::manyTabsScrollSidewaysAndTheSelectedOneIsSeen()
{
    Fixture fixture;
    for (int count = 0; count < 40; ++count) {
        fixture.state.createNewTab();
    }
    auto* area = fixture.strip.findChild<QScrollArea*>();
    QTRY_VERIFY(area->horizontalScrollBar()->maximum() > 0);
    QTRY_COMPARE(area->horizontalScrollBar()->value(), area->horizontalScrollBar()->maximum());
    QVERIFY(!area->horizontalScrollBar()->isVisible());
    QVERIFY(!fixture.strip.newTabButton().visibleRegion().isEmpty());
    fixture.state.setCurrentDocumentIndex(0);
    QTRY_VERIFY(!fixture.tab(0).visibleRegion().isEmpty());
    QVERIFY(fixture.strip.newTabButton().visibleRegion().isEmpty());
}

void TabBarViewTest::aNarrowerWindowStillShowsTheSelectedTab()
{
    Fixture fixture;
    fixture.window.resize(1600, 800);
    for (int number = 0; number < 5; ++number) {
        fixture.state.openFile(fixture.write(u"a file with a longer name %1.txt"_s.arg(number), "x"));
    }
    fixture.turnQueue();
    const auto* area = fixture.strip.findChild<QScrollArea*>();
    fixture.window.resize(900, 700);
    const auto isSeen = [&] {
        const TabItemView& tab = *fixture.strip.tabs().last();
        const QRect place(tab.mapTo(area->viewport(), QPoint()), tab.size());
        return area->viewport()->rect().contains(place);
    };
    QTRY_VERIFY(isSeen());
}

void TabBarViewTest::aWheelScrollsSideways()
{
    Fixture fixture;
    for (int count = 0; count < 40; ++count) {
        fixture.state.createNewTab();
    }
    auto* area = fixture.strip.findChild<QScrollArea*>();
    QScrollBar* bar = area->horizontalScrollBar();
    QTRY_VERIFY(bar->maximum() > 0);
    QTRY_COMPARE(bar->value(), bar->maximum());
    const int before = bar->value();
    QWheelEvent wheel({10, 10}, area->viewport()->mapToGlobal(QPointF(10, 10)), {}, {0, 120}, Qt::NoButton, {},
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(area->viewport(), &wheel);
    QVERIFY(bar->value() < before);
}

void TabBarViewTest::aLongTitleIsCutInTheMiddle()
{
    Fixture fixture;
    fixture.state.openFile(fixture.write(QString(200, u'w') + u".txt"_s, "x"));
    fixture.turnQueue();
    QVERIFY(fixture.tab(3).width() < 400);
    QCOMPARE(fixture.tab(3).toolTip(), fixture.home.filePath(QString(200, u'w') + u".txt"_s) + u"\nAlt+4"_s);
}

void TabBarViewTest::theKeyboardSelectsAndCloses()
{
    Fixture fixture;
    fixture.tab(0).setFocus(Qt::TabFocusReason);
    QTest::keyClick(&fixture.tab(0), Qt::Key_Space);
    QCOMPARE(fixture.state.currentDocumentIndex(), 0);
    fixture.tab(0).setFocus(Qt::TabFocusReason);
    QTest::keyClick(&fixture.tab(0), Qt::Key_Right);
    QVERIFY(fixture.tab(1).hasFocus());
    QTest::keyClick(&fixture.tab(1), Qt::Key_Delete);
    fixture.turnQueue();
    QCOMPARE(fixture.titles(), (QStringList{u"a.txt"_s, u"c.txt"_s}));
}

void TabBarViewTest::sizesAreThoseOfTheDesign()
{
    Fixture fixture;
    QCOMPARE(fixture.strip.height(), 40);
    // Padding, chip, gaps, title in medium weight, close button.
    const int title = QFontMetrics(style::interfaceFont(12, QFont::Medium)).horizontalAdvance(u"a.txt"_s) + 1;
    QCOMPARE(fixture.tab(0).sizeHint().width(), 12 + 20 + 8 + title + 8 + 16 + 12);
    fixture.state.documents()[0]->setContent(u"changed"_s);
    const int starred = QFontMetrics(style::interfaceFont(12, QFont::Medium)).horizontalAdvance(u"a.txt *"_s) + 1;
    QCOMPARE(fixture.tab(0).sizeHint().width(), 12 + 20 + 8 + starred + 8 + 6 + 8 + 16 + 12);
    QCOMPARE(fixture.tab(0).x(), 8);
}

void TabBarViewTest::theChipTakesTheLanguagesColour_data()
{
    QTest::addColumn<Language>("language");
    QTest::addColumn<SystemColor>("color");
    QTest::newRow("Swift") << Language(Language::swift) << SystemColor::orange;
    QTest::newRow("Python") << Language(Language::python) << SystemColor::blue;
    QTest::newRow("TypeScript") << Language(Language::typescript) << SystemColor::blue;
    QTest::newRow("JavaScript") << Language(Language::javascript) << SystemColor::yellow;
    QTest::newRow("JSON") << Language(Language::json) << SystemColor::green;
    QTest::newRow("shell") << Language(Language::shell) << SystemColor::green;
    QTest::newRow("XML") << Language(Language::xml) << SystemColor::red;
    QTest::newRow("HTML") << Language(Language::html) << SystemColor::red;
    QTest::newRow("CSS") << Language(Language::css) << SystemColor::purple;
    QTest::newRow("Markdown") << Language(Language::markdown) << SystemColor::cyan;
    for (const auto other : {Language::plainText, Language::yaml, Language::go, Language::rust, Language::c,
                             Language::cpp, Language::java, Language::ruby, Language::php, Language::sql}) {
        QTest::addRow("%s", qPrintable(Language(other).rawValue())) << Language(other) << SystemColor::secondaryLabel;
    }
}

void TabBarViewTest::theChipTakesTheLanguagesColour()
{
    QFETCH(Language, language);
    QFETCH(SystemColor, color);
    QCOMPARE(languageTint(language).in(Appearance::dark), systemColor(color, Appearance::dark));
}

void TabBarViewTest::aChangeOfDocumentsKeepsTheTabsThatStay()
{
    Fixture fixture;
    const QPointer<TabItemView> first = &fixture.tab(0);
    const QPointer<TabItemView> second = &fixture.tab(1);
    fixture.state.closeTab(1);
    fixture.turnQueue();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(&fixture.tab(0), first.data());
    QVERIFY(second.isNull());
}

void TabBarViewTest::screenReadersGetTabs()
{
    Fixture fixture;
    QAccessibleInterface* strip = QAccessible::queryAccessibleInterface(&fixture.strip);
    QCOMPARE(strip->role(), QAccessible::PageTabList);
    QAccessibleInterface* tab = QAccessible::queryAccessibleInterface(&fixture.tab(2));
    QCOMPARE(tab->role(), QAccessible::PageTab);
    QCOMPARE(tab->text(QAccessible::Name), u"c.txt"_s);
    QVERIFY(tab->actionInterface()->actionNames().contains(QAccessibleActionInterface::pressAction()));
    tab->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    QCOMPARE(fixture.state.currentDocumentIndex(), 2);
    QAccessibleInterface* position = QAccessible::queryAccessibleInterface(fixture.window.findChild<StatusBarItem*>());
    QCOMPARE(position->role(), QAccessible::StaticText);
    QVERIFY(position->text(QAccessible::Name).startsWith(u"Ln "));
}

const kelm::test::Registered<TabBarViewTest> registered(kelm::test::Toolkit::widgets);

} // namespace tab_bar_view_test

#include "tab_bar_view_test.moc"
