#include "app/state/app_state.h"
#include "app/state/notices.h"
#include "app/state/unsaved_texts.h"
#include "app/state/watched_files.h"
#include "platform/files/native_path.h"
#include "support/app_state_fixture.h"
#include "support/test_program.h"

#include <QSignalSpy>
#include <QtTest>

#include <memory>

namespace unsaved_texts_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr std::chrono::seconds patience{30};

/// With half of a pair in it.
QString oddText()
{
    return u"typed "_s + QChar(0xd83d) + u"\r\n"_s;
}

} // namespace

class UnsavedTextsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        fixture_ = std::make_unique<AppStateFixture>();
        start();
    }
    void cleanup() { state_.reset(); }
    void aClosedTextIsOfferedAndComesBackAsItWas();
    void whatIsSavedIsNotOffered();
    void anUntitledTabWithoutATextIsNotOffered();
    void closingOthersIsOneNotice();
    void closingAllIsOneNotice();
    void tabsComeBackBetweenThoseTheyStoodBetween_data();
    void tabsComeBackBetweenThoseTheyStoodBetween();
    void eachCloseIsOfferedTheLatestFirst();
    void thereAreNotTooManyNotices();
    void aFileThatWasOpenedAgainGivesWay();
    void twoUnsavedTextsOfOneFileStayApart();
    void theNextStartOffersWhatWasOpen();
    void whatChangedOnDiskMeanwhileIsSeen_data();
    void whatChangedOnDiskMeanwhileIsSeen();
    void aClosedTextThatIsOpenedFromTheStoreIsNotOfferedTwice();
    void aTextThatCannotBeReadIsToldOf();
    void aFullDiskIsToldOnce();
    void aFailedSaveOfAllKeepsTheText();
    void savingRemovesTheCopy();
    void whatWasSavedUnchangedIsTheFileThatIsKnown();

private:
    AppState& state() { return *state_; }
    Notices& notices() { return state_->notices(); }
    RecoveryStore& store() { return state_->unsavedTexts().store(); }
    QString folder() const { return fixture_->folder.filePath(u"unsaved"_s); }
    void start()
    {
        state_.reset();
        state_ = std::make_unique<AppState>(AppState::Services{
            fixture_->filePanels, fixture_->userDefaults, fixture_->scheduler, fixture_->notificationCenter,
            fixture_->log, ProcessRunner::sharedSystem(), ExecutableSearch(ProcessRunner::system()), folder()});
    }
    /// Whatever is due is written, and what is offered is known.
    void settle()
    {
        store().refresh();
        QVERIFY(store().finish(patience));
        QCoreApplication::processEvents();
    }
    std::shared_ptr<Document> typeInto(qsizetype index, const QString& text)
    {
        state().documents()[index]->setContent(text);
        return state().documents()[index];
    }
    QString notice() { return notices().current() != nullptr ? notices().current()->text : QString(); }
    QStringList texts()
    {
        QStringList texts;
        for (const auto& document : state().documents()) {
            texts << document->content();
        }
        return texts;
    }
    void openTabs(const QStringList& texts)
    {
        for (const QString& text : texts) {
            state().createNewTab();
            state().documents().constLast()->setContent(text);
        }
    }

    std::unique_ptr<AppStateFixture> fixture_;
    std::unique_ptr<AppState> state_;
};

void UnsavedTextsTest::aClosedTextIsOfferedAndComesBackAsItWas()
{
    const QUrl url = fixture_->write(u"a.txt"_s, "as it was");
    state().openFile(url);
    const auto document = typeInto(0, oddText());
    document->setExplicitLanguage(Language(Language::sql));
    state().closeTab(0);
    QVERIFY(state().documents().isEmpty());
    QCOMPARE(notice(), u"Closed with unsaved changes"_s);
    QCOMPARE(notices().current()->offers.size(), std::size_t(1));
    QCOMPARE(notices().current()->offers[0].label, u"Reopen"_s);

    notices().accept(0);
    QCOMPARE(texts(), QStringList(oddText()));
    QVERIFY(state().currentDocument()->isModified());
    QCOMPARE(state().currentDocument()->fileURL(), std::optional(url));
    QCOMPARE(state().currentDocument()->language(), Language(Language::sql));
    QCOMPARE(notices().current(), nullptr);
    QCOMPARE(fixture_->bytesOf(u"a.txt"_s), QByteArray("as it was"));
}

void UnsavedTextsTest::whatIsSavedIsNotOffered()
{
    state().openFile(fixture_->write(u"a.txt"_s, "text"));
    state().createNewTab();
    state().openSnippet(u"a lesson's"_s, Language::python, std::nullopt);
    state().setDocuments({});
    QCOMPARE(notices().current(), nullptr);
    settle();
    QVERIFY(store().texts().isEmpty());
}

void UnsavedTextsTest::anUntitledTabWithoutATextIsNotOffered()
{
    openTabs({u"typed"_s});
    typeInto(0, u""_s);
    state().closeTab(0);
    QCOMPARE(notices().current(), nullptr);
}

void UnsavedTextsTest::closingOthersIsOneNotice()
{
    openTabs({u"a"_s, u"b"_s, u"c"_s});
    state().createNewTab();
    state().closeOtherTabs(1);
    QCOMPARE(texts(), QStringList(u"b"_s));
    notices().accept(0);
    QCOMPARE(texts(), QStringList({u"a"_s, u"b"_s, u"c"_s}));
    QCOMPARE(notices().current(), nullptr);
}

void UnsavedTextsTest::closingAllIsOneNotice()
{
    openTabs({u"a"_s, u"b"_s, u"c"_s});
    state().setCurrentDocumentIndex(1);
    state().setDocuments({});
    notices().accept(0);
    QCOMPARE(texts(), QStringList({u"a"_s, u"b"_s, u"c"_s}));
    QCOMPARE(state().currentDocument()->content(), u"b"_s);
    QCOMPARE(notices().current(), nullptr);
}

void UnsavedTextsTest::tabsComeBackBetweenThoseTheyStoodBetween_data()
{
    QTest::addColumn<int>("closed");
    QTest::addColumn<int>("closedAfter");
    QTest::addColumn<QStringList>("wanted");
    QTest::newRow("first") << 0 << -1 << QStringList{u"a"_s, u"b"_s, u"c"_s, u"d"_s, u"new"_s};
    QTest::newRow("middle") << 1 << -1 << QStringList{u"a"_s, u"b"_s, u"c"_s, u"d"_s, u"new"_s};
    QTest::newRow("last") << 3 << -1 << QStringList{u"a"_s, u"b"_s, u"c"_s, u"d"_s, u"new"_s};
    QTest::newRow("the one before is gone") << 1 << 0 << QStringList{u"b"_s, u"c"_s, u"d"_s, u"new"_s};
    QTest::newRow("the one behind is gone") << 1 << 1 << QStringList{u"a"_s, u"b"_s, u"d"_s, u"new"_s};
}

void UnsavedTextsTest::tabsComeBackBetweenThoseTheyStoodBetween()
{
    QFETCH(const int, closed);
    QFETCH(const int, closedAfter);
    QFETCH(const QStringList, wanted);
    openTabs({u"a"_s, u"b"_s, u"c"_s, u"d"_s});
    state().closeTab(closed);
    if (closedAfter >= 0) {
        state().documents()[closedAfter]->setIsModified(false);
        state().closeTab(closedAfter);
    }
    state().createNewTab();
    state().documents().constLast()->setContent(u"new"_s);
    notices().accept(0);
    QCOMPARE(texts(), wanted);
    QCOMPARE(state().currentDocument()->content(), QStringList({u"a"_s, u"b"_s, u"c"_s, u"d"_s})[closed]);
}

void UnsavedTextsTest::eachCloseIsOfferedTheLatestFirst()
{
    openTabs({u"a"_s, u"b"_s});
    state().closeTab(0);
    state().closeTab(0);
    notices().accept(0);
    QCOMPARE(texts(), QStringList(u"b"_s));
    notices().accept(0);
    QCOMPARE(texts(), QStringList({u"a"_s, u"b"_s}));
}

void UnsavedTextsTest::thereAreNotTooManyNotices()
{
    for (qsizetype each = 0; each <= UnsavedTexts::mostNotices; ++each) {
        openTabs({QString::number(each)});
        state().closeTab(0);
    }
    qsizetype count = 0;
    for (; notices().current() != nullptr; ++count) {
        notices().putAway();
    }
    QCOMPARE(count, UnsavedTexts::mostNotices);
    settle();
    QCOMPARE(store().texts().size(), UnsavedTexts::mostNotices + 1);
}

void UnsavedTextsTest::aFileThatWasOpenedAgainGivesWay()
{
    const QUrl url = fixture_->write(u"a.txt"_s, "as it was");
    state().openFile(url);
    typeInto(0, u"typed"_s);
    state().closeTab(0);
    openTabs({u"x"_s});
    state().openFile(url);
    openTabs({u"y"_s});
    notices().accept(0);
    QCOMPARE(texts(), QStringList({u"x"_s, u"typed"_s, u"y"_s}));
    QCOMPARE(state().currentDocument()->fileURL(), std::optional(url));
    QCOMPARE(notices().current(), nullptr);
}

void UnsavedTextsTest::twoUnsavedTextsOfOneFileStayApart()
{
    const QUrl url = fixture_->write(u"a.py"_s, "as it was");
    state().openFile(url);
    typeInto(0, u"one"_s);
    state().closeTab(0);
    state().openFile(url);
    typeInto(0, u"other"_s);
    notices().accept(0);
    QCOMPARE(texts(), QStringList({u"other"_s, u"one"_s}));
    QCOMPARE(state().documents()[0]->fileURL(), std::optional(url));
    QCOMPARE(state().documents()[1]->fileURL(), std::nullopt);
    QCOMPARE(state().documents()[1]->language(), Language(Language::python));
}

void UnsavedTextsTest::theNextStartOffersWhatWasOpen()
{
    const QUrl url = fixture_->write(u"a.txt"_s, "as it was");
    state().openFile(url);
    typeInto(0, u"typed"_s);
    QVERIFY(store().finish(patience));
    start();
    settle();
    QVERIFY(state().documents().isEmpty());
    QCOMPARE(notices().current(), nullptr);
    QCOMPARE(store().texts().size(), 1);
    QCOMPARE(store().texts().constFirst().header.title(), u"a.txt"_s);
    QSignalSpy opened(&state(), &AppState::documentsChanged);
    state().unsavedTexts().open(store().texts().constFirst().id);
    QVERIFY(opened.wait(kelm::test::patience));
    QCOMPARE(texts(), QStringList(u"typed"_s));
    QVERIFY(state().currentDocument()->isModified());
    QCOMPARE(state().currentDocument()->fileURL(), std::optional(url));
    QVERIFY(store().texts().isEmpty());
    state().saveCurrentDocument();
    QCOMPARE(fixture_->bytesOf(u"a.txt"_s), QByteArray("typed"));
    settle();
    start();
    settle();
    QVERIFY(store().texts().isEmpty());
}

void UnsavedTextsTest::whatChangedOnDiskMeanwhileIsSeen_data()
{
    QTest::addColumn<bool>("isAfterAStart");
    QTest::addColumn<bool>("isChanged");
    QTest::newRow("reopened") << false << true;
    QTest::newRow("reopened, the file as it was") << false << false;
    QTest::newRow("opened by the next start") << true << true;
    QTest::newRow("opened by the next start, the file as it was") << true << false;
}

void UnsavedTextsTest::whatChangedOnDiskMeanwhileIsSeen()
{
    QFETCH(bool, isAfterAStart);
    QFETCH(bool, isChanged);
    const QUrl url = fixture_->write(u"a.txt"_s, "as it was");
    state().openFile(url);
    typeInto(0, u"typed"_s);
    state().closeTab(0);
    settle();
    if (isChanged) {
        fixture_->write(u"a.txt"_s, "by another program");
    }
    if (isAfterAStart) {
        start();
        settle();
        state().unsavedTexts().open(store().texts().constFirst().id);
        settle();
    } else {
        notices().accept(0);
    }
    QCOMPARE(texts(), QStringList(u"typed"_s));
    QCOMPARE(state().watchedFiles().hasUnseenChange(*state().currentDocument()), isChanged);
    // Nobody asks for a look.
    QTRY_VERIFY((fixture_->scheduler.advance(WatchedFiles::quietTime), state().watchedFiles().isSettled()));
    QCOMPARE(notice(), isChanged ? u"a.txt has changed on disk, and here too."_s : QString());
    QCOMPARE(texts(), QStringList(u"typed"_s));
}

void UnsavedTextsTest::aClosedTextThatIsOpenedFromTheStoreIsNotOfferedTwice()
{
    openTabs({u"typed"_s});
    const auto document = state().currentDocument();
    state().closeTab(0);
    settle();
    QCOMPARE(store().texts().size(), 1);
    state().unsavedTexts().open(store().texts().constFirst().id);
    QCOMPARE(state().currentDocument(), document);
    QCOMPARE(notices().current(), nullptr);
    QVERIFY(store().texts().isEmpty());
}

void UnsavedTextsTest::aTextThatCannotBeReadIsToldOf()
{
    openTabs({u"typed"_s});
    state().closeTab(0);
    notices().putAway();
    settle();
    const QString id = store().texts().constFirst().id;
    QVERIFY(QFile::remove(folder() + u'/' + id + u".copy"_s));
    QSignalSpy told(&notices(), &Notices::currentChanged);
    QList<std::shared_ptr<Document>> opened;
    state().unsavedTexts().open(id, [&opened](const std::shared_ptr<Document>& document) { opened << document; });
    QVERIFY(told.wait(kelm::test::patience));
    // Whoever waits for it hears that there is nothing to wait for.
    QCOMPARE(opened, QList<std::shared_ptr<Document>>{nullptr});
    QCOMPARE(notice(), u"The unsaved text could not be opened"_s);
    QVERIFY(state().documents().isEmpty());
}

void UnsavedTextsTest::aFullDiskIsToldOnce()
{
    QFile inTheWay(folder());
    QVERIFY(inTheWay.open(QIODevice::WriteOnly));
    openTabs({u"typed"_s});
    settle();
    QVERIFY2(notice().startsWith(u"Unsaved text could not be copied to a safe place: "_s), qPrintable(notice()));
    notices().putAway();
    typeInto(0, u"typed on"_s);
    settle();
    QCOMPARE(notices().current(), nullptr);
}

void UnsavedTextsTest::aFailedSaveOfAllKeepsTheText()
{
    QVERIFY(QDir(fixture_->folder.path()).mkdir(u"gone"_s));
    state().openFile(fixture_->write(u"gone/a.txt"_s, "as it was"));
    const auto document = typeInto(0, u"typed"_s);
    QVERIFY(QDir(fixture_->folder.filePath(u"gone"_s)).removeRecursively());
    state().saveAllDocuments();
    state().closeTab(0);
    QCOMPARE(notice(), u"a.txt could not be saved: its folder is not there."_s);
    state().notices().putAway();
    QCOMPARE(notice(), u"Closed with unsaved changes"_s);
    settle();
    QCOMPARE(store().texts().size(), 1);
    QCOMPARE(store().texts().constFirst().firstWords, u"typed"_s);
}

void UnsavedTextsTest::savingRemovesTheCopy()
{
    const QUrl url = fixture_->write(u"a.txt"_s, "as it was");
    state().openFile(url);
    for (int way = 0; way < 3; ++way) {
        typeInto(0, u"typed %1"_s.arg(way));
        settle();
        QCOMPARE(QDir(folder()).entryList({u"*.copy"_s}).size(), 1);
        if (way == 0) {
            state().saveCurrentDocument();
        } else if (way == 1) {
            state().saveAllDocuments();
        } else {
            fixture_->filePanels.saveAnswer = fixture_->url(u"b.txt"_s);
            state().saveCurrentDocumentAs();
        }
        settle();
        QCOMPARE(QDir(folder()).entryList({u"*.copy"_s}).size(), 0);
    }
    QCOMPARE(fixture_->bytesOf(u"b.txt"_s), QByteArray("typed 2"));
}

void UnsavedTextsTest::whatWasSavedUnchangedIsTheFileThatIsKnown()
{
    const QUrl url = fixture_->write(u"a.txt"_s, "text");
    state().openFile(url);
    settle();
    // The save makes another file of the same text.
    state().saveCurrentDocument();
    const std::optional<FileIdentity> saved = identityOf(nativePath(fixture_->folder.filePath(u"a.txt"_s)));
    QVERIFY(saved);
    typeInto(0, u"typed"_s);
    state().closeTab(0);
    settle();
    QCOMPARE(store().texts().size(), 1);
    QCOMPARE(store().texts().constFirst().header.identity, saved);
}

const kelm::test::Registered<UnsavedTextsTest> registered;

} // namespace unsaved_texts_test

#include "unsaved_texts_test.moc"
