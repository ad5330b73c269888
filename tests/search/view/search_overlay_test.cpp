#include "search/view/search_overlay.h"
#include "search/view/search_view_fixture.h"
#include "support/test_program.h"

namespace search_overlay_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

class SearchOverlayTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void theOverlaysTitleAndRowsFollowTheMode_data();
    void theOverlaysTitleAndRowsFollowTheMode();
    void theOverlayClosesByButtonAndEscape();
    void escapeElsewhereIsNotTheOverlays();
    void theOverlayChangesNothing();
    void itTellsWhatIsAskedForAndDoesNotDoIt();
    void itIsWide();
};

void SearchOverlayTest::theOverlaysTitleAndRowsFollowTheMode_data()
{
    QTest::addColumn<SearchMode>("mode");
    QTest::addColumn<QString>("title");
    QTest::addColumn<bool>("replaces");
    QTest::newRow("find") << SearchMode::find << u"Find"_s << false;
    QTest::newRow("replace") << SearchMode::replace << u"Find and Replace"_s << true;
    QTest::newRow("project") << SearchMode::project << u"Find"_s << false;
}

void SearchOverlayTest::theOverlaysTitleAndRowsFollowTheMode()
{
    QFETCH(SearchMode, mode);
    QFETCH(QString, title);
    QFETCH(bool, replaces);
    SearchViewFixture fixture;
    fixture.show<SearchOverlay>();
    fixture.state.setSearchMode(mode);
    QVERIFY(fixture.shows(title));
    QCOMPARE(fixture.field(u"Replace"_s).isVisible(), replaces);
    QCOMPARE(fixture.button(u"Replace All"_s) != nullptr, replaces);
    QVERIFY(fixture.field(u"Find"_s).hasFocus());
    QVERIFY(fixture.button(u"Case Sensitive"_s) != nullptr);
    QVERIFY(fixture.button(u"Use Regular Expression"_s) != nullptr);
}

void SearchOverlayTest::theOverlayClosesByButtonAndEscape()
{
    SearchViewFixture fixture;
    fixture.state.setShowSearch(true);
    fixture.show<SearchOverlay>();
    QTest::keyClick(&fixture.field(u"Find"_s), Qt::Key_Escape);
    QVERIFY(!fixture.state.showSearch());
    fixture.state.setShowSearch(true);
    QTest::mouseClick(fixture.button(u"Close"_s), Qt::LeftButton);
    QVERIFY(!fixture.state.showSearch());
}

void SearchOverlayTest::escapeElsewhereIsNotTheOverlays()
{
    SearchViewFixture fixture;
    fixture.state.setShowSearch(true);
    fixture.state.setSearchMode(SearchMode::replace);
    fixture.show<SearchOverlay>();
    fixture.field(u"Replace"_s).setFocus();
    QTest::keyClick(&fixture.field(u"Replace"_s), Qt::Key_Escape);
    QVERIFY(fixture.state.showSearch());
}

void SearchOverlayTest::theOverlayChangesNothing()
{
    SearchViewFixture fixture;
    fixture.state.openSnippet(u"one one"_s, Language::plainText, std::nullopt);
    fixture.state.setShowSearch(true);
    fixture.state.setSearchMode(SearchMode::replace);
    fixture.show<SearchOverlay>();
    QTest::keyClicks(&fixture.field(u"Find"_s), u"one"_s);
    QTest::keyClick(&fixture.field(u"Find"_s), Qt::Key_Return);
    QTest::keyClicks(&fixture.field(u"Replace"_s), u"two"_s);
    QTest::mouseClick(fixture.button(u"Replace"_s), Qt::LeftButton);
    QTest::mouseClick(fixture.button(u"Replace All"_s), Qt::LeftButton);
    QCOMPARE(fixture.state.currentDocument()->content(), u"one one"_s);
    QVERIFY(!fixture.state.currentDocument()->isModified());
    QVERIFY(fixture.state.showSearch());
}

void SearchOverlayTest::itTellsWhatIsAskedForAndDoesNotDoIt()
{
    SearchViewFixture fixture;
    fixture.state.setSearchMode(SearchMode::replace);
    auto& panel = fixture.show<SearchOverlay>();
    const std::shared_ptr<const FindRequest> request = panel.request();
    const QSignalSpy searches(&panel, &SearchOverlay::searchAskedFor);
    const QSignalSpy bars(&panel, &SearchOverlay::findBarAskedFor);
    QTest::keyClicks(&fixture.field(u"Find"_s), u"one"_s);
    QTest::keyClicks(&fixture.field(u"Replace"_s), u"two"_s);
    QTest::mouseClick(fixture.button(u"Case Sensitive"_s), Qt::LeftButton);
    QCOMPARE(searches.size(), 0);
    QTest::keyClick(&fixture.field(u"Find"_s), Qt::Key_Return);
    QTest::keyClick(&fixture.field(u"Replace"_s), Qt::Key_Enter);
    QTest::mouseClick(fixture.button(u"Replace"_s), Qt::LeftButton);
    QTest::mouseClick(fixture.button(u"Replace All"_s), Qt::LeftButton);
    QCOMPARE(searches.size(), 4);
    QCOMPARE(bars.size(), 0);
    panel.findNext();
    panel.findPrevious();
    QCOMPARE(bars.size(), 2);
    QCOMPARE(request->text, u"one"_s);
    QCOMPARE(request->replacement, u"two"_s);
    QVERIFY(request->replaces && request->isCaseSensitive && !request->isPattern);
    fixture.state.setSearchMode(SearchMode::find);
    QVERIFY(!request->replaces);
    QCOMPARE(fixture.field(u"Find"_s).text(), u"one"_s);
}

void SearchOverlayTest::itIsWide()
{
    SearchViewFixture fixture;
    QCOMPARE(fixture.show<SearchOverlay>().contentsRect().width(), 400);
}

const kelm::test::Registered<SearchOverlayTest> registered(kelm::test::Toolkit::widgets);

} // namespace search_overlay_test

#include "search_overlay_test.moc"
