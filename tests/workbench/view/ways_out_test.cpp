#include "app/state/notices.h"
#include "platform/view/plain_button.h"
#include "settings/settings_table.h"
#include "settings/view/settings_view.h"
#include "support/test_program.h"
#include "text/view/find_bar.h"
#include "workbench/status/view/status_bar_view.h"
#include "workbench/view/controls.h"
#include "workbench/view/notice_bar.h"
#include "workbench/view/settings_line.h"
#include "workbench/view/window_fixture.h"

#include <QCheckBox>
#include <QLineEdit>

namespace ways_out_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

const QString findWords = u"Text is searched by the find bar."_s;
const QString storedWords = u"Stored. This version does not use it yet."_s;
const QString content = u"One two\none two\n"_s + u"line\n"_s.repeated(200);

/// A window with a text of some screens, its caret in the second line.
struct Fixture : WindowFixture
{
    explicit Fixture(const QString& shown = content)
    {
        openSnippet(shown, Language::plainText);
        turnQueue();
        text().setSelectedRange({8, 0});
    }

    void openPanel(SearchMode mode)
    {
        state.setShowSearch(true);
        state.setSearchMode(mode);
        turnQueue();
    }
    QLineEdit& field(const QString& prompt)
    {
        for (auto* field : window.findChildren<QLineEdit*>()) {
            if (field->placeholderText() == prompt && field->isVisible() &&
                qobject_cast<FindBar*>(field->parentWidget()) == nullptr) {
                return *field;
            }
        }
        qFatal("no field");
    }
    /// A key of the whole window, as the menus have them.
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(window.focusWidget(), key, modifiers);
        turnQueue();
    }
    void goToLine(const QString& number)
    {
        state.setShowGoToLine(true);
        turnQueue();
        QTest::keyClicks(window.focusWidget(), number);
        press(Qt::Key_Return);
    }
    FindBar& bar() { return text().findBar(); }
    QString notice() const
    {
        const Notice* current = state.notices().current();
        return current != nullptr ? current->text : QString();
    }
    QStringList offers() const
    {
        QStringList labels;
        if (const Notice* current = state.notices().current()) {
            for (const NoticeOffer& offer : current->offers) {
                labels.append(offer.label);
            }
        }
        return labels;
    }
    /// Once it is to be seen.
    NoticeBar& noticeBar()
    {
        if (!QTest::qWaitFor([this] { return window.noticeBar().isVisible(); }, kelm::test::patience)) {
            qFatal("no notice");
        }
        turnQueue();
        return window.noticeBar();
    }
    QString line()
    {
        turnQueue();
        return QString::number(state.currentDocument()->cursorPosition().line);
    }
};

} // namespace

class WaysOutTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void thePanelSearchesNothingAndSaysSo_data();
    void thePanelSearchesNothingAndSaysSo();
    void theOfferOpensTheFindBarWithWhatWasTypedAndChosen();
    void theOfferHasWhatIsTypedLast();
    void plainFindLeavesTheReplacementOut();
    void aKeyOfTheFindBarTakesTheOfferAtOnce();
    void thatKeyTakesTheStandingOfferInTheText();
    void thatKeyStepsWhileTheFindBarIsOpen();
    void aNewPanelTakesTheOldOfferBack();
    void withoutATextThereIsNothingToOffer();
    void theNoticeTakesNoFocusAndTabReachesIt();
    void thePointerReachesTheNoticeUnderThePanel();
    void tabReachesTheNoticeOfAPanelThatHasGone();
    void goToLineMovesNothingAndOffersTheLine_data();
    void goToLineMovesNothingAndOffersTheLine();
    void aLineInAFoldIsShown();
    void aLineIsOneOfItsText();
    void whatIsNoLineSaysNothing();
    void theFirstChangeOfASettingTellsThatItIsStored_data();
    void theFirstChangeOfASettingTellsThatItIsStored();
    void theSettingsWindowSaysSoToo();
    void whatIsNoSettingTellsNothing();
    void otherCommandsWithoutEffectSayNothing();
};

void WaysOutTest::thePanelSearchesNothingAndSaysSo_data()
{
    QTest::addColumn<SearchMode>("mode");
    QTest::addColumn<QString>("pressed");
    QTest::addColumn<QString>("words");
    QTest::newRow("find") << SearchMode::find << u"Find"_s << findWords;
    QTest::newRow("replace, find") << SearchMode::replace << u"Find"_s << findWords;
    QTest::newRow("replace, replacement") << SearchMode::replace << u"Replace"_s << findWords;
    QTest::newRow("one") << SearchMode::replace << u"button Replace"_s << findWords;
    QTest::newRow("all") << SearchMode::replace << u"button Replace All"_s << findWords;
    QTest::newRow("project")
        << SearchMode::project << u"Find"_s
        << u"Text is searched by the find bar, and the project's files by Search in the sidebar."_s;
}

void WaysOutTest::thePanelSearchesNothingAndSaysSo()
{
    QFETCH(SearchMode, mode);
    QFETCH(QString, pressed);
    Fixture fixture;
    fixture.openPanel(mode);
    QTest::keyClicks(&fixture.field(u"Find"_s), u"one"_s);
    QCOMPARE(fixture.notice(), QString());
    if (pressed.startsWith(u"button ")) {
        clickOn(fixture.window, pressed.mid(7));
    } else {
        QTest::keyClick(&fixture.field(pressed), Qt::Key_Return);
    }
    QTEST(fixture.notice(), "words");
    QCOMPARE(fixture.offers(), QStringList{u"Find in text"_s});
    QVERIFY(fixture.state.showSearch());
    QCOMPARE(fixture.field(u"Find"_s).text(), u"one"_s);
    QVERIFY(fixture.bar().isHidden());
    QCOMPARE(fixture.text().text(), content);
    QVERIFY(!fixture.state.currentDocument()->isModified());
    QCOMPARE(fixture.text().selectedRange(), (TextRange{8, 0}));
    // Once more is said once.
    QTest::keyClick(&fixture.field(u"Find"_s), Qt::Key_Return);
    fixture.state.notices().putAway();
    QVERIFY(fixture.state.notices().current() == nullptr);
}

void WaysOutTest::theOfferOpensTheFindBarWithWhatWasTypedAndChosen()
{
    Fixture fixture;
    fixture.openPanel(SearchMode::replace);
    QTest::keyClicks(&fixture.field(u"Find"_s), u"o.e"_s);
    QTest::keyClicks(&fixture.field(u"Replace"_s), u"1"_s);
    clickOn(fixture.window, u"Case Sensitive"_s);
    clickOn(fixture.window, u"Use Regular Expression"_s);
    clickOn(fixture.window, u"Replace All"_s);
    fixture.state.notices().accept(0);
    fixture.turnQueue();
    QVERIFY(!fixture.state.showSearch());
    QCOMPARE(fixture.notice(), QString());
    QVERIFY(fixture.bar().isVisible());
    QVERIFY(fixture.bar().isAncestorOf(fixture.window.focusWidget()));
    const SearchEngine& engine = fixture.bar().engine();
    QCOMPARE(engine.searchText(), u"o.e"_s);
    QCOMPARE(engine.replaceText(), u"1"_s);
    QVERIFY(engine.caseSensitive() && engine.useRegex() && !engine.wholeWord());
    QVERIFY(visibleButton(fixture.bar(), u"Match case"_s)->isChecked());
    QVERIFY(visibleButton(fixture.bar(), u"Regular expression"_s)->isChecked());
    QCOMPARE(fixture.text().text(), content);
    // It works there.
    clickOn(fixture.bar(), u"Replace all matches"_s);
    QTRY_VERIFY(fixture.text().text().startsWith(u"One two\n1 two\n"));
}

void WaysOutTest::theOfferHasWhatIsTypedLast()
{
    Fixture fixture;
    fixture.openPanel(SearchMode::find);
    QTest::keyClicks(&fixture.field(u"Find"_s), u"tw"_s);
    QTest::keyClick(&fixture.field(u"Find"_s), Qt::Key_Return);
    QTest::keyClicks(&fixture.field(u"Find"_s), u"o"_s);
    fixture.press(Qt::Key_Escape);
    QVERIFY(!fixture.state.showSearch());
    QCOMPARE(fixture.notice(), findWords);
    fixture.state.notices().accept(0);
    QCOMPARE(fixture.bar().engine().searchText(), u"two"_s);
}

void WaysOutTest::plainFindLeavesTheReplacementOut()
{
    Fixture fixture;
    fixture.openPanel(SearchMode::find);
    QTest::keyClicks(&fixture.field(u"Find"_s), u"two"_s);
    QTest::keyClick(&fixture.field(u"Find"_s), Qt::Key_Return);
    fixture.state.notices().accept(0);
    QVERIFY(visibleButton(fixture.bar(), u"Done"_s) != nullptr);
    QVERIFY(visibleButton(fixture.bar(), u"Replace all matches"_s) == nullptr);
}

void WaysOutTest::aKeyOfTheFindBarTakesTheOfferAtOnce()
{
    for (const Qt::KeyboardModifiers modifiers : {Qt::KeyboardModifiers(), Qt::KeyboardModifiers(Qt::ShiftModifier)}) {
        Fixture fixture;
        fixture.openPanel(SearchMode::find);
        QTest::keyClicks(&fixture.field(u"Find"_s), u"two"_s);
        fixture.press(Qt::Key_F3, modifiers);
        QVERIFY(!fixture.state.showSearch());
        QVERIFY(fixture.bar().isVisible());
        QCOMPARE(fixture.bar().engine().searchText(), u"two"_s);
        QCOMPARE(fixture.notice(), QString());
    }
}

void WaysOutTest::thatKeyTakesTheStandingOfferInTheText()
{
    Fixture fixture;
    fixture.openPanel(SearchMode::find);
    QTest::keyClicks(&fixture.field(u"Find"_s), u"two"_s);
    QTest::keyClick(&fixture.field(u"Find"_s), Qt::Key_Return);
    fixture.press(Qt::Key_Escape);
    QVERIFY(fixture.text().hasFocus());
    fixture.press(Qt::Key_F3);
    QVERIFY(fixture.bar().isVisible());
    QCOMPARE(fixture.bar().engine().searchText(), u"two"_s);
    QCOMPARE(fixture.notice(), QString());
}

void WaysOutTest::thatKeyStepsWhileTheFindBarIsOpen()
{
    Fixture fixture;
    fixture.openPanel(SearchMode::find);
    QTest::keyClicks(&fixture.field(u"Find"_s), u"line"_s);
    QTest::keyClick(&fixture.field(u"Find"_s), Qt::Key_Return);
    fixture.press(Qt::Key_Escape);
    fixture.text().setSelectedRange({0, 3});
    fixture.text().showFindBar();
    fixture.text().setFocus();
    fixture.press(Qt::Key_F3);
    QCOMPARE(fixture.bar().engine().searchText(), u"One"_s);
    QTRY_COMPARE(fixture.text().selectedRange(), (TextRange{8, 3}));
    // The offer has gone with the bar's opening, and does not come back with its end.
    QCOMPARE(fixture.notice(), QString());
    fixture.press(Qt::Key_Escape);
    fixture.text().setSelectedRange({0, 0});
    fixture.press(Qt::Key_F3);
    QTRY_COMPARE(fixture.text().selectedRange(), (TextRange{0, 3}));
    QVERIFY(fixture.bar().isHidden());
}

void WaysOutTest::aNewPanelTakesTheOldOfferBack()
{
    Fixture fixture;
    fixture.openPanel(SearchMode::find);
    QTest::keyClick(&fixture.field(u"Find"_s), Qt::Key_Return);
    fixture.press(Qt::Key_Escape);
    fixture.openPanel(SearchMode::find);
    QCOMPARE(fixture.notice(), QString());
}

void WaysOutTest::withoutATextThereIsNothingToOffer()
{
    Fixture fixture;
    fixture.state.closeTab(0);
    fixture.openPanel(SearchMode::find);
    QTest::keyClick(&fixture.field(u"Find"_s), Qt::Key_Return);
    QCOMPARE(fixture.notice(), QString(findWords + u" No text is open."_s));
    QVERIFY(fixture.offers().isEmpty());
    fixture.press(Qt::Key_F3);
    QVERIFY(fixture.state.showSearch());
    fixture.state.notices().putAway();
    fixture.state.setShowSearch(false);
    fixture.goToLine(u"3"_s);
    QCOMPARE(fixture.notice(), u"Line 3: no text is open."_s);
    QVERIFY(fixture.offers().isEmpty());
}

void WaysOutTest::theNoticeTakesNoFocusAndTabReachesIt()
{
    Fixture fixture;
    fixture.openPanel(SearchMode::replace);
    QLineEdit& field = fixture.field(u"Find"_s);
    QTest::keyClick(&field, Qt::Key_Return);
    const NoticeBar& bar = fixture.noticeBar();
    QVERIFY(field.hasFocus());
    for (const Qt::Key key : {Qt::Key_Tab, Qt::Key_Backtab}) {
        // Round once: the panel's seven, the offer, and what puts the notice away.
        QSet<QWidget*> stops;
        for (int step = 0; step < 9; ++step) {
            stops.insert(fixture.window.focusWidget());
            fixture.press(key);
        }
        QVERIFY(field.hasFocus());
        QCOMPARE(stops.size(), 9);
        QVERIFY(stops.contains(bar.offers().front()));
        QVERIFY(stops.contains(bar.putAwayButton()));
    }
    while (!bar.offers().front()->hasFocus()) {
        fixture.press(Qt::Key_Tab);
    }
    fixture.press(Qt::Key_Space);
    QVERIFY(fixture.bar().isVisible());
    QVERIFY(!fixture.state.showSearch());
}

void WaysOutTest::thePointerReachesTheNoticeUnderThePanel()
{
    Fixture fixture;
    fixture.openPanel(SearchMode::find);
    QTest::keyClick(&fixture.field(u"Find"_s), Qt::Key_Return);
    PlainButton* const offer = fixture.noticeBar().offers().front();
    const QPoint middle = offer->mapTo(&fixture.window, offer->rect().center());
    QCOMPARE(fixture.window.childAt(middle), offer);
    // What stands above it is dimmed as before.
    QVERIFY(fixture.window.childAt(middle - QPoint(0, 60)) != nullptr);
    QVERIFY(!fixture.window.centralWidget()->isAncestorOf(fixture.window.childAt(middle - QPoint(0, 60))));
    QTest::mouseClick(fixture.window.windowHandle(), Qt::LeftButton, {}, middle);
    QVERIFY(fixture.bar().isVisible());
}

void WaysOutTest::tabReachesTheNoticeOfAPanelThatHasGone()
{
    Fixture fixture;
    fixture.goToLine(u"120"_s);
    const PlainButton& offer = *fixture.noticeBar().offers().front();
    QVERIFY(fixture.text().hasFocus());
    for (auto* button : fixture.window.statusBarView().findChildren<QAbstractButton*>()) {
        if (button->isVisible()) {
            button->setFocus(Qt::TabFocusReason);
        }
    }
    QVERIFY(!fixture.text().hasFocus());
    for (int step = 0; step < 12 && !offer.hasFocus(); ++step) {
        fixture.press(Qt::Key_Backtab);
    }
    QVERIFY(offer.hasFocus());
    fixture.press(Qt::Key_Return);
    QCOMPARE(fixture.line(), u"120"_s);
    QVERIFY(fixture.text().hasFocus());
}

void WaysOutTest::goToLineMovesNothingAndOffersTheLine_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("words");
    QTest::addColumn<QString>("line");
    QTest::newRow("a line") << u"120"_s << u"Line 120"_s << u"120"_s;
    QTest::newRow("the first") << u"+1"_s << u"Line 1"_s << u"1"_s;
    QTest::newRow("the last") << u"203"_s << u"Line 203"_s << u"203"_s;
    QTest::newRow("below") << u"-5"_s << u"Line -5"_s << u"1"_s;
    QTest::newRow("none") << u"0"_s << u"Line 0"_s << u"1"_s;
    QTest::newRow("beyond") << u"99999"_s << u"Line 99999"_s << u"203"_s;
    QTest::newRow("far below") << u"-9223372036854775808"_s << u"Line -9223372036854775808"_s << u"1"_s;
    QTest::newRow("far beyond") << u"9223372036854775807"_s << u"Line 9223372036854775807"_s << u"203"_s;
}

void WaysOutTest::goToLineMovesNothingAndOffersTheLine()
{
    QFETCH(QString, typed);
    Fixture fixture;
    const QRectF before = fixture.text().visibleRect();
    fixture.goToLine(typed);
    QVERIFY(!fixture.state.showGoToLine());
    QCOMPARE(fixture.log.printed.filter(u"Go to line: "_s).size(), 1);
    QCOMPARE(fixture.text().selectedRange(), (TextRange{8, 0}));
    QCOMPARE(fixture.text().visibleRect(), before);
    QVERIFY(fixture.text().hasFocus());
    QTEST(fixture.notice(), "words");
    QCOMPARE(fixture.offers(), QStringList{u"Show"_s});
    fixture.state.notices().accept(0);
    QCOMPARE(fixture.notice(), QString());
    QTEST(fixture.line(), "line");
    QCOMPARE(fixture.state.currentDocument()->cursorPosition().column, 1);
    const QRectF caret = fixture.text().caretRect(fixture.text().editor().selections().primary().head);
    QVERIFY(fixture.text().viewport()->rect().contains(caret.center().toPoint()));
    QVERIFY(fixture.text().hasFocus());
    QCOMPARE(fixture.text().text(), content);
}

void WaysOutTest::aLineInAFoldIsShown()
{
    const QString code = u"struct A {\n    var a = 1\n    var b = 2\n}\nlet c = 3\n"_s;
    Fixture fixture(code);
    fixture.state.currentDocument()->setExplicitLanguage(Language::swift);
    EditorContainerView& editor = *fixture.window.editorArea().currentEditor();
    QTRY_VERIFY(editor.isSettled() && !editor.codeFoldingManager().foldableRegions().empty());
    editor.lineNumberView().onFoldToggle(1);
    QVERIFY(fixture.text().text() != code);
    fixture.goToLine(u"5"_s);
    fixture.state.notices().accept(0);
    // It is not in the fold, which stays.
    QVERIFY(fixture.text().text() != code);
    QCOMPARE(fixture.text().text().mid(fixture.text().selectedRange().location), u"let c = 3\n"_s);
    fixture.goToLine(u"3"_s);
    fixture.state.notices().accept(0);
    QCOMPARE(fixture.text().text(), code);
    QCOMPARE(fixture.line(), u"3"_s);
}

void WaysOutTest::aLineIsOneOfItsText()
{
    Fixture fixture;
    fixture.goToLine(u"3"_s);
    fixture.goToLine(u"4"_s);
    QCOMPARE(fixture.notice(), u"Line 4"_s);
    fixture.state.createNewTab();
    QCOMPARE(fixture.notice(), QString());
}

void WaysOutTest::whatIsNoLineSaysNothing()
{
    Fixture fixture;
    fixture.goToLine(u"abc"_s);
    fixture.goToLine(u""_s);
    fixture.state.setShowGoToLine(true);
    fixture.turnQueue();
    QTest::keyClicks(fixture.window.focusWidget(), u"7"_s);
    fixture.press(Qt::Key_Escape);
    QCOMPARE(fixture.notice(), QString());
    QVERIFY(fixture.log.printed.isEmpty());
}

void WaysOutTest::theFirstChangeOfASettingTellsThatItIsStored_data()
{
    QTest::addColumn<QString>("key");
    for (const Setting& setting : settingsTable()) {
        QTest::newRow(qPrintable(setting.key)) << setting.key;
    }
}

void WaysOutTest::theFirstChangeOfASettingTellsThatItIsStored()
{
    QFETCH(QString, key);
    Fixture fixture;
    const Setting& setting = settingOf(key);
    const auto change = [&](const QVariant& value) {
        setSettingValue(fixture.defaults, setting, value);
        fixture.turnQueue();
    };
    const auto other = [&]() -> QVariant {
        switch (setting.control) {
        case Setting::Control::toggle:
            return !setting.defaultValue.toBool();
        case Setting::Control::picker:
            return setting.choices.last();
        case Setting::Control::stepper:
            return int(setting.minimum);
        case Setting::Control::slider:
            return setting.minimum;
        }
        return {};
    }();
    const bool showedMinimap = fixture.state.showMinimap();
    change(other);
    QCOMPARE(fixture.notice(), storedWords);
    QVERIFY(fixture.offers().isEmpty());
    QCOMPARE(settingValue(fixture.defaults, setting), other);
    // It has none here.
    QCOMPARE(fixture.state.showMinimap(), showedMinimap);
    fixture.state.notices().putAway();
    change(setting.defaultValue);
    QCOMPARE(fixture.notice(), QString());
}

void WaysOutTest::theSettingsWindowSaysSoToo()
{
    Fixture fixture;
    fixture.window.openSettings();
    QWidget& settings = *fixture.window.settings();
    auto* line = settings.findChild<SettingsLine*>();
    QVERIFY(line->isHidden());
    const QImage before = settings.grab().toImage();
    for (auto* box : settings.findChildren<QCheckBox*>()) {
        if (box->isVisible()) {
            QTest::mouseClick(box, Qt::LeftButton);
            QTest::mouseClick(box, Qt::LeftButton);
            break;
        }
    }
    QCOMPARE(fixture.notice(), storedWords);
    QVERIFY(line->isVisible());
    QCOMPARE(line->geometry().bottom(), settings.rect().bottom());
    QVERIFY(settings.grab().toImage() != before);
    // It lies over nothing that can be pressed, on any tab.
    for (const auto* control : settings.findChildren<QAbstractButton*>()) {
        const QRect place(control->mapTo(&settings, QPoint()), control->size());
        QVERIFY2(control->isHidden() || !place.intersects(line->geometry()), qPrintable(control->text()));
    }
    QVERIFY(settings.childAt(line->geometry().center()) != line);
    fixture.state.notices().putAway();
    QVERIFY(line->isHidden());
    // What else is told is told in the window alone.
    fixture.state.notices().report(u"Something else."_s);
    QVERIFY(line->isHidden());
}

void WaysOutTest::whatIsNoSettingTellsNothing()
{
    Fixture fixture;
    fixture.state.saveRecentFiles();
    fixture.defaults.setString(u"somethingElse"_s, u"value"_s);
    fixture.themes.setCurrentTheme(fixture.themes.availableThemes().last());
    fixture.themes.saveTheme();
    QCOMPARE(fixture.notice(), QString());
}

void WaysOutTest::otherCommandsWithoutEffectSayNothing()
{
    Fixture fixture;
    fixture.command(Command::newWindow)->trigger();
    fixture.command(Command::runInTerminal)->trigger();
    QCOMPARE(fixture.notice(), QString());
    QVERIFY(fixture.state.showBottomPanel());
}

const kelm::test::Registered<WaysOutTest> registered(kelm::test::Toolkit::widgets);

} // namespace ways_out_test

#include "ways_out_test.moc"
