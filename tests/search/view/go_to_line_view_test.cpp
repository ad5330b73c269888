#include "platform/view/labels.h"
#include "search/view/go_to_line_view.h"
#include "search/view/search_view_fixture.h"
#include "support/test_program.h"

namespace go_to_line_view_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

class GoToLineViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void goToLinePrintsAndCloses_data();
    void goToLinePrintsAndCloses();
    void goToLineMovesNothing();
    void goToLineClosesOnEscape();
    void itIsNarrow();
};

void GoToLineViewTest::goToLinePrintsAndCloses_data()
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
    QTest::newRow("two signs") << u"--4"_s << QStringList();
    QTest::newRow("a fraction") << u"4.0"_s << QStringList();
    QTest::newRow("zero") << u"0"_s << QStringList{u"Go to line: 0"_s};
}

void GoToLineViewTest::goToLinePrintsAndCloses()
{
    QFETCH(QString, typed);
    QFETCH(QStringList, printed);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        SearchViewFixture fixture;
        fixture.state.setShowGoToLine(true);
        fixture.show<GoToLineView>(fixture.log);
        fixture.log.printed.clear();
        QTest::keyClicks(&fixture.field(u"Line number"_s), typed);
        QTest::keyClick(&fixture.field(u"Line number"_s), key);
        QCOMPARE(fixture.log.printed, printed);
        QVERIFY(!fixture.state.showGoToLine());
    }
}

void GoToLineViewTest::goToLineMovesNothing()
{
    SearchViewFixture fixture;
    fixture.state.openSnippet(u"one\ntwo\nthree"_s, Language::plainText, std::nullopt);
    fixture.state.setShowGoToLine(true);
    bool isPosted = false;
    fixture.notificationCenter.addObserver(&fixture.state, notifications::navigateToLine,
                                           [&isPosted](const Notification&) { isPosted = true; });
    fixture.show<GoToLineView>(fixture.log);
    QTest::keyClicks(&fixture.field(u"Line number"_s), u"3"_s);
    QTest::keyClick(&fixture.field(u"Line number"_s), Qt::Key_Return);
    QCOMPARE(fixture.log.printed, QStringList{u"Go to line: 3"_s});
    QCOMPARE(fixture.state.currentDocument()->cursorPosition(), CursorPosition());
    QCOMPARE(fixture.state.currentDocument()->content(), u"one\ntwo\nthree"_s);
    QVERIFY(!fixture.state.currentDocument()->isModified());
    QVERIFY(!isPosted);
}

void GoToLineViewTest::goToLineClosesOnEscape()
{
    SearchViewFixture fixture;
    fixture.state.setShowGoToLine(true);
    fixture.show<GoToLineView>(fixture.log);
    QTest::keyClicks(&fixture.field(u"Line number"_s), u"4"_s);
    QTest::keyClick(&fixture.field(u"Line number"_s), Qt::Key_Escape);
    QVERIFY(!fixture.state.showGoToLine());
    QVERIFY(!fixture.log.printed.contains(u"Go to line: 4"_s));
}

void GoToLineViewTest::itIsNarrow()
{
    SearchViewFixture fixture;
    QCOMPARE(fixture.show<GoToLineView>(fixture.log).contentsRect().width(), 200);
    QVERIFY(fixture.shows(u"Go to Line"_s));
    const auto& title = *fixture.view->findChild<TextLabel*>();
    QCOMPARE(title.text(), u"Go to Line"_s);
    QVERIFY(title.geometry().bottom() < fixture.field(u"Line number"_s).y());
}

const kelm::test::Registered<GoToLineViewTest> registered(kelm::test::Toolkit::widgets);

} // namespace go_to_line_view_test

#include "go_to_line_view_test.moc"
