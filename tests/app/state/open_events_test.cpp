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
    void argumentsBecomeUrls_data();
    void argumentsBecomeUrls();
    void argumentsOpenWhatTheyName();

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

void OpenEventsTest::argumentsBecomeUrls_data()
{
    QTest::addColumn<QString>("argument");
    QTest::addColumn<QString>("url");
    QTest::newRow("relative") << u"a.txt"_s << u"file://%1/a.txt"_s;
    QTest::newRow("relative through folders") << u"./sub/../a.txt"_s << u"file://%1/a.txt"_s;
    QTest::newRow("absolute") << u"/none/a.txt"_s << u"file:///none/a.txt"_s;
    QTest::newRow("current folder") << u"."_s << u"file://%1/"_s;
    QTest::newRow("folder") << u"sub"_s << u"file://%1/sub/"_s;
    QTest::newRow("folder with a slash") << u"sub/"_s << u"file://%1/sub/"_s;
    QTest::newRow("root") << u"/"_s << u"file:///"_s;
    QTest::newRow("folder that is not there") << u"none/"_s << u"file://%1/none"_s;
    QTest::newRow("blank, percent, hash") << u"a b%20#c?.txt"_s << u"file://%1/a%20b%2520%23c%3F.txt"_s;
    QTest::newRow("korean") << u"한.txt"_s << u"file://%1/%ED%95%9C.txt"_s;
    QTest::newRow("leading dash") << u"-a.txt"_s << u"file://%1/-a.txt"_s;
    QTest::newRow("colon in a name") << u"a:b.txt"_s << u"file://%1/a:b.txt"_s;
    QTest::newRow("colon and slashes behind a blank") << u"a b://c"_s << u"file://%1/a%20b:/c"_s;
    QTest::newRow("file URL") << u"file:///a%20b.txt"_s << u"file:///a%20b.txt"_s;
    QTest::newRow("link") << u"kelmpane://open?code=Y+Q=&run=1"_s << u"kelmpane://open?code=Y+Q=&run=1"_s;
    QTest::newRow("link in capitals stays so") << u"KELMPANE://open"_s << u"KELMPANE://open"_s;
    QTest::newRow("another URL") << u"https://host/a"_s << u"https://host/a"_s;
}

void OpenEventsTest::argumentsBecomeUrls()
{
    QFETCH(QString, argument);
    QFETCH(QString, url);
    QVERIFY(QDir(fixture_->folder.path()).mkdir(u"sub"_s));
    const QString expected = QString(url).replace(u"%1"_s, fixture_->folder.path());
    QCOMPARE(urlTextsOfArguments({argument, QString()}, fixture_->folder.path()), (QStringList{expected}));
}

void OpenEventsTest::argumentsOpenWhatTheyName()
{
    fixture_->write(u"한 글%20.txt"_s, "text");
    openURLs(urlTextsOfArguments({u"한 글%20.txt"_s, u"."_s}, fixture_->folder.path()), fixture_->state, {});
    QCOMPARE(fixture_->openTexts(), (QStringList{u"text"_s}));
    QCOMPARE(fixture_->state.currentDocument()->title(), u"한 글%20.txt"_s);
    QCOMPARE(fixture_->state.currentProject()->toLocalFile(), fixture_->folder.path() + u'/');
}

const kelm::test::Registered<OpenEventsTest> registered;

} // namespace open_events_test

#include "open_events_test.moc"
