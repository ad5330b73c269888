#include "app/state/app_state.h"
#include "app/state/notices.h"
#include "app/state/recent_files.h"
#include "git/service/git_service.h"
#include "run/code_runner.h"
#include "support/app_state_fixture.h"
#include "support/test_program.h"
#include "support/unprivileged.h"

#include <QSignalSpy>
#include <QtTest>

#include <sys/stat.h>

namespace app_state_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

class AppStateTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void severalFilesAreOneChange();
    void severalFilesOpenAsOneAfterTheOther();
    void init();
    void itStartsWithItsDefaults();
    void eachFieldTellsOfItsChangeOnce();
    void everyFieldIsAProperty();
    void aNewTabIsCurrent();
    void aSnippetOpensAndAsksForTheKeyboardLater();
    void aSnippetOfAClosedStateAsksForNothing();
    void aFileOpens();
    void eachTextComesBackByteForByte_data();
    void eachTextComesBackByteForByte();
    void anOpenFileIsSwitchedTo();
    void openingComparesUrlsByValue();
    void ofTwoTabsOfAFileTheFirstIsSwitchedTo();
    void anUntitledDocumentMatchesNoFile();
    void whatCannotBeOpenedIsLogged_data();
    void whatCannotBeOpenedIsLogged();
    void manyFailuresAreOneNotice();
    void closingATab_data();
    void closingATab();
    void closingTabsOneByOne();
    void closingTheOthers_data();
    void closingTheOthers();
    void closingSavesNothing();
    void observersSeeTabsAndIndexTogether();
    void aClosedDocumentLivesUntilObserversHaveHeard();
    void theOpenPanelOpensFilesAndFolders();
    void aCancelledOpenPanelDoesNothing();
    void savingWritesTheTextAsItStands();
    void savingAfterTypingAndDeletingGivesTheSameBytes();
    void savingDoesNotTouchTheRecentFiles();
    void aFailedSaveIsPrintedAndKeepsTheFlag();
    void aTextOfManyPiecesIsSavedToTheByte();
    void savingAnUntitledDocumentAsksForAPlace();
    void savingElsewhere();
    void aCancelledSavePanelChangesNothing();
    void aFailedSaveElsewhereChangesNothing();
    void whatIsSavedElsewhereIsTheDocumentOfTheCall();
    void savingAllSkipsUntitledAndUnmodifiedDocuments();
    void savingAllLeavesWhatFailedModified();
    void withoutADocumentCommandsDoNothing();
    void runningASavedFileRunsWhatIsOnDisk();
    void runningTellsItsStepsInTheirOrder();
    void runningASnippetRunsItsText_data();
    void runningASnippetRunsItsText();
    void aSnippetThatCannotRunIsTold();
    void aSavedFileGoesToTheRunnerInAnyLanguage();
    void runningWhileARunIsOnClearsThePageOnly();
    void sortingLines_data();
    void sortingLines();
    void recentFilesAreTenAtMost();
    void reopeningMovesARecentFileToTheFront();
    void recentFilesComeBackWithoutThoseThatAreGone();
    void undecodableRecentFilesAreNone_data();
    void undecodableRecentFilesAreNone();
    void aRestartBringsBackNothingElse();
    void nothingIsSavedByItself_data();
    void nothingIsSavedByItself();

private:
    AppState& state() { return fixture_->state; }
    /// What the window's notice says; empty without one.
    QString noticeText()
    {
        const Notice* notice = state().notices().current();
        return notice != nullptr ? notice->text : QString();
    }
    /// Starts the program anew on the same store.
    std::unique_ptr<AppState> restarted()
    {
        return std::make_unique<AppState>(AppState::Services{
            fixture_->filePanels, fixture_->userDefaults, fixture_->scheduler, fixture_->notificationCenter,
            fixture_->log, ProcessRunner::sharedSystem(), ExecutableSearch(ProcessRunner::system())});
    }

    std::unique_ptr<AppStateFixture> fixture_;
};

void AppStateTest::init()
{
    fixture_ = std::make_unique<AppStateFixture>();
    QVERIFY(fixture_->folder.isValid());
}

void AppStateTest::itStartsWithItsDefaults()
{
    QVERIFY(state().documents().isEmpty());
    QCOMPARE(state().currentDocumentIndex(), 0);
    QVERIFY(!state().currentDocument());
    QVERIFY(state().recentFiles().isEmpty());
    QVERIFY(state().showSidebar());
    QVERIFY(!state().showBottomPanel());
    QVERIFY(state().showMinimap());
    QVERIFY(!state().showSearch());
    QVERIFY(!state().showQuickOpen());
    QVERIFY(!state().showGoToLine());
    QVERIFY(!state().showCloneDialog());
    QCOMPARE(state().searchMode(), SearchMode::find);
    QCOMPARE(state().bottomPanelTab(), BottomPanelTab(BottomPanelTab::terminal));
    QVERIFY(!state().currentProject());
    // Construction stores nothing and says nothing.
    QVERIFY(!fixture_->userDefaults.contains(u"recentFiles"_s));
    QVERIFY(fixture_->log.written.isEmpty());
    QVERIFY(!state().git().repoURL());
    QVERIFY(!state().git().isBusy());
    QCOMPARE(&state().git(), &state().git());
}

void AppStateTest::eachFieldTellsOfItsChangeOnce()
{
    AppState& s = state();
    QSignalSpy sidebar(&s, &AppState::showSidebarChanged);
    QSignalSpy bottomPanel(&s, &AppState::showBottomPanelChanged);
    QSignalSpy minimap(&s, &AppState::showMinimapChanged);
    QSignalSpy search(&s, &AppState::showSearchChanged);
    QSignalSpy quickOpen(&s, &AppState::showQuickOpenChanged);
    QSignalSpy goToLine(&s, &AppState::showGoToLineChanged);
    QSignalSpy cloneDialog(&s, &AppState::showCloneDialogChanged);
    QSignalSpy mode(&s, &AppState::searchModeChanged);
    QSignalSpy tab(&s, &AppState::bottomPanelTabChanged);
    QSignalSpy project(&s, &AppState::currentProjectChanged);
    QSignalSpy recent(&s, &AppState::recentFilesChanged);
    for (int i = 0; i < 2; ++i) {
        s.setShowSidebar(false);
        s.setShowBottomPanel(true);
        s.setShowMinimap(false);
        s.setShowSearch(true);
        s.setShowQuickOpen(true);
        s.setShowGoToLine(true);
        s.setShowCloneDialog(true);
        s.setSearchMode(SearchMode::project);
        s.setBottomPanelTab(BottomPanelTab::problems);
        s.setCurrentProject(QUrl(u"file:///a/"_s));
        s.setRecentFiles({QUrl(u"file:///a/b"_s)});
        // The first time, and not the second.
        for (const QSignalSpy* spy : {&sidebar, &bottomPanel, &minimap, &search, &quickOpen, &goToLine, &cloneDialog,
                                      &mode, &tab, &project, &recent}) {
            QCOMPARE(spy->count(), 1);
        }
    }
    // The overlays' flags are independent.
    QVERIFY(s.showSearch() && s.showQuickOpen() && s.showGoToLine());
    // A change of the field alone stores nothing.
    QVERIFY(!fixture_->userDefaults.contains(u"recentFiles"_s));
}

void AppStateTest::everyFieldIsAProperty()
{
    const QMetaObject& meta = AppState::staticMetaObject;
    QStringList names;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        QVERIFY(meta.property(i).metaType().isValid());
        QVERIFY(meta.property(i).hasNotifySignal());
        names << QString::fromLatin1(meta.property(i).name());
    }
    QCOMPARE(names, (QStringList{u"documents"_s, u"currentDocumentIndex"_s, u"currentDocument"_s, u"recentFiles"_s,
                                 u"showSidebar"_s, u"showBottomPanel"_s, u"showMinimap"_s, u"showSearch"_s,
                                 u"showQuickOpen"_s, u"showGoToLine"_s, u"searchMode"_s, u"currentProject"_s,
                                 u"bottomPanelTab"_s, u"showCloneDialog"_s}));
}

void AppStateTest::aNewTabIsCurrent()
{
    state().createNewTab();
    state().createNewTab();
    QCOMPARE(state().documents().size(), 2);
    QCOMPARE(state().currentDocumentIndex(), 1);
    const auto document = state().currentDocument();
    QVERIFY(document == state().documents().at(1));
    QCOMPARE(document->title(), u"Untitled"_s);
    QCOMPARE(document->content(), QString());
    QVERIFY(!document->fileURL() && !document->explicitLanguage() && !document->lessonInfo());
    QVERIFY(state().recentFiles().isEmpty());
}

void AppStateTest::aSnippetOpensAndAsksForTheKeyboardLater()
{
    QList<Notification> posted;
    fixture_->notificationCenter.addObserver(this, u"focusEditor"_s,
                                             [&](const Notification& notification) { posted << notification; });
    const LessonInfo lesson{u"intro"_s, std::nullopt, 3, 7, {}, u"ko"_s};
    state().createNewTab();
    state().openSnippet(u"print(1)"_s, Language::python, lesson);
    const auto document = state().currentDocument();
    QCOMPARE(state().currentDocumentIndex(), 1);
    QCOMPARE(document->content(), u"print(1)"_s);
    QVERIFY(document->explicitLanguage() == Language(Language::python));
    QVERIFY(document->lessonInfo() == lesson);
    QVERIFY(!document->fileURL());
    QVERIFY(!document->isModified());
    fixture_->scheduler.advance(49ms);
    QVERIFY(posted.isEmpty());
    fixture_->scheduler.advance(1ms);
    QCOMPARE(posted.size(), 1);
    QVERIFY(!posted.first().object.isValid());
}

void AppStateTest::aSnippetOfAClosedStateAsksForNothing()
{
    bool isPosted = false;
    fixture_->notificationCenter.addObserver(this, u"focusEditor"_s, [&](const Notification&) { isPosted = true; });
    restarted()->openSnippet(u"a"_s, Language::plainText, std::nullopt);
    fixture_->scheduler.advance(1000ms);
    QVERIFY(!isPosted);
}

void AppStateTest::aFileOpens()
{
    const QUrl url = fixture_->write(u"안녕 a.PY"_s, "print(1)\r\n");
    state().openFile(url);
    QCOMPARE(state().documents().size(), 1);
    const auto document = state().currentDocument();
    QCOMPARE(document->content(), u"print(1)\r\n"_s);
    QVERIFY(document->fileURL() == url);
    QVERIFY(!document->explicitLanguage() && !document->lessonInfo());
    QVERIFY(!document->isModified());
    QCOMPARE(document->language(), Language(Language::python));
    // The text's line ends do not show in the label.
    QCOMPARE(document->lineEnding(), LineEnding(LineEnding::lf));
    QCOMPARE(state().recentFiles(), (QList{url}));
    QCOMPARE(fixture_->log.written,
             (QStringList{u"📂 openFile called with: "_s + url.toString(QUrl::FullyEncoded), u"  📄 Extension: PY"_s,
                          u"  ✅ Document created with language: Python"_s}));
    QVERIFY(fixture_->log.written.first().endsWith(u"%20a.PY"));
    QVERIFY(fixture_->log.printed.isEmpty());
}

void AppStateTest::eachTextComesBackByteForByte_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("CRLF") << QByteArray("a\r\nb\r\n");
    QTest::newRow("lone CR") << QByteArray("a\rb");
    QTest::newRow("mixed ends") << QByteArray("a\nb\r\nc\rd\n\r");
    QTest::newRow("no final newline") << QByteArray("a\nb");
    QTest::newRow("byte-order mark") << QByteArray("\xef\xbb\xbf{}");
    QTest::newRow("NUL") << QByteArray("a\0b\0", 4);
    QTest::newRow("no-break blank") << QByteArray("a\xc2\xa0"
                                                  "b");
    QTest::newRow("separators") << QByteArray("\xe2\x80\xa8\xe2\x80\xa9\xc2\x85");
    QTest::newRow("noncharacter") << QByteArray("\xef\xb7\x90\xef\xbf\xbf");
    QTest::newRow("astral and combining") << QByteArray("\xf0\x9f\x98\x80"
                                                        "e\xcc\x81");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("one long line") << QByteArray(5'000'000, 'x');
}

void AppStateTest::eachTextComesBackByteForByte()
{
    QFETCH(QByteArray, bytes);
    state().openFile(fixture_->write(u"file.txt"_s, bytes));
    const auto document = state().currentDocument();
    const QString text = document->content();
    document->setContent(u"x"_s + text);
    document->setContent(text);
    QVERIFY(document->isModified());
    QVERIFY(QFile::remove(fixture_->folder.filePath(u"file.txt"_s)));
    state().saveCurrentDocument();
    QVERIFY(fixture_->bytesOf(u"file.txt"_s) == bytes);
    QVERIFY(!document->isModified());
}

void AppStateTest::anOpenFileIsSwitchedTo()
{
    const QUrl a = fixture_->write(u"a.txt"_s, "a");
    const QUrl b = fixture_->write(u"b.txt"_s, "b");
    state().openFile(a);
    state().openFile(b);
    state().documents().first()->setContent(u"edited"_s);
    fixture_->write(u"a.txt"_s, "changed on disk");
    fixture_->log.written.clear();
    const QList<QUrl> recent = state().recentFiles();

    state().openFile(a);
    QCOMPARE(state().documents().size(), 2);
    QCOMPARE(state().currentDocumentIndex(), 0);
    QCOMPARE(state().currentDocument()->content(), u"edited"_s);
    QVERIFY(state().currentDocument()->isModified());
    QCOMPARE(state().recentFiles(), recent);
    QCOMPARE(fixture_->log.written, (QStringList{u"📂 openFile called with: "_s + a.toString(), u"  📄 Extension: txt"_s,
                                                 u"  ♻️ File already open at index 0"_s}));
    // Not even a file that is gone is looked for.
    QVERIFY(QFile::remove(b.toLocalFile()));
    state().openFile(b);
    QCOMPARE(state().currentDocumentIndex(), 1);
}

void AppStateTest::openingComparesUrlsByValue()
{
    const QUrl url = fixture_->write(u"a b.txt"_s, "a");
    state().openFile(url);
    state().openFile(QUrl(url.toString(QUrl::FullyEncoded)));
    QCOMPARE(state().documents().size(), 1);
    // Another path to the same file is another URL.
    state().openFile(fixture_->url(u"../"_s + QFileInfo(fixture_->folder.path()).fileName() + u"/a b.txt"_s));
    QCOMPARE(state().documents().size(), 2);
}

void AppStateTest::ofTwoTabsOfAFileTheFirstIsSwitchedTo()
{
    const QUrl url = fixture_->write(u"a.txt"_s, "a");
    state().createNewTab();
    state().openFile(url);
    state().createNewTab();
    fixture_->filePanels.saveAnswer = url;
    state().saveCurrentDocumentAs();
    QVERIFY(state().documents().at(2)->fileURL() == url);
    state().openFile(url);
    QCOMPARE(state().documents().size(), 3);
    QCOMPARE(state().currentDocumentIndex(), 1);
    QCOMPARE(fixture_->log.written.last(), u"  ♻️ File already open at index 1"_s);
}

void AppStateTest::anUntitledDocumentMatchesNoFile()
{
    state().createNewTab();
    state().openFile(QUrl());
    QCOMPARE(state().documents().size(), 1);
    QVERIFY(fixture_->log.written.last().startsWith(u"  ❌ Error opening file: "));
}

void AppStateTest::whatCannotBeOpenedIsLogged_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("notice");
    QTest::newRow("missing") << u"none.txt"_s << u"none.txt could not be opened: it is not there."_s;
    QTest::newRow("a long name, cut between characters")
        << u"👩‍👩‍👧"_s.repeated(12)
        << u"👩‍👩‍👧"_s.repeated(3) + u'…' + u"👩‍👩‍👧"_s.repeated(3) +
               u" could not be opened: it is not there."_s;
    QTest::newRow("not UTF-8") << u"latin1.txt"_s << u"latin1.txt could not be opened: it is no text in UTF-8."_s;
    QTest::newRow("folder") << u"sub"_s << u"sub could not be opened: it is a folder."_s;
    QTest::newRow("pipe") << u"pipe"_s << u"pipe could not be opened: it is no ordinary file."_s;
    QTest::newRow("no permission") << u"private.txt"_s
                                   << u"private.txt could not be opened: you have no permission for that."_s;
    QTest::newRow("NUL in its name") << u"a.txt\0b"_s
                                     << u"a.txt\u27e8U+0000\u27e9b could not be opened: its name holds a NUL."_s;
    QTest::newRow("another scheme") << u"https://host/a.txt"_s
                                    << u"https://host/a.txt could not be opened: that is no address of a file."_s;
    QTest::newRow("link") << u"kelmpane://open?code=YQ"_s
                          << u"kelmpane://open?code=YQ could not be opened: that is no address of a file."_s;
}

void AppStateTest::whatCannotBeOpenedIsLogged()
{
    QFETCH(QString, name);
    QFETCH(QString, notice);
    fixture_->write(u"latin1.txt"_s, "caf\xe9");
    fixture_->write(u"a.txt"_s, "what a cut name would open");
    QVERIFY(QDir(fixture_->folder.path()).mkdir(u"sub"_s));
    QCOMPARE(::mkfifo(qPrintable(fixture_->folder.filePath(u"pipe"_s)), 0600), 0);
    QVERIFY(QFile::setPermissions(fixture_->write(u"private.txt"_s, "a").toLocalFile(), {}));
    std::optional<test::Unprivileged> ordinaryUser;
    if (name == u"private.txt") {
        ordinaryUser.emplace();
    }
    state().createNewTab();
    QSignalSpy spy(&state(), &AppState::documentsChanged);
    state().openFile(name.contains(u"://") ? QUrl(name) : fixture_->url(name));
    QCOMPARE(fixture_->log.written.size(), 3);
    QVERIFY(fixture_->log.written.last().startsWith(u"  ❌ Error opening file: "));
    QVERIFY(fixture_->log.written.last().size() > u"  ❌ Error opening file: "_s.size());
    QCOMPARE(noticeText(), notice);
    QCOMPARE(state().documents().size(), 1);
    QCOMPARE(spy.count(), 0);
    QVERIFY(state().recentFiles().isEmpty());
    QVERIFY(!fixture_->userDefaults.contains(u"recentFiles"_s));
}

void AppStateTest::closingATab_data()
{
    QTest::addColumn<int>("current");
    QTest::addColumn<int>("closed");
    QTest::addColumn<QString>("left");
    QTest::addColumn<int>("index");
    QTest::newRow("before the current one") << 1 << 0 << u"BC"_s << 1;
    QTest::newRow("the current one, in the middle") << 1 << 1 << u"AC"_s << 1;
    QTest::newRow("the current one, at the end") << 2 << 2 << u"AB"_s << 1;
    QTest::newRow("before the current one, which is the last") << 2 << 0 << u"BC"_s << 1;
    QTest::newRow("behind the current one") << 0 << 2 << u"AB"_s << 0;
    QTest::newRow("the first, which is current") << 0 << 0 << u"BC"_s << 0;
    QTest::newRow("out of range") << 1 << 3 << u"ABC"_s << 1;
    QTest::newRow("far out of range") << 1 << 1000 << u"ABC"_s << 1;
    QTest::newRow("negative") << 1 << -1 << u"ABC"_s << 1;
}

void AppStateTest::closingATab()
{
    QFETCH(int, current);
    QFETCH(int, closed);
    QFETCH(QString, left);
    QFETCH(int, index);
    fixture_->openTabs({u"A"_s, u"B"_s, u"C"_s});
    state().setCurrentDocumentIndex(current);
    // Unsaved edits do not stand in the way.
    state().currentDocument()->setIsModified(true);
    state().closeTab(closed);
    QCOMPARE(fixture_->openTexts().join(QString()), left);
    QCOMPARE(state().currentDocumentIndex(), index);
    QCOMPARE(fixture_->filePanels.savePanelsShown, 0);
}

void AppStateTest::closingTabsOneByOne()
{
    fixture_->openTabs({u"A"_s, u"B"_s, u"C"_s});
    state().setCurrentDocumentIndex(1);
    state().closeTab(0);
    QCOMPARE(state().currentDocument()->content(), u"C"_s);
    state().closeTab(1);
    QCOMPARE(state().currentDocumentIndex(), 0);
    QCOMPARE(state().currentDocument()->content(), u"B"_s);
    state().closeTab(0);
    QVERIFY(state().documents().isEmpty());
    QCOMPARE(state().currentDocumentIndex(), 0);
    QVERIFY(!state().currentDocument());
    state().closeTab(0);
    QVERIFY(state().documents().isEmpty());
}

void AppStateTest::closingTheOthers_data()
{
    QTest::addColumn<int>("kept");
    QTest::addColumn<QString>("left");
    QTest::addColumn<int>("index");
    QTest::newRow("first") << 0 << u"A"_s << 0;
    QTest::newRow("last") << 2 << u"C"_s << 0;
    QTest::newRow("out of range") << 3 << u"ABC"_s << 1;
    QTest::newRow("negative") << -1 << u"ABC"_s << 1;
}

void AppStateTest::closingTheOthers()
{
    QFETCH(int, kept);
    QFETCH(QString, left);
    QFETCH(int, index);
    fixture_->openTabs({u"A"_s, u"B"_s, u"C"_s});
    state().setCurrentDocumentIndex(1);
    state().closeOtherTabs(kept);
    QCOMPARE(fixture_->openTexts().join(QString()), left);
    QCOMPARE(state().currentDocumentIndex(), index);
}

void AppStateTest::closingSavesNothing()
{
    for (const QString& name : {u"a.txt"_s, u"b.txt"_s, u"c.txt"_s}) {
        state().openFile(fixture_->write(name, "old"));
        state().currentDocument()->setContent(u"new"_s);
    }
    state().closeTab(0);
    state().closeOtherTabs(1);
    QCOMPARE(state().documents().size(), 1);
    for (const QString& name : {u"a.txt"_s, u"b.txt"_s, u"c.txt"_s}) {
        QCOMPARE(fixture_->bytesOf(name), QByteArray("old"));
    }
    QVERIFY(state().currentDocument()->isModified());
    QCOMPARE(fixture_->filePanels.savePanelsShown, 0);
}

void AppStateTest::observersSeeTabsAndIndexTogether()
{
    fixture_->openTabs({u"A"_s, u"B"_s});
    QStringList seen;
    const auto note = [&](const QString& signal) {
        const auto current = state().currentDocument();
        seen << u"%1: %2 of %3"_s.arg(signal, current ? current->content() : u"none"_s).arg(state().documents().size());
    };
    connect(&state(), &AppState::documentsChanged, this, [&] { note(u"documents"_s); });
    connect(&state(), &AppState::currentDocumentIndexChanged, this, [&] { note(u"index"_s); });
    connect(&state(), &AppState::currentDocumentChanged, this, [&] { note(u"current"_s); });
    state().closeTab(1);
    QCOMPARE(seen, (QStringList{u"documents: A of 1"_s, u"index: A of 1"_s, u"current: A of 1"_s}));
    seen.clear();
    state().closeTab(0);
    QCOMPARE(seen, (QStringList{u"documents: none of 0"_s, u"current: none of 0"_s}));
    seen.clear();
    state().setCurrentDocumentIndex(0);
    QVERIFY(seen.isEmpty());
}

void AppStateTest::aClosedDocumentLivesUntilObserversHaveHeard()
{
    fixture_->openTabs({u"A"_s});
    const QPointer<Document> document = state().currentDocument().get();
    bool wasAlive = false;
    connect(&state(), &AppState::documentsChanged, this, [&] { wasAlive = !document.isNull(); });
    state().closeTab(0);
    QVERIFY(wasAlive);
    QVERIFY(document.isNull());
}

void AppStateTest::theOpenPanelOpensFilesAndFolders()
{
    const QUrl a = fixture_->write(u"a.txt"_s, "a");
    const QUrl b = fixture_->write(u"b.txt"_s, "b");
    fixture_->filePanels.openAnswer = {
        {QUrl(u"file:///one/"_s), true}, {b, false}, {QUrl(u"file:///two/"_s), true}, {a, false}};
    state().showOpenPanel();
    QCOMPARE(fixture_->openTexts(), (QStringList{u"b"_s, u"a"_s}));
    QVERIFY(state().currentProject() == QUrl(u"file:///two/"_s));
    QVERIFY(fixture_->filePanels.openPanelOptions.allowsMultipleSelection);
    QVERIFY(fixture_->filePanels.openPanelOptions.canChooseDirectories);
    QVERIFY(fixture_->filePanels.openPanelOptions.canChooseFiles);
    QCOMPARE(state().recentFiles(), (QList{a, b}));
}

void AppStateTest::aCancelledOpenPanelDoesNothing()
{
    state().showOpenPanel();
    QCOMPARE(fixture_->filePanels.openPanelsShown, 1);
    QVERIFY(state().documents().isEmpty());
    QVERIFY(!state().currentProject());
}

void AppStateTest::savingWritesTheTextAsItStands()
{
    state().openFile(fixture_->write(u"a.txt"_s, "old"));
    const auto document = state().currentDocument();
    document->setEncoding(TextEncoding::utf16);
    document->setLineEnding(LineEnding::crlf);
    document->setIndentStyle(IndentStyle::tabs());
    document->setContent(u"한\n글\n"_s);
    state().saveCurrentDocument();
    QCOMPARE(fixture_->bytesOf(u"a.txt"_s), QByteArray("한\n글\n"));
    QVERIFY(!document->isModified());
    QVERIFY(fixture_->log.printed.isEmpty());
    QCOMPARE(fixture_->filePanels.savePanelsShown, 0);
}

void AppStateTest::savingAfterTypingAndDeletingGivesTheSameBytes()
{
    // A document that is not modified is written as well.
    const QUrl url = fixture_->write(u"a.txt"_s, "text");
    state().openFile(url);
    fixture_->write(u"a.txt"_s, "changed by another program");
    state().saveCurrentDocument();
    QCOMPARE(fixture_->bytesOf(u"a.txt"_s), QByteArray("text"));
}

void AppStateTest::savingDoesNotTouchTheRecentFiles()
{
    state().openFile(fixture_->write(u"a.txt"_s, "a"));
    state().setRecentFiles({});
    state().saveCurrentDocument();
    QVERIFY(state().recentFiles().isEmpty());
}

void AppStateTest::aFailedSaveIsPrintedAndKeepsTheFlag()
{
    const QUrl url = fixture_->write(u"a.txt"_s, "old");
    state().openFile(url);
    const auto document = state().currentDocument();
    document->setContent(u"new"_s);
    QVERIFY(QFile::remove(url.toLocalFile()));
    QVERIFY(QDir(fixture_->folder.path()).mkdir(u"a.txt"_s));
    state().saveCurrentDocument();
    QVERIFY(document->isModified());
    QVERIFY(document->fileURL() == url);
    QCOMPARE(document->content(), u"new"_s);
    QCOMPARE(fixture_->log.printed.size(), 1);
    QVERIFY(fixture_->log.printed.first().startsWith(u"Error saving: "_s + url.toLocalFile()));
    QCOMPARE(noticeText(), u"a.txt could not be saved: it is a folder."_s);
    // A save that fails without edits does not set the flag either.
    document->setIsModified(false);
    state().saveCurrentDocument();
    QVERIFY(!document->isModified());
    QCOMPARE(fixture_->log.printed.size(), 2);
}

void AppStateTest::aTextOfManyPiecesIsSavedToTheByte()
{
    // Pairs of surrogates stand across every place where a piece of the text can end.
    const QString text = u"x"_s + u"😀한a"_s.repeated(20'000);
    const QUrl url = fixture_->write(u"a.txt"_s, "old");
    state().openFile(url);
    state().currentDocument()->setContent(text);
    state().saveCurrentDocument();
    QCOMPARE(fixture_->bytesOf(u"a.txt"_s), text.toUtf8());
    // Half a pair has no form in UTF-8.
    state().currentDocument()->setContent(text + QChar(0xd83d));
    state().saveCurrentDocument();
    QCOMPARE(fixture_->bytesOf(u"a.txt"_s), text.toUtf8() + "\xef\xbf\xbd");
}

void AppStateTest::savingAnUntitledDocumentAsksForAPlace()
{
    fixture_->openTabs({u"text"_s});
    fixture_->filePanels.saveAnswer = fixture_->url(u"new.json"_s);
    state().saveCurrentDocument();
    QCOMPARE(fixture_->filePanels.savePanelsShown, 1);
    QCOMPARE(fixture_->filePanels.savePanelOptions.allowedTypes,
             (QList{ContentType::plainText, ContentType::sourceCode, ContentType::json, ContentType::xml}));
    QCOMPARE(fixture_->bytesOf(u"new.json"_s), QByteArray("text"));
    QVERIFY(state().currentDocument()->fileURL() == fixture_->url(u"new.json"_s));
}

void AppStateTest::savingElsewhere()
{
    const QUrl url = fixture_->write(u"a.txt"_s, "old");
    state().openFile(url);
    const auto document = state().currentDocument();
    document->setContent(u"new"_s);
    fixture_->filePanels.saveAnswer = fixture_->url(u"b.py"_s);
    state().saveCurrentDocumentAs();
    QCOMPARE(fixture_->bytesOf(u"a.txt"_s), QByteArray("old"));
    QCOMPARE(fixture_->bytesOf(u"b.py"_s), QByteArray("new"));
    QVERIFY(!document->isModified());
    QVERIFY(document->fileURL() == fixture_->url(u"b.py"_s));
    QCOMPARE(document->title(), u"b.py"_s);
    QCOMPARE(document->language(), Language(Language::python));
    QCOMPARE(state().recentFiles(), (QList{fixture_->url(u"b.py"_s), url}));
}

void AppStateTest::aCancelledSavePanelChangesNothing()
{
    state().createNewTab();
    const auto document = state().currentDocument();
    document->setContent(u"text"_s);
    state().saveCurrentDocument();
    QVERIFY(!document->fileURL());
    QVERIFY(document->isModified());
    QVERIFY(state().recentFiles().isEmpty());
    QVERIFY(fixture_->log.printed.isEmpty());
}

void AppStateTest::aFailedSaveElsewhereChangesNothing()
{
    state().createNewTab();
    const auto document = state().currentDocument();
    document->setContent(u"text"_s);
    for (const QUrl& url : {fixture_->url(u"none/a.txt"_s), QUrl(u"https://host/a.txt"_s)}) {
        fixture_->filePanels.saveAnswer = url;
        fixture_->log.printed.clear();
        state().saveCurrentDocumentAs();
        QVERIFY(!document->fileURL());
        QVERIFY(document->isModified());
        QVERIFY(state().recentFiles().isEmpty());
        QCOMPARE(fixture_->log.printed.size(), 1);
        QVERIFY(fixture_->log.printed.first().startsWith(u"Error saving: "));
        QCOMPARE(noticeText(), url.isLocalFile()
                                   ? u"a.txt could not be saved: its folder is not there."_s
                                   : u"https://host/a.txt could not be saved: that is no address of a file."_s);
        state().notices().putAway();
    }
}

void AppStateTest::manyFailuresAreOneNotice()
{
    fixture_->write(u"latin1.txt"_s, "caf\xe9");
    QList<QUrl> urls;
    for (const QString& name : {u"a"_s, u"b"_s, u"c"_s, u"d"_s}) {
        urls << fixture_->url(name);
    }
    state().openFiles(urls);
    QCOMPARE(noticeText(), u"4 files could not be opened: a, b, c and others: it is not there."_s);
    state().notices().putAway();
    QVERIFY(state().notices().current() == nullptr);
    state().openFiles({fixture_->url(u"a"_s), fixture_->url(u"latin1.txt"_s)});
    QCOMPARE(noticeText(), u"2 files could not be opened: a (it is not there), latin1.txt (it is no text in UTF-8)."_s);
    state().notices().putAway();
    QVERIFY(state().notices().current() == nullptr);
}

void AppStateTest::whatIsSavedElsewhereIsTheDocumentOfTheCall()
{
    fixture_->openTabs({u"A"_s, u"B"_s});
    fixture_->filePanels.saveAnswer = fixture_->url(u"b.txt"_s);
    fixture_->filePanels.whileSavePanelIsUp = [this] { state().closeTab(1); };
    state().saveCurrentDocumentAs();
    QCOMPARE(fixture_->bytesOf(u"b.txt"_s), QByteArray("B"));
    QCOMPARE(fixture_->openTexts(), (QStringList{u"A"_s}));
    QVERIFY(!state().currentDocument()->fileURL());
}

void AppStateTest::savingAllSkipsUntitledAndUnmodifiedDocuments()
{
    state().openFile(fixture_->write(u"a.txt"_s, "a"));
    state().createNewTab();
    state().openFile(fixture_->write(u"b.txt"_s, "b"));
    state().documents().at(0)->setContent(u"A"_s);
    state().documents().at(1)->setContent(u"untitled"_s);
    fixture_->write(u"b.txt"_s, "changed by another program");
    const QList<QUrl> recent = state().recentFiles();
    state().saveAllDocuments();
    QCOMPARE(fixture_->bytesOf(u"a.txt"_s), QByteArray("A"));
    // Nobody changed it here.
    QCOMPARE(fixture_->bytesOf(u"b.txt"_s), QByteArray("changed by another program"));
    QVERIFY(!state().documents().at(0)->isModified());
    QVERIFY(state().documents().at(1)->isModified());
    QCOMPARE(fixture_->filePanels.savePanelsShown, 0);
    QCOMPARE(state().recentFiles(), recent);
}

void AppStateTest::savingAllLeavesWhatFailedModified()
{
    state().openFile(fixture_->write(u"a.txt"_s, "a"));
    state().openFile(fixture_->write(u"b.txt"_s, "b"));
    for (const auto& document : state().documents()) {
        document->setContent(u"new"_s);
    }
    QVERIFY(QFile::remove(fixture_->folder.filePath(u"a.txt"_s)));
    QVERIFY(QDir(fixture_->folder.path()).mkdir(u"a.txt"_s));
    fixture_->log.written.clear();
    state().saveAllDocuments();
    QVERIFY(state().documents().at(0)->isModified());
    QVERIFY(!state().documents().at(1)->isModified());
    QCOMPARE(fixture_->bytesOf(u"b.txt"_s), QByteArray("new"));
    QVERIFY(fixture_->log.printed.isEmpty());
    QVERIFY(fixture_->log.written.isEmpty());
    QCOMPARE(noticeText(), u"a.txt could not be saved: it is a folder."_s);
}

void AppStateTest::withoutADocumentCommandsDoNothing()
{
    state().saveCurrentDocument();
    state().saveCurrentDocumentAs();
    state().saveAllDocuments();
    state().sortLines(true);
    state().runCurrentFile();
    QCOMPARE(fixture_->filePanels.savePanelsShown, 0);
    QVERIFY(!state().showBottomPanel());
    QVERIFY(state().codeRunner().output().isEmpty());
    QVERIFY(fixture_->log.printed.isEmpty());
    // Nor do they with an index out of range.
    fixture_->openTabs({u"b\na"_s});
    for (const qsizetype index : {qsizetype(1), qsizetype(-1)}) {
        state().setCurrentDocumentIndex(index);
        QVERIFY(!state().currentDocument());
        state().sortLines(true);
        state().saveCurrentDocument();
        state().runCurrentFile();
        QVERIFY(!state().showBottomPanel());
        QCOMPARE(fixture_->openTexts(), (QStringList{u"b\na"_s}));
    }
}

void AppStateTest::runningASavedFileRunsWhatIsOnDisk()
{
    state().openFile(fixture_->write(u"a b.sh"_s, "echo on disk"));
    state().currentDocument()->setContent(u"echo edited"_s);
    state().runCurrentFile();
    QTRY_VERIFY(state().codeRunner().lastExitCode());
    QCOMPARE(state().codeRunner().output(), u"Running a b.sh...\non disk\n\n\nProcess exited with code 0\n"_s);
    QVERIFY(state().currentDocument()->isModified());
    QCOMPARE(fixture_->bytesOf(u"a b.sh"_s), QByteArray("echo on disk"));
}

void AppStateTest::runningTellsItsStepsInTheirOrder()
{
    QStringList steps;
    QObject listener;
    connect(&state(), &AppState::showBottomPanelChanged, &listener, [&] { steps << u"panel"_s; });
    connect(&state(), &AppState::bottomPanelTabChanged, &listener, [&] { steps << u"tab"_s; });
    connect(&state().codeRunner(), &CodeRunner::isRunningChanged, &listener, [&] { steps << u"running"_s; });
    const auto record = [&](const Notification& notification) {
        steps << notification.name + u": "_s + notification.object.toString();
    };
    fixture_->notificationCenter.addObserver(&listener, notifications::clearOutput, [&](const Notification& posted) {
        QVERIFY(!posted.object.isValid());
        record(posted);
    });
    fixture_->notificationCenter.addObserver(&listener, notifications::codeOutput, record);
    fixture_->notificationCenter.addObserver(&listener, notifications::runFile, record);
    fixture_->openTabs({u"prose"_s});
    state().runCurrentFile();
    QCOMPARE(steps, (QStringList{u"panel"_s, u"tab"_s, u"clearOutput: "_s,
                                 u"codeOutput: Error: language 'Plain Text' is not runnable."_s}));
    steps.clear();
    state().openSnippet(u"echo 1"_s, Language::shell, std::nullopt);
    state().runCurrentFile();
    QCOMPARE(steps, (QStringList{u"clearOutput: "_s, u"running"_s}));
    QTRY_VERIFY(!state().codeRunner().isRunning());
    QCOMPARE(steps.last(), u"codeOutput: \n\nProcess exited with code 0\n"_s);
}

void AppStateTest::runningASnippetRunsItsText_data()
{
    QTest::addColumn<Language>("language");
    QTest::addColumn<bool>("isRunnable");
    const QList<Language> runnable{Language::swift, Language::python, Language::javascript, Language::typescript,
                                   Language::go,    Language::shell,  Language::ruby,       Language::php};
    for (const Language language : Language::allCases()) {
        QTest::newRow(qPrintable(language.rawValue())) << language << runnable.contains(language);
    }
}

void AppStateTest::runningASnippetRunsItsText()
{
    QFETCH(Language, language);
    QFETCH(bool, isRunnable);
    QTemporaryDir interpreters;
    for (const QString& name : {u"python3"_s, u"node"_s, u"ts-node"_s, u"ruby"_s, u"php"_s, u"go"_s}) {
        QFile script(interpreters.filePath(name));
        QVERIFY(script.open(QIODevice::WriteOnly));
        script.write("#!/bin/sh\nfor last; do :; done\ncat \"$last\"\n");
        script.close();
        script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    AppState state(
        {fixture_->filePanels, fixture_->userDefaults, fixture_->scheduler, fixture_->notificationCenter, fixture_->log,
         ProcessRunner::sharedSystem(),
         ExecutableSearch({interpreters.path()}, interpreters.filePath(u"no-which"_s), ProcessRunner::system())});
    state.openSnippet(u"echo 한 글"_s, language, std::nullopt);
    state.runCurrentFile();
    const QString header = u"Running temp_"_s;
    QCOMPARE(state.codeRunner().output().startsWith(header), isRunnable);
    QTRY_VERIFY(!state.codeRunner().isRunning());
    if (!isRunnable) {
        QCOMPARE(state.codeRunner().output(), u"Error: language '"_s + language.rawValue() + u"' is not runnable."_s);
    } else if (language != Language(Language::swift) || QFile::exists(u"/usr/bin/swift"_s)) {
        QVERIFY(state.codeRunner().lastExitCode().has_value());
        QVERIFY(state.codeRunner().output().contains(u"한 글"_s));
    } else {
        QVERIFY(!state.codeRunner().lastExitCode());
    }
}

void AppStateTest::aSnippetThatCannotRunIsTold()
{
    state().openSnippet(u"select 1"_s, Language::sql, std::nullopt);
    state().runCurrentFile();
    QCOMPARE(state().codeRunner().output(), u"Error: language 'SQL' is not runnable."_s);
    QVERIFY(state().showBottomPanel());
    QCOMPARE(state().bottomPanelTab(), BottomPanelTab(BottomPanelTab::output));
    QVERIFY(!state().codeRunner().isRunning());
}

void AppStateTest::aSavedFileGoesToTheRunnerInAnyLanguage()
{
    state().openFile(fixture_->write(u"a.sql"_s, "select 1"));
    QStringList posted;
    fixture_->notificationCenter.addObserver(
        &state(), notifications::codeOutput,
        [&](const Notification& notification) { posted << notification.object.toString(); });
    state().runCurrentFile();
    QCOMPARE(state().codeRunner().output(), u"Error: Unsupported file type '.sql'"_s);
    QVERIFY(posted.isEmpty());
}

void AppStateTest::runningWhileARunIsOnClearsThePageOnly()
{
    state().openFile(fixture_->write(
        u"a.sh"_s, "n=0; while [ ! -e gate ] && [ $n -lt 2000 ]; do sleep 0.01; n=$((n+1)); done; echo done"));
    state().runCurrentFile();
    int cleared = 0;
    fixture_->notificationCenter.addObserver(&state(), notifications::clearOutput,
                                             [&](const Notification&) { ++cleared; });
    state().setBottomPanelTab(BottomPanelTab::terminal);
    const QString before = state().codeRunner().output();
    state().runCurrentFile();
    state().openSnippet(u"echo other"_s, Language::shell, std::nullopt);
    state().runCurrentFile();
    QCOMPARE(cleared, 2);
    QCOMPARE(state().bottomPanelTab(), BottomPanelTab(BottomPanelTab::output));
    QCOMPARE(state().codeRunner().output(), before);
    fixture_->write(u"gate"_s, "");
    QTRY_VERIFY(!state().codeRunner().isRunning());
    QCOMPARE(state().codeRunner().output(), u"Running a.sh...\ndone\n\n\nProcess exited with code 0\n"_s);
}

void AppStateTest::sortingLines_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("ascending");
    QTest::addColumn<QString>("sorted");
    QTest::addColumn<bool>("isModified");
    QTest::newRow("ascending") << u"b\nA\na"_s << true << u"A\na\nb"_s << true;
    QTest::newRow("descending") << u"a\nb"_s << false << u"b\na"_s << true;
    QTest::newRow("sorted already") << u"a\nb"_s << true << u"a\nb"_s << false;
    QTest::newRow("no final newline") << u"b\na"_s << true << u"a\nb"_s << true;
    QTest::newRow("final newline") << u"a\n"_s << true << u"\na"_s << true;
    QTest::newRow("empty") << QString() << true << QString() << false;
    // A return and a line feed are two ends, with an empty line between them.
    QTest::newRow("returns and line feeds") << u"b\r\na"_s << true << u"\na\nb"_s << true;
    QTest::newRow("all kinds of newlines") << u"c\vb\u2028a\u0085d"_s << false << u"d\nc\nb\na"_s << true;
}

void AppStateTest::sortingLines()
{
    QFETCH(QString, text);
    QFETCH(bool, ascending);
    QFETCH(QString, sorted);
    QFETCH(bool, isModified);
    fixture_->openTabs({text});
    state().sortLines(ascending);
    QCOMPARE(state().currentDocument()->content(), sorted);
    QCOMPARE(state().currentDocument()->isModified(), isModified);
}

void AppStateTest::recentFilesAreTenAtMost()
{
    QList<QUrl> urls;
    for (int i = 0; i < 11; ++i) {
        urls.prepend(fixture_->write(u"%1.txt"_s.arg(i), "x"));
        state().openFile(urls.first());
    }
    QCOMPARE(state().recentFiles(), urls.first(10));
    QCOMPARE(restarted()->recentFiles(), urls.first(10));
}

void AppStateTest::reopeningMovesARecentFileToTheFront()
{
    const QUrl a = fixture_->write(u"a.txt"_s, "a");
    const QUrl b = fixture_->write(u"b.txt"_s, "b");
    state().openFile(a);
    state().openFile(b);
    state().closeTab(0);
    state().openFile(a);
    QCOMPARE(state().recentFiles(), (QList{a, b}));
    // Several equal entries go at once.
    state().setRecentFiles({a, b, b, a});
    state().addToRecentFiles(b);
    QCOMPARE(state().recentFiles(), (QList{b, a, a}));
}

void AppStateTest::recentFilesComeBackWithoutThoseThatAreGone()
{
    const QUrl a = fixture_->write(u"a.txt"_s, "a");
    const QUrl b = fixture_->write(u"한 글%20#?.txt"_s, "b");
    const QUrl c = fixture_->write(u"c.txt"_s, "c");
    for (const QUrl& url : {a, b, c}) {
        state().openFile(url);
    }
    QVERIFY(QFile::remove(c.toLocalFile()));
    const std::optional<QByteArray> stored = fixture_->userDefaults.data(u"recentFiles"_s);
    QCOMPARE(restarted()->recentFiles(), (QList{b, a}));
    // What is stored stays: the file may come back.
    QVERIFY(fixture_->userDefaults.data(u"recentFiles"_s) == stored);
    fixture_->write(u"c.txt"_s, "c");
    QCOMPARE(restarted()->recentFiles(), (QList{c, b, a}));
}

void AppStateTest::undecodableRecentFilesAreNone_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("no JSON") << QByteArray("file:///");
    QTest::newRow("object") << QByteArray("{\"a\":\"file:///\"}");
    QTest::newRow("number among them") << QByteArray("[\"file:///\",1]");
    QTest::newRow("no URL among them") << QByteArray("[\"file:///\",\"\"]");
}

void AppStateTest::undecodableRecentFilesAreNone()
{
    QFETCH(QByteArray, data);
    fixture_->userDefaults.setData(u"recentFiles"_s, data);
    QVERIFY(restarted()->recentFiles().isEmpty());
    QVERIFY(fixture_->userDefaults.data(u"recentFiles"_s) == data);
    QVERIFY(fixture_->log.written.isEmpty() && fixture_->log.printed.isEmpty());
    // A value that is no data is none either.
    fixture_->userDefaults.setString(u"recentFiles"_s, u"[\"file:///\"]"_s);
    QVERIFY(restarted()->recentFiles().isEmpty());
}

void AppStateTest::aRestartBringsBackNothingElse()
{
    fixture_->userDefaults.setBoolean(u"reopenFiles"_s, true);
    state().openFile(fixture_->write(u"a.txt"_s, "a"));
    state().setCurrentProject(QUrl::fromLocalFile(fixture_->folder.path()));
    state().setShowSidebar(false);
    state().setShowBottomPanel(true);
    state().setShowMinimap(false);
    state().setShowSearch(true);
    state().setShowQuickOpen(true);
    state().setShowGoToLine(true);
    state().setShowCloneDialog(true);
    state().setSearchMode(SearchMode::project);
    state().setBottomPanelTab(BottomPanelTab::problems);
    const auto next = restarted();
    QVERIFY(next->documents().isEmpty());
    QVERIFY(!next->currentProject());
    QVERIFY(next->showSidebar() && !next->showBottomPanel() && next->showMinimap());
    QVERIFY(!next->showSearch() && !next->showQuickOpen() && !next->showGoToLine() && !next->showCloneDialog());
    QCOMPARE(next->searchMode(), SearchMode::find);
    QCOMPARE(next->bottomPanelTab(), BottomPanelTab(BottomPanelTab::terminal));
    QCOMPARE(next->recentFiles(), state().recentFiles());
}

void AppStateTest::nothingIsSavedByItself_data()
{
    QTest::addColumn<bool>("isStored");
    QTest::newRow("by default") << false;
    QTest::newRow("as it is stored") << true;
}

void AppStateTest::nothingIsSavedByItself()
{
    QFETCH(bool, isStored);
    if (isStored) {
        fixture_->userDefaults.setBoolean(u"autoSave"_s, true);
        fixture_->userDefaults.setInteger(u"autoSaveDelay"_s, 1);
    }
    const auto saving = restarted();
    saving->openFile(fixture_->write(u"a.txt"_s, "old"));
    saving->currentDocument()->setContent(u"new"_s);
    fixture_->scheduler.advance(300s);
    QCoreApplication::processEvents();
    QCOMPARE(fixture_->bytesOf(u"a.txt"_s), QByteArray("old"));
    QVERIFY(saving->currentDocument()->isModified());
}

void AppStateTest::severalFilesAreOneChange()
{
    QList<QUrl> urls;
    for (int i = 0; i < 20; ++i) {
        urls << fixture_->write(u"%1.txt"_s.arg(i), QByteArray::number(i));
    }
    const QSignalSpy documents(&state(), &AppState::documentsChanged);
    const QSignalSpy current(&state(), &AppState::currentDocumentChanged);
    state().openFiles(urls);
    QCOMPARE(documents.count(), 1);
    QCOMPARE(current.count(), 1);
    QCOMPARE(state().currentDocumentIndex(), 19);
    QCOMPARE(fixture_->openTexts().size(), 20);
    QCOMPARE(state().recentFiles().first(), urls.last());
    QCOMPARE(state().recentFiles().size(), 10);
    state().openFiles({});
    QCOMPARE(documents.count(), 1);
}

void AppStateTest::severalFilesOpenAsOneAfterTheOther()
{
    const QUrl a = fixture_->write(u"a.txt"_s, "a");
    const QUrl b = fixture_->write(u"b.txt"_s, "b");
    const QUrl c = fixture_->write(u"c.txt"_s, "c");
    const QUrl bad = fixture_->write(u"bad.txt"_s, "\xff");
    state().openFile(a);
    // One that is open, one twice, one that is no text, and one that is not there.
    state().openFiles({b, bad, b, fixture_->url(u"none.txt"_s), c, a});
    QCOMPARE(fixture_->openTexts(), (QStringList{u"a"_s, u"b"_s, u"c"_s}));
    QCOMPARE(state().currentDocumentIndex(), 0);
    QCOMPARE(state().recentFiles(), (QList<QUrl>{c, b, a}));
    QCOMPARE(fixture_->log.written.filter(u"Error opening file"_s).size(), 2);
    QCOMPARE(fixture_->log.written.filter(u"already open at index 1"_s).size(), 1);
    QCOMPARE(fixture_->log.written.filter(u"already open at index 0"_s).size(), 1);
}

const kelm::test::Registered<AppStateTest> registered;

} // namespace app_state_test

#include "app_state_test.moc"
