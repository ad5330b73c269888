#include "platform/style/view/style.h"
#include "platform/style/view/tint.h"
#include "platform/text/platform_words.h"
#include "platform/view/plain_help.h"
#include "search/view/quick_open_view.h"
#include "search/view/search_view_fixture.h"
#include "support/painted.h"
#include "support/test_program.h"

namespace quick_open_view_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

const QString quickPrompt = inPlatformWords(u"Go to file…  (Esc / ⌘W to close)"_s);

} // namespace

class QuickOpenViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void quickOpenListsRecentFiles();
    void quickOpenOpensWhatIsSelected();
    void bothReturnKeysOpen_data();
    void bothReturnKeysOpen();
    void theListFollowsTheRecentFiles();
    void quickOpenStopsAtTheEnds();
    void upAndDownMoveTheSelectionByOne();
    void eachRowHasASymbolAndTheSelectedOneAGround_data();
    void eachRowHasASymbolAndTheSelectedOneAGround();
    void thePanelHasItsWordsAndSymbol();
    void onlyTheSelectedRowIsMarked();
    void aSelectionBehindTheEndOpensNothing();
    void quickOpenClosesWithoutFiles();
    void itSaysWhenNothingMatches();
    void quickOpenClosesByItsKeysAndButton();
    void aClickOpensAFile();
    void theListKeepsItsHeight();
    void anyNameIsToldAsItIs();
};

void QuickOpenViewTest::quickOpenListsRecentFiles()
{
    SearchViewFixture fixture;
    fixture.setRecentFiles(3);
    auto& view = fixture.show<QuickOpenView>();
    QCOMPARE(view.filteredFiles(), fixture.state.recentFiles());
    QTest::keyClicks(&fixture.field(quickPrompt), u"FILE 2"_s);
    QCOMPARE(view.filteredFiles(), QList<QUrl>{fixture.state.recentFiles().at(2)});
    QCOMPARE(fixture.view->findChild<QListWidget*>()->count(), 1);
}

void QuickOpenViewTest::quickOpenOpensWhatIsSelected()
{
    SearchViewFixture fixture;
    fixture.setRecentFiles(3);
    fixture.state.setShowQuickOpen(true);
    fixture.show<QuickOpenView>();
    QTest::keyClick(&fixture.field(quickPrompt), Qt::Key_Down);
    QTest::keyClick(&fixture.field(quickPrompt), Qt::Key_Return);
    QCOMPARE(fixture.state.currentDocument()->title(), u"file 1.txt"_s);
    QVERIFY(!fixture.state.showQuickOpen());
}

void QuickOpenViewTest::bothReturnKeysOpen_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("Return") << Qt::Key_Return;
    QTest::newRow("the number block's") << Qt::Key_Enter;
}

void QuickOpenViewTest::bothReturnKeysOpen()
{
    QFETCH(Qt::Key, key);
    SearchViewFixture fixture;
    fixture.setRecentFiles(1);
    fixture.state.setShowQuickOpen(true);
    fixture.show<QuickOpenView>();
    QTest::keyClick(&fixture.field(quickPrompt), key);
    QCOMPARE(fixture.state.currentDocument()->title(), u"file 0.txt"_s);
    QVERIFY(!fixture.state.showQuickOpen());
}

void QuickOpenViewTest::theListFollowsTheRecentFiles()
{
    SearchViewFixture fixture;
    fixture.show<QuickOpenView>();
    const auto& list = *fixture.view->findChild<QListWidget*>();
    QCOMPARE(list.count(), 0);
    fixture.setRecentFiles(3);
    QCOMPARE(list.count(), 3);
    QCOMPARE(list.item(2)->text(), u"file 2.txt"_s);
    fixture.state.setRecentFiles({});
    QCOMPARE(list.count(), 0);
}

void QuickOpenViewTest::quickOpenStopsAtTheEnds()
{
    SearchViewFixture fixture;
    fixture.setRecentFiles(2);
    auto& view = fixture.show<QuickOpenView>();
    QTest::keyClick(&fixture.field(quickPrompt), Qt::Key_Up);
    QCOMPARE(view.selectedIndex(), 0);
    for (int press = 0; press < 4; ++press) {
        QTest::keyClick(&fixture.field(quickPrompt), Qt::Key_Down);
    }
    QCOMPARE(view.selectedIndex(), 1);
    QCOMPARE(fixture.view->findChild<QListWidget*>()->currentRow(), 1);
}

void QuickOpenViewTest::upAndDownMoveTheSelectionByOne()
{
    SearchViewFixture fixture;
    fixture.setRecentFiles(4);
    fixture.state.setShowQuickOpen(true);
    auto& view = fixture.show<QuickOpenView>();
    QLineEdit& field = fixture.field(quickPrompt);
    const auto after = [&](Qt::Key key) {
        QTest::keyClick(&field, key);
        return view.selectedIndex();
    };
    QCOMPARE(after(Qt::Key_Down), 1);
    QCOMPARE(after(Qt::Key_Down), 2);
    QCOMPARE(after(Qt::Key_Up), 1);
    QCOMPARE(after(Qt::Key_Up), 0);
    QCOMPARE(after(Qt::Key_Down), 1);
    // A selection behind the end moves up, and not down.
    QTest::keyClicks(&field, u"0"_s);
    QCOMPARE(view.selectedIndex(), 1);
    QCOMPARE(after(Qt::Key_Down), 1);
    QCOMPARE(fixture.markedRows(), QList<int>{});
    QCOMPARE(after(Qt::Key_Up), 0);
    QCOMPARE(fixture.markedRows(), QList<int>{0});
    QTest::keyClick(&field, Qt::Key_Return);
    QCOMPARE(fixture.state.currentDocument()->title(), u"file 0.txt"_s);
}

void QuickOpenViewTest::eachRowHasASymbolAndTheSelectedOneAGround_data()
{
    QTest::addColumn<Appearance>("appearance");
    QTest::newRow("dark") << Appearance::dark;
    QTest::newRow("light") << Appearance::light;
}

void QuickOpenViewTest::eachRowHasASymbolAndTheSelectedOneAGround()
{
    QFETCH(Appearance, appearance);
    SearchViewFixture fixture;
    fixture.setRecentFiles(3);
    auto& view = fixture.show<QuickOpenView>();
    view.setPalette(style::palette(appearance));
    QTest::keyClick(&fixture.field(quickPrompt), Qt::Key_Down);
    auto& list = *view.findChild<QListWidget*>();
    const QImage image = view.grab().toImage();
    const QColor panel = systemColor(SystemColor::windowBackground, appearance);
    const QColor marked = over(panel, Tint::accent().at(0.3).in(appearance));
    for (int row = 0; row < 3; ++row) {
        const QRect place(list.viewport()->mapTo(&view, list.visualItemRect(list.item(row)).topLeft()),
                          list.visualItemRect(list.item(row)).size());
        const QColor ground = row == 1 ? marked : panel;
        QVERIFY(isNear(image.pixelColor(place.right() - 20, place.center().y()), ground));
        const QImage symbol = symbolOn(ground, u"doc"_s, 16, Tint::secondary().in(appearance));
        const QRectF box = QRectF(place).adjusted(8, 1, -8, -1);
        QVERIFY(isSame(image.copy(int(box.left()) + 8, int(box.center().y() - 8), 16, 16), symbol));
    }
}

void QuickOpenViewTest::thePanelHasItsWordsAndSymbol()
{
    SearchViewFixture fixture;
    fixture.show<QuickOpenView>();
    QVERIFY(fixture.field(quickPrompt).text().isEmpty());
    PlainButton& close = *fixture.button(inPlatformWords(u"Close (Esc / ⌘W)"_s));
    QCOMPARE(close.look().symbol, u"xmark.circle.fill"_s);
    QVERIFY(icons::has(close.look().symbol));
    QCOMPARE(close.toolTip(), plainHelp(inPlatformWords(u"Close (Esc / ⌘W)"_s)));
    // Beside the field, and above the list.
    QVERIFY(close.x() > fixture.field(quickPrompt).geometry().right());
    QVERIFY(close.geometry().bottom() < fixture.view->findChild<QListWidget*>()->y());
}

void QuickOpenViewTest::onlyTheSelectedRowIsMarked()
{
    SearchViewFixture fixture;
    fixture.setRecentFiles(6);
    fixture.state.setShowQuickOpen(true);
    auto& view = fixture.show<QuickOpenView>();
    QCOMPARE(fixture.markedRows(), QList<int>{0});
    auto& list = *view.findChild<QListWidget*>();
    const QPoint third = list.visualItemRect(list.item(3)).center();
    QTest::mouseMove(list.viewport(), third);
    QCOMPARE(fixture.markedRows(), QList<int>{0});
    // A press that ends elsewhere chooses nothing.
    QTest::mousePress(list.viewport(), Qt::LeftButton, {}, third);
    QTest::mouseRelease(list.viewport(), Qt::LeftButton, {}, QPoint(third.x(), -20));
    QCOMPARE(view.selectedIndex(), 0);
    QCOMPARE(fixture.markedRows(), QList<int>{0});
    QTest::keyClick(&fixture.field(quickPrompt), Qt::Key_Down);
    QCOMPARE(fixture.markedRows(), QList<int>{1});
}

void QuickOpenViewTest::aSelectionBehindTheEndOpensNothing()
{
    SearchViewFixture fixture;
    fixture.setRecentFiles(6);
    fixture.state.setShowQuickOpen(true);
    auto& view = fixture.show<QuickOpenView>();
    for (int press = 0; press < 4; ++press) {
        QTest::keyClick(&fixture.field(quickPrompt), Qt::Key_Down);
    }
    QTest::keyClicks(&fixture.field(quickPrompt), u"5"_s);
    QCOMPARE(view.filteredFiles().size(), 1);
    QCOMPARE(view.selectedIndex(), 4);
    QCOMPARE(fixture.markedRows(), QList<int>{});
    QTest::keyClick(&fixture.field(quickPrompt), Qt::Key_Return);
    QVERIFY(fixture.state.documents().isEmpty());
    QVERIFY(!fixture.state.showQuickOpen());
}

void QuickOpenViewTest::quickOpenClosesWithoutFiles()
{
    SearchViewFixture fixture;
    fixture.state.setShowQuickOpen(true);
    fixture.show<QuickOpenView>();
    QTest::keyClick(&fixture.field(quickPrompt), Qt::Key_Return);
    QVERIFY(!fixture.state.showQuickOpen());
}

void QuickOpenViewTest::quickOpenClosesByItsKeysAndButton()
{
    SearchViewFixture fixture;
    fixture.show<QuickOpenView>();
    fixture.state.setShowQuickOpen(true);
    QTest::keyClick(&fixture.field(quickPrompt), Qt::Key_Escape);
    QVERIFY(!fixture.state.showQuickOpen());
    fixture.state.setShowQuickOpen(true);
    QTest::keyClick(&fixture.field(quickPrompt), Qt::Key_W, Qt::ControlModifier);
    QVERIFY(!fixture.state.showQuickOpen());
    fixture.state.setShowQuickOpen(true);
    QTest::mouseClick(fixture.button(inPlatformWords(u"Close (Esc / ⌘W)"_s)), Qt::LeftButton);
    QVERIFY(!fixture.state.showQuickOpen());
}

void QuickOpenViewTest::aClickOpensAFile()
{
    SearchViewFixture fixture;
    fixture.setRecentFiles(3);
    fixture.state.setShowQuickOpen(true);
    fixture.show<QuickOpenView>();
    auto* list = fixture.view->findChild<QListWidget*>();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(list->item(2)).center());
    QCOMPARE(fixture.state.currentDocument()->title(), u"file 2.txt"_s);
    QVERIFY(!fixture.state.showQuickOpen());
}

void QuickOpenViewTest::theListKeepsItsHeight()
{
    SearchViewFixture fixture;
    fixture.setRecentFiles(10);
    QCOMPARE(fixture.show<QuickOpenView>().contentsRect().width(), 600);
    QCOMPARE(fixture.view->findChild<QListWidget*>()->height(), 300);
    fixture.setRecentFiles(30);
    QCOMPARE(fixture.view->findChild<QListWidget*>()->height(), 300);
}

void QuickOpenViewTest::itSaysWhenNothingMatches()
{
    const QString words = u"No matching files"_s;
    SearchViewFixture fixture;
    auto& view = fixture.show<QuickOpenView>();
    // Nothing is looked for.
    QVERIFY(!fixture.shows(words));
    fixture.setRecentFiles(12);
    QTest::keyClicks(&fixture.field(quickPrompt), u"file"_s);
    QVERIFY(!fixture.shows(words));
    QTRY_COMPARE(view.height(), view.maximumHeight());
    QTest::keyClicks(&fixture.field(quickPrompt), u" 99"_s);
    QVERIFY(fixture.shows(words));
    fixture.field(quickPrompt).clear();
    QVERIFY(!fixture.shows(words));
}

void QuickOpenViewTest::anyNameIsToldAsItIs()
{
    SearchViewFixture fixture;
    QFile file(fixture.folder.filePath(u"50%2.txt"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    fixture.state.openFile(QUrl::fromLocalFile(file.fileName()));
    fixture.show<QuickOpenView>();
    QCOMPARE(fixture.field(quickPrompt).accessibleDescription(), u"50%2.txt, 1 of 1"_s);
}

const kelm::test::Registered<QuickOpenViewTest> registered(kelm::test::Toolkit::widgets);

} // namespace quick_open_view_test

#include "quick_open_view_test.moc"
