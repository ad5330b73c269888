#include "app/state/large_files.h"
#include "app/state/notices.h"
#include "platform/events/worker_pool.h"
#include "support/app_state_fixture.h"
#include "support/blocked_workers.h"
#include "support/test_program.h"

#include <QSignalSpy>
#include <QtTest>

#include <optional>
#include <sys/stat.h>

namespace large_files_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr qsizetype large = 1'000'000;

QByteArray lines(qsizetype size, char letter)
{
    return (QByteArray(99, letter) + '\n').repeated(size / 100);
}

} // namespace

class LargeFilesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void theBoundIsThatOfTheHeader();
    void aSmallFileOpensAtOnce();
    void aLargeFileComesWhenItIsWhole();
    void theNoticeNamesTheFileAndItsShare();
    void severalComeInTheirOrder();
    void smallAndLargeOnesMix();
    void aFileThatIsBeingOpenedIsOpenedOnce();
    void aFileThatWasSavedMeanwhileIsSwitchedTo();
    void stoppingLeavesNoTab();
    void stoppingOneLetsTheNextBegin();
    void aFaultAtItsEndShowsNoTab();
    void whatIsGoneWhenItsTurnComesIsToldOf();
    void whatIsNoFileIsNotLarge();
    void aStateThatEndsMeanwhileIsNoHarm();

private:
    AppState& state() { return fixture_->state; }
    /// Waits until nothing is read any more.
    void untilDone()
    {
        while (state().notices().current() != nullptr && !state().notices().current()->isNews) {
            QSignalSpy changed(&state().notices(), &Notices::currentChanged);
            QVERIFY(changed.wait(30'000));
        }
    }

    std::optional<AppStateFixture> fixture_;
};

void LargeFilesTest::init()
{
    fixture_.emplace();
    state().largeFiles().setLeastSize(large);
}

void LargeFilesTest::theBoundIsThatOfTheHeader()
{
    AppStateFixture fixture;
    const QUrl url = fixture.write(u"holes"_s, {});
    QFile file(url.toLocalFile());
    QVERIFY(file.resize(LargeFiles::leastSize));
    QVERIFY(fixture.state.largeFiles().isLarge(url));
    QVERIFY(file.resize(LargeFiles::leastSize - 1));
    QVERIFY(!fixture.state.largeFiles().isLarge(url));
}

void LargeFilesTest::aSmallFileOpensAtOnce()
{
    state().openFile(fixture_->write(u"small"_s, lines(large - 100, 'a')));
    QCOMPARE(state().documents().size(), 1);
    QVERIFY(state().notices().current() == nullptr);
}

void LargeFilesTest::aLargeFileComesWhenItIsWhole()
{
    const QByteArray bytes = lines(12'000'000, 'a') + "\xed\x95\x9c";
    const QUrl url = fixture_->write(u"large.swift"_s, bytes);
    fixture_->openTabs({u"other"_s});
    state().openFile(url);
    QCOMPARE(state().documents().size(), 1);
    QVERIFY(state().recentFiles().isEmpty());
    untilDone();
    QCOMPARE(state().documents().size(), 2);
    QCOMPARE(state().currentDocumentIndex(), 1);
    QVERIFY(state().currentDocument()->content().toUtf8() == bytes);
    QCOMPARE(state().currentDocument()->fileURL(), url);
    QVERIFY(!state().currentDocument()->isModified());
    QCOMPARE(state().recentFiles(), QList<QUrl>{url});
    QCOMPARE(fixture_->log.written.last(), u"  ✅ Document created with language: Swift"_s);
}

void LargeFilesTest::theNoticeNamesTheFileAndItsShare()
{
    const QUrl url = fixture_->write(u"large.txt"_s, lines(12'000'000, 'a'));
    std::vector<double> shares;
    connect(&state().notices(), &Notices::progressChanged, this,
            [&] { shares.push_back(*state().notices().current()->progress); });
    state().openFile(url);
    QCOMPARE(state().notices().current()->text, u"Opening large.txt…"_s);
    QCOMPARE(state().notices().current()->progress, 0.0);
    QVERIFY(!state().notices().holdsInput());
    QVERIFY(state().notices().canStop());
    untilDone();
    QVERIFY(shares.size() > 1);
    QVERIFY(std::is_sorted(shares.begin(), shares.end()));
    QVERIFY(shares.front() > 0);
    QCOMPARE(shares.back(), 1.0);
}

void LargeFilesTest::severalComeInTheirOrder()
{
    QList<QUrl> urls;
    for (const char letter : {'a', 'b', 'c'}) {
        urls << fixture_->write(QString(QLatin1Char(letter)), lines(large * (letter == 'a' ? 5 : 1), letter));
    }
    QStringList notices;
    const auto note = [&] {
        if (const Notice* notice = state().notices().current()) {
            notices << notice->text;
        }
    };
    connect(&state().notices(), &Notices::currentChanged, this, note);
    state().openFiles(urls);
    untilDone();
    QCOMPARE(notices, (QStringList{u"Opening a…"_s, u"Opening b…"_s, u"Opening c…"_s}));
    QCOMPARE(state().documents().size(), 3);
    for (qsizetype index = 0; index < 3; ++index) {
        QCOMPARE(state().documents()[index]->fileURL(), urls[index]);
    }
    QCOMPARE(state().currentDocumentIndex(), 2);
}

void LargeFilesTest::smallAndLargeOnesMix()
{
    const QUrl first = fixture_->write(u"first"_s, lines(large, 'a'));
    const QUrl second = fixture_->write(u"second"_s, "small");
    state().openFiles({first, second});
    QCOMPARE(fixture_->openTexts(), QStringList{u"small"_s});
    untilDone();
    QCOMPARE(state().documents().size(), 2);
    QCOMPARE(state().currentDocument()->fileURL(), first);
}

void LargeFilesTest::aFileThatIsBeingOpenedIsOpenedOnce()
{
    const QUrl first = fixture_->write(u"first"_s, lines(large, 'a'));
    const QUrl second = fixture_->write(u"second"_s, lines(large, 'b'));
    state().openFiles({first, second, second, first});
    state().openFile(second);
    QCOMPARE(fixture_->log.written.last(), u"  ⏳ File is being opened already"_s);
    untilDone();
    QCOMPARE(state().documents().size(), 2);
}

void LargeFilesTest::aFileThatWasSavedMeanwhileIsSwitchedTo()
{
    const QUrl url = fixture_->write(u"file"_s, lines(large, 'a'));
    {
        const test::BlockedWorkers blocked;
        state().openFile(url);
        fixture_->openTabs({u"saved"_s, u"other"_s});
        state().documents()[0]->setFileURL(url);
    }
    untilDone();
    QCOMPARE(fixture_->openTexts(), (QStringList{u"saved"_s, u"other"_s}));
    QCOMPARE(state().currentDocumentIndex(), 0);
}

void LargeFilesTest::stoppingLeavesNoTab()
{
    const QUrl url = fixture_->write(u"file"_s, lines(large, 'a'));
    {
        const test::BlockedWorkers blocked;
        state().openFile(url);
        state().notices().stop();
        QVERIFY(state().notices().current() == nullptr);
        QVERIFY(!state().largeFiles().contains(url));
    }
    QCoreApplication::processEvents();
    QVERIFY(state().documents().isEmpty());
    QVERIFY(state().recentFiles().isEmpty());
    QVERIFY(fixture_->log.written.last().startsWith(u"  ⏹️ Opening stopped: file:"_s));
    // It can be opened again.
    state().openFile(url);
    untilDone();
    QCOMPARE(state().documents().size(), 1);
}

void LargeFilesTest::stoppingOneLetsTheNextBegin()
{
    const QUrl first = fixture_->write(u"first"_s, lines(30 * large, 'a'));
    const QUrl second = fixture_->write(u"second"_s, lines(large, 'b'));
    state().openFiles({first, second});
    // In the middle of it.
    QSignalSpy progress(&state().notices(), &Notices::progressChanged);
    QVERIFY(progress.wait(30'000));
    QCOMPARE(state().notices().current()->text, u"Opening first…"_s);
    state().notices().stop();
    QCOMPARE(state().notices().current()->text, u"Opening second…"_s);
    untilDone();
    QCOMPARE(state().documents().size(), 1);
    QCOMPARE(state().currentDocument()->fileURL(), second);
}

void LargeFilesTest::aFaultAtItsEndShowsNoTab()
{
    const QUrl url = fixture_->write(u"file"_s, lines(12'000'000, 'a') + "\xff");
    QSignalSpy documents(&state(), &AppState::documentsChanged);
    state().openFile(url);
    untilDone();
    QVERIFY(documents.isEmpty());
    QVERIFY(state().recentFiles().isEmpty());
    QCOMPARE(fixture_->log.written.last(),
             u"  ❌ Error opening file: "_s + url.toLocalFile() + u": The file is not valid UTF-8 text."_s);
}

void LargeFilesTest::whatIsGoneWhenItsTurnComesIsToldOf()
{
    const QUrl url = fixture_->write(u"file"_s, lines(large, 'a'));
    {
        const test::BlockedWorkers blocked;
        state().openFile(url);
        // A pipe that nobody writes to has come in its place.
        QVERIFY(QFile::remove(url.toLocalFile()));
        QVERIFY(::mkfifo(QFile::encodeName(url.toLocalFile()).constData(), 0600) == 0);
    }
    untilDone();
    QVERIFY(state().documents().isEmpty());
    QCOMPARE(fixture_->log.written.last(), u"  ❌ Error opening file: "_s + url.toLocalFile() + u": Invalid argument"_s);
}

void LargeFilesTest::whatIsNoFileIsNotLarge()
{
    state().largeFiles().setLeastSize(0);
    LargeFiles& files = state().largeFiles();
    QVERIFY(files.isLarge(fixture_->write(u"file"_s, {})));
    QVERIFY(!files.isLarge(fixture_->url(u"missing"_s)));
    QVERIFY(!files.isLarge(QUrl::fromLocalFile(fixture_->folder.path())));
    QVERIFY(!files.isLarge(QUrl::fromLocalFile(u"/dev/zero"_s)));
    QVERIFY(!files.isLarge(QUrl(u"https://example.org/file"_s)));
}

void LargeFilesTest::aStateThatEndsMeanwhileIsNoHarm()
{
    const QUrl url = fixture_->write(u"file"_s, lines(20 * large, 'a'));
    auto state = std::make_unique<AppState>(AppState::Services{
        fixture_->filePanels, fixture_->userDefaults, fixture_->scheduler, fixture_->notificationCenter, fixture_->log,
        ProcessRunner::sharedSystem(), ExecutableSearch(ProcessRunner::system())});
    state->largeFiles().setLeastSize(large);
    state->openFile(url);
    state.reset();
    backgroundWorkers().waitForDone();
    QCoreApplication::processEvents();
}

const kelm::test::Registered<LargeFilesTest> registered;

} // namespace large_files_test

#include "large_files_test.moc"
