#include "editor/transforms/xml_formatter.h"
#include "platform/text/platform_words.h"
#include "platform/view/plain_help.h"
#include "run/code_runner.h"
#include "settings/view/settings_view.h"
#include "support/test_program.h"
#include "workbench/view/controls.h"
#include "workbench/view/tool_bar_view.h"
#include "workbench/view/window_fixture.h"

namespace tool_bar_view_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Fixture : WindowFixture
{
    ToolbarView& bar = window.toolbar();

    PlainButton& button(const QString& help) const
    {
        for (auto* button : bar.findChildren<PlainButton*>()) {
            if (button->toolTip() == plainHelp(help)) {
                return *button;
            }
        }
        qFatal("no button '%s'", qPrintable(help));
    }
    void click(const QString& help)
    {
        QTest::mouseClick(&button(help), Qt::LeftButton);
        turnQueue();
    }
    std::shared_ptr<Document> show(const QString& text, Language language = Language::plainText)
    {
        state.openSnippet(text, language, std::nullopt);
        turnQueue();
        return state.currentDocument();
    }
};

} // namespace

class ToolBarViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void buttonsStandInTheirOrder();
    void backAndForwardAreDisabled();
    void theFileGroupActs();
    void undoAndRedoGoToWhatHasTheKeyboard();
    void quickOpenIsRaised();
    void togglesFollowAndFlipTheirFlags_data();
    void togglesFollowAndFlipTheirFlags();
    void theRunButtonShowsForWhatCanRun_data();
    void theRunButtonShowsForWhatCanRun();
    void choosingALanguageChangesWhetherItRuns();
    void theFormatMenuListsItsLines();
    void theFormatMenuActsOnTheDocument_data();
    void theFormatMenuActsOnTheDocument();
    void formatXmlHereNeverParses();
    void withoutADocumentTheFormatMenuDoesNothing();
    void everyButtonIsReachedByTabAndNamed();
    void runRuns();
    void theGearOpensTheSettings();
};

void ToolBarViewTest::buttonsStandInTheirOrder()
{
    Fixture fixture;
    fixture.show(u"1"_s, Language::python);
    const QStringList order{u"Back"_s,
                            u"Forward"_s,
                            inPlatformWords(u"New File (⌘N)"_s),
                            inPlatformWords(u"Open (⌘O)"_s),
                            inPlatformWords(u"Save (⌘S)"_s),
                            inPlatformWords(u"Undo (⌘Z)"_s),
                            inPlatformWords(u"Redo (⇧⌘Z)"_s),
                            inPlatformWords(u"Run (⌘R)"_s),
                            u"Format & Transform"_s,
                            inPlatformWords(u"Toggle Sidebar (⌘B)"_s),
                            inPlatformWords(u"Toggle Minimap (⇧⌘M)"_s),
                            inPlatformWords(u"Toggle Bottom Panel (⌃`)"_s),
                            u"Settings"_s};
    int right = 70;
    for (const QString& help : order) {
        PlainButton& button = fixture.button(help);
        QVERIFY2(button.x() >= right, qPrintable(help));
        right = button.geometry().right();
    }
    QCOMPARE(fixture.button(u"Back"_s).x(), 70);
    QVERIFY(right < fixture.bar.width());
}

void ToolBarViewTest::backAndForwardAreDisabled()
{
    const Fixture fixture;
    QVERIFY(!fixture.button(u"Back"_s).isEnabled());
    QVERIFY(!fixture.button(u"Forward"_s).isEnabled());
}

void ToolBarViewTest::theFileGroupActs()
{
    Fixture fixture;
    fixture.click(inPlatformWords(u"New File (⌘N)"_s));
    QCOMPARE(fixture.state.documents().size(), 1);
    const QUrl file = fixture.write(u"a.txt"_s, "a");
    fixture.panels.openAnswer = {{file, false}};
    fixture.click(inPlatformWords(u"Open (⌘O)"_s));
    QCOMPARE(fixture.state.documents().size(), 2);
    fixture.state.currentDocument()->setContent(u"b"_s);
    fixture.click(inPlatformWords(u"Save (⌘S)"_s));
    QCOMPARE(WindowFixture::read(file), QByteArray("b"));
}

void ToolBarViewTest::undoAndRedoGoToWhatHasTheKeyboard()
{
    Fixture fixture;
    const auto document = fixture.show({});
    QTest::keyClicks(&fixture.text(), u"abc"_s);
    fixture.click(inPlatformWords(u"Undo (⌘Z)"_s));
    QCOMPARE(document->content(), QString());
    fixture.click(inPlatformWords(u"Redo (⇧⌘Z)"_s));
    QCOMPARE(document->content(), u"abc"_s);
}

void ToolBarViewTest::quickOpenIsRaised()
{
    Fixture fixture;
    // What it lists are the files that were opened last.
    QCOMPARE(fixture.button(u"Reopen a recent file by its name"_s).text(), u"Quick Open"_s);
    clickOn(fixture.bar, u"Quick Open"_s);
    QVERIFY(fixture.state.showQuickOpen());
}

void ToolBarViewTest::togglesFollowAndFlipTheirFlags_data()
{
    QTest::addColumn<QString>("help");
    QTest::addColumn<QByteArray>("flag");
    QTest::newRow("sidebar") << inPlatformWords(u"Toggle Sidebar (⌘B)"_s) << QByteArray("showSidebar");
    QTest::newRow("minimap") << inPlatformWords(u"Toggle Minimap (⇧⌘M)"_s) << QByteArray("showMinimap");
    QTest::newRow("bottom panel") << inPlatformWords(u"Toggle Bottom Panel (⌃`)"_s) << QByteArray("showBottomPanel");
}

void ToolBarViewTest::togglesFollowAndFlipTheirFlags()
{
    QFETCH(QString, help);
    QFETCH(QByteArray, flag);
    Fixture fixture;
    const bool before = fixture.state.property(flag).toBool();
    QCOMPARE(fixture.button(help).isChecked(), before);
    fixture.click(help);
    QCOMPARE(fixture.state.property(flag).toBool(), !before);
    QCOMPARE(fixture.button(help).isChecked(), !before);
    fixture.state.setProperty(flag, before);
    QCOMPARE(fixture.button(help).isChecked(), before);
}

void ToolBarViewTest::theRunButtonShowsForWhatCanRun_data()
{
    QTest::addColumn<Language>("language");
    QTest::addColumn<bool>("runs");
    for (const Language language : Language::allCases()) {
        const QSet<QString> running{u"Swift"_s, u"Python"_s, u"JavaScript"_s, u"TypeScript"_s,
                                    u"Go"_s,    u"Shell"_s,  u"Ruby"_s,       u"PHP"_s};
        QTest::addRow("%s", qPrintable(language.rawValue())) << language << running.contains(language.rawValue());
    }
}

void ToolBarViewTest::theRunButtonShowsForWhatCanRun()
{
    QFETCH(Language, language);
    QFETCH(bool, runs);
    Fixture fixture;
    PlainButton& button = fixture.button(inPlatformWords(u"Run (⌘R)"_s));
    QVERIFY(!button.isVisible());
    fixture.show({}, language);
    QCOMPARE(button.isVisible(), runs);
    fixture.state.openFile(fixture.write(u"a.sql"_s, "select"));
    QVERIFY(button.isVisible());
}

void ToolBarViewTest::choosingALanguageChangesWhetherItRuns()
{
    Fixture fixture;
    const auto document = fixture.show({});
    PlainButton& button = fixture.button(inPlatformWords(u"Run (⌘R)"_s));
    QVERIFY(!button.isVisible());
    document->setExplicitLanguage(Language::ruby);
    QVERIFY(button.isVisible());
    document->setExplicitLanguage(Language::sql);
    QVERIFY(!button.isVisible());
}

void ToolBarViewTest::theFormatMenuListsItsLines()
{
    Fixture fixture;
    QMenu* menu = openMenu(fixture.button(u"Format & Transform"_s));
    QVERIFY(menu != nullptr && menu->isVisible());
    QCOMPARE(linesOf(*menu),
             (QStringList{inPlatformWords(u"Format JSON (⇧⌘J)"_s), inPlatformWords(u"Format XML (⇧⌘X)"_s), u"-"_s,
                          u"Sort Lines Ascending"_s, u"Sort Lines Descending"_s, u"-"_s, u"Transform"_s}));
    QCOMPARE(linesOf(*menu->actions().last()->menu()),
             (QStringList{u"UPPERCASE"_s, u"lowercase"_s, u"Title Case"_s, u"camelCase"_s, u"snake_case"_s}));
    menu->close();
}

void ToolBarViewTest::theFormatMenuActsOnTheDocument_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    QTest::newRow("JSON") << inPlatformWords(u"Format JSON (⇧⌘J)"_s) << u"[1]"_s << u"[\n  1\n]"_s;
    QTest::newRow("sorted up") << u"Sort Lines Ascending"_s << u"b\na"_s << u"a\nb"_s;
    QTest::newRow("sorted down") << u"Sort Lines Descending"_s << u"a\nb"_s << u"b\na"_s;
    QTest::newRow("upper case") << u"UPPERCASE"_s << u"one two"_s << u"ONE TWO"_s;
    QTest::newRow("lower case") << u"lowercase"_s << u"ONE"_s << u"one"_s;
    QTest::newRow("title case") << u"Title Case"_s << u"one two"_s << u"One Two"_s;
    QTest::newRow("camel case") << u"camelCase"_s << u"one two"_s << u"oneTwo"_s;
    QTest::newRow("snake case") << u"snake_case"_s << u"oneTwo"_s << u"one_two"_s;
}

void ToolBarViewTest::theFormatMenuActsOnTheDocument()
{
    QFETCH(QString, line);
    QFETCH(QString, before);
    QFETCH(QString, after);
    Fixture fixture;
    const auto document = fixture.show(before);
    QMenu menu;
    fixture.bar.fillFormatMenu(menu);
    QList<QAction*> actions = menu.actions();
    actions.append(actions.last()->menu()->actions());
    for (QAction* action : actions) {
        if (action->text() == line) {
            action->trigger();
        }
    }
    QCOMPARE(document->content(), after);
    QVERIFY(document->isModified());
}

void ToolBarViewTest::formatXmlHereNeverParses()
{
    Fixture fixture;
    // A text that a parser takes, whose layout differs from the plain formatter's.
    const QString xml = u"<a><b>x</b></a>"_s;
    const auto document = fixture.show(xml);
    QMenu menu;
    fixture.bar.fillFormatMenu(menu);
    menu.actions().at(1)->trigger();
    QCOMPARE(document->content(), XMLFormatter::basicFormat(xml, 2));
}

void ToolBarViewTest::withoutADocumentTheFormatMenuDoesNothing()
{
    Fixture fixture;
    QMenu menu;
    fixture.bar.fillFormatMenu(menu);
    for (QAction* action : menu.actions()) {
        action->trigger();
    }
    QVERIFY(fixture.state.documents().isEmpty());
}

void ToolBarViewTest::everyButtonIsReachedByTabAndNamed()
{
    Fixture fixture;
    const auto buttons = fixture.bar.findChildren<PlainButton*>();
    PlainButton* first = &fixture.button(inPlatformWords(u"New File (⌘N)"_s));
    first->setFocus();
    QList<QWidget*> reached;
    for (int step = 0; step < 12; ++step) {
        reached.append(fixture.window.focusWidget());
        QTest::keyClick(fixture.window.focusWidget(), Qt::Key_Tab);
    }
    for (PlainButton* button : buttons) {
        QVERIFY(!button->text().isEmpty() || !button->accessibleName().isEmpty());
        QVERIFY(!button->isEnabled() || !button->isVisible() || reached.contains(button));
    }
}

void ToolBarViewTest::runRuns()
{
    Fixture fixture;
    fixture.show(u"exit 3\n"_s, Language::shell);
    fixture.click(inPlatformWords(u"Run (⌘R)"_s));
    QTRY_COMPARE(fixture.state.codeRunner().lastExitCode(), std::optional<qint32>(3));
    QVERIFY(fixture.state.showBottomPanel());
    QCOMPARE(fixture.state.bottomPanelTab(), BottomPanelTab(BottomPanelTab::output));
}

void ToolBarViewTest::theGearOpensTheSettings()
{
    Fixture fixture;
    QVERIFY(fixture.window.settings() == nullptr);
    fixture.click(u"Settings"_s);
    QVERIFY(fixture.window.settings() != nullptr && fixture.window.settings()->isVisible());
}

const kelm::test::Registered<ToolBarViewTest> registered(kelm::test::Toolkit::widgets);

} // namespace tool_bar_view_test

#include "tool_bar_view_test.moc"
