#include "app/state/desktop_recents.h"
#include "support/app_state_fixture.h"
#include "support/test_program.h"

#include <QtTest>

namespace desktop_recents_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

/// Far more than it takes.
constexpr std::chrono::seconds patience(20);

} // namespace

class DesktopRecentsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatIsOpenedAndSavedIsTold();
    void whatIsNotToBeToldIsNot();
    void aFailureIsNotTold();
};

void DesktopRecentsTest::whatIsOpenedAndSavedIsTold()
{
    AppStateFixture fixture;
    DesktopRecents recents(fixture.state, fixture.folder.filePath(u"list.xbel"_s), [](const QUrl&) { return true; });
    fixture.state.openFile(fixture.write(u"opened.py"_s, "a"));
    QVERIFY(recents.finish(patience));
    QVERIFY(fixture.bytesOf(u"list.xbel"_s).contains("/opened.py\""));
    QVERIFY(fixture.bytesOf(u"list.xbel"_s).contains("count=\"1\""));
    fixture.state.saveCurrentDocument();
    QVERIFY(recents.finish(patience));
    QVERIFY(fixture.bytesOf(u"list.xbel"_s).contains("count=\"2\""));
    fixture.openTabs({u"text"_s});
    fixture.filePanels.saveAnswer = fixture.url(u"saved.md"_s);
    fixture.state.saveCurrentDocument();
    // Without a word of anybody's, after the event in hand.
    QTRY_VERIFY(fixture.bytesOf(u"list.xbel"_s).contains("/saved.md\""));
}

void DesktopRecentsTest::whatIsNotToBeToldIsNot()
{
    AppStateFixture fixture;
    DesktopRecents recents(fixture.state, fixture.folder.filePath(u"list.xbel"_s));
    // The folder is one for what is temporary.
    fixture.state.openFile(fixture.write(u"a.py"_s, "a"));
    fixture.state.openSnippet(u"code"_s, Language::python, std::nullopt);
    QVERIFY(recents.finish(patience));
    QCOMPARE(fixture.bytesOf(u"list.xbel"_s), QByteArray("(unreadable)"));
}

void DesktopRecentsTest::aFailureIsNotTold()
{
    AppStateFixture fixture;
    DesktopRecents recents(fixture.state, fixture.folder.filePath(u"list.xbel"_s), [](const QUrl&) { return true; });
    fixture.state.openFile(fixture.url(u"none.py"_s));
    fixture.openTabs({u"text"_s});
    fixture.filePanels.saveAnswer = fixture.url(u"none/saved.md"_s);
    fixture.state.saveCurrentDocument();
    QVERIFY(recents.finish(patience));
    QCOMPARE(fixture.bytesOf(u"list.xbel"_s), QByteArray("(unreadable)"));
}

const kelm::test::Registered<DesktopRecentsTest> registered;

} // namespace desktop_recents_test

#include "desktop_recents_test.moc"
