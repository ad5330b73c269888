#include "app/state/link_runs.h"
#include "platform/style/view/ink.h"
#include "platform/text/platform_words.h"
#include "platform/view/labels.h"
#include "platform/view/plain_help.h"
#include "run/view/run_header.h"
#include "support/painted.h"
#include "support/test_program.h"
#include "workbench/status/view/document_status.h"
#include "workbench/status/view/status_bar_items.h"
#include "workbench/status/view/status_bar_view.h"
#include "workbench/view/bottom_panel.h"
#include "workbench/view/controls.h"
#include "workbench/view/extensions_view.h"
#include "workbench/view/link_run_bar.h"
#include "workbench/view/link_run_place.h"
#include "workbench/view/notice_bar.h"
#include "workbench/view/sidebar_view.h"
#include "workbench/view/tab_bar_view.h"
#include "workbench/view/tab_item_view.h"
#include "workbench/view/tool_bar_buttons.h"
#include "workbench/view/tool_bar_view.h"
#include "workbench/view/window_fixture.h"

namespace main_window_symbols_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

PlainButton& buttonOf(const QWidget& bar, const QString& help)
{
    for (auto* button : bar.findChildren<PlainButton*>()) {
        if (button->toolTip() == plainHelp(inPlatformWords(help))) {
            return *button;
        }
    }
    qFatal("no button '%s'", qPrintable(help));
}

PlainButton& buttonThatReads(const QWidget& bar, const QString& text)
{
    for (auto* button : bar.findChildren<PlainButton*>()) {
        if (button->text() == text) {
            return *button;
        }
    }
    qFatal("no button '%s'", qPrintable(text));
}

/// Whether a square button shows a symbol in its middle, on whatever ground it has.
bool shows(PlainButton& button, const QString& symbol, int size, const Tint& tint)
{
    ButtonLook look = button.look();
    look.symbol = symbol;
    look.symbolSize = size;
    look.tint = tint;
    look.checkedTint.reset();
    // At the same place, on the same ground.
    PlainButton expected(look, button.parentWidget());
    expected.setGeometry(button.geometry());
    expected.setCheckable(button.isCheckable());
    expected.setChecked(button.isChecked());
    expected.setEnabled(button.isEnabled());
    return icons::has(symbol) && looksLike(button, expected);
}

} // namespace

class MainWindowSymbolsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void eachToolbarButtonHasItsSymbol_data();
    void eachToolbarButtonHasItsSymbol();
    void quickOpenIsASymbolAWordAndAKey();
    void runIsWhiteOnGreen();
    void aToggleShowsWhatIsOn();
    void aToggleCallsItsActionOnceForEachPress();
    void sidebarTabsHaveTheirSymbols();
    void bottomTabsHaveTheirSymbolsAndLabels();
    void theExtensionsPageIsAPlaceholder();
    void theStatusBarHasItsSymbols();
    void theChipHoldsTheSymbolOfTheLanguage_data();
    void theChipHoldsTheSymbolOfTheLanguage();
    void theWelcomesButtonsHaveTheirSymbols();
    void theTreesRefreshButtonIsAnArrow();
    void barsThatComeAndGoHaveTheirSymbols();
};

void MainWindowSymbolsTest::eachToolbarButtonHasItsSymbol_data()
{
    QTest::addColumn<QString>("help");
    QTest::addColumn<QString>("symbol");
    QTest::addColumn<int>("size");
    const auto row = [](const char* symbol, const QString& help, int size = 16) {
        QTest::newRow(symbol) << help << QString::fromLatin1(symbol) << size;
    };
    row("chevron.left", u"Back"_s);
    row("chevron.right", u"Forward"_s);
    row("plus", u"New File (⌘N)"_s);
    row("folder", u"Open (⌘O)"_s);
    row("square.and.arrow.down", u"Save (⌘S)"_s);
    row("arrow.uturn.backward", u"Undo (⌘Z)"_s);
    row("arrow.uturn.forward", u"Redo (⇧⌘Z)"_s);
    row("text.alignleft", u"Format & Transform"_s, 12);
    row("gear", u"Settings"_s);
}

void MainWindowSymbolsTest::eachToolbarButtonHasItsSymbol()
{
    QFETCH(QString, help);
    QFETCH(QString, symbol);
    QFETCH(int, size);
    WindowFixture fixture;
    PlainButton& button = buttonOf(fixture.window.toolbar(), help);
    QCOMPARE(button.look().symbol, symbol);
    QCOMPARE(button.look().symbolSize, size);
    QCOMPARE(button.size(), QSize(28, 28));
    QVERIFY(shows(button, symbol, size, Tint::secondary()));
    QVERIFY(!shows(button, symbol == u"gear" ? u"folder"_s : u"gear"_s, size, Tint::secondary()));
}

void MainWindowSymbolsTest::quickOpenIsASymbolAWordAndAKey()
{
    WindowFixture fixture;
    const ButtonLook& look = buttonThatReads(fixture.window.toolbar(), u"Quick Open"_s).look();
    QCOMPARE(look.symbol, u"magnifyingglass"_s);
    QCOMPARE(look.trailingText, inPlatformWords(u"⌘P"_s));
    QCOMPARE(look.weight, QFont::Normal);
    QCOMPARE(look.tint, Tint::secondary());
    QCOMPARE(look.ground, Tint::secondary().at(0.2));
    QVERIFY(look.cornerRadius > 0);
}

void MainWindowSymbolsTest::runIsWhiteOnGreen()
{
    WindowFixture fixture;
    const ButtonLook& look = buttonOf(fixture.window.toolbar(), u"Run (⌘R)"_s).look();
    QCOMPARE(look.symbol, u"play.fill"_s);
    QCOMPARE(look.symbolSize, 10);
    QCOMPARE(look.textSize, 11);
    QCOMPARE(look.weight, QFont::Medium);
    QCOMPARE(look.tint, Tint(QColor(Qt::white)));
    QCOMPARE(look.ground, Tint(SystemColor::green));
    QCOMPARE(look.padding, QMargins(10, 5, 10, 5));
}

void MainWindowSymbolsTest::aToggleShowsWhatIsOn()
{
    WindowFixture fixture;
    const std::pair<QString, QString> toggles[] = {
        {u"Toggle Sidebar (⌘B)"_s, u"sidebar.left"_s},
        {u"Toggle Minimap (⇧⌘M)"_s, u"rectangle.split.3x1"_s},
        {u"Toggle Bottom Panel (⌃`)"_s, u"rectangle.bottomthird.inset.filled"_s},
    };
    for (const auto& [help, symbol] : toggles) {
        auto* toggle = qobject_cast<ToolbarToggleButton*>(&buttonOf(fixture.window.toolbar(), help));
        QVERIFY(toggle != nullptr);
        QCOMPARE(toggle->look().symbol, symbol);
        QCOMPARE(toggle->size(), QSize(28, 28));
        toggle->setIsActive(true);
        QVERIFY(toggle->isActive() && shows(*toggle, symbol, 16, Tint::accent()));
        toggle->setIsActive(false);
        QVERIFY(!toggle->isActive() && shows(*toggle, symbol, 16, Tint::secondary()));
    }
}

void MainWindowSymbolsTest::aToggleCallsItsActionOnceForEachPress()
{
    int calls = 0;
    ToolbarToggleButton toggle(u"gear"_s, u"Toggle"_s, true, [&calls] { ++calls; });
    toggle.show();
    QVERIFY(toggle.isActive() && toggle.isChecked());
    QTest::mouseClick(&toggle, Qt::LeftButton);
    QCOMPARE(calls, 1);
    // What was done with it, others say.
    toggle.setIsActive(false);
    toggle.setIsActive(true);
    QCOMPARE(calls, 1);
    // Screen readers toggle without a click.
    toggle.toggle();
    QCOMPARE(calls, 2);
    int presses = 0;
    ToolbarButton button(u"gear"_s, u"Press"_s, [&presses] { ++presses; });
    button.show();
    QTest::mouseClick(&button, Qt::LeftButton);
    QCOMPARE(presses, 1);
    ToolbarButton idle(u"gear"_s, u"Idle"_s, {});
    idle.show();
    QTest::mouseClick(&idle, Qt::LeftButton);
    QCOMPARE(idle.toolTip(), plainHelp(u"Idle"_s));
}

void MainWindowSymbolsTest::sidebarTabsHaveTheirSymbols()
{
    WindowFixture fixture;
    SidebarView& sidebar = *fixture.window.sidebar();
    QStringList symbols;
    for (const SidebarTab tab : SidebarTab::allCases()) {
        const ButtonLook& look = sidebar.tabButton(tab).look();
        symbols.append(look.symbol);
        QCOMPARE(look.symbolSize, 16);
        QCOMPARE(look.ground, Tint::clear());
        QCOMPARE(look.checkedGround, Tint::accent().at(0.2));
    }
    QCOMPARE(symbols, (QStringList{u"doc.text"_s, u"magnifyingglass"_s, u"arrow.triangle.branch"_s,
                                   u"puzzlepiece.extension"_s}));
    PlainButton& selected = sidebar.tabButton(SidebarTab::files);
    QVERIFY(selected.isChecked() && shows(selected, u"doc.text"_s, 16, Tint::accent()));
}

void MainWindowSymbolsTest::bottomTabsHaveTheirSymbolsAndLabels()
{
    WindowFixture fixture;
    fixture.state.setShowBottomPanel(true);
    BottomPanel& panel = *fixture.window.bottomPanel();
    QStringList tabs;
    int right = -1;
    for (const BottomPanelTab tab : BottomPanelTab::allCases()) {
        PlainButton& button = panel.tabButton(tab);
        tabs.append(button.look().symbol + u' ' + button.text());
        QCOMPARE(button.look().padding, QMargins(12, 6, 12, 6));
        QCOMPARE(button.look().ground, Tint::clear());
        QCOMPARE(button.look().checkedGround, Tint::accent().at(0.2));
        QVERIFY(button.x() > right);
        right = button.geometry().right();
    }
    QCOMPARE(tabs, (QStringList{u"terminal Terminal"_s, u"doc.text Output"_s, u"exclamationmark.triangle Problems"_s}));
    PlainButton& close = panel.closeButton();
    QCOMPARE(close.look().symbol, u"xmark"_s);
    fixture.turnQueue();
    QCOMPARE(close.geometry().right() + 1 + 8, close.parentWidget()->width());
}

void MainWindowSymbolsTest::theExtensionsPageIsAPlaceholder()
{
    ExtensionsView page;
    page.resize(260, 500);
    page.show();
    auto* symbol = page.findChild<SymbolLabel*>();
    SymbolLabel puzzle(u"puzzlepiece.extension"_s, 40, Tint::secondary());
    QCOMPARE(symbol->size(), QSize(40, 40));
    QVERIFY(icons::has(u"puzzlepiece.extension"_s) && looksLike(*symbol, puzzle));
    const auto labels = page.findChildren<TextLabel*>();
    QCOMPARE(labels.size(), 2);
    TextLabel headline(u"Extensions"_s, style::headlineFont(), Tint::primary());
    TextLabel soon(u"Coming soon..."_s, style::interfaceFont(style::typeSize::body), Tint::secondary());
    QVERIFY(looksLike(*labels.at(0), headline));
    QVERIFY(looksLike(*labels.at(1), soon));
    QVERIFY(symbol->y() < labels.at(0)->y() && labels.at(0)->y() < labels.at(1)->y());
    QVERIFY(page.findChildren<QAbstractButton*>().isEmpty());
    // In the middle of its place.
    for (const QWidget* part : {static_cast<QWidget*>(symbol), static_cast<QWidget*>(labels.at(0))}) {
        QVERIFY(std::abs(part->geometry().center().x() - page.rect().center().x()) <= 1);
    }
}

void MainWindowSymbolsTest::theStatusBarHasItsSymbols()
{
    WindowFixture fixture;
    fixture.state.openSnippet(u"1"_s, Language::python, std::nullopt);
    fixture.state.setCurrentProject(QUrl::fromLocalFile(fixture.home.path()));
    fixture.turnQueue();
    StatusBarView& bar = fixture.window.statusBarView();
    QCOMPARE(bar.leftStatus()->languageMenu().look().symbol, Language(Language::python).iconName());
    QCOMPARE(bar.leftStatus()->encodingMenu().look().symbol, QString());
    QCOMPARE(bar.leftStatus()->lineEndingMenu().look().symbol, QString());
    QCOMPARE(bar.branchPill().look().symbol, u"arrow.triangle.branch"_s);
    QCOMPARE(bar.branchPill().look().tint, Tint::secondary());
    QCOMPARE(bar.branchPill().look().ground, Tint::primary().at(0.05));
    QCOMPARE(bar.rightStatus()->linesMenu().look().symbol, u"doc.text"_s);
    QCOMPARE(bar.rightStatus()->indentMenu().look().symbol, QString());
    QCOMPARE(bar.themeMenu().look().symbol, u"paintpalette"_s);
    PlainButton& bell = buttonOf(bar, u"Notifications"_s);
    QVERIFY(shows(bell, u"bell"_s, 10, Tint::secondary()));
    QCOMPARE(bell.look().symbol, u"bell"_s);
    for (const PlainButton* button : bar.findChildren<PlainButton*>()) {
        QVERIFY(button->look().symbol.isEmpty() || icons::has(button->look().symbol));
    }
}

void MainWindowSymbolsTest::theChipHoldsTheSymbolOfTheLanguage_data()
{
    QTest::addColumn<Language>("language");
    for (const Language language : Language::allCases()) {
        QTest::addRow("%s", qPrintable(language.rawValue())) << language;
    }
}

void MainWindowSymbolsTest::theChipHoldsTheSymbolOfTheLanguage()
{
    QFETCH(Language, language);
    WindowFixture fixture;
    fixture.state.openSnippet(u"1"_s, language, std::nullopt);
    fixture.turnQueue();
    TabItemView& tab = *fixture.window.tabBar().tabs().first();
    const QImage shown = tab.grab().toImage();
    // Of the chip's ground, beside the symbol: 12 to the chip, which is 20 by 20 with the symbol of 10 in its middle.
    const QColor ground = shown.pixelColor(14, 16);
    const QImage symbol = symbolOn(ground, language.iconName(), 10, style::ink(languageTint(language), tab));
    QVERIFY(isSame(shown.copy(17, 11, 10, 10), symbol));
}

void MainWindowSymbolsTest::theWelcomesButtonsHaveTheirSymbols()
{
    WindowFixture fixture;
    QWidget& welcome = fixture.window.editorArea();
    const ButtonLook prominent = prominentLook();
    for (const auto& [text, symbol] : {std::pair{u"New File"_s, u"plus"_s}, std::pair{u"Open File"_s, u"folder"_s}}) {
        const ButtonLook& look = buttonThatReads(welcome, text).look();
        QCOMPARE(look.symbol, symbol);
        QVERIFY(icons::has(symbol));
        QCOMPARE(look.ground, prominent.ground);
        QCOMPARE(look.tint, prominent.tint);
    }
    const QWidget& newFile = buttonThatReads(welcome, u"New File"_s);
    QCOMPARE(newFile.geometry().right() + 1 + 20, buttonThatReads(welcome, u"Open File"_s).x());
}

void MainWindowSymbolsTest::theTreesRefreshButtonIsAnArrow()
{
    WindowFixture fixture;
    fixture.state.setCurrentProject(QUrl::fromLocalFile(fixture.home.path()));
    fixture.turnQueue();
    PlainButton& refresh = buttonOf(*fixture.window.sidebar()->content(), u"Refresh"_s);
    QCOMPARE(refresh.look().symbol, u"arrow.clockwise"_s);
    QVERIFY(shows(refresh, u"arrow.clockwise"_s, refresh.look().symbolSize, Tint::secondary()));
}

void MainWindowSymbolsTest::barsThatComeAndGoHaveTheirSymbols()
{
    WindowFixture fixture;
    fixture.state.openSnippet(u"1"_s, Language::shell, std::nullopt);
    fixture.state.linkRuns().request(fixture.state.currentDocument());
    fixture.turnQueue();
    LinkRunBar& bar = *fixture.window.linkRunPlace().bar();
    SymbolLabel& sign = *bar.findChild<SymbolLabel*>();
    SymbolLabel triangle(u"exclamationmark.triangle.fill"_s, sign.width(), SystemColor::orange, &bar);
    triangle.setGeometry(sign.geometry());
    QVERIFY(icons::has(u"exclamationmark.triangle.fill"_s) && looksLike(sign, triangle));
    QCOMPARE(bar.putAwayButton()->look().symbol, u"xmark"_s);
    QCOMPARE(buttonOf(fixture.window.noticeBar(), u"Dismiss"_s).look().symbol, u"xmark"_s);
    fixture.state.setBottomPanelTab(BottomPanelTab::output);
    fixture.state.setShowBottomPanel(true);
    fixture.turnQueue();
    const auto* header = fixture.window.bottomPanel()->findChild<RunHeader*>();
    QCOMPARE(buttonThatReads(*header, u"Stop"_s).look().symbol, u"stop.fill"_s);
}

const kelm::test::Registered<MainWindowSymbolsTest> registered(kelm::test::Toolkit::widgets);

} // namespace main_window_symbols_test

#include "main_window_symbols_test.moc"
