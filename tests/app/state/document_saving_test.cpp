#include "app/state/document_saving.h"
#include "app/state/notices.h"
#include "platform/files/file_step.h"
#include "support/app_state_fixture.h"
#include "support/test_program.h"
#include "support/unprivileged.h"

#include <QtTest>

#include <cerrno>
#include <cstring>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace document_saving_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

struct BadDisk
{
    FileStep step;
    /// How often the step is taken before the disk refuses.
    int taken;
    int error;
};

BadDisk badDisk;

/// Workers write and close files of their own meanwhile; the save is the main thread's.
int refuse(FileStep step)
{
    const bool isOfSave = QThread::currentThread() == QCoreApplication::instance()->thread();
    return isOfSave && step == badDisk.step && badDisk.taken-- == 0 ? badDisk.error : 0;
}

} // namespace

/// What a person is told of a save, and what is kept by it. How a file is watched is a test of its own.
class DocumentSavingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void aHardLinkIsToldOfOnceAndNothingIsKept();
    void aFolderThatLetsNothingBeReplacedIsToldOf();
    void whatCannotBeKeptSafeIsNotWritten();
    void savingAllTellsOfAllFailuresAtOnce();
    void whatAKillLeftGoesWithTheNextSaveAndStart();
    void namesOfAnyBytesAreSavedAndOpened();
    void aDiskThatRefusesLeavesFileAndText_data();
    void aDiskThatRefusesLeavesFileAndText();
    void aSaveThatFailedHasSeenNothing();

private:
    AppState& state() { return fixture_->state; }
    QString noticeText()
    {
        const Notice* notice = state().notices().current();
        return notice != nullptr ? notice->text : QString();
    }
    QString path(const QString& name) const { return fixture_->folder.filePath(name); }
    void openAndType(const QUrl& url, const QString& text)
    {
        state().openFile(url);
        state().currentDocument()->setContent(text);
    }

    std::optional<AppStateFixture> fixture_;
};

void DocumentSavingTest::init()
{
    fixture_.emplace();
    QVERIFY(fixture_->folder.isValid());
}

void DocumentSavingTest::aHardLinkIsToldOfOnceAndNothingIsKept()
{
    const QUrl url = fixture_->write(u"a.txt"_s, "old");
    QCOMPARE(::link(qPrintable(path(u"a.txt"_s)), qPrintable(path(u"name"_s))), 0);
    openAndType(url, u"new"_s);
    state().saveCurrentDocument();
    QCOMPARE(fixture_->bytesOf(u"name"_s), QByteArray("new"));
    QVERIFY(!state().currentDocument()->isModified());
    QCOMPARE(noticeText(), u"a.txt was written in place, so that its other names stay the same file."_s);
    // The old text was safe while it was written, and is not needed any more.
    QCOMPARE(fixture_->replaced.kept, (QList<QByteArray>{"old"}));
    QCOMPARE(fixture_->replaced.forgotten.size(), 1);
    state().notices().putAway();
    state().currentDocument()->setContent(u"newer"_s);
    state().saveCurrentDocument();
    QCOMPARE(fixture_->bytesOf(u"name"_s), QByteArray("newer"));
    QCOMPARE(noticeText(), QString());
}

void DocumentSavingTest::aFolderThatLetsNothingBeReplacedIsToldOf()
{
    const QUrl url = fixture_->write(u"a.txt"_s, "old");
    openAndType(url, u"new"_s);
    QCOMPARE(::chmod(qPrintable(path(u"a.txt"_s)), 0666), 0);
    QCOMPARE(::chmod(qPrintable(fixture_->folder.path()), 0555), 0);
    // Whoever may look into the folders above.
    if (::geteuid() == 0) {
        QCOMPARE(::chmod(qPrintable(QFileInfo(fixture_->folder.path()).path()), 0755), 0);
    }
    {
        const test::Unprivileged ordinaryUser;
        if (::access(qPrintable(path(u"a.txt"_s)), W_OK) == 0) {
            state().saveCurrentDocument();
        }
    }
    QCOMPARE(::chmod(qPrintable(fixture_->folder.path()), 0755), 0);
    if (noticeText().isEmpty()) {
        QSKIP("another user cannot look into the folder of these tests");
    }
    QCOMPARE(noticeText(), u"a.txt was written in place, since nothing may be replaced in its folder."_s);
    QCOMPARE(fixture_->bytesOf(u"a.txt"_s), QByteArray("new"));
}

void DocumentSavingTest::whatCannotBeKeptSafeIsNotWritten()
{
    const QUrl url = fixture_->write(u"a.txt"_s, "old");
    QCOMPARE(::link(qPrintable(path(u"a.txt"_s)), qPrintable(path(u"name"_s))), 0);
    openAndType(url, u"new"_s);
    fixture_->replaced.isFull = true;
    state().saveCurrentDocument();
    QCOMPARE(fixture_->bytesOf(u"name"_s), QByteArray("old"));
    QVERIFY(state().currentDocument()->isModified());
    QCOMPARE(noticeText(), u"a.txt could not be saved: what it holds could not be put in a safe place first."_s);
}

void DocumentSavingTest::savingAllTellsOfAllFailuresAtOnce()
{
    for (const QString& name : {u"a"_s, u"b"_s, u"c"_s}) {
        openAndType(fixture_->write(name, "old"), u"new"_s);
        QVERIFY(name == u"c" || (QFile::remove(path(name)) && QDir(fixture_->folder.path()).mkdir(name)));
    }
    state().saveAllDocuments();
    QCOMPARE(noticeText(), u"2 files could not be saved: a, b: it is a folder."_s);
    state().notices().putAway();
    QCOMPARE(noticeText(), QString());
    QVERIFY(state().documents().at(0)->isModified() && state().documents().at(1)->isModified());
    QVERIFY(!state().documents().at(2)->isModified());
    QCOMPARE(fixture_->bytesOf(u"c"_s), QByteArray("new"));
}

void DocumentSavingTest::whatAKillLeftGoesWithTheNextSaveAndStart()
{
    const QUrl url = fixture_->write(u"a.txt"_s, "old");
    QCOMPARE(::symlink("a.txt", qPrintable(path(u"link"_s))), 0);
    openAndType(fixture_->url(u"link"_s), u"new"_s);
    fixture_->write(u".kelm-1a2b3c"_s, "half of a text");
    state().saveCurrentDocument();
    QTRY_VERIFY(!QFile::exists(path(u".kelm-1a2b3c"_s)));
    // The folders of the recent files are looked into by the next start.
    fixture_->write(u".kelm-1a2b3c"_s, "half of a text");
    const AppState next({fixture_->filePanels, fixture_->userDefaults, fixture_->scheduler,
                         fixture_->notificationCenter, fixture_->log, ProcessRunner::sharedSystem(),
                         ExecutableSearch(ProcessRunner::system())});
    QTRY_VERIFY(!QFile::exists(path(u".kelm-1a2b3c"_s)));
    QCOMPARE(fixture_->bytesOf(u"a.txt"_s), QByteArray("new"));
}

void DocumentSavingTest::namesOfAnyBytesAreSavedAndOpened()
{
    const QByteArray base = QFile::encodeName(fixture_->folder.path()) + '/';
    for (const char* name : {"caf\xe9.py", "\xc7\xd1\xb1\xdb", "a\nb", "%E9", "?#", "\xff\xfe"}) {
        const QUrl url = QUrl(u"file://"_s + QString::fromLatin1((base + name).toPercentEncoding("/")));
        state().createNewTab();
        state().currentDocument()->setContent(u"text"_s);
        fixture_->filePanels.saveAnswer = url;
        state().saveCurrentDocumentAs();
        QCOMPARE(::access((base + name).constData(), F_OK), 0);
        QCOMPARE(noticeText(), QString());
        state().closeTab(0);
        state().openFile(url);
        QCOMPARE(state().currentDocument()->content(), u"text"_s);
        QVERIFY(!state().currentDocument()->title().contains(u'%') || QByteArrayView(name) == "%E9");
        state().closeTab(0);
        // It comes back in the recent files of the next start, too.
        state().loadRecentFiles();
        QCOMPARE(state().recentFiles().constFirst(), url);
        QCOMPARE(::unlink((base + name).constData()), 0);
    }
}

void DocumentSavingTest::aDiskThatRefusesLeavesFileAndText_data()
{
    QTest::addColumn<int>("step");
    QTest::addColumn<int>("taken");
    QTest::addColumn<int>("error");
    QTest::addColumn<QString>("reason");
    const auto row = [](const char* name, FileStep step, int taken, int error, const QString& reason) {
        QTest::newRow(name) << int(step) << taken << error << reason;
    };
    const QString full = u"the disk is full"_s;
    const QString quota = u"your share of the disk is used up"_s;
    const QString broken = u"the disk does not work as it should"_s;
    row("full, at once", FileStep::create, 0, ENOSPC, full);
    row("full, before the first part", FileStep::write, 0, ENOSPC, full);
    row("full, after two parts", FileStep::write, 2, ENOSPC, full);
    row("full, told at the flush", FileStep::flush, 0, ENOSPC, full);
    row("quota, in the middle", FileStep::write, 1, EDQUOT, quota);
    row("quota, told at the end, as networks do", FileStep::close, 0, EDQUOT, quota);
    row("broken, in the middle", FileStep::write, 2, EIO, broken);
    row("broken, at the flush", FileStep::flush, 0, EIO, broken);
    row("broken, at the renaming", FileStep::rename, 0, EIO, broken);
    row("read-only all of a sudden", FileStep::rename, 0, EROFS, u"nothing can be written to that disk"_s);
    row("a server that has gone", FileStep::flush, 0, ESTALE, QString::fromLocal8Bit(std::strerror(ESTALE)));
}

void DocumentSavingTest::aDiskThatRefusesLeavesFileAndText()
{
    QFETCH(int, step);
    QFETCH(int, taken);
    QFETCH(int, error);
    QFETCH(QString, reason);
    const QByteArray old(3'000'000, 'o');
    const QString typed(3'500'000, u'n');
    openAndType(fixture_->write(u"a.txt"_s, old), typed);
    badDisk = {FileStep(step), taken, error};
    setFileStepCheck(refuse);
    state().saveCurrentDocument();
    setFileStepCheck(nullptr);
    QVERIFY2(badDisk.taken < 0, "the step was not reached");
    QCOMPARE(fixture_->bytesOf(u"a.txt"_s), old);
    QCOMPARE(QDir(fixture_->folder.path()).entryList({u".kelm-*"_s}, QDir::Files | QDir::Hidden), QStringList());
    QVERIFY(state().currentDocument()->isModified());
    QCOMPARE(noticeText(), u"a.txt could not be saved: %1."_s.arg(reason));
    QVERIFY(fixture_->log.printed.constLast().startsWith(u"Error saving: "_s));
    // And with a disk that works again.
    state().saveCurrentDocument();
    QVERIFY(!state().currentDocument()->isModified());
    QCOMPARE(fixture_->bytesOf(u"a.txt"_s), typed.toUtf8());
}

void DocumentSavingTest::aSaveThatFailedHasSeenNothing()
{
    openAndType(fixture_->write(u"a.txt"_s, "old"), u"typed"_s);
    fixture_->write(u"a.txt"_s, "another program's");
    setFileStepCheck([](FileStep) { return ENOSPC; });
    state().saveCurrentDocument();
    setFileStepCheck(nullptr);
    QCOMPARE(fixture_->bytesOf(u"a.txt"_s), QByteArray("another program's"));
    state().notices().putAway();
    state().saveCurrentDocument();
    QCOMPARE(fixture_->bytesOf(u"a.txt"_s), QByteArray("typed"));
    QCOMPARE(noticeText(), u"a.txt was saved over what another program had written there."_s);
}

const kelm::test::Registered<DocumentSavingTest> registered;

} // namespace document_saving_test

#include "document_saving_test.moc"
