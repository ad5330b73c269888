#include "app/state/awaited_tabs.h"
#include "app/state/large_files.h"
#include "app/state/notices.h"
#include "platform/events/waiting_start.h"
#include "support/app_state_fixture.h"
#include "support/test_program.h"

#include <QSignalSpy>
#include <QtTest>

#include <sys/socket.h>

namespace awaited_tabs_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

/// A start that waits, and what it hears: one letter, or nothing yet.
class Start
{
public:
    Start()
    {
        int ends[2] = {-1, -1};
        if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, ends) != 0) {
            qFatal("no pair of sockets");
        }
        ear_ = OpenFile(ends[0]);
        waiting_ = std::make_shared<WaitingStart>(OpenFile(ends[1]));
    }

    /// For one tab after the other; the last of them is given it for good.
    const std::shared_ptr<WaitingStart>& waiting() const { return waiting_; }
    void isAsked() { waiting_.reset(); }

    QByteArray hears() const
    {
        char letter = 0;
        return ear_.read(&letter, 1) == 1 ? QByteArray(1, letter) : QByteArray();
    }

private:
    OpenFile ear_;
    std::shared_ptr<WaitingStart> waiting_;
};

} // namespace

class AwaitedTabsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { fixture_ = std::make_unique<AppStateFixture>(); }
    void aTabThatIsNotChangedCountsAsSaved();
    void aTabIsSavedAndClosed();
    void aTabIsClosedUnsaved();
    void allTabsAreWaitedFor();
    void aTabThatIsOpenedAgainIsAnother();
    void aTextWithoutAFileIsSavedSomewhere();
    void whatCouldNotBeOpenedIsTold();
    void aLargeFileIsWaitedForWhenItIsRead();
    void aLargeFileThatIsStoppedCouldNotBeOpened();
    void theEndClosesAllTabs();

private:
    AppState& state() { return fixture_->state; }

    /// Opens a file and waits for it.
    QUrl open(AwaitedTabs& tabs, const Start& start, const QString& name)
    {
        const QUrl url = fixture_->write(name, "text\n");
        state().openFile(url);
        tabs.add(url, start.waiting());
        return url;
    }

    std::unique_ptr<AppStateFixture> fixture_;
};

void AwaitedTabsTest::aTabThatIsNotChangedCountsAsSaved()
{
    AwaitedTabs tabs(state());
    Start start;
    open(tabs, start, u"a.txt"_s);
    start.isAsked();
    state().createNewTab();
    QCOMPARE(start.hears(), "");
    state().closeTab(0);
    QCOMPARE(start.hears(), "s");
}

void AwaitedTabsTest::aTabIsSavedAndClosed()
{
    AwaitedTabs tabs(state());
    Start start;
    open(tabs, start, u"a.txt"_s);
    start.isAsked();
    state().currentDocument()->setContent(u"another"_s);
    state().saveCurrentDocument();
    state().closeTab(0);
    QCOMPARE(start.hears(), "s");
    QCOMPARE(fixture_->bytesOf(u"a.txt"_s), "another");
}

void AwaitedTabsTest::aTabIsClosedUnsaved()
{
    AwaitedTabs tabs(state());
    Start start;
    open(tabs, start, u"a.txt"_s);
    start.isAsked();
    state().currentDocument()->setContent(u"another"_s);
    state().closeTab(0);
    QCOMPARE(start.hears(), "u");
}

void AwaitedTabsTest::allTabsAreWaitedFor()
{
    AwaitedTabs tabs(state());
    Start start;
    open(tabs, start, u"a.txt"_s);
    state().currentDocument()->setContent(u"another"_s);
    open(tabs, start, u"b.txt"_s);
    start.isAsked();
    state().closeTab(0);
    QCOMPARE(start.hears(), "");
    state().closeTab(0);
    QCOMPARE(start.hears(), "u");
}

void AwaitedTabsTest::aTabThatIsOpenedAgainIsAnother()
{
    AwaitedTabs tabs(state());
    Start start;
    const QUrl url = open(tabs, start, u"a.txt"_s);
    start.isAsked();
    state().closeTab(0);
    state().openFile(url);
    QCOMPARE(start.hears(), "s");
}

void AwaitedTabsTest::aTextWithoutAFileIsSavedSomewhere()
{
    AwaitedTabs tabs(state());
    Start start;
    state().createNewTab();
    tabs.add(state().currentDocument(), start.waiting());
    start.isAsked();
    state().currentDocument()->setContent(u"typed"_s);
    fixture_->filePanels.saveAnswer = fixture_->url(u"new.txt"_s);
    state().saveCurrentDocument();
    state().closeTab(0);
    QCOMPARE(start.hears(), "s");
}

void AwaitedTabsTest::whatCouldNotBeOpenedIsTold()
{
    AwaitedTabs tabs(state());
    Start start;
    state().openFile(fixture_->url(u"none.txt"_s));
    tabs.add(fixture_->url(u"none.txt"_s), start.waiting());
    tabs.add(std::shared_ptr<Document>(), start.waiting());
    start.isAsked();
    QCOMPARE(start.hears(), "x");
}

void AwaitedTabsTest::aLargeFileIsWaitedForWhenItIsRead()
{
    AwaitedTabs tabs(state());
    Start start;
    state().largeFiles().setLeastSize(1);
    const QUrl url = open(tabs, start, u"large.txt"_s);
    start.isAsked();
    QVERIFY(state().largeFiles().contains(url));
    QTRY_COMPARE_WITH_TIMEOUT(state().documents().size(), 1, 30'000);
    QCOMPARE(start.hears(), "");
    state().currentDocument()->setContent(u"another"_s);
    state().closeTab(0);
    QCOMPARE(start.hears(), "u");
}

void AwaitedTabsTest::aLargeFileThatIsStoppedCouldNotBeOpened()
{
    AwaitedTabs tabs(state());
    Start start;
    state().largeFiles().setLeastSize(1);
    open(tabs, start, u"large.txt"_s);
    start.isAsked();
    state().notices().stop();
    QCOMPARE(start.hears(), "x");
}

void AwaitedTabsTest::theEndClosesAllTabs()
{
    Start saved;
    Start unsaved;
    {
        AwaitedTabs tabs(state());
        open(tabs, unsaved, u"a.txt"_s);
        state().currentDocument()->setContent(u"another"_s);
        open(tabs, saved, u"b.txt"_s);
        saved.isAsked();
        unsaved.isAsked();
        QCOMPARE(saved.hears() + unsaved.hears(), "");
    }
    QCOMPARE(saved.hears(), "s");
    QCOMPARE(unsaved.hears(), "u");
}

const kelm::test::Registered<AwaitedTabsTest> registered;

} // namespace awaited_tabs_test

#include "awaited_tabs_test.moc"
