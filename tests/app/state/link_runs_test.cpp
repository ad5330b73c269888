#include "app/state/link_runs.h"
#include "learning/link_permission.h"
#include "support/app_state_fixture.h"
#include "support/test_program.h"

#include <QSignalSpy>
#include <QtTest>

namespace link_runs_test {

using namespace kelm;
using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;

namespace {

/// A state in which a run leaves a message that names the language of what was run.
struct Fixture : AppStateFixture
{
    QStringList outputs;
    QObject observer;

    Fixture()
    {
        notificationCenter.addObserver(&observer, notifications::codeOutput, [this](const Notification& notification) {
            outputs.append(notification.object.toString());
        });
    }
    LinkRuns& runs() { return state.linkRuns(); }
    /// Opens a snippet as a link does that asks to run it.
    std::shared_ptr<Document> ask(const QString& code, Language language = Language::sql)
    {
        state.openSnippet(code, language, std::nullopt);
        runs().request(state.currentDocument());
        return state.currentDocument();
    }
};

using Change = void (*)(Document&);

const QString ranSql = u"Error: language 'SQL' is not runnable."_s;
const QString ranHtml = u"Error: language 'HTML' is not runnable."_s;

} // namespace

class LinkRunsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingRunsUnasked();
    void runRunsOnce();
    void alwaysIsStoredAndTheNextRunsByItself();
    void alwaysAnswersTheOthers();
    void whatWasTakenBackWithinTheDelayDoesNotRun();
    void eachDocumentHasItsOwnQuestion();
    void onlyTheCurrentDocumentCanBeAnswered();
    void anAnswerCountsOnce();
    void anotherTextPutsTheQuestionAway_data();
    void anotherTextPutsTheQuestionAway();
    void closingPutsTheQuestionAway();
    void runningPutsTheQuestionAway();
    void othersCannotBeAnswered();
    void onlyTheStoredWordTrueIsAPermission_data();
    void onlyTheStoredWordTrueIsAPermission();
};

void LinkRunsTest::nothingRunsUnasked()
{
    Fixture fixture;
    const QSignalSpy changes(&fixture.runs(), &LinkRuns::questionsChanged);
    const auto document = fixture.ask(u"select"_s);
    fixture.scheduler.advance(1h);
    QVERIFY(fixture.runs().asksAbout(document));
    QVERIFY(fixture.outputs.isEmpty());
    QVERIFY(!fixture.state.showBottomPanel());
    QCOMPARE(changes.count(), 1);
}

void LinkRunsTest::runRunsOnce()
{
    Fixture fixture;
    const auto document = fixture.ask(u"select"_s);
    fixture.runs().run(document);
    QCOMPARE(fixture.outputs, QStringList{ranSql});
    QVERIFY(!fixture.runs().asksAbout(document));
    QVERIFY(!linkPermission::isGiven(fixture.userDefaults));
    const auto next = fixture.ask(u"select 2"_s);
    fixture.scheduler.advance(1h);
    QVERIFY(fixture.runs().asksAbout(next));
    QCOMPARE(fixture.outputs, QStringList{ranSql});
}

void LinkRunsTest::alwaysIsStoredAndTheNextRunsByItself()
{
    Fixture fixture;
    fixture.runs().runAlways(fixture.ask(u"select"_s));
    QCOMPARE(fixture.outputs, QStringList{ranSql});
    const UserDefaults again(fixture.folder.filePath(u"store.conf"_s));
    QVERIFY(linkPermission::isGiven(again));
    const auto next = fixture.ask(u"<b>"_s, Language::html);
    QVERIFY(!fixture.runs().asksAbout(next));
    fixture.scheduler.advance(149ms);
    QCOMPARE(fixture.outputs.size(), 1);
    fixture.scheduler.advance(1ms);
    QCOMPARE(fixture.outputs, (QStringList{ranSql, ranHtml}));
    linkPermission::takeBack(fixture.userDefaults);
    const auto third = fixture.ask(u"select 3"_s);
    fixture.scheduler.advance(1h);
    QVERIFY(fixture.runs().asksAbout(third));
    QCOMPARE(fixture.outputs.size(), 2);
}

void LinkRunsTest::alwaysAnswersTheOthers()
{
    Fixture fixture;
    const auto first = fixture.ask(u"select 1"_s);
    const auto second = fixture.ask(u"<b>"_s, Language::html);
    fixture.runs().runAlways(second);
    fixture.scheduler.advance(1h);
    QVERIFY(!fixture.runs().asksAbout(first));
    QCOMPARE(fixture.outputs, QStringList{ranHtml});
}

void LinkRunsTest::whatWasTakenBackWithinTheDelayDoesNotRun()
{
    Fixture fixture;
    linkPermission::give(fixture.userDefaults);
    fixture.ask(u"select"_s);
    fixture.scheduler.advance(100ms);
    linkPermission::takeBack(fixture.userDefaults);
    fixture.scheduler.advance(1h);
    QVERIFY(fixture.outputs.isEmpty());
}

void LinkRunsTest::eachDocumentHasItsOwnQuestion()
{
    Fixture fixture;
    const auto first = fixture.ask(u"select"_s);
    const auto second = fixture.ask(u"<b>"_s, Language::html);
    QVERIFY(fixture.runs().asksAbout(first) && fixture.runs().asksAbout(second));
    fixture.runs().run(second);
    QVERIFY(fixture.runs().asksAbout(first) && !fixture.runs().asksAbout(second));
    fixture.state.setCurrentDocumentIndex(0);
    fixture.runs().run(first);
    QCOMPARE(fixture.outputs, (QStringList{ranHtml, ranSql}));
}

void LinkRunsTest::onlyTheCurrentDocumentCanBeAnswered()
{
    Fixture fixture;
    const auto first = fixture.ask(u"select"_s);
    fixture.ask(u"<b>"_s, Language::html);
    // The answer to the first comes when the second has just come up.
    fixture.runs().run(first);
    fixture.runs().runAlways(first);
    QVERIFY(fixture.outputs.isEmpty());
    QVERIFY(fixture.runs().asksAbout(first));
    QVERIFY(!linkPermission::isGiven(fixture.userDefaults));
}

void LinkRunsTest::anAnswerCountsOnce()
{
    Fixture fixture;
    const auto document = fixture.ask(u"select"_s);
    fixture.runs().run(document);
    fixture.runs().run(document);
    fixture.runs().runAlways(document);
    QCOMPARE(fixture.outputs, QStringList{ranSql});
    QVERIFY(!linkPermission::isGiven(fixture.userDefaults));
}

void LinkRunsTest::anotherTextPutsTheQuestionAway_data()
{
    QTest::addColumn<Change>("change");
    const auto row = [](const char* name, Change change) { QTest::newRow(name) << change; };
    row("text", [](Document& document) { document.setContent(u"drop"_s); });
    row("language", [](Document& document) { document.setExplicitLanguage(Language(Language::shell)); });
    row("file", [](Document& document) { document.setFileURL(QUrl(u"file:///tmp/none.sh"_s)); });
}

void LinkRunsTest::anotherTextPutsTheQuestionAway()
{
    QFETCH(Change, change);
    Fixture fixture;
    const auto document = fixture.ask(u"select"_s);
    const QSignalSpy changes(&fixture.runs(), &LinkRuns::questionsChanged);
    change(*document);
    QVERIFY(!fixture.runs().asksAbout(document));
    QCOMPARE(changes.count(), 1);
    fixture.runs().run(document);
    QVERIFY(fixture.outputs.isEmpty());
}

void LinkRunsTest::closingPutsTheQuestionAway()
{
    Fixture fixture;
    const auto document = fixture.ask(u"select"_s);
    fixture.state.closeTab(0);
    QVERIFY(!fixture.runs().asksAbout(document));
}

void LinkRunsTest::runningPutsTheQuestionAway()
{
    Fixture fixture;
    const auto document = fixture.ask(u"select"_s);
    // A key that was meant for what stood there before.
    fixture.state.runCurrentFile();
    fixture.scheduler.advance(LinkRuns::deafTime - 1ms);
    fixture.state.runCurrentFile();
    QVERIFY(fixture.runs().asksAbout(document));
    QVERIFY(fixture.outputs.isEmpty());
    fixture.scheduler.advance(1ms);
    fixture.state.runCurrentFile();
    QVERIFY(!fixture.runs().asksAbout(document));
    QCOMPARE(fixture.outputs, QStringList{ranSql});
}

void LinkRunsTest::othersCannotBeAnswered()
{
    Fixture fixture;
    fixture.openTabs({u"prose"_s});
    fixture.runs().run(fixture.state.currentDocument());
    fixture.runs().runAlways(fixture.state.currentDocument());
    fixture.runs().run(nullptr);
    QVERIFY(fixture.outputs.isEmpty());
    QVERIFY(!linkPermission::isGiven(fixture.userDefaults));
}

void LinkRunsTest::onlyTheStoredWordTrueIsAPermission_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<bool>("isGiven");
    QTest::newRow("true") << QByteArray("runsLessonLinks=true") << true;
    QTest::newRow("false") << QByteArray("runsLessonLinks=false") << false;
    QTest::newRow("something else") << QByteArray("runsLessonLinks=perhaps") << false;
    QTest::newRow("nothing") << QByteArray("runsLessonLinks=") << false;
    QTest::newRow("absent") << QByteArray() << false;
}

void LinkRunsTest::onlyTheStoredWordTrueIsAPermission()
{
    QFETCH(QByteArray, line);
    QFETCH(bool, isGiven);
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"store.conf"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("[General]\n" + line + "\n");
    file.close();
    QCOMPARE(linkPermission::isGiven(UserDefaults(file.fileName())), isGiven);
}

const kelm::test::Registered<LinkRunsTest> registered;

} // namespace link_runs_test

#include "link_runs_test.moc"
