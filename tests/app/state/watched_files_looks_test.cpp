#include "support/blocked_workers.h"
#include "support/test_program.h"
#include "support/watched_file_fixture.h"

#include <QSignalSpy>
#include <QtTest>

#include <optional>

namespace watched_files_looks_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

/// When the files of open documents are looked at, and what that tells of them.
class WatchedFilesLooksTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatHasJustChangedIsNotRead();
    void aFileThatIsAwayForAMomentIsNotToldOf();
    void aDeviceOfAnotherNumberIsTheSame();
    void whatChangedWhileItWasClosedIsToldOf();
    void nothingIsKeptOfAClosedDocumentThatEnded();
    void aLookThatIsMissedIsMadeUpFor();
    void aLookThatIsOvertakenIsMadeAgain();
    void itIsSettledWhenNothingIsLookedAt();
    void withoutFilesThereIsNothingToLookAt();
};

void WatchedFilesLooksTest::whatHasJustChangedIsNotRead()
{
    WatchedFileFixture fixture;
    fixture.open("old");
    QSignalSpy taken(&fixture.document(), &Document::contentChanged);
    fixture.change("half of");
    fixture.lookOnce();
    // A program that writes piece by piece has not written the next one yet, and something else happens meanwhile.
    fixture.watched().lookAgain();
    fixture.advance(100ms);
    fixture.watched().lookAgain();
    fixture.advance(99ms);
    QCOMPARE(taken.count(), 0);
    fixture.change("half of a text, and the other half");
    fixture.settle();
    QCOMPARE(taken.count(), 1);
    QCOMPARE(fixture.document().content(), u"half of a text, and the other half"_s);
}

void WatchedFilesLooksTest::aFileThatIsAwayForAMomentIsNotToldOf()
{
    WatchedFileFixture fixture;
    fixture.open("text");
    // Twice, and between the two it is there as before.
    for (int time = 0; time < 2; ++time) {
        fixture.rename(u"a.txt"_s, u"away"_s);
        fixture.lookOnce();
        QCOMPARE(fixture.noticeText(), QString());
        QVERIFY(!fixture.watched().isSettled());
        fixture.rename(u"away"_s, u"a.txt"_s);
        fixture.settle();
        QCOMPARE(fixture.noticeText(), QString());
    }
    fixture.rename(u"a.txt"_s, u"away"_s);
    fixture.lookOnce();
    QCOMPARE(fixture.noticeText(), QString());
    fixture.settle();
    QCOMPARE(fixture.noticeText(), fixture.gone);
}

void WatchedFilesLooksTest::aDeviceOfAnotherNumberIsTheSame()
{
    WatchedFileFixture fixture;
    const QUrl url = fixture.write(u"a.txt"_s, "text");
    const std::optional<FileIdentity> now = identityOf(fixture.native(u"a.txt"_s));
    QVERIFY(now);
    const auto show = [&](const FileIdentity& read) {
        const auto document = std::make_shared<Document>(u"mine"_s, url, std::nullopt, std::nullopt);
        document->setIsModified(true);
        fixture.watched().willShow(url, read);
        fixture.state.setDocuments({document});
        fixture.settle();
    };
    FileIdentity before = *now;
    ++before.device;
    show(before);
    QCOMPARE(fixture.noticeText(), QString());
    // All else tells of another file.
    ++before.written;
    show(before);
    QCOMPARE(fixture.noticeText(), fixture.changed);
}

void WatchedFilesLooksTest::whatChangedWhileItWasClosedIsToldOf()
{
    WatchedFileFixture fixture;
    fixture.open("old");
    const std::shared_ptr<Document> document = fixture.state.currentDocument();
    document->setContent(u"mine"_s);
    fixture.state.closeTab(0);
    fixture.change("another program's");
    fixture.state.setDocuments({document});
    // Nobody asks for a look.
    QVERIFY(!fixture.watched().isSettled());
    QTRY_COMPARE((fixture.isSettled(), fixture.noticeText()), fixture.changed);
    // What was told of a tab that is closed is told again when it is opened again.
    fixture.state.closeTab(0);
    fixture.state.notices().putAway();
    QCOMPARE(fixture.noticeText(), QString());
    fixture.state.setDocuments({document});
    QTRY_COMPARE((fixture.isSettled(), fixture.noticeText()), fixture.changed);
}

void WatchedFilesLooksTest::nothingIsKeptOfAClosedDocumentThatEnded()
{
    WatchedFileFixture fixture;
    fixture.open("old");
    fixture.state.currentDocument()->setContent(u"mine"_s);
    QCOMPARE(fixture.watched().keptTexts(), qsizetype(1));
    // The notice offers the tab, twice over.
    fixture.state.closeTab(0);
    QCOMPARE(fixture.watched().keptTexts(), qsizetype(1));
    fixture.state.notices().accept(0);
    QCOMPARE(fixture.state.documents().size(), qsizetype(1));
    QCOMPARE(fixture.watched().keptTexts(), qsizetype(1));
    fixture.state.closeTab(0);
    QCOMPARE(fixture.watched().keptTexts(), qsizetype(1));
    fixture.state.notices().putAway();
    QCOMPARE(fixture.watched().keptTexts(), qsizetype(0));
}

void WatchedFilesLooksTest::aLookThatIsMissedIsMadeUpFor()
{
    WatchedFileFixture fixture;
    fixture.open("text");
    {
        const test::BlockedWorkers blocked;
        fixture.watched().lookAgain();
        fixture.scheduler.advance(WatchedFiles::lookDelay);
        QVERIFY(!fixture.watched().isSettled());
        QCOMPARE(fixture.scheduler.pending(), std::size_t(0));
        // The file may have been looked at already.
        fixture.watched().lookAgain();
        fixture.scheduler.advance(WatchedFiles::lookDelay);
        QCOMPARE(fixture.scheduler.pending(), std::size_t(0));
    }
    QTRY_COMPARE(fixture.scheduler.pending(), std::size_t(1));
    fixture.advance(WatchedFiles::lookDelay);
    QTRY_VERIFY(fixture.watched().isSettled());
}

void WatchedFilesLooksTest::aLookThatIsOvertakenIsMadeAgain()
{
    WatchedFileFixture fixture;
    fixture.open("old");
    fixture.document().setContent(u"mine"_s);
    fixture.change("another program's");
    fixture.settle();
    QCOMPARE(fixture.noticeText(), fixture.changed);
    fixture.settle();
    {
        const test::BlockedWorkers blocked;
        fixture.watched().lookAgain();
        fixture.scheduler.advance(WatchedFiles::lookDelay);
        QVERIFY(!fixture.watched().isSettled());
        // What that look knows of the file is not true any more.
        fixture.state.notices().accept(1);
        QCOMPARE(fixture.scheduler.pending(), std::size_t(0));
    }
    QTRY_COMPARE(fixture.scheduler.pending(), std::size_t(1));
    fixture.advance(WatchedFiles::lookDelay);
    QTRY_VERIFY(fixture.watched().isSettled());
    QCOMPARE(fixture.noticeText(), QString());
    QCOMPARE(fixture.document().content(), u"mine"_s);
}

void WatchedFilesLooksTest::itIsSettledWhenNothingIsLookedAt()
{
    WatchedFileFixture fixture;
    fixture.open("text");
    QVERIFY(fixture.watched().isSettled());
    fixture.watched().lookAgain();
    QVERIFY(!fixture.watched().isSettled());
    {
        const test::BlockedWorkers blocked;
        fixture.scheduler.advance(WatchedFiles::lookDelay);
        QVERIFY(!fixture.watched().isSettled());
    }
    QTRY_VERIFY(fixture.watched().isSettled());
    fixture.change("another text");
    fixture.lookOnce();
    // It waits for the file to be quiet.
    QVERIFY(!fixture.watched().isSettled());
    fixture.settle();
    QCOMPARE(fixture.document().content(), u"another text"_s);
}

void WatchedFilesLooksTest::withoutFilesThereIsNothingToLookAt()
{
    WatchedFileFixture fixture;
    fixture.state.createNewTab();
    fixture.watched().lookAgain();
    QVERIFY(fixture.watched().isSettled());
    QCOMPARE(fixture.scheduler.pending(), std::size_t(0));
}

const kelm::test::Registered<WatchedFilesLooksTest> registered;

} // namespace watched_files_looks_test

#include "watched_files_looks_test.moc"
