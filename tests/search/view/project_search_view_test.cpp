#include "platform/view/activity_line.h"
#include "search/view/project_search_view.h"
#include "search/view/search_view_fixture.h"
#include "support/test_program.h"

#include <QListView>

namespace project_search_view_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

/// A project with a file of one line.
struct FoundFixture : SearchViewFixture
{
    /// Begins the search of that line by keys.
    ProjectSearchView& search()
    {
        write(u"a.txt"_s, "one\n");
        state.setCurrentProject(QUrl::fromLocalFile(folder.path()));
        auto& shown = show<ProjectSearchView>();
        QTest::keyClicks(&field(u"Search in files"_s), u"one"_s);
        QTest::keyClick(&field(u"Search in files"_s), Qt::Key_Return);
        return shown;
    }
};

} // namespace

class ProjectSearchViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void projectSearchListsAndOpens();
    void projectSearchKeepsOldResultsForAnEmptyField();
    void withoutAProjectNothingIsSearched();
    void withoutAProjectTheOldResultsStay();
    void whatIsTooLongIsTold();
};

void ProjectSearchViewTest::projectSearchListsAndOpens()
{
    SearchViewFixture fixture;
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
    // By the keyboard as well.
    list->setFocus();
    list->setCurrentIndex(list->model()->index(0, 0));
    QTest::keyClick(list, Qt::Key_Return);
    QCOMPARE(fixture.state.currentDocument()->fileURL(), std::optional(view.results().at(0).fileURL));
    QCOMPARE(fixture.state.documents().size(), 2);
}

void ProjectSearchViewTest::projectSearchKeepsOldResultsForAnEmptyField()
{
    FoundFixture fixture;
    ProjectSearchView& view = fixture.search();
    QTRY_VERIFY(!view.isSearching());
    QCOMPARE(view.results().size(), 1);
    QLineEdit& field = fixture.field(u"Search in files"_s);
    field.clear();
    QTest::keyClick(&field, Qt::Key_Return);
    QVERIFY(!view.isSearching());
    QCOMPARE(view.results().size(), 1);
    QTest::keyClicks(&field, u"absent"_s);
    QTest::keyClick(&field, Qt::Key_Return);
    QTRY_VERIFY(!view.isSearching());
    QVERIFY(fixture.shows(u"No results"_s));
}

void ProjectSearchViewTest::withoutAProjectNothingIsSearched()
{
    SearchViewFixture fixture;
    auto& view = fixture.show<ProjectSearchView>();
    QTest::keyClicks(&fixture.field(u"Search in files"_s), u"one"_s);
    QTest::keyClick(&fixture.field(u"Search in files"_s), Qt::Key_Return);
    QVERIFY(!view.isSearching());
    QVERIFY(fixture.shows(u"No results"_s));
}

void ProjectSearchViewTest::withoutAProjectTheOldResultsStay()
{
    FoundFixture fixture;
    ProjectSearchView& view = fixture.search();
    QTRY_VERIFY(!view.isSearching());
    QCOMPARE(view.results().size(), 1);
    QLineEdit& field = fixture.field(u"Search in files"_s);
    fixture.state.setCurrentProject(std::nullopt);
    QTest::keyClicks(&field, u" more"_s);
    QTest::keyClick(&field, Qt::Key_Return);
    QVERIFY(!view.isSearching());
    QCOMPARE(view.results().size(), 1);
    QVERIFY(!fixture.shows(u"No results"_s));
    // Another project is another search.
    fixture.state.setCurrentProject(QUrl::fromLocalFile(fixture.folder.path()));
    QTest::keyClick(&field, Qt::Key_Return);
    QTRY_VERIFY(!view.isSearching());
    QVERIFY(view.results().isEmpty());
}

void ProjectSearchViewTest::whatIsTooLongIsTold()
{
    SearchViewFixture fixture;
    fixture.write(u"a.txt"_s, "one\n");
    fixture.state.setCurrentProject(QUrl::fromLocalFile(fixture.folder.path()));
    auto& view = fixture.show<ProjectSearchView>();
    QLineEdit& field = fixture.field(u"Search in files"_s);
    const auto search = [&] {
        QTest::keyClick(&field, Qt::Key_Return);
        QTRY_VERIFY(!view.isSearching());
        QCOMPARE(view.results().size(), 1);
    };
    QTest::keyClicks(&field, u"one"_s);
    search();
    QVERIFY(!fixture.shows(u"1 file was too long to search"_s));
    for (const QString& name : {u"long"_s, u"longer"_s}) {
        QVERIFY(QFile::copy(fixture.folder.filePath(u"a.txt"_s), fixture.folder.filePath(name)));
        // The disk keeps nothing of the zeros.
        QVERIFY(QFile::resize(fixture.folder.filePath(name), qint64(60) << 30));
        search();
        QVERIFY(fixture.shows(name == u"long"_s ? u"1 file was too long to search"_s
                                                : u"2 files were too long to search"_s));
    }
    QVERIFY(QFile::remove(fixture.folder.filePath(u"long"_s)) && QFile::remove(fixture.folder.filePath(u"longer"_s)));
    search();
    QVERIFY(!fixture.shows(u"2 files were too long to search"_s));
}

const kelm::test::Registered<ProjectSearchViewTest> registered(kelm::test::Toolkit::widgets);

} // namespace project_search_view_test

#include "project_search_view_test.moc"
