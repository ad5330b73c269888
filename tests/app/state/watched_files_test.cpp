#include "app/state/notices.h"
#include "app/state/watched_files.h"
#include "platform/events/worker_pool.h"
#include "support/app_state_fixture.h"
#include "support/random_text.h"
#include "support/test_program.h"

#include <QSignalSpy>
#include <QtTest>

#include <cstdio>
#include <optional>
#include <unistd.h>
#include <utime.h>

namespace watched_files_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

/// Each test changes files as another program would, with another length, so that the clock's grain cannot hide it.
class WatchedFilesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void anUnmodifiedDocumentTakesTheNewText_data();
    void anUnmodifiedDocumentTakesTheNewText();
    void aFileThatIsBeingWrittenIsReadOnceItIsQuiet();
    void theSameTextAgainIsNothing();
    void whatIsSavedHereIsNothing();
    void aModifiedDocumentStaysAndTheNoticeOffers();
    void reloadingTakesTheFile();
    void whatIsTypedAfterReloadingStays();
    void aReloadIsNotMadeUpForWhenTheTabIsOpenedAgain();
    void keepingMineIsKeptUntilTheNextChange();
    void aModifiedDocumentThatGetsItsOwnTextIsNotToldOf();
    void anUndoneChangeTakesItsNoticeBack();
    void aVanishedFileIsToldOfAndCanBeSavedAgain();
    void aVanishedFileThatComesBackIsTaken();
    void aFileThatCannotBeReadAnyMoreIsToldOfOnce();
    void aChangeBetweenReadingAndWatchingIsSeen();
    void aClosedDocumentIsWatchedNoMore();
    void aSaveWhileTheFileIsReadGoesBeforeIt();
    void aSaveOverAnUnseenChangeKeepsIt();
    void whatTheSaveWroteOverIsOpened();
    void aSaveOverTheSameBytesKeepsNothing();
    void whatCannotBeKeptIsNotWrittenOver();
    void randomChangesLeaveTheDocumentWithTheFile();

private:
    AppState& state() { return fixture_->state; }
    Document& document() { return *state().currentDocument(); }
    QString noticeText()
    {
        const Notice* notice = state().notices().current();
        return notice != nullptr ? notice->text : QString();
    }
    QString path(const QString& name) const { return fixture_->folder.filePath(name); }
    QByteArray native(const QString& name) const { return QFile::encodeName(path(name)); }

    /// A modified document whose file another program has changed as well.
    void changeInBoth()
    {
        state().openFile(fixture_->write(QStringLiteral("a.txt"), "old"));
        settle();
        document().setContent(QStringLiteral("mine"));
        fixture_->write(QStringLiteral("a.txt"), "another program's");
        settle();
    }
    /// Looks until there is nothing more to be found out.
    void settle()
    {
        state().watchedFiles().lookAgain();
        QTRY_VERIFY(isSettled());
    }
    bool isSettled()
    {
        fixture_->scheduler.advance(WatchedFiles::quietTime);
        return state().watchedFiles().isSettled();
    }

    std::optional<AppStateFixture> fixture_;
};

void WatchedFilesTest::init()
{
    fixture_.emplace();
    QVERIFY(fixture_->folder.isValid());
}

void WatchedFilesTest::anUnmodifiedDocumentTakesTheNewText_data()
{
    QTest::addColumn<int>("way");
    QTest::newRow("truncated and written") << 0;
    QTest::newRow("replaced by a renaming") << 1;
    QTest::newRow("deleted and made again") << 2;
    QTest::newRow("a link that leads elsewhere now") << 3;
    QTest::newRow("behind a link") << 4;
    QTest::newRow("its folder replaced") << 5;
}

void WatchedFilesTest::anUnmodifiedDocumentTakesTheNewText()
{
    QFETCH(int, way);
    QVERIFY(QDir(fixture_->folder.path()).mkdir(u"sub"_s));
    fixture_->write(u"sub/a.txt"_s, "old");
    fixture_->write(u"other.txt"_s, "the new text");
    QCOMPARE(::symlink("sub/a.txt", native(u"link"_s).constData()), 0);
    const QUrl url = fixture_->url(way == 3 || way == 4 ? u"link"_s : u"sub/a.txt"_s);
    state().openFile(url);
    settle();
    QCOMPARE(document().content(), u"old"_s);

    if (way == 0 || way == 4) {
        fixture_->write(u"sub/a.txt"_s, "the new text");
    } else if (way == 1) {
        QCOMPARE(std::rename(native(u"other.txt"_s).constData(), native(u"sub/a.txt"_s).constData()), 0);
    } else if (way == 2) {
        QVERIFY(QFile::remove(path(u"sub/a.txt"_s)));
        fixture_->write(u"sub/a.txt"_s, "the new text");
    } else if (way == 3) {
        QVERIFY(QFile::remove(path(u"link"_s)));
        QCOMPARE(::symlink("other.txt", native(u"link"_s).constData()), 0);
    } else {
        QVERIFY(QDir(path(u"sub"_s)).removeRecursively());
        QVERIFY(QDir(fixture_->folder.path()).mkdir(u"sub"_s));
        fixture_->write(u"sub/a.txt"_s, "the new text");
    }
    // Nobody asks for a look: the watch alone does.
    QTRY_COMPARE((isSettled(), document().content()), u"the new text"_s);
    QVERIFY(!document().isModified());
    QCOMPARE(noticeText(), QString());
    // And again, wherever it is by now.
    fixture_->write(way == 3 ? u"other.txt"_s : u"sub/a.txt"_s, "newer still, and longer");
    QTRY_COMPARE((isSettled(), document().content()), u"newer still, and longer"_s);
}

void WatchedFilesTest::aFileThatIsBeingWrittenIsReadOnceItIsQuiet()
{
    state().openFile(fixture_->write(u"a.txt"_s, "old"));
    settle();
    QSignalSpy changed(&document(), &Document::contentChanged);
    QFile writer(path(u"a.txt"_s));
    QVERIFY(writer.open(QIODevice::WriteOnly));
    for (int part = 0; part < 5; ++part) {
        writer.write("part\n");
        QVERIFY(writer.flush());
        state().watchedFiles().lookAgain();
        fixture_->scheduler.advance(WatchedFiles::quietTime);
        // One look has seen the file as it is now, and the next will find it longer.
        QTRY_VERIFY(fixture_->scheduler.pending() > 0);
        QCOMPARE(changed.count(), 0);
    }
    writer.close();
    settle();
    QCOMPARE(document().content(), u"part\n"_s.repeated(5));
    QCOMPARE(changed.count(), 1);
}

void WatchedFilesTest::theSameTextAgainIsNothing()
{
    state().openFile(fixture_->write(u"a.txt"_s, "text"));
    settle();
    const auto before = document().text();
    QSignalSpy changed(&document(), &Document::contentChanged);
    const utimbuf longAgo{1, 1};
    QCOMPARE(::utime(native(u"a.txt"_s).constData(), &longAgo), 0);
    settle();
    document().setContent(u"mine"_s);
    fixture_->write(u"b.txt"_s, "text");
    QCOMPARE(std::rename(native(u"b.txt"_s).constData(), native(u"a.txt"_s).constData()), 0);
    settle();
    QCOMPARE(noticeText(), QString());
    QCOMPARE(document().content(), u"mine"_s);
    // Neither time was a text stored but for the one of this test.
    QCOMPARE(changed.count(), 1);
    state().saveCurrentDocument();
    QCOMPARE(noticeText(), QString());
}

void WatchedFilesTest::whatIsSavedHereIsNothing()
{
    state().openFile(fixture_->write(u"a.txt"_s, "old"));
    settle();
    document().setContent(u"mine"_s);
    state().saveCurrentDocument();
    QSignalSpy changed(&document(), &Document::contentChanged);
    settle();
    document().setContent(u"mine, twice"_s);
    settle();
    state().saveCurrentDocument();
    settle();
    QCOMPARE(changed.count(), 1);
    QCOMPARE(noticeText(), QString());
    // What is saved elsewhere is watched there.
    fixture_->filePanels.saveAnswer = fixture_->url(u"b.txt"_s);
    state().saveCurrentDocumentAs();
    fixture_->write(u"a.txt"_s, "another program's");
    settle();
    QCOMPARE(document().content(), u"mine, twice"_s);
    fixture_->write(u"b.txt"_s, "another program's");
    QTRY_COMPARE((isSettled(), document().content()), u"another program's"_s);
}

void WatchedFilesTest::aModifiedDocumentStaysAndTheNoticeOffers()
{
    changeInBoth();
    QCOMPARE(document().content(), u"mine"_s);
    QVERIFY(document().isModified());
    QCOMPARE(noticeText(), u"a.txt has changed on disk, and here too."_s);
    const auto& offers = state().notices().current()->offers;
    QCOMPARE(offers.size(), 2U);
    QCOMPARE(offers[0].label, u"Reload"_s);
    QCOMPARE(offers[1].label, u"Keep mine"_s);
    // Put away, it does not come again by itself.
    state().notices().putAway();
    settle();
    QCOMPARE(noticeText(), QString());
    // Another change is told anew.
    fixture_->write(u"a.txt"_s, "another program's, changed again");
    settle();
    QCOMPARE(noticeText(), u"a.txt has changed on disk, and here too."_s);
    // And the notice goes with the tab.
    state().closeTab(0);
    QCOMPARE(noticeText(), u"Closed with unsaved changes"_s);
}

void WatchedFilesTest::reloadingTakesTheFile()
{
    changeInBoth();
    state().notices().accept(0);
    settle();
    QCOMPARE(document().content(), u"another program's"_s);
    QVERIFY(!document().isModified());
    QCOMPARE(noticeText(), QString());
    document().setContent(u"mine again"_s);
    state().saveCurrentDocument();
    QCOMPARE(noticeText(), QString());
    QCOMPARE(fixture_->bytesOf(u"a.txt"_s), QByteArray("mine again"));
}

void WatchedFilesTest::whatIsTypedAfterReloadingStays()
{
    changeInBoth();
    const QString changed = noticeText();
    state().notices().accept(0);
    QCOMPARE(noticeText(), QString());
    document().setContent(u"mine, and more"_s);
    settle();
    QCOMPARE(document().content(), u"mine, and more"_s);
    QVERIFY(document().isModified());
    // It is offered for what stands there now.
    QCOMPARE(noticeText(), changed);
    state().notices().accept(0);
    settle();
    QCOMPARE(document().content(), u"another program's"_s);
    QVERIFY(!document().isModified());
}

void WatchedFilesTest::aReloadIsNotMadeUpForWhenTheTabIsOpenedAgain()
{
    changeInBoth();
    const QString changed = noticeText();
    state().notices().accept(0);
    const std::shared_ptr<Document> closed = state().currentDocument();
    state().closeTab(0);
    settle();
    state().setDocuments({closed});
    settle();
    QCOMPARE(document().content(), u"mine"_s);
    QVERIFY(document().isModified());
    QCOMPARE(noticeText(), changed);
}

void WatchedFilesTest::keepingMineIsKeptUntilTheNextChange()
{
    changeInBoth();
    state().notices().accept(1);
    settle();
    QCOMPARE(document().content(), u"mine"_s);
    QCOMPARE(noticeText(), QString());
    // It was seen, so that saving says nothing.
    state().saveCurrentDocument();
    QCOMPARE(noticeText(), QString());
    QCOMPARE(fixture_->bytesOf(u"a.txt"_s), QByteArray("mine"));
}

void WatchedFilesTest::aModifiedDocumentThatGetsItsOwnTextIsNotToldOf()
{
    state().openFile(fixture_->write(u"a.txt"_s, "old"));
    settle();
    document().setContent(u"the same change"_s);
    fixture_->write(u"a.txt"_s, "the same change");
    settle();
    QCOMPARE(noticeText(), QString());
    state().saveCurrentDocument();
    QCOMPARE(noticeText(), QString());
}

void WatchedFilesTest::anUndoneChangeTakesItsNoticeBack()
{
    changeInBoth();
    QVERIFY(!noticeText().isEmpty());
    fixture_->write(u"a.txt"_s, "old");
    settle();
    QCOMPARE(noticeText(), QString());
    QCOMPARE(document().content(), u"mine"_s);
}

void WatchedFilesTest::aVanishedFileIsToldOfAndCanBeSavedAgain()
{
    state().openFile(fixture_->write(u"a.txt"_s, "text"));
    settle();
    QVERIFY(QFile::remove(path(u"a.txt"_s)));
    QTRY_COMPARE((isSettled(), noticeText()),
                 u"a.txt is no longer on disk. Its text stays here, and saving it puts it back."_s);
    QCOMPARE(document().content(), u"text"_s);
    QVERIFY(!document().isModified());
    // Told once.
    state().notices().putAway();
    settle();
    QCOMPARE(noticeText(), QString());
    state().saveCurrentDocument();
    QCOMPARE(fixture_->bytesOf(u"a.txt"_s), QByteArray("text"));
    settle();
    QCOMPARE(noticeText(), QString());
}

void WatchedFilesTest::aVanishedFileThatComesBackIsTaken()
{
    state().openFile(fixture_->write(u"a.txt"_s, "text"));
    settle();
    QCOMPARE(std::rename(native(u"a.txt"_s).constData(), native(u"away"_s).constData()), 0);
    settle();
    QVERIFY(!noticeText().isEmpty());
    // The very file: nothing has changed.
    QCOMPARE(std::rename(native(u"away"_s).constData(), native(u"a.txt"_s).constData()), 0);
    settle();
    QCOMPARE(noticeText(), QString());
    QVERIFY(QFile::remove(path(u"a.txt"_s)));
    settle();
    fixture_->write(u"a.txt"_s, "another text");
    settle();
    QCOMPARE(document().content(), u"another text"_s);
}

void WatchedFilesTest::aFileThatCannotBeReadAnyMoreIsToldOfOnce()
{
    state().openFile(fixture_->write(u"a.txt"_s, "text"));
    settle();
    fixture_->write(u"a.txt"_s, "caf\xe9, in another encoding");
    settle();
    QCOMPARE(noticeText(), u"a.txt has changed on disk and could not be read: it is no text in UTF-8."_s);
    QCOMPARE(document().content(), u"text"_s);
    state().notices().putAway();
    settle();
    QCOMPARE(noticeText(), QString());
    // It cannot be shown here, and a save keeps it.
    document().setContent(u"mine"_s);
    state().saveCurrentDocument();
    QCOMPARE(fixture_->replaced.kept, (QList<QByteArray>{"caf\xe9, in another encoding"}));
    QCOMPARE(noticeText(), u"a.txt was saved over what another program had written there."_s);
    settle();
    fixture_->write(u"a.txt"_s, "text that can be read");
    settle();
    QCOMPARE(document().content(), u"text that can be read"_s);
}

void WatchedFilesTest::aChangeBetweenReadingAndWatchingIsSeen()
{
    const QUrl url = fixture_->write(u"a.txt"_s, "old");
    state().watchedFiles().willRead(url);
    fixture_->write(u"a.txt"_s, "written while it was read");
    const auto document = std::make_shared<Document>(u"old"_s, url, std::nullopt, std::nullopt);
    state().setDocuments({document});
    settle();
    QCOMPARE(document->content(), u"written while it was read"_s);
}

void WatchedFilesTest::aClosedDocumentIsWatchedNoMore()
{
    state().openFile(fixture_->write(u"a.txt"_s, "old"));
    const std::shared_ptr<Document> closed = state().currentDocument();
    settle();
    state().closeTab(0);
    fixture_->write(u"a.txt"_s, "another program's");
    settle();
    QCOMPARE(closed->content(), u"old"_s);
    QCOMPARE(noticeText(), QString());
}

void WatchedFilesTest::aSaveWhileTheFileIsReadGoesBeforeIt()
{
    state().openFile(fixture_->write(u"a.txt"_s, "old"));
    settle();
    fixture_->write(u"a.txt"_s, "another program's");
    state().watchedFiles().lookAgain();
    fixture_->scheduler.advance(WatchedFiles::lookDelay);
    QTRY_VERIFY(fixture_->scheduler.pending() > 0);
    // The file is read by now, and what was read waits to be taken.
    fixture_->scheduler.advance(WatchedFiles::quietTime);
    QVERIFY(backgroundWorkers().waitForDone(10s));
    document().setContent(u"mine"_s);
    state().saveCurrentDocument();
    QSignalSpy changed(&document(), &Document::contentChanged);
    settle();
    QCOMPARE(document().content(), u"mine"_s);
    QCOMPARE(changed.count(), 0);
    QCOMPARE(fixture_->bytesOf(u"a.txt"_s), QByteArray("mine"));
    QCOMPARE(fixture_->replaced.kept, (QList<QByteArray>{"another program's"}));
}

void WatchedFilesTest::aSaveOverAnUnseenChangeKeepsIt()
{
    state().openFile(fixture_->write(u"a.txt"_s, "old"));
    settle();
    document().setContent(u"mine"_s);
    fixture_->write(u"a.txt"_s, "another program's");
    state().saveCurrentDocument();
    QCOMPARE(fixture_->bytesOf(u"a.txt"_s), QByteArray("mine"));
    QVERIFY(!document().isModified());
    QCOMPARE(noticeText(), u"a.txt was saved over what another program had written there."_s);
    QCOMPARE(state().notices().current()->offers.at(0).label, u"Open what was there"_s);
    QCOMPARE(fixture_->replaced.kept.size(), 1);
    QCOMPARE(fixture_->replaced.kept.first(), QByteArray("another program's"));
    // Once the new text is there, the store of unsaved texts has it.
    QCOMPARE(fixture_->replaced.forgotten.size(), 1);
}

void WatchedFilesTest::whatTheSaveWroteOverIsOpened()
{
    aSaveOverAnUnseenChangeKeepsIt();
    state().notices().accept(0);
    QCOMPARE(state().documents().size(), 2);
    QCOMPARE(document().content(), u"another program's"_s);
    // It is in no file, and says so.
    QVERIFY(!document().fileURL());
    QVERIFY(document().isModified());
}

void WatchedFilesTest::aSaveOverTheSameBytesKeepsNothing()
{
    state().openFile(fixture_->write(u"a.txt"_s, "old"));
    document().setContent(u"the same change"_s);
    fixture_->write(u"a.txt"_s, "the same change");
    state().saveCurrentDocument();
    QCOMPARE(noticeText(), QString());
    QVERIFY(fixture_->replaced.kept.isEmpty());
}

void WatchedFilesTest::whatCannotBeKeptIsNotWrittenOver()
{
    state().openFile(fixture_->write(u"a.txt"_s, "old"));
    document().setContent(u"mine"_s);
    fixture_->write(u"a.txt"_s, "another program's");
    fixture_->replaced.isFull = true;
    state().saveCurrentDocument();
    QCOMPARE(fixture_->bytesOf(u"a.txt"_s), QByteArray("another program's"));
    QVERIFY(document().isModified());
    QCOMPARE(noticeText(), u"a.txt could not be saved: another program has changed it, and what it wrote could not be "
                           "kept. Saving once more writes over it."_s);
    // Who knows of it may.
    state().saveCurrentDocument();
    QCOMPARE(fixture_->bytesOf(u"a.txt"_s), QByteArray("mine"));
}

void WatchedFilesTest::randomChangesLeaveTheDocumentWithTheFile()
{
    test::RandomText random;
    QByteArray bytes = "one\ntwo\nthree\n";
    state().openFile(fixture_->write(u"a.txt"_s, bytes));
    settle();
    for (int round = 0; round < 20; ++round) {
        const char letter = char('a' + random.below(26));
        bytes.insert(random.below(bytes.size() + 1), QByteArray(1 + random.below(5000), letter));
        if (random.below(3) == 0) {
            fixture_->write(u"new"_s, bytes);
            QCOMPARE(std::rename(native(u"new"_s).constData(), native(u"a.txt"_s).constData()), 0);
        } else {
            fixture_->write(u"a.txt"_s, bytes);
        }
        settle();
        QVERIFY2(document().content().toUtf8() == bytes, qPrintable(u"round %1"_s.arg(round)));
        QVERIFY(!document().isModified());
    }
}

const kelm::test::Registered<WatchedFilesTest> registered;

} // namespace watched_files_test

#include "watched_files_test.moc"
