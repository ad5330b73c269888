#include "platform/view/plain_button.h"
#include "search/view/activity_line.h"
#include "search/view/go_to_line_view.h"
#include "search/view/project_search_view.h"
#include "search/view/quick_open_view.h"
#include "search/view/search_overlay.h"
#include "support/app_state_fixture.h"

#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QtTest>

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Fixture : AppStateFixture
{
    std::unique_ptr<QWidget> view;

    template <typename View, typename... Arguments>
    View& show(Arguments&... arguments)
    {
        auto made = std::make_unique<View>(state, arguments...);
        View& shown = *made;
        view = std::move(made);
        view->show();
        if (!QTest::qWaitForWindowActive(view.get())) {
            qFatal("no window");
        }
        view->setFocus();
        return shown;
    }
    QLineEdit& field(const QString& prompt) const
    {
        for (auto* field : view->findChildren<QLineEdit*>()) {
            if (field->placeholderText() == prompt) {
                return *field;
            }
        }
        qFatal("no field");
    }
    PlainButton* button(const QString& name) const
    {
        for (auto* button : view->findChildren<PlainButton*>()) {
            if (button->isVisible() && (button->text() == name || button->accessibleName() == name)) {
                return button;
            }
        }
        return nullptr;
    }
    bool shows(const QString& text) const
    {
        for (auto* widget : view->findChildren<QWidget*>()) {
            if (widget->isVisible() && widget->accessibleName() == text) {
                return true;
            }
        }
        return false;
    }
    /// The rows of the list that have another ground than the list has.
    QList<int> markedRows() const
    {
        auto& list = *view->findChild<QListWidget*>();
        const QImage picture = view->grab().toImage();
        const QColor plain = picture.pixelColor(view->contentsRect().left() + 2, list.geometry().center().y());
        QList<int> marked;
        for (int row = 0; row < list.count(); ++row) {
            const QPoint place = list.visualItemRect(list.item(row)).center() + QPoint(200, 0);
            if (picture.pixelColor(list.viewport()->mapTo(view.get(), place)) != plain) {
                marked.append(row);
            }
        }
        return marked;
    }
    void setRecentFiles(int count)
    {
        QList<QUrl> files;
        for (int file = 0; file < count; ++file) {
            files.append(write(u"file %1.txt"_s.arg(file), "text"));
        }
        state.setRecentFiles(files);
    }
};

const QString quickPrompt = u"Go to file…  (Esc / ⌘W to close)"_s;

} // namespace

class SearchViewsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void theOverlaysTitleAndRowsFollowTheMode_data();
    void theOverlaysTitleAndRowsFollowTheMode();
    void theOverlayClosesByButtonAndEscape();
    void escapeElsewhereIsNotTheOverlays();
    void theOverlayChangesNothing();
    void quickOpenListsRecentFiles();
    void quickOpenOpensWhatIsSelected();
    void quickOpenStopsAtTheEnds();
    void onlyTheSelectedRowIsMarked();
    void aSelectionBehindTheEndOpensNothing();
    void quickOpenClosesWithoutFiles();
    void quickOpenClosesByItsKeysAndButton();
    void aClickOpensAFile();
    void goToLinePrintsAndCloses_data();
    void goToLinePrintsAndCloses();
    void goToLineClosesOnEscape();
    void projectSearchListsAndOpens();
    void projectSearchKeepsOldResultsForAnEmptyField();
    void withoutAProjectNothingIsSearched();
    void sizesAreThoseOfTheDesign();
};

void SearchViewsTest::theOverlaysTitleAndRowsFollowTheMode_data()
{
    QTest::addColumn<SearchMode>("mode");
    QTest::addColumn<QString>("title");
    QTest::addColumn<bool>("replaces");
    QTest::newRow("find") << SearchMode::find << u"Find"_s << false;
    QTest::newRow("replace") << SearchMode::replace << u"Find and Replace"_s << true;
    QTest::newRow("project") << SearchMode::project << u"Find"_s << false;
}

void SearchViewsTest::theOverlaysTitleAndRowsFollowTheMode()
{
    QFETCH(SearchMode, mode);
    QFETCH(QString, title);
    QFETCH(bool, replaces);
    Fixture fixture;
    fixture.show<SearchOverlay>();
    fixture.state.setSearchMode(mode);
    QVERIFY(fixture.shows(title));
    QCOMPARE(fixture.field(u"Replace"_s).isVisible(), replaces);
    QCOMPARE(fixture.button(u"Replace All"_s) != nullptr, replaces);
    QVERIFY(fixture.field(u"Find"_s).hasFocus());
    QVERIFY(fixture.button(u"Case Sensitive"_s) != nullptr);
    QVERIFY(fixture.button(u"Use Regular Expression"_s) != nullptr);
}

void SearchViewsTest::theOverlayClosesByButtonAndEscape()
{
    Fixture fixture;
    fixture.state.setShowSearch(true);
    fixture.show<SearchOverlay>();
    QTest::keyClick(&fixture.field(u"Find"_s), Qt::Key_Escape);
    QVERIFY(!fixture.state.showSearch());
    fixture.state.setShowSearch(true);
    QTest::mouseClick(fixture.button(u"Close"_s), Qt::LeftButton);
    QVERIFY(!fixture.state.showSearch());
}

void SearchViewsTest::escapeElsewhereIsNotTheOverlays()
{
    Fixture fixture;
    fixture.state.setShowSearch(true);
    fixture.state.setSearchMode(SearchMode::replace);
    fixture.show<SearchOverlay>();
    fixture.field(u"Replace"_s).setFocus();
    QTest::keyClick(&fixture.field(u"Replace"_s), Qt::Key_Escape);
    QVERIFY(fixture.state.showSearch());
}

void SearchViewsTest::theOverlayChangesNothing()
{
    Fixture fixture;
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

void SearchViewsTest::quickOpenListsRecentFiles()
{
    Fixture fixture;
    fixture.setRecentFiles(3);
    auto& view = fixture.show<QuickOpenView>();
    QCOMPARE(view.filteredFiles(), fixture.state.recentFiles());
    QTest::keyClicks(&fixture.field(quickPrompt), u"FILE 2"_s);
    QCOMPARE(view.filteredFiles(), QList<QUrl>{fixture.state.recentFiles().at(2)});
    QCOMPARE(fixture.view->findChild<QListWidget*>()->count(), 1);
}

void SearchViewsTest::quickOpenOpensWhatIsSelected()
{
    Fixture fixture;
    fixture.setRecentFiles(3);
    fixture.state.setShowQuickOpen(true);
    fixture.show<QuickOpenView>();
    QTest::keyClick(&fixture.field(quickPrompt), Qt::Key_Down);
    QTest::keyClick(&fixture.field(quickPrompt), Qt::Key_Return);
    QCOMPARE(fixture.state.currentDocument()->title(), u"file 1.txt"_s);
    QVERIFY(!fixture.state.showQuickOpen());
}

void SearchViewsTest::quickOpenStopsAtTheEnds()
{
    Fixture fixture;
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

void SearchViewsTest::onlyTheSelectedRowIsMarked()
{
    Fixture fixture;
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

void SearchViewsTest::aSelectionBehindTheEndOpensNothing()
{
    Fixture fixture;
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

void SearchViewsTest::quickOpenClosesWithoutFiles()
{
    Fixture fixture;
    fixture.state.setShowQuickOpen(true);
    fixture.show<QuickOpenView>();
    QTest::keyClick(&fixture.field(quickPrompt), Qt::Key_Return);
    QVERIFY(!fixture.state.showQuickOpen());
}

void SearchViewsTest::quickOpenClosesByItsKeysAndButton()
{
    Fixture fixture;
    fixture.show<QuickOpenView>();
    fixture.state.setShowQuickOpen(true);
    QTest::keyClick(&fixture.field(quickPrompt), Qt::Key_Escape);
    QVERIFY(!fixture.state.showQuickOpen());
    fixture.state.setShowQuickOpen(true);
    QTest::keyClick(&fixture.field(quickPrompt), Qt::Key_W, Qt::ControlModifier);
    QVERIFY(!fixture.state.showQuickOpen());
    fixture.state.setShowQuickOpen(true);
    QTest::mouseClick(fixture.button(u"Close (Esc / ⌘W)"_s), Qt::LeftButton);
    QVERIFY(!fixture.state.showQuickOpen());
}

void SearchViewsTest::aClickOpensAFile()
{
    Fixture fixture;
    fixture.setRecentFiles(3);
    fixture.state.setShowQuickOpen(true);
    fixture.show<QuickOpenView>();
    auto* list = fixture.view->findChild<QListWidget*>();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(list->item(2)).center());
    QCOMPARE(fixture.state.currentDocument()->title(), u"file 2.txt"_s);
    QVERIFY(!fixture.state.showQuickOpen());
}

void SearchViewsTest::goToLinePrintsAndCloses_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QStringList>("printed");
    QTest::newRow("a number") << u"42"_s << QStringList{u"Go to line: 42"_s};
    QTest::newRow("negative") << u"-5"_s << QStringList{u"Go to line: -5"_s};
    QTest::newRow("with a plus") << u"+7"_s << QStringList{u"Go to line: 7"_s};
    QTest::newRow("letters") << u"abc"_s << QStringList();
    QTest::newRow("a blank before") << u" 4"_s << QStringList();
    QTest::newRow("too large") << u"99999999999999999999"_s << QStringList();
    QTest::newRow("empty") << QString() << QStringList();
}

void SearchViewsTest::goToLinePrintsAndCloses()
{
    QFETCH(QString, typed);
    QFETCH(QStringList, printed);
    Fixture fixture;
    fixture.state.setShowGoToLine(true);
    fixture.show<GoToLineView>(fixture.log);
    fixture.log.printed.clear();
    QTest::keyClicks(&fixture.field(u"Line number"_s), typed);
    QTest::keyClick(&fixture.field(u"Line number"_s), Qt::Key_Return);
    QCOMPARE(fixture.log.printed, printed);
    QVERIFY(!fixture.state.showGoToLine());
}

void SearchViewsTest::goToLineClosesOnEscape()
{
    Fixture fixture;
    fixture.state.setShowGoToLine(true);
    fixture.show<GoToLineView>(fixture.log);
    QTest::keyClicks(&fixture.field(u"Line number"_s), u"4"_s);
    QTest::keyClick(&fixture.field(u"Line number"_s), Qt::Key_Escape);
    QVERIFY(!fixture.state.showGoToLine());
    QVERIFY(!fixture.log.printed.contains(u"Go to line: 4"_s));
}

void SearchViewsTest::projectSearchListsAndOpens()
{
    Fixture fixture;
    fixture.write(u"a.txt"_s, "one\ntwo\n");
    fixture.write(u"b.txt"_s, "two two\n");
    fixture.state.setCurrentProject(QUrl::fromLocalFile(fixture.folder.path()));
    auto& view = fixture.show<ProjectSearchView>();
    view.resize(300, 400);
    QVERIFY(fixture.shows(u"No results"_s));
    QTest::keyClicks(&fixture.field(u"Search in files"_s), u"TWO"_s);
    QVERIFY(!view.isSearching());
    QTest::keyClick(&fixture.field(u"Search in files"_s), Qt::Key_Return);
    QVERIFY(view.findChild<ActivityLine*>()->isActive());
    QTRY_VERIFY(!view.isSearching());
    QVERIFY(!view.findChild<ActivityLine*>()->isActive());
    QCOMPARE(view.results().size(), 2);
    QVERIFY(!fixture.shows(u"No results"_s));
    auto* list = view.findChild<QListView*>();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualRect(list->model()->index(1, 0)).center());
    QCOMPARE(fixture.state.currentDocument()->fileURL(), std::optional(view.results().at(1).fileURL));
    QCOMPARE(fixture.state.currentDocument()->cursorPosition(), CursorPosition());
}

void SearchViewsTest::projectSearchKeepsOldResultsForAnEmptyField()
{
    Fixture fixture;
    fixture.write(u"a.txt"_s, "one\n");
    fixture.state.setCurrentProject(QUrl::fromLocalFile(fixture.folder.path()));
    auto& view = fixture.show<ProjectSearchView>();
    QLineEdit& field = fixture.field(u"Search in files"_s);
    QTest::keyClicks(&field, u"one"_s);
    QTest::keyClick(&field, Qt::Key_Return);
    QTRY_COMPARE(view.results().size(), 1);
    QTRY_VERIFY(!view.isSearching());
    field.clear();
    QTest::keyClick(&field, Qt::Key_Return);
    QVERIFY(!view.isSearching());
    QCOMPARE(view.results().size(), 1);
    QTest::keyClicks(&field, u"absent"_s);
    QTest::keyClick(&field, Qt::Key_Return);
    QTRY_VERIFY(!view.isSearching());
    QVERIFY(fixture.shows(u"No results"_s));
}

void SearchViewsTest::withoutAProjectNothingIsSearched()
{
    Fixture fixture;
    auto& view = fixture.show<ProjectSearchView>();
    QTest::keyClicks(&fixture.field(u"Search in files"_s), u"one"_s);
    QTest::keyClick(&fixture.field(u"Search in files"_s), Qt::Key_Return);
    QVERIFY(!view.isSearching());
    QVERIFY(fixture.shows(u"No results"_s));
}

void SearchViewsTest::sizesAreThoseOfTheDesign()
{
    Fixture fixture;
    fixture.setRecentFiles(10);
    QCOMPARE(fixture.show<SearchOverlay>().contentsRect().width(), 400);
    QCOMPARE(fixture.show<GoToLineView>(fixture.log).contentsRect().width(), 200);
    QCOMPARE(fixture.show<QuickOpenView>().contentsRect().width(), 600);
    QCOMPARE(fixture.view->findChild<QListWidget*>()->height(), 300);
    fixture.setRecentFiles(30);
    QCOMPARE(fixture.view->findChild<QListWidget*>()->height(), 300);
}

QTEST_MAIN(SearchViewsTest)
#include "search_views_test.moc"
