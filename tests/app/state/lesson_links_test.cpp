#include "app/state/lesson_links.h"
#include "app/state/link_runs.h"
#include "app/state/notices.h"
#include "learning/link_permission.h"
#include "platform/events/worker_pool.h"
#include "support/app_state_fixture.h"
#include "support/test_program.h"

#include <QtTest>

namespace lesson_links_test {

using namespace kelm;
using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;

namespace {

QString link(const QString& items)
{
    return u"kelmpane://open?"_s + items;
}

QString encoded(const QString& code)
{
    return QString::fromLatin1(code.toUtf8().toBase64());
}

struct Fixture : AppStateFixture
{
    int fronts = 0;
    LessonLinks links{state, [this] { ++fronts; }};

    void handle(const QString& text) { links.handleKelmPaneURL(text); }
    QString notice() const
    {
        return state.notices().current() != nullptr ? state.notices().current()->text : QString();
    }
    void settle()
    {
        for (int turn = 0; turn < 300; ++turn) {
            QCoreApplication::processEvents();
        }
    }
};

} // namespace

class LessonLinksTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aLinkOpensATabAndRunsItLater();
    void theRunTakesTheDocumentThatIsCurrentByThen();
    void aRunWithoutAnyDocumentIsNone();
    void aLinkWithoutRunRunsNothing();
    void withoutAWordNothingRuns_data();
    void withoutAWordNothingRuns();
    void twoLinksAskEachForThemselves();
    void badLinksAreLoggedAndTold_data();
    void badLinksAreLoggedAndTold();
    void linksOpenInTheirOrder();
    void aLongLinkIsDecodedAsideInItsTurn();
    void tooLongALinkIsRefusedAtOnce();
    void tooManyKeysAreRefused();
    void tenThousandLinksAreCutToAFew();
    void afterAPauseLinksAreTakenAgain();
};

void LessonLinksTest::aLinkOpensATabAndRunsItLater()
{
    Fixture fixture;
    linkPermission::give(fixture.userDefaults);
    int frontsAtTab = 0;
    const QString text = link(u"code="_s + encoded(u"select"_s) + u"&lang=sql&run=1&learnSlug=intro"_s);
    connect(&fixture.state, &AppState::documentsChanged, this, [&] { frontsAtTab = fixture.fronts; });
    fixture.handle(text);
    QCOMPARE(fixture.fronts, 0);
    QCoreApplication::processEvents();
    QCOMPARE(frontsAtTab, 1);
    const auto document = fixture.state.currentDocument();
    QCOMPARE(document->content(), u"select"_s);
    QCOMPARE(document->language(), Language(Language::sql));
    QCOMPARE(document->lessonInfo()->slug, u"intro"_s);
    fixture.scheduler.advance(149ms);
    QVERIFY(!fixture.state.showBottomPanel());
    fixture.scheduler.advance(1ms);
    QVERIFY(fixture.state.showBottomPanel());
    fixture.handle(text);
    QCoreApplication::processEvents();
    QCOMPARE(fixture.state.documents().size(), 2);
}

void LessonLinksTest::theRunTakesTheDocumentThatIsCurrentByThen()
{
    Fixture fixture;
    linkPermission::give(fixture.userDefaults);
    QStringList outputs;
    fixture.notificationCenter.addObserver(
        this, notifications::codeOutput,
        [&outputs](const Notification& notification) { outputs.append(notification.object.toString()); });
    fixture.openTabs({u"prose"_s});
    fixture.handle(link(u"code="_s + encoded(u"select"_s) + u"&lang=sql&run=1"_s));
    QCoreApplication::processEvents();
    QCOMPARE(fixture.state.currentDocument()->content(), u"select"_s);
    fixture.scheduler.advance(100ms);
    fixture.state.setCurrentDocumentIndex(0);
    fixture.scheduler.advance(50ms);
    // Neither language runs, and the message names the one.
    QCOMPARE(outputs, QStringList{u"Error: language 'Plain Text' is not runnable."_s});
}

void LessonLinksTest::aRunWithoutAnyDocumentIsNone()
{
    Fixture fixture;
    linkPermission::give(fixture.userDefaults);
    fixture.handle(link(u"code="_s + encoded(u"select"_s) + u"&lang=sql&run=1"_s));
    QCoreApplication::processEvents();
    fixture.state.setDocuments({});
    fixture.state.setCurrentDocumentIndex(0);
    fixture.scheduler.advance(150ms);
    QVERIFY(!fixture.state.showBottomPanel());
}

void LessonLinksTest::aLinkWithoutRunRunsNothing()
{
    Fixture fixture;
    linkPermission::give(fixture.userDefaults);
    fixture.handle(link(u"code="_s));
    QCoreApplication::processEvents();
    fixture.scheduler.advance(5s);
    QCOMPARE(fixture.state.documents().size(), 1);
    QVERIFY(!fixture.state.showBottomPanel());
}

void LessonLinksTest::withoutAWordNothingRuns_data()
{
    QTest::addColumn<QString>("items");
    QTest::newRow("run") << u"run=1"_s;
    QTest::newRow("the key of the stored answer") << u"run=1&runsLessonLinks=true"_s;
    QTest::newRow("the answers") << u"run=1&always=1&confirmed=1&answer=Run&Run=1"_s;
    QTest::newRow("in the slug") << u"run=1&learnSlug=runsLessonLinks%3Dtrue"_s;
    QTest::newRow("a line of a settings file") << u"run=1&learnSlug=a%0ArunsLessonLinks%3Dtrue%0A"_s;
    QTest::newRow("run more than once") << u"run=1&run=1&run=true"_s;
}

void LessonLinksTest::withoutAWordNothingRuns()
{
    QFETCH(QString, items);
    Fixture fixture;
    fixture.handle(link(u"lang=sql&code="_s + encoded(u"select"_s) + u'&' + items));
    QCoreApplication::processEvents();
    fixture.scheduler.advance(1h);
    QCOMPARE(fixture.openTexts(), QStringList{u"select"_s});
    QVERIFY(fixture.state.linkRuns().asksAbout(fixture.state.currentDocument()));
    QVERIFY(!fixture.state.showBottomPanel());
    QVERIFY(!linkPermission::isGiven(fixture.userDefaults));
}

void LessonLinksTest::twoLinksAskEachForThemselves()
{
    Fixture fixture;
    fixture.handle(link(u"lang=sql&run=1&code="_s + encoded(u"one"_s)));
    fixture.handle(link(u"lang=sql&run=1&code="_s + encoded(u"two"_s)));
    fixture.settle();
    QCOMPARE(fixture.openTexts(), (QStringList{u"one"_s, u"two"_s}));
    for (const auto& document : fixture.state.documents()) {
        QVERIFY(fixture.state.linkRuns().asksAbout(document));
    }
    QCOMPARE(fixture.state.currentDocumentIndex(), 1);
}

void LessonLinksTest::badLinksAreLoggedAndTold_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("logged");
    QTest::addColumn<QString>("told");
    const QString undecodable = u"kelmpane:// failed to decode code"_s;
    const auto invalid = [](const QString& text) { return u"kelmpane:// invalid URL: "_s + text; };
    const auto row = [](const char* name, const QString& text, const QString& logged, const QString& told) {
        QTest::newRow(name) << text << logged << told;
    };
    const QString close = u"kelmpane://close?code=YQ=="_s;
    row("another host", close, invalid(close), u"The lesson link does not begin with kelmpane://open."_s);
    const QString longOne = close + QString(5000, u'A');
    row("a long one", longOne, invalid(longOne), u"The lesson link does not begin with kelmpane://open."_s);
    const QString colon = u"kelmpane:://open?code=YQ=="_s;
    row("no host", colon, invalid(colon), u"The lesson link does not begin with kelmpane://open."_s);
    row("no code", link(u"lang=py"_s), invalid(link(u"lang=py"_s)), u"The lesson link holds no code."_s);
    row("no address", link(u"code=%"_s), invalid(link(u"code=%"_s)), u"The lesson link is not a valid address."_s);
    row("no base64", link(u"code=!!!!"_s), undecodable, u"The lesson's code is not valid base64."_s);
    row("no UTF-8", link(u"code=/w=="_s), undecodable, u"The lesson's code is not UTF-8 text."_s);
}

void LessonLinksTest::badLinksAreLoggedAndTold()
{
    QFETCH(QString, text);
    QFETCH(QString, logged);
    QFETCH(QString, told);
    Fixture fixture;
    fixture.handle(text);
    QCoreApplication::processEvents();
    QCOMPARE(fixture.log.written.last(), logged);
    QCOMPARE(fixture.notice(), told);
    QVERIFY(fixture.state.documents().isEmpty());
    QCOMPARE(fixture.fronts, 0);
}

void LessonLinksTest::linksOpenInTheirOrder()
{
    Fixture fixture;
    QStringList texts;
    for (int number = 0; number < 20; ++number) {
        texts << u"text %1"_s.arg(number);
        fixture.handle(link(u"code="_s + encoded(texts.last())));
    }
    QCoreApplication::processEvents();
    fixture.settle();
    QCOMPARE(fixture.openTexts(), texts);
    QCOMPARE(fixture.fronts, 20);
}

void LessonLinksTest::aLongLinkIsDecodedAsideInItsTurn()
{
    Fixture fixture;
    const QString code = u"print('0123456789')\n"_s.repeated(100'000);
    QStringList told;
    connect(&fixture.state.notices(), &Notices::currentChanged, this, [&] { told << fixture.notice(); });
    fixture.handle(link(u"code="_s + encoded(u"before"_s)));
    fixture.handle(link(u"code="_s + encoded(code)));
    fixture.handle(link(u"code="_s + encoded(u"behind"_s)));
    QTRY_COMPARE(fixture.state.documents().size(), 3);
    QCOMPARE(fixture.openTexts(), (QStringList{u"before"_s, code, u"behind"_s}));
    QCOMPARE(told, (QStringList{u"Opening a lesson link…"_s, QString()}));
}

void LessonLinksTest::tooLongALinkIsRefusedAtOnce()
{
    Fixture fixture;
    fixture.handle(link(u"code="_s) + QString(10'000'000, u'A'));
    QCOMPARE(fixture.log.written.size(), 1);
    // Nor is it opened later.
    fixture.settle();
    QVERIFY(backgroundWorkers().waitForDone());
    fixture.settle();
    QVERIFY(fixture.state.documents().isEmpty());
    QCOMPARE(fixture.notice(), u"The lesson link is longer than 4 MB."_s);
    QVERIFY(fixture.log.written.last().startsWith(u"kelmpane:// invalid URL: kelmpane://open?code=AAAA"));
    QVERIFY(fixture.log.written.last().size() < 10'000);
}

void LessonLinksTest::tooManyKeysAreRefused()
{
    Fixture fixture;
    const auto withKeys = [](int count) {
        return link(u"code=&learnSlug=s&learnRequires="_s + u"A,"_s.repeated(count));
    };
    fixture.handle(withKeys(LessonLinks::mostKeys));
    fixture.handle(withKeys(LessonLinks::mostKeys + 1));
    QTRY_COMPARE(fixture.notice(), u"The lesson link asks for more than 10,000 keys."_s);
    QCOMPARE(fixture.state.documents().size(), 1);
}

void LessonLinksTest::tenThousandLinksAreCutToAFew()
{
    Fixture fixture;
    const QString text = link(u"run=1&code="_s + encoded(u"x"_s));
    for (int number = 0; number < 10'000; ++number) {
        fixture.handle(text);
    }
    fixture.settle();
    QCOMPARE(fixture.state.documents().size(), LessonLinks::mostAtOnce);
    fixture.scheduler.advance(1s);
    QCOMPARE(fixture.notice(), u"Lesson links left out: 9,950. No more than 50 are opened at a time."_s);
}

void LessonLinksTest::afterAPauseLinksAreTakenAgain()
{
    Fixture fixture;
    const QString text = link(u"code="_s + encoded(u"x"_s));
    for (int number = 0; number < 60; ++number) {
        fixture.handle(text);
    }
    fixture.settle();
    fixture.handle(text);
    fixture.scheduler.advance(1s);
    // Links came within that second, so it was none of a pause.
    fixture.handle(text);
    fixture.settle();
    QCOMPARE(fixture.state.documents().size(), 50);
    fixture.scheduler.advance(2s);
    fixture.handle(text);
    fixture.settle();
    QCOMPARE(fixture.state.documents().size(), 51);
}

const kelm::test::Registered<LessonLinksTest> registered;

} // namespace lesson_links_test

#include "lesson_links_test.moc"
