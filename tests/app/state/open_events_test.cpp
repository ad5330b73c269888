#include "app/state/open_events.h"
#include "support/app_state_fixture.h"
#include "support/test_program.h"

#include <QtTest>

namespace open_events_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class OpenEventsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void urlsAreOpenedInTheirOrder();
    void linksGoToTheirHandler_data();
    void linksGoToTheirHandler();
    void withoutAHandlerALinkFailsAsAnythingElse();
    void aFolderBecomesTheProjectAndOpensNoTab();
    void theLastOfSeveralFoldersIsTheProject();
    void anAddressThatIsNoFileFails_data();
    void anAddressThatIsNoFileFails();

private:
    std::unique_ptr<AppStateFixture> fixture_;
};

void OpenEventsTest::init()
{
    fixture_ = std::make_unique<AppStateFixture>();
}

void OpenEventsTest::urlsAreOpenedInTheirOrder()
{
    const QUrl b = fixture_->write(u"b.txt"_s, "b");
    const QUrl a = fixture_->write(u"a.txt"_s, "a");
    QStringList links;
    openURLs(
        {b.toString(), u"kelmpane://open?code=1"_s, u"file:///none.txt"_s, a.toString(), u"kelmpane://open?code=2"_s},
        fixture_->state, [&](const QString& text) {
            links << u"%1 behind %2 files"_s.arg(text).arg(fixture_->state.documents().size());
        });
    QCOMPARE(fixture_->openTexts(), (QStringList{u"b"_s, u"a"_s}));
    QCOMPARE(links,
             (QStringList{u"kelmpane://open?code=1 behind 1 files"_s, u"kelmpane://open?code=2 behind 2 files"_s}));
}

void OpenEventsTest::linksGoToTheirHandler_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isHandled");
    QTest::newRow("link") << u"kelmpane://open?code=YQ"_s << true;
    QTest::newRow("another host") << u"kelmpane://close/"_s << true;
    QTest::newRow("no host") << u"kelmpane:x"_s << true;
    QTest::newRow("nothing else") << u"kelmpane:"_s << true;
    QTest::newRow("capitals") << u"KELMPANE://open?code=YQ"_s << false;
    QTest::newRow("one capital") << u"Kelmpane://open?code=YQ"_s << false;
    QTest::newRow("longer scheme") << u"kelmpane2://open?code=YQ"_s << false;
    QTest::newRow("no scheme") << u"kelmpane"_s << false;
    QTest::newRow("another scheme") << u"https://kelmpane:80/"_s << false;
}

void OpenEventsTest::linksGoToTheirHandler()
{
    QFETCH(QString, text);
    QFETCH(bool, isHandled);
    QStringList links;
    openURLs({text}, fixture_->state, [&](const QString& link) { links << link; });
    QCOMPARE(links, isHandled ? QStringList{text} : QStringList());
    QVERIFY(fixture_->state.documents().isEmpty());
    QVERIFY(!isHandled || fixture_->log.written.isEmpty());
}

void OpenEventsTest::withoutAHandlerALinkFailsAsAnythingElse()
{
    openURLs({u"kelmpane://open?code=YQ"_s}, fixture_->state, {});
    QVERIFY(fixture_->state.documents().isEmpty());
    QVERIFY(fixture_->log.written.last().startsWith(u"  ❌ Error opening file: kelmpane://open?code=YQ"));
}

void OpenEventsTest::aFolderBecomesTheProjectAndOpensNoTab()
{
    const QUrl folder = QUrl::fromLocalFile(fixture_->folder.path());
    openURLs({folder.toString()}, fixture_->state, {});
    QVERIFY(fixture_->state.currentProject() == folder);
    openURLs({folder.toString() + u'/'}, fixture_->state, {});
    QVERIFY(fixture_->state.currentProject() == QUrl(folder.toString() + u'/'));
    QVERIFY(fixture_->state.documents().isEmpty());
    QVERIFY(fixture_->log.written.isEmpty());
}

void OpenEventsTest::theLastOfSeveralFoldersIsTheProject()
{
    openURLs({u"file:///one/"_s, fixture_->write(u"a.txt"_s, "a").toString(), u"file:///two/"_s}, fixture_->state, {});
    QVERIFY(fixture_->state.currentProject() == QUrl(u"file:///two/"_s));
    QCOMPARE(fixture_->openTexts(), QStringList{u"a"_s});
}

void OpenEventsTest::anAddressThatIsNoFileFails_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("a page") << u"https://x/a"_s;
    QTest::newRow("a site") << u"https://x/"_s;
    QTest::newRow("a folder of a site") << u"https://x/tmp/"_s;
    QTest::newRow("a link in capitals") << u"KELMPANE://open/"_s;
    QTest::newRow("no scheme") << u"/tmp/"_s;
}

void OpenEventsTest::anAddressThatIsNoFileFails()
{
    QFETCH(QString, text);
    openURLs({text}, fixture_->state, [](const QString&) { QFAIL("that is no link"); });
    QVERIFY(!fixture_->state.currentProject());
    QVERIFY(fixture_->state.documents().isEmpty());
    QCOMPARE(fixture_->log.written.size(), 3);
    QVERIFY(fixture_->log.written.last().startsWith(u"  ❌ Error opening file: "));
}

const kelm::test::Registered<OpenEventsTest> registered;

} // namespace open_events_test

#include "open_events_test.moc"
