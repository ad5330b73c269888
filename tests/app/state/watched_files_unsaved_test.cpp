#include "app/state/app_state.h"
#include "app/state/unsaved_texts.h"
#include "app/state/watched_files.h"
#include "support/app_state_fixture.h"
#include "support/test_program.h"

#include <QtTest>

#include <memory>

namespace watched_files_unsaved_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

/// A text that was changed and changed back is modified, and the one its file holds: no copy of it is needed, until
/// another program changes the file.
class WatchedFilesUnsavedTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void aTextThatTheFileHoldsNoMoreIsCopied_data();
    void aTextThatTheFileHoldsNoMoreIsCopied();
    void aTextThatIsTypedBackAfterwardsIsCopied();
    void aTextThatTheFileHoldsAgainIsNotCopied();
    void aTextThatTheFileHasComeToHoldIsNotCopied();
    void aTextThatIsNotModifiedIsNotCopied();

private:
    Document& document() { return *state_->currentDocument(); }
    /// Looks at the files until there is nothing more to be found out, and has all that is due be copied.
    void settle();
    /// The texts that the store holds.
    QStringList copies() const;
    void open();

    std::unique_ptr<AppStateFixture> fixture_;
    std::unique_ptr<AppState> state_;
};

void WatchedFilesUnsavedTest::init()
{
    state_.reset();
    fixture_ = std::make_unique<AppStateFixture>();
    state_ = std::make_unique<AppState>(
        AppState::Services{fixture_->filePanels, fixture_->userDefaults, fixture_->scheduler,
                           fixture_->notificationCenter, fixture_->log, ProcessRunner::sharedSystem(),
                           ExecutableSearch(ProcessRunner::system()), fixture_->folder.filePath(u"unsaved"_s)});
}

void WatchedFilesUnsavedTest::settle()
{
    WatchedFiles& files = state_->watchedFiles();
    files.lookAgain();
    QTRY_VERIFY_WITH_TIMEOUT((fixture_->scheduler.advance(WatchedFiles::quietTime), files.isSettled()), 30000);
    QVERIFY(state_->unsavedTexts().store().finish(std::chrono::seconds(30)));
    QCoreApplication::processEvents();
}

QStringList WatchedFilesUnsavedTest::copies() const
{
    QStringList texts;
    const QDir folder(fixture_->folder.filePath(u"unsaved"_s));
    for (const QString& name : folder.entryList({u"*.copy"_s}, QDir::Files)) {
        QFile file(folder.filePath(name));
        const auto content = file.open(QIODevice::ReadOnly) ? readCopy(file) : std::nullopt;
        texts << (content ? content->text.toString() : u"(damaged)"_s);
    }
    return texts;
}

void WatchedFilesUnsavedTest::open()
{
    state_->openFile(fixture_->write(u"a.txt"_s, "as it was"));
    settle();
}

void WatchedFilesUnsavedTest::aTextThatTheFileHoldsNoMoreIsCopied_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("another text") << QByteArray("by another program");
    QTest::newRow("no text") << QByteArray("\xff\xfe\xfd\x80");
    QTest::newRow("no file") << QByteArray();
}

void WatchedFilesUnsavedTest::aTextThatTheFileHoldsNoMoreIsCopied()
{
    QFETCH(QByteArray, bytes);
    open();
    document().setContent(u"typed"_s);
    document().setContent(u"as it was"_s);
    settle();
    QVERIFY(document().isModified());
    QCOMPARE(copies(), QStringList());

    if (bytes.isEmpty()) {
        QVERIFY(QFile::remove(fixture_->folder.filePath(u"a.txt"_s)));
    } else {
        fixture_->write(u"a.txt"_s, bytes);
    }
    settle();
    QCOMPARE(document().content(), u"as it was"_s);
    QCOMPARE(copies(), QStringList{u"as it was"_s});

    fixture_->write(u"a.txt"_s, "as it was");
    settle();
    QCOMPARE(copies(), QStringList());
}

void WatchedFilesUnsavedTest::aTextThatIsTypedBackAfterwardsIsCopied()
{
    open();
    QVERIFY(QFile::remove(fixture_->folder.filePath(u"a.txt"_s)));
    settle();
    document().setContent(u"typed"_s);
    document().setContent(u"as it was"_s);
    settle();
    QCOMPARE(copies(), QStringList{u"as it was"_s});
}

void WatchedFilesUnsavedTest::aTextThatTheFileHoldsAgainIsNotCopied()
{
    open();
    document().setContent(u"typed"_s);
    // As a checkout does it that takes a look's time.
    QVERIFY(QFile::remove(fixture_->folder.filePath(u"a.txt"_s)));
    settle();
    fixture_->write(u"a.txt"_s, "as it was");
    settle();
    QCOMPARE(copies(), QStringList{u"typed"_s});
    document().setContent(u"as it was"_s);
    settle();
    QVERIFY(document().isModified());
    QCOMPARE(copies(), QStringList());
}

void WatchedFilesUnsavedTest::aTextThatTheFileHasComeToHoldIsNotCopied()
{
    open();
    document().setContent(u"typed"_s);
    fixture_->write(u"a.txt"_s, "by another program");
    settle();
    QCOMPARE(copies(), QStringList{u"typed"_s});
    document().setContent(u"by another program"_s);
    settle();
    QCOMPARE(copies(), QStringList());
    document().setContent(u"as it was"_s);
    settle();
    QCOMPARE(copies(), QStringList{u"as it was"_s});
}

void WatchedFilesUnsavedTest::aTextThatIsNotModifiedIsNotCopied()
{
    open();
    QVERIFY(QFile::remove(fixture_->folder.filePath(u"a.txt"_s)));
    settle();
    QVERIFY(!document().isModified());
    QCOMPARE(copies(), QStringList());
}

const kelm::test::Registered<WatchedFilesUnsavedTest> registered(kelm::test::Toolkit::core);

} // namespace watched_files_unsaved_test

#include "watched_files_unsaved_test.moc"
