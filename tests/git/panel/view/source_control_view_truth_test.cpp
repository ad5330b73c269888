#include "app/state/notices.h"
#include "git/panel/view/clone_dialog.h"
#include "git/panel/view/commit_composer.h"
#include "git/panel/view/panel_fixture.h"
#include "git/panel/view/source_control_bottom_bar.h"
#include "git/service/repository_follower.h"
#include "platform/view/details_sheet.h"
#include "platform/view/labels.h"
#include "support/test_program.h"

#include <QCheckBox>
#include <QClipboard>
#include <QScrollBar>

#include <algorithm>

namespace source_control_view_truth_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

/// A panel that tells what it shows below its tabs, and in notices.
struct TruthFixture : PanelFixture
{
    using PanelFixture::PanelFixture;

    void showWithoutDismissing()
    {
        app.state.setCurrentProject(repo.url());
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QCoreApplication::processEvents();
    }
    QString red()
    {
        QCoreApplication::processEvents();
        const auto* line = view.findChild<ErrorLine*>();
        return line->isVisible() ? line->text() : QString();
    }
    Notices& notices() { return app.state.notices(); }
    QString noticeText() { return notices().current() != nullptr ? notices().current()->text : QString(); }
    void commit(const QString& message)
    {
        view.setCommitMessage(message);
        click(u"Commit"_s);
    }
    /// Has time pass until the panel has seen what others have done.
    void passTime()
    {
        app.scheduler.advance(RepositoryFollower::readDelay);
        QCoreApplication::processEvents();
    }
    bool isShown(const QString& text) const
    {
        const auto labels = view.findChildren<TextLabel*>();
        return std::any_of(labels.begin(), labels.end(),
                           [&text](const TextLabel* label) { return label->isVisible() && label->text() == text; });
    }
    bool isDetailsShown() const { return visibleButton(view, u"Details"_s) != nullptr; }
};

} // namespace

class SourceControlViewTruthTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void statesAreNotRed_data();
    void statesAreNotRed();
    void aFailureIsOneSentenceWithDetails();
    void detailsAreCopiedWhole();
    void conflictWordsLeaveWithTheConflict();
    void aNewFileIsNotDiscarded();
    void aMessageOfNothingStagedIsPutBack();
    void whatWasTypedSinceStaysBehindIt();
    void anAmendmentIsPutBackAsOne();
    void theSecondRefusalLeavesTheMessageOfTheFirst();
    void aMadeCommitOffersNothing();
    void whatOthersDoIsShownWithoutAButton();
    void commitsOfOthersAreInTheHistory();
    void ownCommandsKeepNoCommitsFromTheHistory();
    void whatOthersDoMovesNothing();
    void aHiddenPanelReadsNothing();
    void aCloneBecomesTheProject();
    void aCloneThatFailsLeavesTheProject();
};

void SourceControlViewTruthTest::initTestCase()
{
    useFixedGitEnvironment();
    style::installOn(*qApp);
}

void SourceControlViewTruthTest::statesAreNotRed_data()
{
    QTest::addColumn<bool>("hasCommit");
    QTest::addColumn<bool>("isDetached");
    QTest::newRow("no upstream") << true << false;
    QTest::newRow("no commit") << false << false;
    QTest::newRow("detached") << true << true;
}

void SourceControlViewTruthTest::statesAreNotRed()
{
    QFETCH(bool, hasCommit);
    QFETCH(bool, isDetached);
    TruthFixture f(hasCommit);
    if (isDetached) {
        f.repo.git({u"checkout"_s, u"-q"_s, u"--detach"_s});
    }
    f.showWithoutDismissing();
    QVERIFY(f.git().lastError());
    QCOMPARE(f.red(), QString());
    for (const SourceControlTab tab : allSourceControlTabs) {
        f.view.setTab(tab);
    }
    f.click(u"Refresh"_s);
    QCOMPARE(f.red(), QString());
}

void SourceControlViewTruthTest::aFailureIsOneSentenceWithDetails()
{
    TruthFixture f;
    const TemporaryRepository origin({u"init"_s, u"-q"_s, u"--bare"_s});
    const TemporaryRepository other;
    f.repo.git({u"remote"_s, u"add"_s, u"origin"_s, origin.path()});
    f.repo.git({u"push"_s, u"-qu"_s, u"origin"_s, u"main"_s});
    other.git({u"pull"_s, u"-q"_s, origin.path(), u"main"_s});
    other.commitAll(u"from elsewhere"_s);
    other.git({u"push"_s, u"-q"_s, origin.path(), u"HEAD:main"_s});
    f.repo.commitAll(u"second"_s);
    f.showWithoutDismissing();
    f.click(u"Push"_s);
    f.waitForTransfer();
    QCOMPARE(f.red(), u"rejected: fetch first"_s);
    QVERIFY(f.isDetailsShown());
    // A failure of one line holds no more.
    f.git().setLastError(u"one line"_s);
    QCOMPARE(f.red(), u"one line"_s);
    QVERIFY(!f.isDetailsShown());
}

void SourceControlViewTruthTest::detailsAreCopiedWhole()
{
    TruthFixture f;
    f.showWithoutDismissing();
    const QString words = u"fatal: bad\n\n  <b>as it is</b>\nhint: and more\n"_s;
    f.git().setLastError(words);
    QCOMPARE(f.red(), u"bad"_s);
    f.click(u"Details"_s);
    auto* sheet = f.window.findChild<DetailsSheet*>();
    QVERIFY(sheet != nullptr && sheet->isVisible() && sheet->isModal());
    QCOMPARE(sheet->text(), words);
    clickOn(*sheet, u"Copy"_s);
    QCOMPARE(QGuiApplication::clipboard()->text(), words);
    clickOn(*sheet, u"Close"_s);
    QTRY_VERIFY(f.window.findChild<DetailsSheet*>() == nullptr);
}

void SourceControlViewTruthTest::conflictWordsLeaveWithTheConflict()
{
    TruthFixture f;
    f.repo.makeConflictingBranches();
    f.showWithoutDismissing();
    f.git().mergeBranch(u"side"_s);
    QCOMPARE(f.red(), u"Merge conflict in a.txt"_s);
    f.click(u"Abort Merge"_s);
    QCOMPARE(f.red(), QString());
}

void SourceControlViewTruthTest::aNewFileIsNotDiscarded()
{
    TruthFixture f;
    f.repo.write(u"new.txt"_s, "mine\n");
    f.showWithoutDismissing();
    act(f.list(), u"U new.txt"_s, u"Discard"_s);
    QCOMPARE(f.red(), u"git has no version of new.txt to go back to."_s);
    QCOMPARE(f.repo.read(u"new.txt"_s), QByteArray("mine\n"));
}

void SourceControlViewTruthTest::aMessageOfNothingStagedIsPutBack()
{
    TruthFixture f;
    f.repo.write(u"a.txt"_s, "two\n");
    f.showWithoutDismissing();
    f.commit(u"what I wrote\n\nat length"_s);
    QCOMPARE(f.view.commitMessage(), QString());
    QCOMPARE(f.red(), QString());
    QCOMPARE(f.noticeText(), u"Nothing is staged: no changes added to commit."_s);
    QCOMPARE(f.notices().current()->offers.front().label, u"Put back"_s);
    f.notices().accept(0);
    QCOMPARE(f.view.commitMessage(), u"what I wrote\n\nat length"_s);
    f.click(u"Stage All"_s);
    f.click(u"Commit"_s);
    QCOMPARE(f.output({u"log"_s, u"-1"_s, u"--format=%B"_s}), QByteArray("what I wrote\n\nat length"));
}

void SourceControlViewTruthTest::whatWasTypedSinceStaysBehindIt()
{
    TruthFixture f;
    f.showWithoutDismissing();
    f.commit(u"first try"_s);
    f.view.setCommitMessage(u"typed since"_s);
    f.notices().accept(0);
    QCOMPARE(f.view.commitMessage(), u"first try\n\ntyped since"_s);
}

void SourceControlViewTruthTest::anAmendmentIsPutBackAsOne()
{
    TruthFixture f;
    f.repo.write(u"a.txt"_s, "two\n");
    f.repo.commitAll(u"second"_s);
    f.repo.git({u"checkout"_s, u"-q"_s, u"HEAD~1"_s, u"--"_s, u"a.txt"_s});
    f.showWithoutDismissing();
    auto* amend = f.view.findChild<CommitComposer*>()->findChild<QCheckBox*>();
    amend->click();
    f.view.setCommitMessage(u"other words"_s);
    f.click(u"Amend"_s);
    QVERIFY(!amend->isChecked());
    QCOMPARE(f.view.commitMessage(), QString());
    QCOMPARE(f.noticeText(), u"Amending would leave the last commit empty."_s);
    f.notices().accept(0);
    QVERIFY(amend->isChecked());
    QCOMPARE(f.view.commitMessage(), u"other words"_s);
}

void SourceControlViewTruthTest::theSecondRefusalLeavesTheMessageOfTheFirst()
{
    TruthFixture f;
    f.showWithoutDismissing();
    f.commit(u"first try"_s);
    f.commit(u"second try"_s);
    f.notices().accept(0);
    QCOMPARE(f.view.commitMessage(), u"second try"_s);
    QVERIFY(!f.noticeText().isEmpty());
    f.view.setCommitMessage({});
    f.notices().accept(0);
    QCOMPARE(f.view.commitMessage(), u"first try"_s);
    QCOMPARE(f.noticeText(), QString());
}

void SourceControlViewTruthTest::aMadeCommitOffersNothing()
{
    TruthFixture f;
    f.repo.write(u"a.txt"_s, "two\n");
    f.repo.git({u"add"_s, u"-A"_s});
    f.showWithoutDismissing();
    f.commit(u"second"_s);
    QCOMPARE(f.view.commitMessage(), QString());
    QCOMPARE(f.noticeText(), QString());
}

void SourceControlViewTruthTest::whatOthersDoIsShownWithoutAButton()
{
    TruthFixture f;
    f.showWithoutDismissing();
    QTRY_VERIFY((f.passTime(), f.app.state.repositoryFollower().isSettled()));
    f.repo.write(u"b.txt"_s, "");
    f.repo.git({u"add"_s, u"-A"_s});
    QTRY_VERIFY((f.passTime(), f.lines() == QStringList{u"# Staged"_s, u"A b.txt"_s}));
    f.repo.git({u"checkout"_s, u"-q"_s, u"--detach"_s});
    const QString hash = QString::fromLatin1(f.output({u"rev-parse"_s, u"HEAD"_s}));
    QTRY_VERIFY((f.passTime(), f.isShown(u"detached at "_s + hash.first(7))));
    QCOMPARE(f.red(), QString());
}

void SourceControlViewTruthTest::commitsOfOthersAreInTheHistory()
{
    TruthFixture f;
    f.showWithoutDismissing();
    f.view.setTab(SourceControlTab::history);
    QCOMPARE(f.lines().size(), 1);
    QTRY_VERIFY((f.passTime(), f.app.state.repositoryFollower().isSettled()));
    f.repo.commitAll(u"by somebody else"_s);
    QTRY_VERIFY((f.passTime(), f.lines().size() == 2));
    QVERIFY(f.lines().first().contains(u"by somebody else"_s));
}

void SourceControlViewTruthTest::ownCommandsKeepNoCommitsFromTheHistory()
{
    TruthFixture f;
    f.showWithoutDismissing();
    f.view.setTab(SourceControlTab::history);
    QCOMPARE(f.lines().size(), 1);
    QTRY_VERIFY((f.passTime(), f.app.state.repositoryFollower().isSettled()));
    // Whenever the tab has begun to read, and before that has ended.
    QObject::connect(&f.git(), &GitService::taken, &f.window, [&f] { f.git().showCommit(u"HEAD"_s); });
    f.repo.commitAll(u"by somebody else"_s);
    QTRY_VERIFY((f.passTime(), f.lines().size() == 2));
}

void SourceControlViewTruthTest::whatOthersDoMovesNothing()
{
    TruthFixture f;
    for (int i = 100; i < 200; ++i) {
        f.repo.write(u"%1"_s.arg(i), "");
    }
    f.showWithoutDismissing();
    QTRY_VERIFY((f.passTime(), f.app.state.repositoryFollower().isSettled()));
    RowList& list = f.list();
    list.setFocus();
    list.setCurrentIndex(list.model()->index(itemOf(list, u"U 150"_s), 0));
    list.verticalScrollBar()->setValue(list.verticalScrollBar()->maximum() / 2);
    const int place = list.verticalScrollBar()->value();
    QVERIFY(place > 0);
    const QList<GitFileStatus> before = f.git().status();

    // Nothing new, and then something far below.
    f.app.state.repositoryFollower().noteChange();
    f.passTime();
    QTRY_VERIFY((f.passTime(), f.app.state.repositoryFollower().isSettled()));
    QCOMPARE(f.git().status(), before);
    f.repo.write(u"zzz"_s, "");
    f.app.state.repositoryFollower().noteChange();
    QTRY_VERIFY((f.passTime(), itemOf(list, u"U zzz"_s) > 0));
    QCOMPARE(list.verticalScrollBar()->value(), place);
    QCOMPARE(list.currentIndex().row(), itemOf(list, u"U 150"_s));
}

void SourceControlViewTruthTest::aHiddenPanelReadsNothing()
{
    TruthFixture f;
    f.showWithoutDismissing();
    QTRY_VERIFY((f.passTime(), f.app.state.repositoryFollower().isSettled()));
    f.view.hide();
    const quint64 age = f.git().age();
    f.repo.write(u"b.txt"_s, "");
    f.repo.git({u"add"_s, u"-A"_s});
    QCoreApplication::processEvents();
    f.passTime();
    QVERIFY(f.app.state.repositoryFollower().isSettled());
    QVERIFY(f.git().status().isEmpty());
    QCOMPARE(f.git().age(), age);
    f.view.show();
    QCOMPARE(f.git().status().size(), 1);
}

void SourceControlViewTruthTest::aCloneBecomesTheProject()
{
    TruthFixture f;
    const TemporaryRepository source;
    source.write(u"in the clone.txt"_s, "one\n");
    source.commitAll(u"cloned"_s);
    f.showWithoutDismissing();
    const QByteArray before = f.output({u"rev-parse"_s, u"HEAD"_s});
    const QTemporaryDir folder;
    const QUrl clone = QUrl::fromLocalFile(folder.filePath(u"clone"_s));

    f.view.setShowCloneDialog(true);
    CloneForm& form = f.window.findChild<CloneDialog*>()->form();
    form.setRemoteURL(source.path());
    form.setDestinationParent(QUrl::fromLocalFile(folder.path()));
    form.setDestinationName(u"clone"_s);
    form.startClone();
    QTRY_VERIFY_WITH_TIMEOUT(form.didSucceed(), 20000);
    QVERIFY(f.app.state.currentProject() == clone);
    QVERIFY(f.git().repoURL() == clone);

    // The panel stays with it when it comes back, and a commit lands there.
    f.view.hide();
    f.view.show();
    QVERIFY(f.git().repoURL() == clone);
    QFile file(folder.filePath(u"clone/new.txt"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    f.click(u"Stage All"_s);
    f.commit(u"lands in the clone"_s);
    const ProcessResult log = ProcessRunner::system().run(
        GitService::makeProcess({u"log"_s, u"-1"_s, u"--format=%s"_s}, folder.filePath(u"clone"_s)));
    QCOMPARE(log.standardOutput, QByteArray("lands in the clone\n"));
    QCOMPARE(f.output({u"rev-parse"_s, u"HEAD"_s}), before);
}

void SourceControlViewTruthTest::aCloneThatFailsLeavesTheProject()
{
    TruthFixture f;
    f.showWithoutDismissing();
    std::optional<GitOpResult> result;
    f.git().cloneRepo(u"/nowhere/at/all"_s, f.app.url(u"clone"_s), [&](const GitOpResult& each) { result = each; });
    QTRY_VERIFY_WITH_TIMEOUT(result, 20000);
    QVERIFY(f.app.state.currentProject() == f.repo.url());
    QVERIFY(f.git().repoURL() == f.repo.url());
}

const kelm::test::Registered<SourceControlViewTruthTest> registered(kelm::test::Toolkit::widgets);

} // namespace source_control_view_truth_test

#include "source_control_view_truth_test.moc"
